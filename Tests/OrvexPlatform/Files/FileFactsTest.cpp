#include "Files/FileFacts.h"

#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

void setModified(const QString& path, time_t seconds, long nanoseconds) {
    const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                      {.tv_sec = seconds, .tv_nsec = nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.toUtf8().constData(), times, 0), 0);
}

int failureFor(const QString& path) {
    try {
        static_cast<void>(FileFacts::read(path));
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

} // namespace

TEST(FileFacts, TellSizeAndTimeOfAFile) {
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("file"), "12345");
    setModified(path, 1'700'000'000, 123'456'789);
    EXPECT_EQ(FileFacts::read(path), (FileFacts{true, 5, 1'700'000'000'123'456'789}));
}

TEST(FileFacts, AreNeverRemembered) {
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("file"), "12345");
    setModified(path, 1'700'000'000, 0);
    const FileFacts before = FileFacts::read(path);
    setModified(path, 1'700'000'000, 1);
    EXPECT_NE(FileFacts::read(path), before) << "one nanosecond is a difference";
    ASSERT_EQ(::truncate(path.toUtf8().constData(), 3), 0);
    EXPECT_EQ(FileFacts::read(path).sizeBytes, 3);
}

TEST(FileFacts, KnowTimesBefore1970) {
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("file"), {});
    setModified(path, -2, 500'000'000);
    EXPECT_EQ(FileFacts::read(path).modifiedNanoseconds, -1'500'000'000);
}

TEST(FileFacts, TellTimesApartThatNoNumberOfNanosecondsHolds) {
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("file"), {});
    const auto modifiedAt = [&](time_t seconds) {
        setModified(path, seconds, 0);
        return FileFacts::read(path);
    };
    EXPECT_NE(modifiedAt(10'413'792'000), modifiedAt(10'413'792'001)); // in the year 2300
}

TEST(FileFacts, FollowLinks) {
    const TemporaryFolder folder;
    folder.write(QStringLiteral("file"), "12345");
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_EQ(::symlink("file", link.toUtf8().constData()), 0);
    EXPECT_TRUE(FileFacts::read(link).isRegularFile);
    EXPECT_EQ(FileFacts::read(link).sizeBytes, 5);
}

TEST(FileFacts, TellWhatIsNoRegularFile) {
    const TemporaryFolder folder;
    const QString fifo = folder.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_FALSE(FileFacts::read(fifo).isRegularFile);
    EXPECT_FALSE(FileFacts::read(folder.path()).isRegularFile);
    EXPECT_FALSE(FileFacts::read(QStringLiteral("/dev/null")).isRegularFile);
}

TEST(FileFacts, AreRefusedWhereThereAreNone) {
    const TemporaryFolder folder;
    ASSERT_EQ(::symlink("missing", folder.path(QStringLiteral("link")).toUtf8().constData()), 0);
    ASSERT_EQ(::symlink("loop", folder.path(QStringLiteral("loop")).toUtf8().constData()), 0);
    EXPECT_EQ(failureFor(folder.path(QStringLiteral("missing"))), ENOENT);
    EXPECT_EQ(failureFor(folder.path(QStringLiteral("link"))), ENOENT);
    EXPECT_EQ(failureFor(folder.path(QStringLiteral("loop"))), ELOOP);
    EXPECT_EQ(failureFor({}), ENOENT);
    EXPECT_EQ(failureFor(folder.path() + QChar(u'\0')), ENOENT);
}

TEST(FileFacts, TellWhetherAnythingIsThere) {
    const TemporaryFolder folder;
    const QString file = folder.write(QStringLiteral("file"), {});
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("missing")), link));
    EXPECT_TRUE(isThere(file));
    EXPECT_TRUE(isThere(folder.path()));
    EXPECT_FALSE(isThere(folder.path(QStringLiteral("missing"))));
    EXPECT_FALSE(isThere(file + QStringLiteral("/inner")));
    EXPECT_FALSE(isThere(link));
    EXPECT_THROW((void)isThere(folder.path(QString(300, u'x'))), FileSystemError);
}

} // namespace orvex::platform
