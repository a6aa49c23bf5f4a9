#include "Command.h"
#include "CommandHelp.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::CommandHelp;
using test::InstalledTree;
using test::q;

QStringList sorted(QStringList texts) {
    texts.sort();
    return texts;
}

class Completions : public ::testing::Test {
protected:
    QList<CommandHelp> commands() const { return test::helpOf(tree_, tree_.path("bin/orvexctl")); }

    /// What bash offers for the last of the words of a command line, sorted.
    QStringList offered(const QStringList& words) const {
        const QString program = words.first();
        const QString script = q("source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _%1; "
                                 "printf '%s\\n' \"${COMPREPLY[@]}\"")
                                   .arg(program);
        const QString file = tree_.path(q("share/bash-completion/completions/") + program);
        const QStringList arguments{q("--norc"), q("-c"), script, q("bash"), file};
        const test::ProgramResult result = tree_.run(q("bash"), arguments + words);
        EXPECT_EQ(result.status, 0) << result.errors.toStdString();
        return sorted(result.output.split(u'\n', Qt::SkipEmptyParts));
    }

    InstalledTree tree_;
};

/// The options that a text names, such as "-o" and "--width", each once.
QStringList optionsIn(const QString& text) {
    static const QRegularExpression option(q("(?<![\\w-])--?[a-z][a-z-]*(?![\\w])"));
    QStringList found;
    for (const QRegularExpressionMatch& match : option.globalMatch(text)) {
        found.append(match.captured());
    }
    found.removeDuplicates();
    return found;
}

bool everyOne(const QStringList& wanted, const QStringList& found) {
    return std::ranges::all_of(wanted, [&](const QString& each) { return found.contains(each); });
}

TEST_F(Completions, theHelpIsUnderstood) {
    const QList<CommandHelp> all = commands();
    ASSERT_GE(all.size(), 24);
    EXPECT_EQ(all.first().subcommands.first(), q("roll"));
    EXPECT_EQ(all[1].command, QStringList{q("roll")});
    EXPECT_TRUE(everyOne({q("-h"), q("--help"), q("-o"), q("--size"), q("--intent")}, all[1].options));
}

TEST_F(Completions, bashOffersTheOptionsOfEveryCommand) {
    for (const CommandHelp& help : commands()) {
        EXPECT_EQ(offered(QStringList{q("orvexctl")} + help.command + QStringList{q("-")}), sorted(help.options))
            << help.name().toStdString();
    }
}

TEST_F(Completions, bashOffersTheCommandsBelowEveryCommand) {
    for (const CommandHelp& help : commands()) {
        if (!help.subcommands.isEmpty()) {
            EXPECT_EQ(offered(QStringList{q("orvexctl")} + help.command + QStringList{q("")}), sorted(help.subcommands))
                << help.name().toStdString();
        }
    }
}

TEST_F(Completions, bashOffersValues) {
    EXPECT_EQ(offered({q("orvexctl"), q("--language"), q("")}), (QStringList{q("en"), q("zh-Hans")}));
    EXPECT_EQ(offered({q("orvexctl"), q("--language"), q("="), q("z")}), QStringList{q("zh-Hans")});
    EXPECT_EQ(offered({q("orvexctl"), q("roll"), q("--intent"), q("a")}), QStringList{q("absoluteColorimetric")});
    EXPECT_EQ(offered({q("orvexctl"), q("roll"), q("--title"), q("")}), QStringList());
}

TEST_F(Completions, bashKnowsACommandBehindOptionsOfTheProgram) {
    EXPECT_EQ(offered({q("orvexctl"), q("--language"), q("en"), q("prin")}), QStringList{q("printers")});
    EXPECT_EQ(offered({q("orvexctl"), q("--language"), q("en"), q("preview"), q("--p")}), QStringList{q("--pixels")});
    EXPECT_EQ(offered({q("orvexctl"), q("--language"), q("="), q("en"), q("jobs"), q("e")}), QStringList{q("export")});
}

TEST_F(Completions, bashOffersFilesWithSpacesAsOneWord) {
    const test::TemporaryFolder folder;
    const QString image = folder.write(q("a picture.jpg"), "");
    EXPECT_EQ(offered({q("orvexctl"), q("roll"), folder.path(q("a"))}), QStringList{image});
    EXPECT_EQ(offered({q("orvex"), folder.path(q("a"))}), QStringList{image});
}

TEST_F(Completions, theWindowProgramsOptionsAreOffered) {
    QStringList options{q("--help"), q("--orvex-qa-workspace"), q("--version"), q("-h")};
    for (const CommandHelp& help : test::helpOf(tree_, tree_.path("bin/orvex"))) {
        options += help.options;
    }
    options.removeDuplicates();
    EXPECT_EQ(offered({q("orvex"), q("-")}), sorted(options));
    EXPECT_TRUE(everyOne(options, optionsIn(tree_.text("share/zsh/site-functions/_orvex"))));
    const QString fish = tree_.text("share/fish/vendor_completions.d/orvex.fish");
    EXPECT_TRUE(fish.contains(q("-s h -l help ")) && fish.contains(q("-l version ")) &&
                fish.contains(q("-l orvex-qa-workspace ")));
}

/// The branch of a zsh script for a command, with what is common to several of them.
QString zshBranch(const QString& script, const CommandHelp& help) {
    const QString head = q("\n        %1) ").arg(help.command.first());
    const QString longHead = q("\n        %1)\n").arg(help.command.first());
    const qsizetype start = std::max(script.indexOf(head), script.indexOf(longHead));
    const qsizetype fallback = script.indexOf(q("\n        *) "));
    const qsizetype from = start < 0 ? fallback : start;
    QString branch = script.sliced(from, script.indexOf(q(";;"), from) - from);
    for (const char* common : {"help", "color"}) {
        const qsizetype definition = script.indexOf(q(" %1=(").arg(q(common)));
        const qsizetype end = script.indexOf(q("\n"), script.indexOf(q(")\n"), definition));
        branch.replace(q("$%1").arg(q(common)), script.sliced(definition, end - definition));
    }
    return branch;
}

TEST_F(Completions, zshOffersTheOptionsOfEveryCommand) {
    const QString script = tree_.text("share/zsh/site-functions/_orvexctl");
    const QList<CommandHelp> all = commands();
    for (const CommandHelp& help : all) {
        const QString branch =
            help.command.isEmpty() ? script.sliced(script.indexOf(q("\n_orvexctl() {"))) : zshBranch(script, help);
        EXPECT_EQ(sorted(optionsIn(branch)), sorted(help.options)) << help.name().toStdString();
    }
}

TEST_F(Completions, zshOffersTheCommandsBelowEveryCommand) {
    const QString script = tree_.text("share/zsh/site-functions/_orvexctl");
    for (const CommandHelp& help : commands()) {
        const QString function = q("\n_orvexctl_%1() {").arg(help.command.isEmpty() ? q("commands") : help.name());
        const qsizetype start = script.indexOf(function);
        EXPECT_EQ(start >= 0, !help.subcommands.isEmpty()) << function.toStdString();
        const QString body = start < 0 ? QString() : script.sliced(start, script.indexOf(q("\n}"), start) - start);
        for (const QString& name : help.subcommands) {
            EXPECT_TRUE(body.contains(u'\'' + name + u':')) << name.toStdString();
        }
    }
}

/// A line of a fish script that offers an option behind a command.
QString fishOption(const CommandHelp& help, const QString& option) {
    const QString condition = help.command.isEmpty() ? q("__orvexctl_at") : q("__orvexctl_in %1").arg(help.name());
    const QString flag = option.startsWith(q("--")) ? q("-l ") + option.sliced(2) : q("-s ") + option.sliced(1);
    return q("complete -c orvexctl -n '%1' %2 ").arg(condition, flag);
}

TEST_F(Completions, fishOffersTheOptionsOfEveryCommand) {
    const QString script = tree_.text("share/fish/vendor_completions.d/orvexctl.fish");
    EXPECT_TRUE(script.contains(q("\ncomplete -c orvexctl -s h -l help "))); // of every command
    for (const CommandHelp& help : commands()) {
        for (const QString& option : help.options) {
            const bool isHelp = option == q("-h") || option == q("--help");
            EXPECT_EQ(script.count(u'\n' + fishOption(help, option)), isHelp ? 0 : 1)
                << fishOption(help, option).toStdString();
        }
    }
}

TEST_F(Completions, fishOffersTheCommandsBelowEveryCommand) {
    const QString script = tree_.text("share/fish/vendor_completions.d/orvexctl.fish");
    for (const CommandHelp& help : commands()) {
        for (const QString& name : help.subcommands) {
            const QString words = QStringList(QStringList{q("__orvexctl_at")} + help.command).join(u' ');
            EXPECT_EQ(script.count(q("\ncomplete -c orvexctl -n '%1' -a %2 ").arg(words, name)), 1)
                << help.name().toStdString() << ' ' << name.toStdString();
        }
    }
}

TEST_F(Completions, bashTakesTheScripts) {
    for (const char* name : {"orvex", "orvexctl"}) {
        const QString file = tree_.path(q("share/bash-completion/completions/") + q(name));
        const test::ProgramResult result = tree_.run(q("bash"), {q("-n"), file});
        EXPECT_EQ(result.errors.toStdString(), "");
        EXPECT_EQ(result.status, 0);
    }
}

} // namespace
} // namespace orvex
