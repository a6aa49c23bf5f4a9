#pragma once

#include "InstalledTree.h"

#include <QList>

namespace orvex::test {

/// What the help text of a command names.
struct CommandHelp {
    QStringList command;     ///< the words that lead to it; none for the program itself
    QStringList options;     ///< each form, such as "-h" and "--help"
    QStringList subcommands; ///< the commands below it

    [[nodiscard]] QString name() const { return command.join(u' '); }
};

/// The first words of the lines under a heading.
inline QStringList namesUnder(const QString& heading, const QString& helpText) {
    const QStringList lines = helpText.split(u'\n');
    QStringList names;
    for (qsizetype index = lines.indexOf(heading) + 1; index > 0 && index < lines.size(); ++index) {
        if (lines[index].isEmpty()) {
            break;
        }
        if (!lines[index].startsWith(QStringLiteral("   "))) { // those go on with the line before
            names += lines[index].trimmed().section(u' ', 0, 0).split(u',');
        }
    }
    return names;
}

/// Asks a program for its help, and for that of every command below.
inline QList<CommandHelp> helpOf(const InstalledTree& tree, const QString& program, const QStringList& command = {}) {
    const QString text = tree.run(program, command + QStringList{QStringLiteral("--help")}).output;
    const CommandHelp help{command, namesUnder(QStringLiteral("Options:"), text),
                           namesUnder(QStringLiteral("Subcommands:"), text)};
    QList<CommandHelp> all{help};
    for (const QString& name : help.subcommands) {
        all += helpOf(tree, program, command + QStringList{name});
    }
    return all;
}

} // namespace orvex::test
