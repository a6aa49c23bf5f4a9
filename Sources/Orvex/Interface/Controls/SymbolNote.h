#pragma once

#include "Theme/OrvexIcons.h"

#include <QLabel>
#include <QWidget>

namespace orvex {

/// A picture beside a title and the text below it. Main thread.
class SymbolNote : public QWidget {
    Q_OBJECT

public:
    struct Look {
        OrvexIcons::Symbol symbol;
        QColor color; ///< of the picture
        QString title;
        QString text;
    };

    explicit SymbolNote(const Look& look, QWidget* parent = nullptr);

    void setText(const QString& text);

private:
    QLabel* text_;
};

} // namespace orvex
