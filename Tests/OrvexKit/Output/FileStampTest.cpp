#include "Output/FileStamp.h"

#include "Files/FileSystemError.h"
#include "OrvexError.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvex {
namespace {

TEST(FileStamp, isEqualForAnUntouchedFile) {
    const test::TemporaryFolder folder;
    const QUrl url = QUrl::fromLocalFile(folder.write(QStringLiteral("a"), "12345"));
    EXPECT_EQ(FileStamp::read(url), FileStamp::read(url));
    EXPECT_EQ(FileStamp::read(url).size, 5);
}

TEST(FileStamp, tellsADateThatDiffersByANanosecond) {
    const test::TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("a"), "12345");
    const FileStamp before = FileStamp::read(QUrl::fromLocalFile(path));
    const qint64 later = before.modified + 1;
    const std::array<timespec, 2> times{timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                        timespec{.tv_sec = later / 1000000000, .tv_nsec = later % 1000000000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.toLocal8Bit().constData(), times.data(), 0), 0);
    EXPECT_NE(FileStamp::read(QUrl::fromLocalFile(path)), before);
}

TEST(FileStamp, refusesWhatIsNoRegularFile) {
    const test::TemporaryFolder folder;
    try {
        (void)FileStamp::read(QUrl::fromLocalFile(folder.path()));
        FAIL();
    } catch (const OrvexError& error) {
        EXPECT_EQ(error.message(),
                  QStringLiteral("The source artwork is unreadable or has not been downloaded locally: ") +
                      QUrl::fromLocalFile(folder.path()).fileName());
    }
}

TEST(FileStamp, raisesTheSystemsErrorForAMissingFile) {
    const test::TemporaryFolder folder;
    EXPECT_THROW((void)FileStamp::read(QUrl::fromLocalFile(folder.path(QStringLiteral("none")))),
                 platform::FileSystemError);
}

} // namespace
} // namespace orvex
