#include "Stores/StoreFiles.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "OrvexError.h"
#include "StoreFixtures.h"
#include "Stores/PrintPresets.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>

namespace orvex {

namespace {

using test::failureOf;
using test::TemporaryFolder;

/// The smallest record of the stores.
using Record = DriverOptionSelection;

Record record(int number) {
    return {.keyword = QStringLiteral("key/%1").arg(number), .value = QStringLiteral("画")};
}

class StoreFilesTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return folder_.path(QString::fromUtf8(name)); }

    QString write(const char* name, const QByteArray& bytes) const {
        return folder_.write(QString::fromUtf8(name), bytes);
    }

    static std::string readingFailure(const QString& path) {
        return failureOf([&] { static_cast<void>(StoreFiles::readRegularFile(path, 100)); });
    }

    TemporaryFolder folder_;
};

std::string noRegularFile(const std::string& name) {
    return "The file is missing, is not a regular file, or is a link: " + name + ".";
}

} // namespace

TEST(StorePath, IsThatOfTheNameInTheFolder) {
    const QString name = QStringLiteral("queue.json");
    EXPECT_EQ(StoreFiles::path(QUrl(QStringLiteral("file:///a/b")), name), QStringLiteral("/a/b/queue.json"));
    EXPECT_EQ(StoreFiles::path(QUrl(QStringLiteral("file:///a/b/")), name), QStringLiteral("/a/b/queue.json"));
    EXPECT_EQ(StoreFiles::path(QUrl(QStringLiteral("file:///a%20b/%E7%94%BB%25")), name),
              QStringLiteral("/a b/画%/queue.json"));
}

TEST_F(StoreFilesTest, ReadNoRecordsWhereNoFileIs) {
    EXPECT_EQ(StoreFiles::readList<Record>(path("missing.json")), QList<Record>());
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(StoreFilesTest, ReadAndWriteListsWithEscapedSlashes) {
    const QList list{record(1), record(2)};
    StoreFiles::writeList(path("list.json"), list);
    EXPECT_EQ(TemporaryFolder::read(path("list.json")).toStdString(), R"([
    {
        "keyword": "key\/1",
        "value": "画"
    },
    {
        "keyword": "key\/2",
        "value": "画"
    }
]
)");
    EXPECT_EQ(StoreFiles::readList<Record>(path("list.json")), list);
}

TEST_F(StoreFilesTest, ReadAndWriteListsOfAnySize) {
    for (const int count : {0, 1, 63, 64, 65, 500}) {
        QList<Record> list;
        for (int number = 0; number < count; ++number) {
            list.append(record(number));
        }
        StoreFiles::writeList(path("list.json"), list);
        EXPECT_EQ(StoreFiles::readList<Record>(path("list.json")), list) << count;
    }
}

TEST_F(StoreFilesTest, ReadAListBehindALinkAndReplaceItThere) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("elsewhere")));
    StoreFiles::writeList(path("elsewhere/list.json"), QList{record(1)});
    ASSERT_TRUE(QFile::link(QStringLiteral("elsewhere/list.json"), path("list.json")));
    EXPECT_EQ(StoreFiles::readList<Record>(path("list.json")), QList{record(1)});
    StoreFiles::writeList(path("list.json"), QList{record(2)});
    EXPECT_TRUE(QFileInfo(path("list.json")).isSymLink());
    EXPECT_EQ(StoreFiles::readList<Record>(path("elsewhere/list.json")), QList{record(2)});
}

TEST_F(StoreFilesTest, ClearAwayWhatAKilledWriterOfTheListLeft) {
    write(".list.json.01234567-89ab-cdef-0123-456789abcdef.tmp", "left");
    StoreFiles::writeList(path("list.json"), QList{record(1)});
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("list.json")});
}

TEST_F(StoreFilesTest, FailForAListThatIsNoFile) {
    EXPECT_THROW(static_cast<void>(StoreFiles::readList<Record>(folder_.path())), platform::FileSystemError);
    EXPECT_THROW(StoreFiles::writeList(folder_.path(), QList{record(1)}), platform::FileSystemError);
}

TEST_F(StoreFilesTest, FailForAListThatIsLargerThanAnyMayBe) {
    const QString file = write("list.json", "[]");
    ASSERT_TRUE(QFile::resize(file, StoreFiles::largestListBytes + 1)); // takes no room on the disk
    EXPECT_EQ(failureOf([&] { static_cast<void>(StoreFiles::readList<Record>(file)); }),
              file.toStdString() + ": File too large");
}

TEST_F(StoreFilesTest, ReadARegularFileWithinTheLimit) {
    const QString file = write("file", "0123456789");
    EXPECT_EQ(StoreFiles::readRegularFile(file, 11), "0123456789");
    EXPECT_EQ(StoreFiles::readRegularFile(file, 10), "0123456789");
    try {
        static_cast<void>(StoreFiles::readRegularFile(file, 9));
        FAIL();
    } catch (const platform::FileSystemError& error) {
        EXPECT_EQ(error.code(), EFBIG);
    }
    EXPECT_EQ(StoreFiles::readRegularFile(write("empty", {}), 4), "");
}

TEST_F(StoreFilesTest, ReadNothingButRegularFiles) {
    write("file", "content");
    ASSERT_TRUE(QFile::link(QStringLiteral("file"), path("link")));
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), path("dangling")));
    ASSERT_TRUE(QFile::link(QStringLiteral("loop"), path("loop")));
    ASSERT_EQ(::mkfifo(path("fifo").toUtf8().constData(), 0600), 0);
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("folder")));
    ASSERT_TRUE(QFile::link(QStringLiteral("folder"), path("to folder")));
    for (const char* name : {"link", "dangling", "loop", "fifo", "folder", "to folder"}) {
        EXPECT_EQ(readingFailure(path(name)), noRegularFile(name));
        EXPECT_THROW(static_cast<void>(StoreFiles::readRegularFile(path(name), 100)), OrvexError);
    }
    EXPECT_EQ(readingFailure(QStringLiteral("/dev/null")), noRegularFile("null"));
}

TEST_F(StoreFilesTest, TellInTheSystemsWordsWhatCannotBeLookedAt) {
    const QString file = write("file", "content");
    EXPECT_EQ(readingFailure(path("missing")), path("missing").toStdString() + ": No such file or directory");
    EXPECT_NE(readingFailure(file + QStringLiteral("/below")).find("Not a directory"), std::string::npos);
    EXPECT_THROW(static_cast<void>(StoreFiles::readRegularFile({}, 100)), platform::FileSystemError);
}

TEST_F(StoreFilesTest, ReadAFileInAFolderBehindALink) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("folder")));
    write("folder/file", "content");
    ASSERT_TRUE(QFile::link(QStringLiteral("folder"), path("link")));
    EXPECT_EQ(StoreFiles::readRegularFile(path("link/file"), 100), "content");
}

TEST_F(StoreFilesTest, RefuseInChinese) {
    const test::InChinese chinese;
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("文件夹")));
    EXPECT_EQ(readingFailure(path("文件夹")), "文件不存在、不是普通文件，或是链接：文件夹。");
}

} // namespace orvex
