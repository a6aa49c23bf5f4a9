#include "Files/FileUpdater.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

namespace orvex::platform {

namespace {

using test::inChildProcess;
using test::TemporaryFolder;

int openingFailure(const QString& path) {
    try {
        static_cast<void>(FileUpdater::open(path));
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

class FileUpdaterTest : public ::testing::Test {
protected:
    QString write(const QByteArray& bytes) const { return folder_.write(QStringLiteral("file"), bytes); }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(FileUpdaterTest, ReadsWhatLiesInTheFile) {
    const FileUpdater file = FileUpdater::open(write("0123456789"));
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    EXPECT_EQ(file.size(), 10);
    EXPECT_EQ(file.bytesAt(0, 10), "0123456789");
    EXPECT_EQ(file.bytesAt(3, 4), "3456");
    EXPECT_EQ(file.bytesAt(8, 4), "89");
    EXPECT_EQ(file.bytesAt(8, largest), "89");
    for (const auto& [offset, count] : std::vector<std::pair<qint64, qint64>>{
             {10, 1}, {11, 1}, {-1, 5}, {largest, 1}, {3, 0}, {3, -1}, {std::numeric_limits<qint64>::min(), largest}}) {
        EXPECT_EQ(file.bytesAt(offset, count), "") << offset << ' ' << count;
    }
}

TEST_F(FileUpdaterTest, WritesOverAndBehindTheOldBytes) {
    const QString path = write("0123456789");
    FileUpdater file = FileUpdater::open(path);
    file.writeAt(2, "ab");
    file.writeAt(10, "cd");
    file.writeAt(5, {});
    file.synchronize();
    EXPECT_EQ(TemporaryFolder::read(path), "01ab456789cd");
    EXPECT_EQ(file.size(), 10) << "the size when it was opened";
}

TEST_F(FileUpdaterTest, KeepsTheFileItselfAndItsPermissions) {
    const QString path = write("old");
    ASSERT_EQ(::chmod(path.toUtf8().constData(), 0640), 0);

    struct stat before {};

    struct stat after {};

    ASSERT_EQ(::stat(path.toUtf8().constData(), &before), 0);
    FileUpdater::open(path).writeAt(0, "new");
    ASSERT_EQ(::stat(path.toUtf8().constData(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(FileUpdaterTest, FollowsALink) {
    const QString path = write("old");
    ASSERT_EQ(::symlink("file", folder_.path(QStringLiteral("link")).toUtf8().constData()), 0);
    FileUpdater::open(folder_.path(QStringLiteral("link"))).writeAt(0, "new");
    EXPECT_EQ(TemporaryFolder::read(path), "new");
}

TEST_F(FileUpdaterTest, GivesShorterBytesOfAFileThatHasShrunk) {
    const QString path = write("0123456789");
    const FileUpdater file = FileUpdater::open(path);
    ASSERT_EQ(::truncate(path.toUtf8().constData(), 5), 0);
    EXPECT_EQ(file.bytesAt(3, 4), "34");
}

TEST_F(FileUpdaterTest, OpensRegularFilesAlone) {
    const QString fifo = folder_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_EQ(openingFailure(fifo), EINVAL);
    EXPECT_EQ(openingFailure(QStringLiteral("/dev/null")), EINVAL);
    EXPECT_EQ(openingFailure(folder_.path()), EISDIR);
    EXPECT_EQ(openingFailure(folder_.path(QStringLiteral("missing"))), ENOENT);
    EXPECT_EQ(openingFailure({}), ENOENT);
    EXPECT_EQ(openingFailure(write("a") + QChar(u'\0')), ENOENT);
    EXPECT_FALSE(folder_.names().contains(QStringLiteral("missing"))) << "nothing is created";
}

TEST_F(FileUpdaterTest, RefusesWhatTheUserMayNotWrite) {
    const QString path = write("old");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path.toUtf8().constData(), 0444), 0);
    const QByteArray failure = inChildProcess([&] {
        return test::becomeOrdinaryUser() ? QByteArray::number(openingFailure(path)) : QByteArray("still root");
    });
    EXPECT_EQ(failure, QByteArray::number(EACCES));
}

TEST_F(FileUpdaterTest, TellsOfEveryByteThatCouldNotBeWritten) {
    const QString path = write("0123456789");
    const QByteArray failure = inChildProcess([&]() -> QByteArray {
        if (!test::limitFileSize(12)) {
            return "no limit";
        }
        FileUpdater file = FileUpdater::open(path);
        file.writeAt(10, "ab"); // up to the limit
        try {
            file.writeAt(11, "bcd"); // the first byte can be written
        } catch (const FileSystemError& error) {
            return QByteArray::number(error.code());
        }
        return "no failure";
    });
    EXPECT_EQ(failure, QByteArray::number(EFBIG));
    EXPECT_EQ(TemporaryFolder::read(path), "0123456789ab");
}

} // namespace orvex::platform
