#include "Shell/Arguments.h"

#include "InChinese.h"
#include "PanelTexts.h"

#include <gtest/gtest.h>

namespace orvex::test {

namespace {

Arguments parsed(const QStringList& arguments) {
    return Arguments::parse(QStringList{QStringLiteral("orvex")} + arguments);
}

QUrl file(const char* path) {
    return QUrl::fromLocalFile(QString::fromUtf8(path));
}

} // namespace

TEST(Arguments, WithoutAnyTheWindowOpensAsItWasLeft) {
    const Arguments arguments = parsed({});
    EXPECT_FALSE(arguments.layout);
    EXPECT_TRUE(arguments.images.isEmpty());
    EXPECT_FALSE(arguments.answer);
}

TEST(Arguments, AJsonFileIsALayoutToOpen) {
    EXPECT_EQ(parsed({QStringLiteral("/tmp/Roll.JSON")}).layout, file("/tmp/Roll.JSON"));
}

TEST(Arguments, OtherFilesAreImagesToImportInTheirOrder) {
    const Arguments arguments = parsed({QStringLiteral("/b.jpg"), QStringLiteral("/[a],x.tif"), QStringLiteral("/c")});
    EXPECT_EQ(arguments.images, (QList<QUrl>{file("/b.jpg"), file("/[a],x.tif"), file("/c")}));
}

TEST(Arguments, BehindTwoDashesEverythingIsAFile) {
    EXPECT_EQ(parsed({QStringLiteral("--"), QStringLiteral("--help")}).images.size(), 1);
}

TEST(Arguments, MoreThanOneLayoutIsWrongUsage) {
    const auto answer = parsed({QStringLiteral("/a.json"), QStringLiteral("/b.json")}).answer;
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 2);
    EXPECT_TRUE(answer->text.startsWith(QStringLiteral("Only one layout can be opened at a time.\nusage: orvex")));
}

TEST(Arguments, ALayoutWithImagesIsWrongUsage) {
    EXPECT_EQ(parsed({QStringLiteral("/a.json"), QStringLiteral("/b.png")}).answer->exitStatus, 2);
}

TEST(Arguments, AnUnknownOptionIsWrongUsage) {
    const auto answer = parsed({QStringLiteral("--fast")}).answer;
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 2);
    EXPECT_TRUE(answer->text.contains(QStringLiteral("fast")));
}

TEST(Arguments, AWorkspaceMustBeAnAbsolutePath) {
    EXPECT_FALSE(parsed({QStringLiteral("--orvex-qa-workspace"), QStringLiteral("/tmp/x")}).answer);
    EXPECT_EQ(parsed({QStringLiteral("--orvex-qa-workspace"), QStringLiteral("x")}).answer->exitStatus, 2);
    EXPECT_EQ(parsed({QStringLiteral("--orvex-qa-workspace")}).answer->exitStatus, 2);
    EXPECT_EQ(parsed({QStringLiteral("--orvex-qa-workspace=/tmp/x")}).answer->exitStatus, 2);
}

TEST(Arguments, TheVersionIsTold) {
    const auto answer = parsed({QStringLiteral("--version")}).answer;
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 0);
    EXPECT_EQ(answer->text, QStringLiteral("orvex ") + appVersion());
}

TEST(Arguments, HelpNamesEveryOptionInBothLanguages) {
    for (const char* option : {"--orvex-qa-workspace", "--version", "--help"}) {
        EXPECT_TRUE(parsed({QStringLiteral("-h")}).answer->text.contains(QLatin1String(option)));
    }
    const InChinese chinese;
    const auto answer = parsed({QStringLiteral("--help")}).answer;
    EXPECT_EQ(answer->exitStatus, 0);
    EXPECT_TRUE(answer->text.contains(QStringLiteral("用法：orvex")));
}

} // namespace orvex::test
