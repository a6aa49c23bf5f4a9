#include "Sha256.h"

#include <gtest/gtest.h>

namespace orvex::platform {

TEST(Sha256, GivesTheDigestThatTheStandardGives) {
    // FIPS 180-4's own example, and the digest of nothing.
    EXPECT_EQ(sha256Hex("abc"), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Hex({}), u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Sha256, IsTheSameForBytesInPieces) {
    Sha256 hash;
    hash.add("a");
    hash.add({});
    hash.add("bc");
    EXPECT_EQ(QString::fromLatin1(hash.digest().toHex()), sha256Hex("abc"));
}

TEST(Sha256, HasSixtyFourLowerCaseDigits) {
    const QString digest = sha256Hex("abc");
    EXPECT_TRUE(isSha256Hex(digest));
    EXPECT_TRUE(isSha256Hex(QString(64, u'0')));
    EXPECT_FALSE(isSha256Hex(digest.toUpper()));
    EXPECT_FALSE(isSha256Hex(digest.chopped(1)));
    EXPECT_FALSE(isSha256Hex(digest + u'0'));
    EXPECT_FALSE(isSha256Hex(digest.chopped(1) + u'g'));
    EXPECT_FALSE(isSha256Hex(digest.chopped(1) + QStringLiteral("\uFF11")));
    EXPECT_FALSE(isSha256Hex({}));
}

} // namespace orvex::platform
