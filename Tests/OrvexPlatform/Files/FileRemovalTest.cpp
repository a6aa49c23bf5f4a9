#include "Files/FileRemoval.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

int removalFailure(const QString& path) {
    try {
        removeFile(path);
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

class FileRemovalTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return folder_.path(QString::fromUtf8(name)); }

    QString write(const char* name) const { return folder_.write(QString::fromUtf8(name), "content"); }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(FileRemovalTest, RemovesOneFile) {
    write("other");
    EXPECT_EQ(removalFailure(write("卷 布.pdf")), 0);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("other")});
}

TEST_F(FileRemovalTest, RemovesAFileThatMayNotBeWritten) {
    const QString file = write("file");
    ASSERT_EQ(::chmod(file.toUtf8().constData(), 0), 0);
    EXPECT_EQ(removalFailure(file), 0);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(FileRemovalTest, RemovesALinkAndNotWhatItLeadsTo) {
    write("file");
    ASSERT_TRUE(QFile::link(QStringLiteral("file"), path("link")));
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), path("dangling")));
    EXPECT_EQ(removalFailure(path("link")), 0);
    EXPECT_EQ(removalFailure(path("dangling")), 0);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("file")});
}

TEST_F(FileRemovalTest, TellsThatThereIsNoFile) {
    EXPECT_EQ(removalFailure(path("missing")), ENOENT);
    EXPECT_EQ(removalFailure(path("missing/below")), ENOENT);
    EXPECT_EQ(removalFailure(write("file") + QStringLiteral("/below")), ENOTDIR);
    EXPECT_EQ(removalFailure({}), ENOENT);
}

TEST_F(FileRemovalTest, RemovesNoFolder) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("folder")));
    EXPECT_EQ(removalFailure(path("folder")), EISDIR);
    EXPECT_TRUE(QFileInfo(path("folder")).isDir());
}

TEST_F(FileRemovalTest, NeedsOnlyThePermissionToRemove) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("closed")));
    const QString file = write("closed/file");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    const auto failureWithMode = [&](mode_t mode) {
        EXPECT_EQ(::chmod(path("closed").toUtf8().constData(), mode), 0);
        return test::inChildProcess([&] {
            return test::becomeOrdinaryUser() ? QByteArray::number(removalFailure(file)) : QByteArray("still root");
        });
    };
    EXPECT_EQ(failureWithMode(0555), QByteArray::number(EACCES));
    EXPECT_TRUE(QFileInfo::exists(file));
    EXPECT_EQ(failureWithMode(0333), "0") << "the folder cannot be synchronised, but the file is gone";
    EXPECT_FALSE(QFileInfo::exists(file));
    ASSERT_EQ(::chmod(path("closed").toUtf8().constData(), 0755), 0);
}

TEST_F(FileRemovalTest, NamesTheFileInItsFailures) {
    try {
        removeFile(path("missing"));
        FAIL();
    } catch (const FileSystemError& error) {
        EXPECT_TRUE(error.isMissing());
        EXPECT_EQ(error.message(), path("missing") + QStringLiteral(": No such file or directory"));
    }
}

} // namespace orvex::platform
