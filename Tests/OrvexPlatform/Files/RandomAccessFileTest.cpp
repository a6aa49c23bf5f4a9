#include "Files/RandomAccessFile.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "Interrupted.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <limits>
#include <thread>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

template <typename Call>
int failureOf(Call call) {
    try {
        static_cast<void>(call());
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

int openingFailure(const QString& path) {
    return failureOf([&] { return RandomAccessFile::open(path); });
}

class RandomAccessFileTest : public ::testing::Test {
protected:
    QString write(const QByteArray& bytes) const { return folder_.write(QStringLiteral("file"), bytes); }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(RandomAccessFileTest, GivesNothingMoreOnceAStopIsRequested) {
    std::stop_source stop;
    const RandomAccessFile file = RandomAccessFile::open(write("0123456789"), stop.get_token());
    std::array<std::byte, 4> buffer{};
    EXPECT_EQ(file.bytesAt(3, 4), "3456");
    EXPECT_EQ(file.readAt(0, buffer), 4);
    stop.request_stop();
    EXPECT_THROW(static_cast<void>(file.bytesAt(3, 4)), Interrupted);
    EXPECT_THROW(static_cast<void>(file.readAt(0, buffer)), Interrupted);
    EXPECT_THROW(file.throwIfStopped(), Interrupted);
}

TEST_F(RandomAccessFileTest, ReadsBytesAnywhere) {
    const QString path = write("0123456789");
    const RandomAccessFile file = RandomAccessFile::open(path);
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    EXPECT_EQ(file.size(), 10);
    EXPECT_EQ(file.path(), path);
    EXPECT_EQ(file.bytesAt(3, 4), "3456");
    EXPECT_EQ(file.bytesAt(0, largest), "0123456789");
    EXPECT_EQ(file.bytesAt(9, 2), "9");
    for (const auto& [offset, count] :
         std::vector<std::pair<qint64, qint64>>{{10, 1}, {largest, largest}, {-1, 5}, {3, 0}, {3, -1}}) {
        EXPECT_EQ(file.bytesAt(offset, count), "") << offset << ' ' << count;
    }
}

TEST_F(RandomAccessFileTest, FillsABufferAsFarAsTheFileGoes) {
    const RandomAccessFile file = RandomAccessFile::open(write("0123456789"));
    std::array<std::byte, 4> buffer{};
    EXPECT_EQ(file.readAt(5, buffer), 4);
    EXPECT_EQ(buffer[3], std::byte{'8'});
    EXPECT_EQ(file.readAt(8, buffer), 2);
    EXPECT_EQ(file.readAt(10, buffer), 0);
    EXPECT_EQ(file.readAt(0, {}), 0);
    EXPECT_EQ(failureOf([&] { return file.readAt(-1, buffer); }), EINVAL);
}

TEST_F(RandomAccessFileTest, ReadsAnEmptyFile) {
    const RandomAccessFile file = RandomAccessFile::open(write({}));
    EXPECT_EQ(file.size(), 0);
    EXPECT_EQ(file.bytesAt(0, 1), "");
}

TEST_F(RandomAccessFileTest, GivesShorterBytesOfAFileThatHasShrunk) {
    const QString path = write("0123456789");
    const RandomAccessFile file = RandomAccessFile::open(path);
    ASSERT_EQ(::truncate(path.toUtf8().constData(), 5), 0);
    EXPECT_EQ(file.bytesAt(3, 4), "34");
    EXPECT_EQ(file.bytesAt(7, 1), "");
}

TEST_F(RandomAccessFileTest, KeepsReadingAFileThatWasReplaced) {
    const QString path = write("old");
    const RandomAccessFile file = RandomAccessFile::open(path);
    ASSERT_TRUE(QFile::remove(path));
    write("new");
    EXPECT_EQ(file.bytesAt(0, 3), "old");
}

TEST_F(RandomAccessFileTest, IsReadBySeveralThreadsAtOnce) {
    QByteArray content;
    for (int index = 0; index < 10'000; ++index) {
        content += QByteArray::number(index).rightJustified(8, '0');
    }
    const RandomAccessFile file = RandomAccessFile::open(write(content));
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int first = 0; first < 4; ++first) {
        threads.emplace_back([&, first] {
            for (int index = first; index < 10'000; index += 3) {
                wrong += file.bytesAt(index * 8, 8).toInt() == index ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(RandomAccessFileTest, OpensRegularFilesAlone) {
    const QString fifo = folder_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_EQ(openingFailure(fifo), EINVAL);
    EXPECT_EQ(openingFailure(QStringLiteral("/dev/zero")), EINVAL);
    EXPECT_EQ(openingFailure(folder_.path()), EISDIR);
    EXPECT_EQ(openingFailure(folder_.path(QStringLiteral("missing"))), ENOENT);
    EXPECT_EQ(openingFailure(write("a") + QStringLiteral("/below")), ENOTDIR);
    EXPECT_EQ(openingFailure({}), ENOENT);
    EXPECT_EQ(openingFailure(write("a") + QChar(u'\0')), ENOENT);
}

TEST_F(RandomAccessFileTest, FollowsALink) {
    write("bytes");
    ASSERT_EQ(::symlink("file", folder_.path(QStringLiteral("link")).toUtf8().constData()), 0);
    EXPECT_EQ(RandomAccessFile::open(folder_.path(QStringLiteral("link"))).bytesAt(0, 5), "bytes");
}

TEST_F(RandomAccessFileTest, RefusesWhatTheUserMayNotRead) {
    const QString path = write("old");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path.toUtf8().constData(), 0200), 0);
    const QByteArray failure = test::inChildProcess([&] {
        return test::becomeOrdinaryUser() ? QByteArray::number(openingFailure(path)) : QByteArray("still root");
    });
    EXPECT_EQ(failure, QByteArray::number(EACCES));
}

TEST_F(RandomAccessFileTest, ReadsAWholeFileUpToItsLimit) {
    const QString path = write("0123456789");
    EXPECT_EQ(readWholeFile(path, 10), "0123456789");
    EXPECT_EQ(readWholeFile(path, 1'000'000), "0123456789");
    EXPECT_EQ(failureOf([&] { return readWholeFile(path, 9); }), EFBIG);
    EXPECT_EQ(readWholeFile(write({}), 0), "");
}

TEST_F(RandomAccessFileTest, IsReadWholeIfItIsThere) {
    EXPECT_EQ(readFileIfThere(write("0123456789"), 10), QByteArray("0123456789"));
    EXPECT_EQ(readFileIfThere(write({}), 0), QByteArray());
}

TEST_F(RandomAccessFileTest, IsAbsentIfNothingIsThere) {
    const QString file = write("0123456789");
    EXPECT_EQ(readFileIfThere(folder_.path(QStringLiteral("missing")), 10), std::nullopt);
    EXPECT_EQ(readFileIfThere(folder_.path(QStringLiteral("missing/below")), 10), std::nullopt);
    EXPECT_EQ(readFileIfThere(file + QStringLiteral("/below"), 10), std::nullopt);
}

TEST_F(RandomAccessFileTest, FailsIfSomethingIsThereThatCannotBeRead) {
    const auto failure = [](const QString& path) { return failureOf([&] { return readFileIfThere(path, 9); }); };
    EXPECT_EQ(failure(write("0123456789")), EFBIG);
    EXPECT_EQ(failure(folder_.path()), EISDIR);
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), folder_.path(QStringLiteral("dangling"))));
    EXPECT_EQ(failure(folder_.path(QStringLiteral("dangling"))), ENOENT) << "what the link leads to may come back";
    ASSERT_TRUE(QFile::link(QStringLiteral("loop"), folder_.path(QStringLiteral("loop"))));
    EXPECT_EQ(failure(folder_.path(QStringLiteral("loop"))), ELOOP);
    ASSERT_EQ(::mkfifo(folder_.path(QStringLiteral("fifo")).toUtf8().constData(), 0600), 0);
    EXPECT_NE(failure(folder_.path(QStringLiteral("fifo"))), 0);
}

} // namespace orvex::platform
