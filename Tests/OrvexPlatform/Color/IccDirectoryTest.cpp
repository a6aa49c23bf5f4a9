#include "Color/IccDirectory.h"

#include "IccFixtures.h"

#include <gtest/gtest.h>

namespace orvex::platform {

namespace {

constexpr quint32 firstByte = 132 + 2 * 12; // behind a directory of two tags
constexpr quint32 lastByte = 200;

/// A profile of 200 bytes with those two tags, and ten bytes behind it.
QByteArray profileOf(const IccTag& first, const IccTag& second) {
    QByteArray data = test::icc::patched(QByteArray(lastByte + 10, '\0'), 0, lastByte);
    data = test::icc::patched(data, 128, quint32{2});
    qsizetype offset = 132;
    for (const quint32 each :
         {first.signature, first.offset, first.size, second.signature, second.offset, second.size}) {
        data = test::icc::patched(data, offset, each);
        offset += 4;
    }
    return data;
}

const IccTag sound{.signature = 1, .offset = firstByte, .size = 20};

bool isSound(const IccTag& tag) {
    const auto behind = iccDirectory(profileOf(sound, tag));
    const auto before = iccDirectory(profileOf(tag, sound));
    EXPECT_EQ(behind.has_value(), before.has_value());
    return behind.has_value();
}

} // namespace

TEST(IccDirectory, TellsTheTagsInTheirOrder) {
    const IccTag other{.signature = 0xFFFFFFFF, .offset = 199, .size = 1};
    EXPECT_EQ(iccDirectory(profileOf(other, sound)), (std::vector{other, sound}));
}

TEST(IccDirectory, TakesTagsAnywhereBetweenItsEndAndThatOfTheProfile) {
    EXPECT_TRUE(isSound({.signature = 2, .offset = firstByte, .size = lastByte - firstByte}));
    EXPECT_TRUE(isSound({.signature = 2, .offset = lastByte - 1, .size = 1}));
    EXPECT_TRUE(isSound({.signature = 2, .offset = 161, .size = 7})) << "any alignment";
    EXPECT_TRUE(isSound({.signature = 2, .offset = firstByte, .size = 20})) << "the bytes of the other tag";
    EXPECT_TRUE(isSound({.signature = 2, .offset = firstByte + 10, .size = 20})) << "some bytes of the other tag";
    EXPECT_TRUE(isSound({.signature = 2, .offset = firstByte, .size = 0}));
    EXPECT_TRUE(isSound({.signature = 2, .offset = lastByte, .size = 0}));
}

TEST(IccDirectory, RefusesTagsThatReachBeyondTheProfile) {
    EXPECT_FALSE(isSound({.signature = 2, .offset = firstByte, .size = lastByte - firstByte + 1}));
    EXPECT_FALSE(isSound({.signature = 2, .offset = lastByte - 1, .size = 2}));
    EXPECT_FALSE(isSound({.signature = 2, .offset = lastByte, .size = 1})) << "the bytes behind are not of the profile";
    EXPECT_FALSE(isSound({.signature = 2, .offset = lastByte + 1, .size = 0}));
    EXPECT_FALSE(isSound({.signature = 2, .offset = 0xFFFFFFFF, .size = 0}));
    EXPECT_FALSE(isSound({.signature = 2, .offset = firstByte, .size = 0xFFFFFFFF}));
    EXPECT_FALSE(isSound({.signature = 2, .offset = 0xFFFFFFF0, .size = 0xFF})) << "their sum passes 32 bits";
}

TEST(IccDirectory, RefusesTagsThatBeginInTheHeaderOrTheDirectory) {
    for (const quint32 offset : {0U, 128U, 132U, firstByte - 1}) {
        EXPECT_FALSE(isSound({.signature = 2, .offset = offset, .size = 4}));
        EXPECT_FALSE(isSound({.signature = 2, .offset = offset, .size = 0}));
    }
}

TEST(IccDirectory, RefusesMoreTagsThanTheProfileHasRoomFor) {
    const auto ofCount = [](quint32 count, quint32 profileSize) {
        QByteArray data(1000, '\0');
        data = test::icc::patched(data, 0, profileSize);
        return iccDirectory(test::icc::patched(data, 128, count)).has_value();
    };
    EXPECT_TRUE(ofCount(0, 132));
    EXPECT_FALSE(ofCount(1, 143));
    EXPECT_FALSE(ofCount(0xFFFFFFFF, 1000));
    EXPECT_FALSE(ofCount(0x15555556, 1000)) << "the bytes of so many entries pass 32 bits, and then are few";
}

TEST(IccDirectory, RefusesAProfileThatIsNotWhole) {
    const QByteArray data = profileOf(sound, sound);
    EXPECT_TRUE(iccDirectory(data.first(lastByte)));
    EXPECT_FALSE(iccDirectory(data.first(lastByte - 1)));
    EXPECT_FALSE(iccDirectory(test::icc::patched(data, 0, quint32{131})));
    EXPECT_FALSE(iccDirectory(QByteArray(131, '\0')));
    EXPECT_FALSE(iccDirectory({}));
}

} // namespace orvex::platform
