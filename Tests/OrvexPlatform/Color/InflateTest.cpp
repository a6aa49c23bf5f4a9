#include "Color/Inflate.h"

#include <gtest/gtest.h>

namespace orvex::platform {

namespace {

QByteArray pattern(qsizetype size) {
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * i / 251);
    }
    return bytes;
}

/// A zlib stream; Qt puts the size before it.
QByteArray deflated(const QByteArray& content) {
    return qCompress(content).sliced(4);
}

} // namespace

TEST(Inflate, FindsRoomForWhateverIsWithinTheLimit) {
    for (const qsizetype size : {1, 9, 10, 11, 20, 21, 40, 41, 50}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(inflate(deflated(pattern(size)), 10, 50), pattern(size));
    }
}

TEST(Inflate, KnowsAnEmptyContentFromNone) {
    EXPECT_EQ(inflate(QByteArray::fromHex("789c030000000001"), 10, 50), QByteArray(""));
    EXPECT_EQ(inflate({}, 10, 50), std::nullopt);
}

TEST(Inflate, RefusesWhatIsBeyondTheLimit) {
    EXPECT_EQ(inflate(deflated(pattern(51)), 10, 50), std::nullopt);
    EXPECT_EQ(inflate(deflated(pattern(5000)), 10, 50), std::nullopt);
    EXPECT_EQ(inflate(deflated(pattern(51)), 100, 50), std::nullopt);
}

TEST(Inflate, RefusesAStreamThatIsCutOffAnywhere) {
    const QByteArray stream = deflated(pattern(300));
    for (qsizetype size = 0; size < stream.size(); ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(inflate(QByteArrayView(stream).first(size), 1000, 4000), std::nullopt);
    }
}

TEST(Inflate, RefusesDamage) {
    EXPECT_EQ(inflate("not a stream", 1000, 4000), std::nullopt);
    QByteArray stream = deflated(pattern(300));
    stream.back() = static_cast<char>(~stream.back()); // the checksum
    EXPECT_EQ(inflate(stream, 1000, 4000), std::nullopt);
}

TEST(Inflate, PassesBytesBehindTheStream) {
    EXPECT_EQ(inflate(deflated(pattern(300)) + "behind", 1000, 4000), pattern(300));
}

TEST(Inflate, KeepsNoMoreRoomThanTheContentNeeds) {
    const auto content = inflate(deflated(pattern(10)), 1 << 20, 1 << 20);
    ASSERT_TRUE(content);
    EXPECT_LT(content->capacity(), 1000);
}

} // namespace orvex::platform
