#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

namespace orvex {

/// What the program was started with.
struct Arguments {
    /// What is to be said instead of opening a window.
    struct Answer {
        int exitStatus = 0;
        QString text;
    };

    std::optional<QUrl> layout = {}; ///< a layout to open
    QList<QUrl> images = {};         ///< or images to import
    std::optional<Answer> answer = {};

    /// Of the process's arguments, the program's name first. Raises nothing: a wrong usage is an answer.
    [[nodiscard]] static Arguments parse(const QStringList& arguments);
};

} // namespace orvex
