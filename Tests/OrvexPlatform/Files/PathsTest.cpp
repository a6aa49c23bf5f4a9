#include "Files/Paths.h"

#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

namespace orvex::platform {

namespace {

using test::TemporaryFolder;

int nativeFailure(const QString& path) {
    try {
        static_cast<void>(nativePath(path));
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

class PathsTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return root_ + u'/' + QString::fromUtf8(name); }

    void link(const char* target, const char* name) const {
        ASSERT_EQ(::symlink(target, path(name).toUtf8().constData()), 0);
    }

    TemporaryFolder folder_;
    QString root_ = QFileInfo(folder_.path()).canonicalFilePath();
};

} // namespace

TEST_F(PathsTest, LocalPathIsTheDecodedPathOfAFileUrl) {
    EXPECT_EQ(localPath(QUrl(QStringLiteral("file:///a%20b/%E5%8D%B7%25.pdf"))), QString::fromUtf8("/a b/\u5377%.pdf"));
    EXPECT_EQ(localPath(QUrl::fromLocalFile(QStringLiteral("/a#b?c%41"))), QStringLiteral("/a#b?c%41"));
    EXPECT_EQ(localPath(QUrl(QStringLiteral("FILE:///a"))), QStringLiteral("/a"));
}

TEST_F(PathsTest, LocalPathIsEmptyForAnyOtherUrl) {
    for (const char* url : {"", "/a/b", "a.pdf", "https://localhost/a", "ftp:///a", "qrc:/a", "data:,a"}) {
        EXPECT_EQ(localPath(QUrl(QString::fromUtf8(url))), QString()) << url;
    }
}

TEST_F(PathsTest, FileUrlComesBackAsTheSamePath) {
    for (const char* text : {"/a/b", "/a b/c#d?e%41.png", "/\u5377/\u5e03", "/a\\b", "/"}) {
        const QString typed = QString::fromUtf8(text);
        EXPECT_EQ(fileUrl(typed).scheme(), QStringLiteral("file"));
        EXPECT_EQ(localPath(fileUrl(typed)), typed);
    }
}

TEST_F(PathsTest, FileUrlStartsARelativePathAtTheCurrentFolder) {
    const QString former = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(root_));
    EXPECT_EQ(localPath(fileUrl(QStringLiteral("a/../b.png"))), path("b.png"));
    EXPECT_EQ(localPath(fileUrl(QStringLiteral("./c"))), path("c"));
    EXPECT_TRUE(QDir::setCurrent(former));
}

TEST_F(PathsTest, NativePathRefusesWhatTheSystemWouldCutShort) {
    EXPECT_EQ(nativePath(QString::fromUtf8("/\u5377")), "/\xe5\x8d\xb7");
    EXPECT_EQ(nativeFailure({}), ENOENT);
    EXPECT_EQ(nativeFailure(QStringLiteral("/a") + QChar(u'\0') + u'b'), ENOENT);
}

TEST_F(PathsTest, StandardizedPathGoesByTheTextAlone) {
    EXPECT_EQ(standardizedPath(QStringLiteral("/a//b/./c/../d/")), QStringLiteral("/a/b/d"));
    EXPECT_EQ(standardizedPath(QStringLiteral("/../a")), QStringLiteral("/a"));
    EXPECT_EQ(standardizedPath(QStringLiteral("/a/../../../b/..c")), QStringLiteral("/b/..c"));
    EXPECT_EQ(standardizedPath(QStringLiteral("/a/../..")), QStringLiteral("/"));
    EXPECT_EQ(standardizedPath(QStringLiteral("/..a")), QStringLiteral("/..a"));
    EXPECT_EQ(standardizedPath(QStringLiteral("a/../../b")), QStringLiteral("../b"));
    link("/", "link");
    EXPECT_EQ(standardizedPath(path("link/../x")), path("x"));
}

TEST_F(PathsTest, ResolvingFollowsEveryLinkAsFarAsThePathExists) {
    ASSERT_TRUE(QDir(root_).mkpath(QStringLiteral("folder")));
    folder_.write(QStringLiteral("folder/file"), {});
    link("folder", "link");
    link("link/file", "chain");
    EXPECT_EQ(resolvingSymlinks(path("chain")), path("folder/file"));
    EXPECT_EQ(resolvingSymlinks(path("link/missing/deeper")), path("folder/missing/deeper"));
    EXPECT_EQ(resolvingSymlinks(path("folder//./file")), path("folder/file"));
    EXPECT_EQ(resolvingSymlinks(path("missing")), path("missing"));
}

TEST_F(PathsTest, ResolvingLeavesALinkThatLeadsNowhere) {
    link("missing", "dangling");
    link("loop", "loop");
    EXPECT_EQ(resolvingSymlinks(path("dangling")), path("dangling"));
    EXPECT_EQ(resolvingSymlinks(path("loop")), path("loop"));
}

TEST_F(PathsTest, TheSameFileIsTheSameByAnyName) {
    const QString file = folder_.write(QStringLiteral("file"), "x");
    const QString other = folder_.write(QStringLiteral("other"), "x");
    link("file", "link");
    ASSERT_EQ(::link(file.toUtf8().constData(), path("hard").toUtf8().constData()), 0);
    EXPECT_TRUE(isSameFile(file, file));
    EXPECT_TRUE(isSameFile(file, path("link")));
    EXPECT_TRUE(isSameFile(path("hard"), path("link")));
    EXPECT_TRUE(isSameFile(root_, path("../") + QFileInfo(root_).fileName()));
    EXPECT_FALSE(isSameFile(file, other));
    EXPECT_FALSE(isSameFile(file, path("missing")));
    EXPECT_FALSE(isSameFile(path("missing"), path("missing")));
}

} // namespace orvex::platform
