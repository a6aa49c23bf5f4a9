#include "Files/ApplicationFolder.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

namespace orvex::platform {

namespace {

using test::becomeOrdinaryUser;
using test::inChildProcess;

/// The application folder of a process with this environment; an absent variable is not set at all.
QString applicationFolderWith(const char* dataHome, const QByteArray& home) {
    return QString::fromUtf8(inChildProcess([&] {
        dataHome == nullptr ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", dataHome);
        qputenv("HOME", home);
        return applicationFolder().toUtf8();
    }));
}

int makingFailure(const QString& path) {
    try {
        makeFolder(path);
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

class MadeFolder : public ::testing::Test {
protected:
    QString path(const char* name) const { return folder_.path() + u'/' + QString::fromUtf8(name); }

    mode_t modeOf(const char* name) const {
        struct stat facts {};

        EXPECT_EQ(::stat(path(name).toUtf8().constData(), &facts), 0) << name;
        return facts.st_mode;
    }

    void expectMade(const char* name) const {
        EXPECT_EQ(makingFailure(path(name)), 0) << name;
        EXPECT_TRUE(QFileInfo(path(name)).isDir()) << name;
    }

    test::TemporaryFolder folder_;
};

} // namespace

TEST(ApplicationFolder, LiesInTheDataHome) {
    EXPECT_EQ(applicationFolderWith("/data/home", "/home/user"), QStringLiteral("/data/home/ORVEX"));
    EXPECT_EQ(applicationFolderWith("/data/卷 布", "/home/user"), QString::fromUtf8("/data/卷 布/ORVEX"));
}

TEST(ApplicationFolder, LiesInTheHomeFolderWithoutADataHome) {
    const QString usual = QStringLiteral("/home/user/.local/share/ORVEX");
    EXPECT_EQ(applicationFolderWith(nullptr, "/home/user"), usual);
    EXPECT_EQ(applicationFolderWith("", "/home/user"), usual);
    EXPECT_EQ(applicationFolderWith("relative/data", "/home/user"), usual) << "it would depend on the current folder";
}

TEST(ApplicationFolder, IsNotMadeByAskingForIt) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(applicationFolderWith(folder.path(QStringLiteral("data")).toUtf8().constData(), "/home/user"),
              folder.path(QStringLiteral("data/ORVEX")));
    EXPECT_EQ(folder.names(), QStringList());
}

TEST_F(MadeFolder, IsMadeWithAllAboveItForThisUserAlone) {
    const mode_t mask = ::umask(0);
    expectMade("a/b/c");
    ::umask(mask);
    for (const char* name : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(modeOf(name) & 07777U, 0700U) << name;
    }
}

TEST_F(MadeFolder, StaysAsItIsIfItIsThere) {
    expectMade("a");
    ASSERT_EQ(::chmod(path("a").toUtf8().constData(), 0755), 0);
    folder_.write(QStringLiteral("a/file"), "content");
    expectMade("a");
    expectMade("a/b");
    EXPECT_EQ(modeOf("a") & 07777U, 0755U);
    EXPECT_EQ(test::TemporaryFolder::read(path("a/file")), "content");
}

TEST_F(MadeFolder, MayBeGivenInOddForms) {
    expectMade("a/");
    expectMade("b//c///d//");
    expectMade("e/./f/.");
    expectMade("g/h/../i");
    expectMade("卷 布\n%20/😀");
    EXPECT_TRUE(QFileInfo(path("g/i")).isDir());
    EXPECT_EQ(makingFailure(QStringLiteral("/")), 0);
}

TEST_F(MadeFolder, MayBeRelative) {
    const QString former = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder_.path()));
    EXPECT_EQ(makingFailure(QStringLiteral("a/b")), 0);
    EXPECT_TRUE(QDir::setCurrent(former));
    EXPECT_TRUE(QFileInfo(path("a/b")).isDir());
}

TEST_F(MadeFolder, MayBeReachedThroughALink) {
    expectMade("real");
    ASSERT_TRUE(QFile::link(QStringLiteral("real"), path("link")));
    expectMade("link");
    expectMade("link/a/b");
    EXPECT_TRUE(QFileInfo(path("real/a/b")).isDir());
    EXPECT_TRUE(QFileInfo(path("link")).isSymLink());
}

TEST_F(MadeFolder, IsRefusedWhereItCannotBe) {
    folder_.write(QStringLiteral("file"), "content");
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), path("dangling")));
    ASSERT_TRUE(QFile::link(QStringLiteral("loop"), path("loop")));
    EXPECT_EQ(makingFailure(path("file")), ENOTDIR);
    EXPECT_EQ(makingFailure(path("file/below")), ENOTDIR);
    EXPECT_EQ(makingFailure(path("file/below/deeper")), ENOTDIR);
    EXPECT_EQ(makingFailure(path("dangling")), ENOTDIR);
    EXPECT_NE(makingFailure(path("dangling/below")), 0);
    EXPECT_NE(makingFailure(path("loop")), 0);
    EXPECT_EQ(makingFailure(path("loop/below")), ELOOP);
    EXPECT_EQ(makingFailure(folder_.path() + u'/' + QString(256, u'n')), ENAMETOOLONG);
    EXPECT_EQ(makingFailure(folder_.path() + QStringLiteral("/nn").repeated(2000)), ENAMETOOLONG);
    EXPECT_EQ(makingFailure({}), ENOENT);
    EXPECT_EQ(makingFailure(path("a") + QChar(u'\0') + u'b'), ENOENT);
    EXPECT_EQ(folder_.names(),
              (QStringList{QStringLiteral("dangling"), QStringLiteral("file"), QStringLiteral("loop")}));
}

TEST_F(MadeFolder, IsRefusedWithoutPermission) {
    expectMade("closed");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path("closed").toUtf8().constData(), 0555), 0);
    const QByteArray failure = inChildProcess([&]() -> QByteArray {
        return becomeOrdinaryUser() ? QByteArray::number(makingFailure(path("closed/a/b"))) : QByteArray("still root");
    });
    EXPECT_EQ(failure, QByteArray::number(EACCES));
    EXPECT_FALSE(QFileInfo::exists(path("closed/a")));
}

TEST_F(MadeFolder, MayBeMadeByManyAtOnce) {
    for (int round = 0; round < 50; ++round) {
        const QString wanted = path("many/") + QString::number(round) + QStringLiteral("/b/c/d");
        std::atomic<int> failures = 0;
        {
            std::vector<std::jthread> makers;
            for (int maker = 0; maker < 4; ++maker) {
                makers.emplace_back([&] { failures += makingFailure(wanted) != 0 ? 1 : 0; });
            }
        }
        EXPECT_EQ(failures, 0);
        EXPECT_TRUE(QFileInfo(wanted).isDir());
    }
}

TEST_F(MadeFolder, OfAStoreIsTheOneGiven) {
    const QUrl given = QUrl::fromLocalFile(path("a/b 画"));
    EXPECT_EQ(storeFolder(given), given);
    EXPECT_TRUE(QFileInfo(path("a/b 画")).isDir());
    EXPECT_EQ(storeFolder(given, QStringLiteral("presets")), given) << "a given folder is used as it stands";
    EXPECT_FALSE(QFileInfo::exists(path("a/b 画/presets")));
}

TEST_F(MadeFolder, OfAStoreLiesInTheApplicationFolderOtherwise) {
    const auto made = [&](const QString& name) {
        return QString::fromUtf8(inChildProcess([&] {
            qputenv("XDG_DATA_HOME", path("data").toUtf8());
            return storeFolder(std::nullopt, name).toString(QUrl::FullyEncoded).toUtf8();
        }));
    };
    EXPECT_EQ(made({}), QUrl::fromLocalFile(path("data/ORVEX")).toString(QUrl::FullyEncoded));
    EXPECT_TRUE(QFileInfo(path("data/ORVEX")).isDir());
    EXPECT_EQ(made(QStringLiteral("presets")),
              QUrl::fromLocalFile(path("data/ORVEX/presets")).toString(QUrl::FullyEncoded));
    EXPECT_TRUE(QFileInfo(path("data/ORVEX/presets")).isDir());
    EXPECT_EQ(modeOf("data/ORVEX/presets") & 07777U, 0700U);
}

TEST_F(MadeFolder, OfAStoreIsRefusedWhereItCannotBe) {
    folder_.write(QStringLiteral("file"), "content");
    const auto failure = [](const QUrl& directory) {
        try {
            static_cast<void>(storeFolder(directory));
        } catch (const FileSystemError& error) {
            return error.code();
        }
        return 0;
    };
    EXPECT_EQ(failure(QUrl::fromLocalFile(path("file"))), ENOTDIR);
    EXPECT_EQ(failure(QUrl::fromLocalFile(path("file/below"))), ENOTDIR);
    EXPECT_EQ(failure(QUrl(QStringLiteral("https://example.com/a"))), ENOENT);
    EXPECT_EQ(failure(QUrl()), ENOENT);
}

} // namespace orvex::platform
