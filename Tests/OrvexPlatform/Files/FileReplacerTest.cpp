#include "Files/FileReplacer.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QFileInfo>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace orvex::platform {

namespace {

using test::becomeOrdinaryUser;
using test::inChildProcess;
using test::TemporaryFolder;

mode_t modeOf(const QString& path) {
    struct stat facts {};

    EXPECT_EQ(::stat(path.toUtf8().constData(), &facts), 0);
    return facts.st_mode & 07777U;
}

/// The code of the failure; 0 if there was none.
int failureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

int replacingFailure(const QString& path, const QByteArray& content = "new") {
    return failureOf([&] { FileReplacer::replace(path, content); });
}

class FileReplacerTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return folder_.path(QString::fromUtf8(name)); }

    QByteArray nativePath(const char* name) const { return path(name).toUtf8(); }

    QString write(const char* name, const QByteArray& bytes) const {
        return folder_.write(QString::fromUtf8(name), bytes);
    }

    void link(const char* target, const char* name) const {
        ASSERT_EQ(::symlink(target, nativePath(name).constData()), 0);
    }

    bool fillDisk() const {
        QFile filler(path("filler"));
        const bool isOpen = filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        while (isOpen && filler.write(QByteArray(1024, 'f')) > 0) {
        }
        return isOpen && filler.error() == QFileDevice::ResourceError;
    }

    /// Replacing fails like this, and leaves nothing behind in the folder.
    void expectRefused(const QString& destination, int code) const {
        const QStringList before = folder_.names();
        EXPECT_EQ(replacingFailure(destination), code) << destination.toStdString();
        EXPECT_EQ(folder_.names(), before);
    }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(FileReplacerTest, ReplacesAWholeFile) {
    const QString file = write("file", "the old content, which is longer");
    FileReplacer::replace(file, "new");
    EXPECT_EQ(TemporaryFolder::read(file), "new");
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("file")});
}

TEST_F(FileReplacerTest, MakesANewFile) {
    const mode_t mask = ::umask(027);
    FileReplacer::replace(path("file"), "new");
    ::umask(mask);
    EXPECT_EQ(TemporaryFolder::read(path("file")), "new");
    EXPECT_EQ(modeOf(path("file")), 0640U);
}

TEST_F(FileReplacerTest, WritesInPiecesOfAnySize) {
    FileReplacer replacer = FileReplacer::open(path("file"));
    replacer.write("one ");
    replacer.write({});
    replacer.write("two");
    EXPECT_EQ(replacer.position(), 7);
    replacer.write(QByteArray(200'000, 'x'));
    EXPECT_EQ(replacer.position(), 200'007);
    replacer.commit();
    EXPECT_EQ(TemporaryFolder::read(path("file")), "one two" + QByteArray(200'000, 'x'));
}

TEST_F(FileReplacerTest, LeavesTheDestinationAloneUntilTheCommit) {
    const QString file = write("file", "old");
    FileReplacer replacer = FileReplacer::open(file);
    replacer.write("new");
    EXPECT_EQ(TemporaryFolder::read(file), "old");
    EXPECT_EQ(TemporaryFolder::read(replacer.temporaryPath()), "new");
    replacer.commit();
    EXPECT_EQ(TemporaryFolder::read(file), "new");
}

TEST_F(FileReplacerTest, RemovesItsFileWithoutACommit) {
    const QString file = write("file", "old");
    {
        FileReplacer replacer = FileReplacer::open(file);
        replacer.write("new");
        EXPECT_EQ(folder_.names().size(), 2);
    }
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("file")});
    EXPECT_EQ(TemporaryFolder::read(file), "old");
}

TEST_F(FileReplacerTest, CanBeMoved) {
    FileReplacer first = FileReplacer::open(path("file"));
    first.write("one");
    {
        FileReplacer second = std::move(first);
        second.write(" two");
        second.commit();
    }
    EXPECT_EQ(TemporaryFolder::read(path("file")), "one two");
}

TEST_F(FileReplacerTest, HidesItsFileBesideTheDestination) {
    const FileReplacer replacer = FileReplacer::open(path("roll.pdf"));
    const QFileInfo temporary(replacer.temporaryPath());
    EXPECT_EQ(temporary.path(), folder_.path());
    EXPECT_TRUE(temporary.fileName().startsWith(QStringLiteral(".roll.pdf.")));
    EXPECT_TRUE(temporary.fileName().endsWith(QStringLiteral(".tmp")));
    EXPECT_NE(FileReplacer::open(path("roll.pdf")).temporaryPath(), replacer.temporaryPath());
}

TEST_F(FileReplacerTest, TakesAGivenNameForItsFile) {
    const FileReplacer replacer = FileReplacer::open(path("roll.pdf"), QStringLiteral(".working"));
    EXPECT_EQ(replacer.temporaryPath(), path(".working"));
    EXPECT_EQ(failureOf([&] { static_cast<void>(FileReplacer::open(path("a"), QStringLiteral(".working"))); }), EEXIST);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral(".working")});
}

TEST_F(FileReplacerTest, NeverWritesThroughALinkInPlaceOfItsFile) {
    const QString victim = write("victim", "old");
    link("victim", ".working");
    EXPECT_EQ(failureOf([&] { static_cast<void>(FileReplacer::open(path("a"), QStringLiteral(".working"))); }), EEXIST);
    EXPECT_EQ(TemporaryFolder::read(victim), "old");
}

TEST_F(FileReplacerTest, LocksItsFileWhileItIsWritten) {
    FileReplacer replacer = FileReplacer::open(path("file"));
    const int other = ::open(replacer.temporaryPath().toUtf8().constData(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(other, 0);
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), -1);
    EXPECT_EQ(errno, EWOULDBLOCK);
    replacer.write("new");
    replacer.commit();
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), -1) << "locked until it is closed";
    { const FileReplacer closed = std::move(replacer); }
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    ::close(other);
}

TEST_F(FileReplacerTest, KeepsPermissions) {
    const QString file = write("file", "old");
    for (const mode_t mode : {0600U, 0644U, 0664U, 0755U, 0700U}) {
        ASSERT_EQ(::chmod(file.toUtf8().constData(), mode), 0);
        FileReplacer::replace(file, "new");
        EXPECT_EQ(modeOf(file), mode);
    }
}

TEST_F(FileReplacerTest, DropsTheRightToRunAsTheOwner) {
    const QString file = write("file", "old");
    ASSERT_EQ(::chmod(file.toUtf8().constData(), 06755), 0);
    FileReplacer::replace(file, "new");
    EXPECT_EQ(modeOf(file), 0755U);
}

TEST_F(FileReplacerTest, ReplacesTheFileBehindLinks) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("elsewhere")));
    const QString file = write("elsewhere/file", "old");
    link("elsewhere/file", "near");
    link("near", "far");
    FileReplacer::replace(path("far"), "new");
    EXPECT_EQ(TemporaryFolder::read(file), "new");
    EXPECT_TRUE(QFileInfo(path("far")).isSymLink());
    EXPECT_TRUE(QFileInfo(path("near")).isSymLink());
    EXPECT_FALSE(QFileInfo(file).isSymLink());
}

TEST_F(FileReplacerTest, WritesItsFileBesideTheFileBehindALink) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("elsewhere")));
    write("elsewhere/file", "old");
    link("elsewhere/file", "near");
    EXPECT_EQ(QFileInfo(FileReplacer::open(path("near")).temporaryPath()).path(), path("elsewhere"));
}

TEST_F(FileReplacerTest, FollowsALinkToAFolderOnTheWay) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("folder")));
    link("folder", "link");
    FileReplacer::replace(path("link/file"), "new");
    EXPECT_EQ(TemporaryFolder::read(path("folder/file")), "new");
}

TEST_F(FileReplacerTest, LeavesOtherNamesOfTheFileTheOldContent) {
    const QString file = write("file", "old");
    ASSERT_EQ(::link(file.toUtf8().constData(), nativePath("other").constData()), 0);
    FileReplacer::replace(file, "new");
    EXPECT_EQ(TemporaryFolder::read(path("other")), "old");
}

TEST_F(FileReplacerTest, RefusesAFolder) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("folder")));
    link("folder", "link");
    expectRefused(path("folder"), EISDIR);
    expectRefused(path("link"), EISDIR);
}

TEST_F(FileReplacerTest, RefusesAFifoADeviceAndASocket) {
    ASSERT_EQ(::mkfifo(nativePath("fifo").constData(), 0600), 0);
    link("/dev/null", "device");
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);

    struct sockaddr_un address {};

    address.sun_family = AF_UNIX;
    const QByteArray name = nativePath("socket");
    ASSERT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
    std::copy(name.cbegin(), name.cend(), address.sun_path);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const struct sockaddr*>(&address), sizeof address), 0);

    expectRefused(path("fifo"), EINVAL);
    expectRefused(path("socket"), EINVAL);
    expectRefused(path("device"), EINVAL);
    expectRefused(QStringLiteral("/dev/null"), EINVAL);
    ::close(socket);
    EXPECT_EQ(::access("/dev/null", W_OK), 0);
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/null")).isFile()) << "the device has been replaced";
}

TEST_F(FileReplacerTest, RefusesALinkThatLeadsNowhere) {
    link("missing", "dangling");
    link("missing/deeper", "deeply");
    link("loop", "loop");
    link("there", "back");
    link("back", "there");
    expectRefused(path("dangling"), ENOENT);
    expectRefused(path("deeply"), ENOENT);
    expectRefused(path("loop"), ELOOP);
    expectRefused(path("back"), ELOOP);
    expectRefused(path("loop/file"), ELOOP);
    EXPECT_TRUE(QFileInfo(path("dangling")).isSymLink());
}

TEST_F(FileReplacerTest, RefusesAPlaceThatIsNone) {
    write("file", "old");
    expectRefused(path("missing/file"), ENOENT);
    expectRefused(path("file/below"), ENOTDIR);
    expectRefused({}, ENOENT);
    expectRefused(path("a") + QChar(u'\0') + QStringLiteral("b"), ENOENT);
    expectRefused(folder_.path(QString(256, u'n')), ENAMETOOLONG);
    EXPECT_EQ(TemporaryFolder::read(path("file")), "old");
}

TEST_F(FileReplacerTest, AcceptsNamesAsLongAsTheSystemDoes) {
    const QString emoji = QString::fromUtf8("\U0001f5bc");
    for (const QString& name : {QString(255, u'n'), QString(85, QChar(0x5377)), emoji.repeated(63)}) {
        FileReplacer::replace(folder_.path(name), "new");
        EXPECT_EQ(TemporaryFolder::read(folder_.path(name)), "new");
    }
    EXPECT_EQ(folder_.names().size(), 3);
}

TEST_F(FileReplacerTest, RefusesWhatTheUserMayNotWrite) {
    const QString file = write("file", "old");
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("closed")));
    const QString inside = write("closed/file", "old");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0777), 0);
    ASSERT_EQ(::chmod(file.toUtf8().constData(), 0444), 0);
    ASSERT_EQ(::chmod(inside.toUtf8().constData(), 0666), 0);
    ASSERT_EQ(::chmod(nativePath("closed").constData(), 0555), 0);
    const auto failure = [](const QString& destination) {
        return inChildProcess([&] {
            return becomeOrdinaryUser() ? QByteArray::number(replacingFailure(destination)) : QByteArray("still root");
        });
    };
    EXPECT_EQ(failure(file), QByteArray::number(EACCES));
    EXPECT_EQ(failure(inside), QByteArray::number(EACCES));
    EXPECT_EQ(failure(path("closed/new")), QByteArray::number(EACCES));
    ASSERT_EQ(::chmod(nativePath("closed").constData(), 0755), 0);
    EXPECT_EQ(TemporaryFolder::read(file), "old");
    EXPECT_EQ(TemporaryFolder::read(inside), "old");
    EXPECT_EQ(QDir(path("closed")).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("file")});
}

TEST_F(FileReplacerTest, RefusesAFolderThatItCouldNotSynchroniseBeforeItWrites) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("dark")));
    const QString file = write("dark/file", "old");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0777), 0);
    ASSERT_EQ(::chmod(file.toUtf8().constData(), 0666), 0);
    ASSERT_EQ(::chmod(nativePath("dark").constData(), 0333), 0);
    const QByteArray failure = inChildProcess(
        [&] { return becomeOrdinaryUser() ? QByteArray::number(replacingFailure(file)) : QByteArray("still root"); });
    ASSERT_EQ(::chmod(nativePath("dark").constData(), 0755), 0);
    EXPECT_EQ(failure, QByteArray::number(EACCES));
    EXPECT_EQ(TemporaryFolder::read(file), "old");
    EXPECT_EQ(QDir(path("dark")).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("file")});
}

TEST_F(FileReplacerTest, KeepsTheOldFileOnAFullDisk) {
    for (const qsizetype size : {10, 5'000, 20'000, 200'000}) {
        const QByteArray answer = inChildProcess([&]() -> QByteArray {
            // Only the superuser can have a disk of his own; for others no file may grow at all.
            const bool hasDisk = test::mountSmallDisk(folder_.path().toUtf8());
            const QString file = write("file", "old");
            if (!(hasDisk ? fillDisk() : test::limitFileSize(0))) {
                return "the disk is not full";
            }
            const int failure = replacingFailure(file, QByteArray(size, 'n'));
            const QByteArray told = failure == (hasDisk ? ENOSPC : EFBIG) ? "refused" : QByteArray::number(failure);
            return told + ' ' + TemporaryFolder::read(file) + ' ' + folder_.names().join(u' ').toUtf8();
        });
        EXPECT_EQ(answer.split(' ').first(3), (QByteArrayList{"refused", "old", "file"})) << size;
        EXPECT_FALSE(answer.contains(".tmp")) << answer.constData();
    }
}

TEST_F(FileReplacerTest, KeepsTheOldFileWhenTheNewOneMayNotGrow) {
    const QString file = write("file", "old");
    for (const qsizetype size : {4'097, 200'000}) {
        const QByteArray answer = inChildProcess([&]() -> QByteArray {
            return test::limitFileSize(4'096) ? QByteArray::number(replacingFailure(file, QByteArray(size, 'n')))
                                              : QByteArray("no limit");
        });
        EXPECT_EQ(answer, QByteArray::number(EFBIG));
        EXPECT_EQ(TemporaryFolder::read(file), "old");
        EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("file")});
    }
}

TEST_F(FileReplacerTest, TellsThatTheTemporaryFileWasTakenAway) {
    const QString file = write("file", "old");
    FileReplacer replacer = FileReplacer::open(file);
    replacer.write("new");
    ASSERT_TRUE(QFile::remove(replacer.temporaryPath()));
    EXPECT_EQ(failureOf([&] { replacer.commit(); }), ENOENT);
    EXPECT_EQ(TemporaryFolder::read(file), "old");
}

TEST_F(FileReplacerTest, NamesTheDestinationInItsFailures) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("folder")));
    try {
        FileReplacer::replace(path("folder"), "new");
        FAIL();
    } catch (const FileSystemError& error) {
        EXPECT_EQ(error.message(), path("folder") + QStringLiteral(": Is a directory"));
    }
}

namespace {

constexpr auto uuid = "01234567-89ab-cdef-0123-456789abcdef";

/// A folder with what killed processes and others have left in it.
class StaleTemporaries : public FileReplacerTest {
protected:
    /// Writes a file with the name of a temporary one beside `name`.
    QString leave(const QByteArray& name) const {
        return folder_.write(QString::fromUtf8('.' + name + '.' + uuid + ".tmp"), "left");
    }

    /// Of these names, those that are still there.
    QStringList left(const QStringList& names) const {
        QStringList there;
        for (const QString& name : names) {
            if (folder_.names().contains(name)) {
                there.append(name);
            }
        }
        return there;
    }
};

QStringList namesThatOnlyResembleTemporaryOnes() {
    return {
        QStringLiteral("a.json.01234567-89ab-cdef-0123-456789abcdef.tmp"),
        QStringLiteral(".a.json.01234567-89AB-CDEF-0123-456789ABCDEF.tmp"),
        QStringLiteral(".a.json.{01234567-89ab-cdef-0123-456789abcdef}.tmp"),
        QStringLiteral(".a.json.0123456789abcdef0123456789abcdef.tmp"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcde.tmp"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdefa.tmp"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdeg.tmp"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdef.TMP"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdef.tmp~"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdef.tmp\n"),
        QStringLiteral(".a.json.01234567-89ab-cdef-0123-456789abcdef"),
        QStringLiteral(".a.json.tmp"),
        QStringLiteral(".01234567-89ab-cdef-0123-456789abcdef.tmp"),
        QStringLiteral("..01234567-89ab-cdef-0123-456789abcdef.tmp"),
        QStringLiteral(".a.json01234567-89ab-cdef-0123-456789abcdef.tmp"),
    };
}

} // namespace

TEST_F(StaleTemporaries, OfADestinationGoWhenItIsWrittenAgain) {
    leave("a.json");
    write(".a.json.00000000-0000-0000-0000-000000000000.tmp", "");
    FileReplacer::replace(path("a.json"), "new");
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("a.json")});
}

TEST_F(StaleTemporaries, OfADestinationGoThoughTheWritingIsGivenUp) {
    leave("a.json");
    { const FileReplacer replacer = FileReplacer::open(path("a.json")); }
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(StaleTemporaries, OfOtherDestinationsStayWhenOneIsWritten) {
    const QStringList others{QFileInfo(leave("b.json")).fileName(), QFileInfo(leave("aXjson")).fileName(),
                             QFileInfo(leave("a.json.a.json")).fileName(), QFileInfo(leave("A.json")).fileName()};
    FileReplacer::replace(path("a.json"), "new");
    EXPECT_EQ(left(others), others);
}

TEST_F(StaleTemporaries, OfADestinationWithASignOfPatternsInItsNameAreItsOwn) {
    leave("a+b (1)[2].*$.json");
    const QString other = QFileInfo(leave("aab (1)[2].*$.json")).fileName();
    FileReplacer::replace(path("a+b (1)[2].*$.json"), "new");
    EXPECT_EQ(folder_.names(), (QStringList{other, QStringLiteral("a+b (1)[2].*$.json")}));
}

TEST_F(StaleTemporaries, OfADestinationWithALongNameGo) {
    const QByteArray name(255, 'x');
    const QString stale = leave(name.first(213)); // as much of it as leaves room for the rest
    FileReplacer::replace(path(name.constData()), "new");
    EXPECT_EQ(folder_.names(), QStringList{QString::fromUtf8(name)}) << stale.toStdString();
}

TEST_F(StaleTemporaries, BehindALinkGo) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("elsewhere")));
    write("elsewhere/file", "old");
    link("elsewhere/file", "near");
    const QString beside = write("elsewhere/.file.01234567-89ab-cdef-0123-456789abcdef.tmp", "left");
    const QString here = leave("near");
    FileReplacer::replace(path("near"), "new");
    EXPECT_FALSE(QFileInfo::exists(beside));
    EXPECT_TRUE(QFileInfo::exists(here)) << "nothing is written here";
}

TEST_F(StaleTemporaries, StayWhenTheTemporaryFileHasAGivenName) {
    const QString stale = leave("a.json");
    { const FileReplacer replacer = FileReplacer::open(path("a.json"), QStringLiteral(".working")); }
    EXPECT_TRUE(QFileInfo::exists(stale));
}

TEST_F(StaleTemporaries, OfADestinationThatIsRefusedStay) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("a.json")));
    const QString stale = leave("a.json");
    EXPECT_EQ(replacingFailure(path("a.json")), EISDIR);
    EXPECT_TRUE(QFileInfo::exists(stale));
}

TEST_F(StaleTemporaries, OfAWholeFolderGo) {
    leave("a.json");
    leave("b");
    leave(".hidden");
    leave("卷\n布");
    write("a.json", "kept");
    FileReplacer::removeStaleTemporaries(folder_.path());
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("a.json")});
}

TEST_F(StaleTemporaries, InFoldersBelowStay) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("below")));
    const QString stale = write("below/.a.01234567-89ab-cdef-0123-456789abcdef.tmp", "left");
    FileReplacer::removeStaleTemporaries(folder_.path());
    EXPECT_TRUE(QFileInfo::exists(stale));
}

TEST_F(StaleTemporaries, AreKnownByTheWholeFormOfTheirNames) {
    const QStringList names = namesThatOnlyResembleTemporaryOnes();
    for (const QString& name : names) {
        folder_.write(name, "kept");
    }
    FileReplacer::removeStaleTemporaries(folder_.path());
    EXPECT_EQ(left(names), names);
    FileReplacer::replace(path("a.json"), "new");
    EXPECT_EQ(left(names), names);
}

TEST_F(StaleTemporaries, StayWhileSomebodyWritesThem) {
    FileReplacer first = FileReplacer::open(path("a.json"));
    first.write("first");
    FileReplacer::removeStaleTemporaries(folder_.path());
    FileReplacer::replace(path("a.json"), "second");
    EXPECT_EQ(TemporaryFolder::read(path("a.json")), "second");
    ASSERT_TRUE(QFileInfo::exists(first.temporaryPath()));
    first.commit();
    EXPECT_EQ(TemporaryFolder::read(path("a.json")), "first");
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("a.json")});
}

TEST_F(StaleTemporaries, OfAKilledProcessGo) {
    const pid_t child = ::fork();
    if (child == 0) {
        FileReplacer replacer = FileReplacer::open(path("a.json"));
        replacer.write("half");
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(folder_.names().size(), 1);
    FileReplacer::replace(path("a.json"), "new");
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("a.json")});
}

TEST_F(StaleTemporaries, AreRegularFilesAlone) {
    const QByteArray name = QByteArray(".a.json.") + uuid + ".tmp";
    const auto expectKept = [&] {
        FileReplacer::removeStaleTemporaries(folder_.path());
        EXPECT_TRUE(folder_.names().contains(QString::fromUtf8(name)));
    };
    write("victim", "kept");
    link("victim", name.constData());
    expectKept();
    EXPECT_EQ(TemporaryFolder::read(path("victim")), "kept");
    ASSERT_EQ(::unlink(nativePath(name.constData()).constData()), 0);
    ASSERT_EQ(::mkfifo(nativePath(name.constData()).constData(), 0600), 0);
    expectKept();
    ASSERT_EQ(::unlink(nativePath(name.constData()).constData()), 0);
    ASSERT_EQ(::mkdir(nativePath(name.constData()).constData(), 0700), 0);
    expectKept();
}

TEST_F(StaleTemporaries, ThatCannotBeRemovedStayWithoutAWord) {
    FileReplacer::removeStaleTemporaries(path("missing"));
    FileReplacer::removeStaleTemporaries(write("file", "kept"));
    const QString stale = leave("a.json");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0555), 0);
    const QByteArray answer = inChildProcess([&]() -> QByteArray {
        if (!becomeOrdinaryUser()) {
            return "still root";
        }
        FileReplacer::removeStaleTemporaries(folder_.path());
        return "done";
    });
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0700), 0);
    EXPECT_EQ(answer, "done");
    EXPECT_TRUE(QFileInfo::exists(stale));
}

TEST_F(StaleTemporaries, OfLongNamesGoWithTheWholeFolder) {
    const QString name(255, u'n');
    const QString cut = FileReplacer::open(folder_.path(name)).temporaryPath();
    folder_.write(QFileInfo(cut).fileName(), "left");
    FileReplacer::removeStaleTemporaries(folder_.path());
    EXPECT_EQ(folder_.names(), QStringList());
}

} // namespace orvex::platform
