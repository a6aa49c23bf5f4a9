#include "PDF/StructureSource.h"

#include "PDF/StructureBudget.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

constexpr qint64 readingLimit = 67'108'864;
constexpr qint64 parsingLimit = 4'194'304;
constexpr qint64 tokenizerRead = 128;

class StructureSourceTest : public ::testing::Test {
protected:
    StructureSource& source(const QByteArray& bytes) {
        file_.emplace(RandomAccessFile::open(folder_.write(QStringLiteral("file"), bytes)));
        return source_.emplace(*file_);
    }

    static QByteArray next(StructureSource& source, qint64 count) {
        QByteArray bytes(count, Qt::Uninitialized);
        bytes.truncate(static_cast<qsizetype>(source.read(bytes.data(), static_cast<std::size_t>(count))));
        return bytes;
    }

private:
    TemporaryFolder folder_;
    std::optional<RandomAccessFile> file_;
    std::optional<StructureSource> source_;
};

} // namespace

TEST_F(StructureSourceTest, ReadsFromWhereItStands) {
    StructureSource& bytes = source("0123456789");
    EXPECT_EQ(next(bytes, 4), "0123");
    EXPECT_EQ(bytes.tell(), 4);
    EXPECT_EQ(bytes.getLastOffset(), 0);
    bytes.seek(2, SEEK_SET);
    EXPECT_EQ(next(bytes, 2), "23");
    bytes.seek(-1, SEEK_CUR);
    EXPECT_EQ(next(bytes, 1), "3");
    bytes.unreadCh('3');
    EXPECT_EQ(next(bytes, 2), "34");
    bytes.seek(-3, SEEK_END);
    EXPECT_EQ(next(bytes, 9), "789");
    EXPECT_EQ(next(bytes, 9), "");
    bytes.rewind();
    EXPECT_EQ(next(bytes, 1), "0");
    EXPECT_EQ(bytes.failure(), nullptr);
}

TEST_F(StructureSourceTest, ReadsOverItsWindows) {
    QByteArray content;
    for (int index = 0; index < 3'000; ++index) {
        content += QByteArray::number(index).rightJustified(4, '0');
    }
    StructureSource& bytes = source(content);
    EXPECT_EQ(next(bytes, 20'000), content);
    bytes.seek(4'094, SEEK_SET);
    EXPECT_EQ(next(bytes, 5'000), content.sliced(4'094, 5'000));
    bytes.seek(4, SEEK_SET);
    EXPECT_EQ(next(bytes, 4), "0001");
}

TEST_F(StructureSourceTest, StandsNowhereOutside) {
    StructureSource& bytes = source("0123456789");
    EXPECT_THROW(bytes.seek(-1, SEEK_SET), std::out_of_range);
    EXPECT_THROW(bytes.seek(-11, SEEK_END), std::out_of_range);
    EXPECT_THROW(bytes.seek(std::numeric_limits<qint64>::max(), SEEK_END), std::out_of_range);
    EXPECT_EQ(bytes.tell(), 0);
    bytes.seek(1'000, SEEK_SET);
    EXPECT_EQ(next(bytes, 1), "") << "behind the end there is nothing";
}

TEST_F(StructureSourceTest, SkipsEndsOfLines) {
    StructureSource& bytes = source("one\r\n\ntwo\rthree");
    EXPECT_EQ(bytes.findAndSkipNextEOL(), 3);
    EXPECT_EQ(next(bytes, 3), "two");
    EXPECT_EQ(bytes.findAndSkipNextEOL(), 9);
    EXPECT_EQ(next(bytes, 2), "th");
    EXPECT_EQ(bytes.findAndSkipNextEOL(), 15);
    EXPECT_EQ(bytes.tell(), 15);
    StructureSource& last = source("one\n");
    EXPECT_EQ(last.findAndSkipNextEOL(), 3);
    EXPECT_EQ(last.tell(), 4);
}

TEST_F(StructureSourceTest, ReadsAsMuchAsItLikesWithoutABudget) {
    StructureSource& bytes = source(QByteArray(1'000'000, 'x'));
    for (int round = 0; round < 100; ++round) {
        bytes.rewind();
        ASSERT_EQ(next(bytes, 1'000'000).size(), 1'000'000);
    }
}

TEST_F(StructureSourceTest, KeepsWithinTheBudgetOfReading) {
    StructureSource& bytes = source(QByteArray(1 << 20, 'x'));
    const StructureBudget budget;
    for (qint64 read = 0; read < readingLimit; read += 1 << 20) {
        bytes.rewind();
        ASSERT_EQ(next(bytes, 1 << 20).size(), 1 << 20);
    }
    bytes.rewind();
    EXPECT_THROW(next(bytes, 1), std::length_error);
    EXPECT_EQ(next(bytes, tokenizerRead).size(), 128) << "parsing has a budget of its own";
}

TEST_F(StructureSourceTest, KeepsWithinTheBudgetOfParsing) {
    StructureSource& bytes = source(QByteArray(1 << 20, 'x'));
    const StructureBudget budget;
    for (qint64 read = 0; read < parsingLimit; read += tokenizerRead) {
        bytes.rewind();
        ASSERT_EQ(next(bytes, tokenizerRead).size(), 128);
    }
    bytes.rewind();
    EXPECT_THROW(next(bytes, tokenizerRead), std::length_error);
    EXPECT_THROW(StructureBudget::spendOnParsing(1), std::length_error);
    EXPECT_EQ(next(bytes, 1).size(), 1);
}

TEST(StructureBudget, HoldsForOneDocument) {
    {
        const StructureBudget budget;
        EXPECT_THROW(StructureBudget::spendOnParsing(parsingLimit + 1), std::length_error);
        EXPECT_THROW(StructureBudget::spendOnParsing(1), std::length_error) << "exhausted stays exhausted";
    }
    EXPECT_NO_THROW(StructureBudget::spendOnParsing(parsingLimit + 1));
    const StructureBudget next;
    EXPECT_NO_THROW(StructureBudget::spendOnParsing(parsingLimit));
}

} // namespace orvex::platform
