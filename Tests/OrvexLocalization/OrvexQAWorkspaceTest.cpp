#include "OrvexQAWorkspace.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

const QString flag = QStringLiteral("--orvex-qa-workspace");

std::optional<QUrl> directory(const QStringList& arguments) {
    return OrvexQAWorkspace::directory(arguments);
}

TEST(OrvexQAWorkspace, isAbsentWithoutTheFlag) {
    EXPECT_EQ(directory({QStringLiteral("orvex"), QStringLiteral("/tmp/a")}), std::nullopt);
    EXPECT_EQ(directory({}), std::nullopt);
}

TEST(OrvexQAWorkspace, isThePathBehindTheFlag) {
    EXPECT_EQ(directory({QStringLiteral("orvex"), flag, QStringLiteral("/tmp/qa")}),
              QUrl::fromLocalFile(QStringLiteral("/tmp/qa")));
}

TEST(OrvexQAWorkspace, countsTheProgramsOwnNameAsAnArgument) {
    EXPECT_EQ(directory({flag, QStringLiteral("/tmp/qa")}), QUrl::fromLocalFile(QStringLiteral("/tmp/qa")));
}

TEST(OrvexQAWorkspace, isAbsentWhenNothingFollowsTheFlag) {
    EXPECT_EQ(directory({QStringLiteral("orvex"), flag}), std::nullopt);
}

TEST(OrvexQAWorkspace, isAbsentForARelativePathEvenIfALaterFlagIsWellFormed) {
    EXPECT_EQ(directory({flag, QStringLiteral("qa"), flag, QStringLiteral("/tmp/qa")}), std::nullopt);
    EXPECT_EQ(directory({flag, flag, QStringLiteral("/tmp/qa")}), std::nullopt);
}

TEST(OrvexQAWorkspace, isAbsentForAPathWithANulCharacter) {
    EXPECT_EQ(directory({flag, QStringLiteral("/tmp/q") + QChar(u'\0') + QStringLiteral("a")}), std::nullopt);
}

TEST(OrvexQAWorkspace, isStandardised) {
    EXPECT_EQ(directory({flag, QStringLiteral("/tmp/a/../qa/./b//c/")}),
              QUrl::fromLocalFile(QStringLiteral("/tmp/qa/b/c")));
}

TEST(OrvexQAWorkspace, staysBelowTheRoot) {
    EXPECT_EQ(directory({flag, QStringLiteral("/../x/../y//z/")}), QUrl::fromLocalFile(QStringLiteral("/y/z")));
    EXPECT_EQ(directory({flag, QStringLiteral("/..")}), QUrl::fromLocalFile(QStringLiteral("/")));
}

TEST(OrvexQAWorkspace, isAbsentForThisTestProgram) {
    EXPECT_EQ(OrvexQAWorkspace::directory(), std::nullopt);
}

} // namespace
} // namespace orvex
