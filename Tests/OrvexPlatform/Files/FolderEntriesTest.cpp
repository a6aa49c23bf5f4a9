#include "Files/FolderEntries.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

int listingFailure(const QString& path) {
    try {
        static_cast<void>(folderEntries(path));
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

} // namespace

TEST(FolderEntries, AreNoneInAnEmptyFolder) {
    EXPECT_EQ(folderEntries(TemporaryFolder().path()), QStringList());
}

TEST(FolderEntries, AreAllNamesInTheOrderOfTheirScalars) {
    const TemporaryFolder folder;
    const QStringList ascending{QStringLiteral(".hidden"), QStringLiteral("A"),  QStringLiteral("B10"),
                                QStringLiteral("B9"),      QStringLiteral("a"),  QStringLiteral("é"),
                                QStringLiteral("画"),      QStringLiteral("（"), QStringLiteral("\U0001F600")};
    for (auto name = ascending.crbegin(); name != ascending.crend(); ++name) {
        folder.write(*name, "");
    }
    EXPECT_EQ(folderEntries(folder.path()), ascending);
}

TEST(FolderEntries, AreOfEveryKindAndOfThisFolderAlone) {
    const TemporaryFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("folder/below")));
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), folder.path(QStringLiteral("link"))));
    ASSERT_EQ(::mkfifo(folder.path(QStringLiteral("fifo")).toUtf8().constData(), 0600), 0);
    const QStringList names{QStringLiteral("fifo"), QStringLiteral("folder"), QStringLiteral("link")};
    EXPECT_EQ(folderEntries(folder.path()), names);
    EXPECT_EQ(folderEntries(folder.path() + u'/'), names);
}

TEST(FolderEntries, AreThoseBehindALink) {
    const TemporaryFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("folder/below")));
    ASSERT_TRUE(QFile::link(QStringLiteral("folder"), folder.path(QStringLiteral("link"))));
    EXPECT_EQ(folderEntries(folder.path(QStringLiteral("link"))), QStringList{QStringLiteral("below")});
}

TEST(FolderEntries, MayHaveNamesThatAreNoText) {
    const TemporaryFolder folder;
    const QByteArray native = folder.path().toUtf8() + "/a\xFF.json";
    ASSERT_EQ(::mkdir(native.constData(), 0700), 0);
    const QStringList names = folderEntries(folder.path());
    ASSERT_EQ(names.size(), 1);
    EXPECT_TRUE(names.first().startsWith(u'a'));
    EXPECT_TRUE(names.first().endsWith(QStringLiteral(".json")));
    ASSERT_EQ(::rmdir(native.constData()), 0);
}

TEST(FolderEntries, FailWithoutAFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(listingFailure(folder.path(QStringLiteral("missing"))), ENOENT);
    EXPECT_EQ(listingFailure(folder.write(QStringLiteral("file"), "")), ENOTDIR);
    EXPECT_EQ(listingFailure({}), ENOENT);
}

TEST(FolderEntries, FailWithoutPermission) {
    const TemporaryFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("dark")));
    ASSERT_EQ(::chmod(folder.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(folder.path(QStringLiteral("dark")).toUtf8().constData(), 0), 0);
    const QByteArray failure = test::inChildProcess([&] {
        return test::becomeOrdinaryUser() ? QByteArray::number(listingFailure(folder.path(QStringLiteral("dark"))))
                                          : QByteArray("still root");
    });
    EXPECT_EQ(failure, QByteArray::number(EACCES));
}

} // namespace orvex::platform
