#include "Command.h"
#include "CommandHelp.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::CommandHelp;
using test::InstalledTree;
using test::q;

struct ManualPage {
    const char* name;
    const char* file;
};

class ManualPages : public ::testing::TestWithParam<ManualPage> {
protected:
    bool isOfTheWindowProgram() const { return QString::fromLatin1(GetParam().name).startsWith(q("orvex_")); }

    InstalledTree tree_;
};

/// The text from a heading to the next one of any kind.
QString section(const QString& page, const QString& heading) {
    const qsizetype start = page.indexOf(heading);
    if (start < 0) {
        return {};
    }
    return page.sliced(start, page.indexOf(q("\n.S"), start + heading.size()) - start);
}

/// Whether a paragraph of the text is about the option.
bool describes(const QString& text, const QString& option) {
    const QString written = QString(option).replace(u'-', q("\\-"));
    for (const QString& paragraph : text.split(q("\n.TP\n")).sliced(1)) {
        const QString heading = paragraph.section(u'\n', 0, 0);
        if (heading.contains(q("\\fB%1\\fR").arg(written)) || heading == q(".B ") + written) {
            return true;
        }
    }
    return false;
}

TEST_P(ManualPages, isWrittenWithoutWarnings) {
    QProcessEnvironment environment = tree_.environment();
    environment.insert(q("MANWIDTH"), q("80"));
    const test::ProgramResult result =
        test::runProgram(q("man"), {q("--warnings"), q("-l"), tree_.path(GetParam().file)}, environment);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors.toStdString(), "");
    EXPECT_FALSE(result.output.contains(u'@'));
    EXPECT_TRUE(result.output.contains(q("ORVEX " ORVEX_VERSION)));
}

TEST_P(ManualPages, isFoundByItsNameAndPurpose) {
    const test::ProgramResult result = tree_.run(q("lexgrog"), {tree_.path(GetParam().file)});
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
}

TEST_P(ManualPages, describesEveryOptionOfEveryCommand) {
    const QString page = tree_.text(GetParam().file);
    const QString program = isOfTheWindowProgram() ? q("orvex") : q("orvexctl");
    const bool isChinese = QString::fromLatin1(GetParam().file).contains(q("zh_CN"));
    for (const CommandHelp& help : test::helpOf(tree_, tree_.path(q("bin/") + program))) {
        const QString heading = help.command.isEmpty() ? (isChinese ? q("\n.SH 选项\n") : q("\n.SH OPTIONS\n"))
                                                       : q("\n.SS \"%1 %2\"\n").arg(program, help.name());
        const QString text = section(page, heading);
        EXPECT_NE(text, QString()) << "there is no section" << heading.toStdString();
        for (const QString& option : help.options) {
            const bool isCommon = !help.command.isEmpty() && (option == q("-h") || option == q("--help"));
            EXPECT_EQ(describes(text, option), !isCommon) << heading.toStdString() << option.toStdString();
        }
    }
}

TEST_P(ManualPages, describesTheOptionsOfTheProgram) {
    const QString page = tree_.text(GetParam().file);
    for (const char* option : {"-h", "--help", "--orvex-qa-workspace"}) {
        EXPECT_TRUE(describes(page, q(option))) << option;
    }
    EXPECT_EQ(describes(page, q("--version")), isOfTheWindowProgram());
}

INSTANTIATE_TEST_SUITE_P(All, ManualPages,
                         ::testing::Values(ManualPage{"orvex_en", "share/man/man1/orvex.1"},
                                           ManualPage{"orvex_zh", "share/man/zh_CN/man1/orvex.1"},
                                           ManualPage{"orvexctl_en", "share/man/man1/orvexctl.1"},
                                           ManualPage{"orvexctl_zh", "share/man/zh_CN/man1/orvexctl.1"}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace orvex
