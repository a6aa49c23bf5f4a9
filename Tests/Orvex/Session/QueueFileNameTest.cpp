#include "QueueFileName.h"

#include <gtest/gtest.h>

namespace orvex {

TEST(QueueFileName, IsMadeOfPlainLettersDigitsAndMarks) {
    EXPECT_TRUE(isSafeInFileName(QStringLiteral("Canon_iPF9400-2.roll")));
}

TEST(QueueFileName, LeadsOutOfNoFolder) {
    for (const char* name : {"", "a/b", "../a", "a b", "a\n", "\na", "画布", "a\\b", "a%2f"}) {
        EXPECT_FALSE(isSafeInFileName(QString::fromUtf8(name))) << name;
    }
}

TEST(QueueFileName, HasNoNulCharacter) {
    EXPECT_FALSE(isSafeInFileName(QStringLiteral("a") + QChar(u'\0')));
}

} // namespace orvex
