#pragma once

#include "Process/ChildProcess.h"

#include <QByteArray>
#include <QStringList>

namespace orvex {

/// A tool of the system, to be run with these arguments and with an environment of its own: its words are English
/// whatever the user's language is, and no search path, home folder or server setting reaches it.
[[nodiscard]] inline platform::ChildCommand toolCommand(const QByteArray& executable, const QStringList& arguments) {
    platform::ChildCommand command{.executable = executable, .arguments = {}, .environment = {"LC_ALL=C", "LANG=C"}};
    for (const QString& argument : arguments) {
        command.arguments.append(argument.toUtf8());
    }
    return command;
}

} // namespace orvex
