#include "Files/ByteReader.h"

#include "Files/RandomAccessFile.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

constexpr quint64 largest = std::numeric_limits<quint64>::max();

/// Every test runs on bytes in memory and on bytes in a file.
class ByteReaderTest : public ::testing::TestWithParam<bool> {
protected:
    /// A reader of these bytes; they live as long as the test.
    ByteReader reader(const QByteArray& bytes) {
        bytes_ = bytes;
        if (!GetParam()) {
            return ByteReader(bytes_);
        }
        file_.emplace(RandomAccessFile::open(folder_.write(QStringLiteral("file"), bytes)));
        return ByteReader(*file_);
    }

private:
    TemporaryFolder folder_;
    QByteArray bytes_;
    std::optional<RandomAccessFile> file_;
};

} // namespace

TEST_P(ByteReaderTest, ReadsNumbersInBothOrders) {
    ByteReader bytes = reader(QByteArray::fromHex("0102030405060708f0"));
    EXPECT_EQ(bytes.size(), 9U);
    EXPECT_EQ(bytes.u8(8), 0xf0);
    EXPECT_EQ(bytes.u16(1, ByteOrder::big), 0x0203);
    EXPECT_EQ(bytes.u16(1, ByteOrder::little), 0x0302);
    EXPECT_EQ(bytes.u32(1, ByteOrder::big), 0x02030405U);
    EXPECT_EQ(bytes.u32(1, ByteOrder::little), 0x05040302U);
    EXPECT_EQ(bytes.u64(1, ByteOrder::big), 0x02030405060708f0ULL);
    EXPECT_EQ(bytes.u64(0, ByteOrder::little), 0x0807060504030201ULL);
}

TEST_P(ByteReaderTest, GivesNothingBeyondTheEnd) {
    ByteReader bytes = reader(QByteArray(10, 'x'));
    for (const quint64 offset : {quint64{10}, quint64{11}, largest, largest - 7}) {
        EXPECT_FALSE(bytes.u8(offset)) << offset;
    }
    for (const quint64 offset : {quint64{9}, quint64{10}, largest, largest - 1}) {
        EXPECT_FALSE(bytes.u16(offset, ByteOrder::big)) << offset;
    }
    for (const quint64 offset : {quint64{7}, quint64{10}, largest, largest - 3}) {
        EXPECT_FALSE(bytes.u32(offset, ByteOrder::little)) << offset;
    }
    for (const quint64 offset : {quint64{3}, quint64{10}, largest, largest - 7}) {
        EXPECT_FALSE(bytes.u64(offset, ByteOrder::big)) << offset;
    }
    EXPECT_TRUE(bytes.u8(9));
    EXPECT_TRUE(bytes.u16(8, ByteOrder::big));
    EXPECT_TRUE(bytes.u32(6, ByteOrder::big));
    EXPECT_TRUE(bytes.u64(2, ByteOrder::big));
}

TEST_P(ByteReaderTest, GivesWholeRunsOfBytesAlone) {
    ByteReader bytes = reader("0123456789");
    EXPECT_EQ(bytes.bytes(2, 3), "234");
    EXPECT_EQ(bytes.bytes(0, 10), "0123456789");
    EXPECT_EQ(bytes.bytes(10, 0), "");
    EXPECT_FALSE(bytes.bytes(0, 11));
    EXPECT_FALSE(bytes.bytes(8, 3));
    EXPECT_FALSE(bytes.bytes(11, 0));
    EXPECT_FALSE(bytes.bytes(1, largest));
    EXPECT_FALSE(bytes.bytes(largest, 1));
    EXPECT_FALSE(bytes.bytes(largest, largest));
}

TEST_P(ByteReaderTest, ReadsNothingFromNoBytes) {
    ByteReader bytes = reader({});
    EXPECT_EQ(bytes.size(), 0U);
    EXPECT_FALSE(bytes.u8(0));
    EXPECT_EQ(bytes.bytes(0, 0), "");
}

TEST_P(ByteReaderTest, ReadsForwardsAndBackwardsOverMoreThanItsWindow) {
    QByteArray content;
    for (int index = 0; index < 5'000; ++index) {
        content += static_cast<char>(index >> 8);
        content += static_cast<char>(index & 0xff);
    }
    ByteReader bytes = reader(content);
    const auto expectNumberAt = [&](quint64 index) { EXPECT_EQ(bytes.u16(index * 2, ByteOrder::big), index) << index; };
    for (quint64 index = 0; index < 5'000; ++index) {
        expectNumberAt(index);
        expectNumberAt(4'999 - index);
    }
    // Numbers across the places where a window ends.
    for (quint64 offset = 4'090; offset < 4'100; ++offset) {
        EXPECT_EQ(bytes.u8(offset), static_cast<quint8>(content[static_cast<qsizetype>(offset)]));
        EXPECT_EQ(bytes.u64(offset, ByteOrder::big),
                  QByteArray(content.mid(static_cast<qsizetype>(offset), 8)).toHex().toULongLong(nullptr, 16));
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, ByteReaderTest, ::testing::Values(false, true),
                         [](const auto& row) { return row.param ? std::string("OfAFile") : std::string("InMemory"); });

TEST(ByteReader, GivesNothingOfAFileThatHasShrunk) {
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("file"), QByteArray(10'000, 'x'));
    const RandomAccessFile file = RandomAccessFile::open(path);
    ByteReader bytes(file);
    ASSERT_EQ(::truncate(path.toUtf8().constData(), 5'001), 0);
    EXPECT_EQ(bytes.u8(5'000), 'x');
    EXPECT_FALSE(bytes.u16(5'000, ByteOrder::big));
    EXPECT_FALSE(bytes.u8(9'000));
    EXPECT_FALSE(bytes.bytes(5'000, 2));
    EXPECT_EQ(bytes.bytes(4'999, 2), "xx");
}

} // namespace orvex::platform
