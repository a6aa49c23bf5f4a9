#pragma once

#include "OrvexModel.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>

namespace orvex {

/// One command of the menus.
struct Command {
    QString name; ///< for tests
    QString title;
    QKeySequence shortcut;
    std::function<void()> run;
    std::function<bool()> isEnabled;
};

/// The commands of the menus over a session, in groups. Titles are in the language of the moment.
namespace MenuCommands {

/// What brings artworks onto the roll and the roll out as a PDF.
[[nodiscard]] QList<Command> rollCommands(OrvexModel& session);

/// What is done with the layout as a whole.
[[nodiscard]] QList<Command> layoutCommands(OrvexModel& session);

[[nodiscard]] QList<Command> printCommands(OrvexModel& session);

/// What takes back and repeats changes of the layout.
[[nodiscard]] QList<Command> editCommands(OrvexModel& session);

/// How the canvas is seen.
[[nodiscard]] QList<Command> viewCommands(OrvexModel& session);

} // namespace MenuCommands

} // namespace orvex
