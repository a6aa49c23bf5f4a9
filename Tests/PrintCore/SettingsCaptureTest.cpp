#include "SettingsCapture.h"

#include "ChildProcess.h"
#include "InChinese.h"
#include "Interrupted.h"
#include "OpenFiles.h"
#include "ProtectedFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <thread>

namespace orvex {

namespace {

using std::chrono::steady_clock;
using test::becomeOrdinaryUser;
using test::directory;
using test::entryOf;
using test::inChildProcess;
using test::missing;
using test::OnceOpen;
using test::regularFile;
using test::symbolicLink;
using test::unreadable;
using test::unsupported;

constexpr qint64 mebibyte = 1 << 20;
constexpr qint64 endless = mebibyte << 20; ///< a size that nobody reads to its end

const QString fileChanged = QStringLiteral("The file changed while it was being read. Check again.");
const QString folderChanged = QStringLiteral("The directory changed while it was being read. Check again.");

/// What the system knows of an item that a reader must leave as it is.
QByteArray stateOf(const QByteArray& path) {
    struct stat facts {};

    EXPECT_EQ(::lstat(path.constData(), &facts), 0) << path.constData();
    QByteArray state = path;
    for (const qint64 fact :
         {qint64{facts.st_mode}, static_cast<qint64>(facts.st_nlink), qint64{facts.st_size},
          static_cast<qint64>(facts.st_ino), qint64{facts.st_mtim.tv_sec}, qint64{facts.st_mtim.tv_nsec},
          qint64{facts.st_ctim.tv_sec}, qint64{facts.st_ctim.tv_nsec}}) {
        state += ' ' + QByteArray::number(fact);
    }
    return state;
}

/// The same of a whole tree.
QByteArrayList stateOfTree(const QString& root) {
    QByteArrayList states{stateOf(root.toUtf8())};
    for (const auto& item : std::filesystem::recursive_directory_iterator(root.toStdString())) {
        states.append(stateOf(QByteArray::fromStdString(item.path().string())));
    }
    std::sort(states.begin(), states.end());
    return states;
}

class SettingsCaptureTest : public ::testing::Test {
protected:
    SettingsCaptureTest() { root_ = QFileInfo(folder_.path()).canonicalFilePath(); }

    QString path(const char* name) const { return root_ + u'/' + QString::fromUtf8(name); }

    QByteArray native(const QByteArray& name) const { return root_.toUtf8() + '/' + name; }

    ProtectedSettingsSnapshot captured() const { return test::capture({root_}); }

    ProtectedSettingsFile capturedFile(const char* name) const {
        return entryOf(test::capture({path(name)}), path(name));
    }

    void writeNative(const QByteArray& name, const QByteArray& content) const {
        const int file = ::open(native(name).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0);
        EXPECT_EQ(::write(file, content.constData(), static_cast<std::size_t>(content.size())), content.size());
        ::close(file);
    }

    /// A file that is read until it is cut.
    void makeEndless(const char* name) const { folder_.makeSparse(name, endless); }

    /// Another name for the file, under which it can be cut when its own is taken.
    void keep(const char* name) const { ASSERT_EQ(::link(native(name).constData(), kept().constData()), 0); }

    void cutKept() const { EXPECT_EQ(::truncate(kept().constData(), 0), 0); }

    QByteArray kept() const { return outside_.native("kept"); }

    test::ProtectedFolder outside_;
    test::ProtectedFolder folder_;
    QString root_;
};

} // namespace

// What there can be at a path

TEST_F(SettingsCaptureTest, HashesTheContentOfRegularFiles) {
    folder_.write("abc", "abc");
    folder_.write("empty", {});
    EXPECT_EQ(capturedFile("abc"),
              (ProtectedSettingsFile{
                  .path = path("abc"),
                  .status = test::Status::regularFile,
                  .sha256 = QStringLiteral("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad")}));
    EXPECT_EQ(capturedFile("empty").sha256,
              QStringLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
}

TEST_F(SettingsCaptureTest, HashesContentAroundTheSizeOfOneRead) {
    QByteArray content(2 * mebibyte + 1, Qt::Uninitialized);
    quint32 state = 1;
    for (char& byte : content) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    for (const qint64 size : {mebibyte - 1, mebibyte, mebibyte + 1, 2 * mebibyte, 2 * mebibyte + 1}) {
        folder_.write("file", content.first(size));
        EXPECT_EQ(capturedFile("file"), regularFile(path("file"), content.first(size))) << size;
    }
}

TEST_F(SettingsCaptureTest, FindsAMissingRoot) {
    folder_.write("file", "content");
    for (const char* name : {"none", "none/deeper", "file/below"}) {
        const auto snapshot = test::capture({path(name)});
        EXPECT_EQ(snapshot.files, QList{missing(path(name))});
        EXPECT_EQ(snapshot.rootPaths, QStringList{path(name)});
    }
}

TEST_F(SettingsCaptureTest, HasOneEntryForAnEmptyFolder) {
    EXPECT_EQ(captured().files, QList{directory(root_)});
}

TEST_F(SettingsCaptureTest, DescendsIntoFolders) {
    folder_.makeFolder("b/empty");
    folder_.write("b/c/d", "deep");
    folder_.write("b/.hidden", "hidden");
    folder_.write("a", "content");
    EXPECT_EQ(captured().files, (QList{directory(root_), regularFile(path("a"), "content"), directory(path("b")),
                                       regularFile(path("b/.hidden"), "hidden"), directory(path("b/c")),
                                       regularFile(path("b/c/d"), "deep"), directory(path("b/empty"))}));
}

TEST_F(SettingsCaptureTest, SortsByWholePathsAndUnicodeScalars) {
    const QStringList names{
        QStringLiteral("B"),    QStringLiteral("a"),       QStringLiteral("a\n"),   QStringLiteral("a b"),
        QStringLiteral("a!"),   QStringLiteral("a\""),     QStringLiteral("a%20"),  QStringLiteral("a'"),
        QStringLiteral("a-"),   QStringLiteral("a/b"),     QStringLiteral("a\\"),   QStringLiteral("~"),
        QString::fromUtf8("é"), QString::fromUtf8("卷布"), QString::fromUtf8("（"), QString::fromUtf8("\U0001F600")};
    QStringList expected{root_};
    for (const QString& name : names) {
        if (name != u"a") { // the folder above "a/b"
            folder_.write(name.toUtf8().constData(), "content");
        }
        expected.append(path(name.toUtf8().constData()));
    }
    QStringList found;
    for (const ProtectedSettingsFile& file : captured().files) {
        found.append(file.path);
        EXPECT_TRUE(file.isVerifiable()) << file.path.toStdString();
    }
    EXPECT_EQ(found, expected);
}

TEST_F(SettingsCaptureTest, TellsTheTimeOfItsEnd) {
    makeEndless("big");
    platform::Timestamp cut;
    const platform::Timestamp start = platform::Timestamp::now();
    const auto snapshot = [&] {
        const OnceOpen meanwhile(path("big"), [&] {
            cut = platform::Timestamp::now();
            EXPECT_EQ(::truncate(native("big").constData(), 0), 0);
        });
        return captured();
    }();
    EXPECT_GT(cut.secondsSince2001, start.secondsSince2001);
    EXPECT_GE(snapshot.timestamp.secondsSince2001, cut.secondsSince2001);
    EXPECT_LE(snapshot.timestamp.secondsSince2001, platform::Timestamp::now().secondsSince2001);
}

TEST_F(SettingsCaptureTest, WritesNothing) {
    folder_.write("a/b", "content");
    folder_.makeFolder("empty");
    folder_.link("a/b", "link");
    ASSERT_EQ(::mkfifo(native("fifo").constData(), 0600), 0);
    const QByteArrayList before = stateOfTree(root_);
    const auto first = captured();
    const auto second = captured();
    EXPECT_EQ(first.files, second.files);
    EXPECT_EQ(first.files.size(), 6);
    EXPECT_EQ(stateOfTree(root_), before);
}

// Links

TEST_F(SettingsCaptureTest, RecordsTheTargetOfALink) {
    folder_.link("there", "link");
    EXPECT_EQ(capturedFile("link"),
              (ProtectedSettingsFile{
                  .path = path("link"),
                  .status = test::Status::symbolicLink,
                  .sha256 = test::sha256("there"),
                  .diagnostic = QStringLiteral("The link target was recorded without following it. This path cannot be "
                                               "confirmed unchanged.")}));
    const test::InChinese inChinese;
    EXPECT_EQ(capturedFile("link").diagnostic,
              QString::fromUtf8("已记录链接目标，但未跟随链接，无法确认此路径没有变化。"));
}

TEST_F(SettingsCaptureTest, NeverFollowsALink) {
    const QByteArray behind = outside_.write("behind/file", "secret").toUtf8();
    outside_.write("behind/file2", "secret");
    const QByteArray folderBehind = outside_.path("behind").toUtf8();
    const QByteArray deep(4095, 'x');
    folder_.link(behind.constData(), "file");
    folder_.link(folderBehind.constData(), "folder");
    folder_.link("nowhere", "dangling");
    folder_.link("loop", "loop");
    folder_.link(".", "self");
    folder_.link("卷 布\n", "text");
    folder_.link(deep.constData(), "long");
    test::AccessWatch watch;
    watch.add(behind);
    watch.add(folderBehind);
    EXPECT_EQ(captured().files, (QList{directory(root_), symbolicLink(path("dangling"), "nowhere"),
                                       symbolicLink(path("file"), behind), symbolicLink(path("folder"), folderBehind),
                                       symbolicLink(path("long"), deep), symbolicLink(path("loop"), "loop"),
                                       symbolicLink(path("self"), "."), symbolicLink(path("text"), "卷 布\n")}));
    EXPECT_EQ(watch.accessed(), QByteArrayList());
}

TEST_F(SettingsCaptureTest, NeverFollowsALinkThatIsARoot) {
    outside_.write("behind/file", "secret");
    const QByteArray behind = outside_.path("behind").toUtf8();
    folder_.link(behind.constData(), "link");
    for (const char* name : {"link", "link/", "link/."}) {
        EXPECT_EQ(test::capture({path(name)}).files, QList{symbolicLink(path("link"), behind)});
    }
}

TEST_F(SettingsCaptureTest, HashesTheBytesOfATargetThatIsNoText) {
    folder_.link("\xff\xfe", "link");
    EXPECT_EQ(capturedFile("link"), symbolicLink(path("link"), "\xff\xfe"));
}

TEST_F(SettingsCaptureTest, CannotReadARootBehindALoop) {
    folder_.link("loop", "loop");
    folder_.link("nowhere", "dangling");
    EXPECT_EQ(capturedFile("loop/file"),
              unreadable(path("loop/file"), path("loop/file") + QStringLiteral(": Too many levels of symbolic links")));
    EXPECT_EQ(capturedFile("dangling/file"), missing(path("dangling/file")));
}

// What is never opened

TEST_F(SettingsCaptureTest, NeverOpensAnythingButFilesAndFolders) {
    ASSERT_EQ(::mkfifo(native("fifo").constData(), 0600), 0);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);

    struct sockaddr_un address {};

    address.sun_family = AF_UNIX;
    const QByteArray name = native("socket");
    ASSERT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
    std::copy(name.cbegin(), name.cend(), address.sun_path);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const struct sockaddr*>(&address), sizeof address), 0);

    test::AccessWatch watch;
    watch.add(native("fifo"));
    watch.add(native("socket"));
    EXPECT_EQ(captured().files, (QList{directory(root_), unsupported(path("fifo")), unsupported(path("socket"))}));
    EXPECT_EQ(capturedFile("fifo"), unsupported(path("fifo"))) << "nor as a root";
    EXPECT_EQ(watch.accessed(), QByteArrayList());
    ::close(socket);

    const int writer = ::open(native("fifo").constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(writer, -1) << "nobody reads it";
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(SettingsCaptureTest, IsSeenByTheWatchWhenItOpensAFile) {
    folder_.write("file", "content");
    test::AccessWatch watch;
    watch.add(native("file"));
    EXPECT_EQ(capturedFile("file"), regularFile(path("file"), "content"));
    EXPECT_TRUE(watch.accessed().contains(native("file")));
}

TEST_F(SettingsCaptureTest, NeverOpensADevice) {
    const QString null = QStringLiteral("/dev/null");
    EXPECT_EQ(test::capture({null}).files, QList{unsupported(null)});
    if (::mknod(native("node").constData(), S_IFCHR | 0600, makedev(1, 3)) != 0) {
        EXPECT_NE(::geteuid(), 0U) << "only the superuser makes devices";
        return;
    }
    test::AccessWatch watch;
    watch.add(native("node"));
    EXPECT_EQ(capturedFile("node"), unsupported(path("node")));
    EXPECT_EQ(watch.accessed(), QByteArrayList());
}

TEST_F(SettingsCaptureTest, ExplainsInChineseToo) {
    ASSERT_EQ(::mkfifo(native("fifo").constData(), 0600), 0);
    const test::InChinese inChinese;
    EXPECT_EQ(capturedFile("fifo").diagnostic, QString::fromUtf8("这不是普通文件或文件夹，未读取其内容。"));
}

// Names that are no text

TEST_F(SettingsCaptureTest, ReadsAFileWhoseNameIsNoText) {
    writeNative("a\xff", "content");
    ASSERT_EQ(::mkdir(native("b\xff").constData(), 0700), 0);
    writeNative("b\xff/c", "inner");
    EXPECT_EQ(captured().files, (QList{directory(root_), regularFile(path("a\uFFFD"), "content"),
                                       directory(path("b\uFFFD")), regularFile(path("b\uFFFD/c"), "inner")}));
}

TEST_F(SettingsCaptureTest, CannotTellNamesApartThatLookTheSame) {
    writeNative("a\xfe", "one");
    writeNative("a\xff", "another");
    writeNative("b", "plain");
    const auto snapshot = captured();
    ASSERT_EQ(snapshot.files.size(), 3);
    const auto entry = entryOf(snapshot, path("a\uFFFD"));
    EXPECT_EQ(entry.status, test::Status::unreadable);
    EXPECT_EQ(entry.sha256, std::nullopt);
    EXPECT_FALSE(entry.diagnostic.value_or(QString()).isEmpty());
    EXPECT_EQ(entryOf(snapshot, path("b")), regularFile(path("b"), "plain"));
    EXPECT_EQ(SettingsPreservationService::compare(snapshot, snapshot).unverifiablePaths, QStringList{path("a\uFFFD")});
    EXPECT_EQ(test::capture({root_, root_}).files, snapshot.files) << "a second look knows no more";
}

TEST_F(SettingsCaptureTest, CannotTellNamesApartThatLookTheSameThoughOneOfThemIsARoot) {
    writeNative("a\xEF\xBF\xBD", "text");
    writeNative("a\xff", "no text");
    const auto snapshot = test::capture({root_, path("a\uFFFD")});
    EXPECT_EQ(entryOf(snapshot, path("a\uFFFD")).status, test::Status::unreadable);
}

TEST_F(SettingsCaptureTest, CannotReadARootThatTheSystemWouldCutShort) {
    const QString root = path("a") + QChar(QChar::Null) + u'b';
    const auto snapshot = test::capture({root});
    EXPECT_EQ(entryOf(snapshot, root).status, test::Status::unreadable);
    EXPECT_EQ(SettingsPreservationService::compare(snapshot, snapshot).unverifiablePaths, QStringList{root});
}

TEST_F(SettingsCaptureTest, CannotTellANameThatIsNoTextFromTheTextThatItIsShownAs) {
    writeNative("a\uFFFD", "text");
    writeNative("a\xff", "none");
    EXPECT_EQ(entryOf(captured(), path("a\uFFFD")).status, test::Status::unreadable);
}

TEST_F(SettingsCaptureTest, CannotTellFoldersApartThatLookTheSame) {
    ASSERT_EQ(::mkdir(native("d\xfe").constData(), 0700), 0);
    ASSERT_EQ(::mkdir(native("d\xff").constData(), 0700), 0);
    writeNative("d\xfe/both", "one");
    writeNative("d\xff/both", "one");
    writeNative("d\xff/single", "single");
    const auto snapshot = captured();
    EXPECT_EQ(entryOf(snapshot, path("d\uFFFD")).status, test::Status::unreadable);
    EXPECT_EQ(entryOf(snapshot, path("d\uFFFD/both")).status, test::Status::unreadable);
    EXPECT_EQ(entryOf(snapshot, path("d\uFFFD/single")), regularFile(path("d\uFFFD/single"), "single"));
    EXPECT_EQ(snapshot.files.size(), 4);
}

// Long paths

TEST_F(SettingsCaptureTest, DescendsWithoutALimitOfDepth) {
    constexpr int depth = 1800;
    QByteArray name = "d";
    int folder = ::open(root_.toUtf8().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QString deepest = root_;
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(folder, "d", 0700), 0);
        const int next = ::openat(folder, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
        deepest += QStringLiteral("/d");
    }
    ::close(folder);
    const auto snapshot = captured();
    EXPECT_EQ(snapshot.files.size(), depth + 1);
    EXPECT_EQ(snapshot.files.last(), directory(deepest));
}

TEST_F(SettingsCaptureTest, CannotReadAPathThatIsLongerThanTheSystemAllows) {
    // What counts is the part below the folder of the root, and a slash between.
    const qsizetype longestPath = QFileInfo(root_).path().size() + 1 + (PATH_MAX - 1);
    constexpr qsizetype nameSize = 200;
    const QByteArray name(nameSize, 'd');
    QByteArray deepest = root_.toUtf8();
    int folder = ::open(deepest.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (deepest.size() + nameSize < longestPath) {
        ASSERT_EQ(::mkdirat(folder, name.constData(), 0700), 0);
        const int next = ::openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
        deepest += '/' + name;
    }
    ASSERT_LT(deepest.size() + 1, longestPath);
    const QByteArray fitting = QByteArray(longestPath - deepest.size() - 1, 'e');
    const QByteArray tooLong = fitting + 'f';
    ASSERT_EQ(::mkdirat(folder, fitting.constData(), 0700), 0);
    const int inner = ::openat(folder, fitting.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::close(::openat(inner, "x", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ::close(::openat(folder, tooLong.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ::close(inner);
    ::close(folder);

    const auto snapshot = captured();
    const QString fits = QString::fromUtf8(deepest + '/' + fitting);
    EXPECT_EQ(entryOf(snapshot, fits), directory(fits));
    for (const QString& beyond : {fits + QStringLiteral("/x"), fits + u'f'}) {
        EXPECT_EQ(entryOf(snapshot, beyond), unreadable(beyond, beyond + QStringLiteral(": File name too long")));
    }
}

TEST_F(SettingsCaptureTest, CannotReadANameThatIsLongerThanTheSystemAllows) {
    const QString root = folder_.path() + u'/' + QString(256, u'n');
    EXPECT_EQ(test::capture({root}).files, QList{unreadable(root, root + QStringLiteral(": File name too long"))});
}

TEST_F(SettingsCaptureTest, ReadsTheRootOfTheFileSystem) {
    folder_.write("a/b", "content");
    const QByteArray answer = inChildProcess([&]() -> QByteArray {
        const QByteArray root = root_.toUtf8();
        // Only the superuser, of his own namespace at least, can have a root of his own.
        if (::chroot(root.constData()) != 0 && (::unshare(CLONE_NEWUSER) != 0 || ::chroot(root.constData()) != 0)) {
            return "no root";
        }
        QByteArrayList paths;
        for (const ProtectedSettingsFile& file : test::capture({QStringLiteral("/..")}).files) {
            paths.append(file.path.toUtf8());
        }
        return paths.join(' ');
    });
    EXPECT_EQ(answer, "/ /a /a/b");
}

// What changes meanwhile

TEST_F(SettingsCaptureTest, DetectsAFileThatIsCut) {
    makeEndless("big");
    const OnceOpen meanwhile(path("big"), [&] { EXPECT_EQ(::truncate(native("big").constData(), 5), 0); });
    EXPECT_EQ(captured().files, (QList{directory(root_), unreadable(path("big"), fileChanged)}));
}

TEST_F(SettingsCaptureTest, DetectsAFileOfAnotherSizeEvenIfItsTimeStaysTheSame) {
    constexpr qint64 size = 512 * mebibyte; // takes far longer to read than the change takes
    const auto setTime = [&] {
        const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                          {.tv_sec = 1'700'000'000, .tv_nsec = 5}};
        EXPECT_EQ(::utimensat(AT_FDCWD, native("big").constData(), times, 0), 0);
    };
    for (const qint64 later : {size - 1, size + 1}) {
        folder_.makeSparse("big", size);
        setTime();
        const OnceOpen meanwhile(path("big"), [&] {
            EXPECT_EQ(::truncate(native("big").constData(), later), 0);
            setTime();
        });
        EXPECT_EQ(capturedFile("big"), unreadable(path("big"), fileChanged));
    }
}

TEST_F(SettingsCaptureTest, DetectsAFileThatIsReplacedByOneOfTheSameSizeContentAndTime) {
    makeEndless("big");
    keep("big");
    const QByteArray spare = outside_.makeSparse("spare", endless).toUtf8();
    const struct timespec times[2] = {{.tv_sec = 1'700'000'000, .tv_nsec = 5}, {.tv_sec = 1'700'000'000, .tv_nsec = 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, native("big").constData(), times, 0), 0);
    ASSERT_EQ(::utimensat(AT_FDCWD, spare.constData(), times, 0), 0);
    const OnceOpen meanwhile(path("big"), [&] {
        EXPECT_EQ(::rename(spare.constData(), native("big").constData()), 0);
        cutKept();
    });
    EXPECT_EQ(captured().files, (QList{directory(root_), unreadable(path("big"), fileChanged)}));
}

TEST_F(SettingsCaptureTest, DetectsAFileThatIsReplacedByAnotherKindOfItem) {
    const auto makeFolder = [](const char* name) { return ::mkdir(name, 0700); };
    const auto makeLink = [](const char* name) { return ::symlink("nowhere", name); };
    const auto makeFifo = [](const char* name) { return ::mkfifo(name, 0600); };
    for (int (*make)(const char*) : {+makeFolder, +makeLink, +makeFifo}) {
        makeEndless("big");
        keep("big");
        const OnceOpen meanwhile(path("big"), [&] {
            EXPECT_EQ(::unlink(native("big").constData()), 0);
            EXPECT_EQ(make(native("big").constData()), 0);
            cutKept();
        });
        EXPECT_EQ(captured().files, (QList{directory(root_), unreadable(path("big"), fileChanged)}));
        std::filesystem::remove(native("big").toStdString());
        ASSERT_EQ(::unlink(kept().constData()), 0);
    }
}

TEST_F(SettingsCaptureTest, FindsAFileMissingThatIsRemovedWhileItIsRead) {
    makeEndless("big");
    keep("big");
    const OnceOpen meanwhile(path("big"), [&] {
        EXPECT_EQ(::unlink(native("big").constData()), 0);
        cutKept();
    });
    EXPECT_EQ(captured().files, (QList{unreadable(root_, folderChanged), missing(path("big"))}));
}

/// Changes a file over and over while it is captured.
class SettingsCaptureOfABusyFile : public SettingsCaptureTest {
protected:
    ProtectedSettingsFile capturedDuring(const std::function<int(const QByteArray& path, int round)>& change) const {
        constexpr qint64 size = 256 * mebibyte;
        folder_.makeSparse("big", size);
        std::atomic<int> rounds = 0;
        const std::jthread busy([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                EXPECT_EQ(change(native("big"), rounds), 0);
                ++rounds;
            }
        });
        while (rounds == 0) {
            std::this_thread::yield();
        }
        return capturedFile("big");
    }
};

TEST_F(SettingsCaptureOfABusyFile, DetectsAFileThatIsTouched) {
    EXPECT_EQ(capturedDuring([](const QByteArray& path, int round) {
                  const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                                    {.tv_sec = 1'700'000'000 + round, .tv_nsec = 0}};
                  return ::utimensat(AT_FDCWD, path.constData(), times, 0);
              }),
              unreadable(path("big"), fileChanged));
}

TEST_F(SettingsCaptureOfABusyFile, DetectsAFileThatIsTouchedByANanosecond) {
    EXPECT_EQ(capturedDuring([](const QByteArray& path, int round) {
                  const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                                    {.tv_sec = 1'700'000'000, .tv_nsec = round % 1'000'000'000}};
                  return ::utimensat(AT_FDCWD, path.constData(), times, 0);
              }),
              unreadable(path("big"), fileChanged));
}

TEST_F(SettingsCaptureOfABusyFile, ReadsAFileWhosePermissionsChange) {
    EXPECT_EQ(capturedDuring([](const QByteArray& path, int round) {
                  return ::chmod(path.constData(), round % 2 == 0 ? 0600 : 0640);
              }),
              (ProtectedSettingsFile{
                  .path = path("big"),
                  .status = test::Status::regularFile,
                  .sha256 = QStringLiteral("a6d72ac7690f53be6ae46ba88506bd97302a093f7108472bd9efc3cefda06484")}))
        << "neither size nor file nor time of its content changes";
}

TEST_F(SettingsCaptureTest, DetectsAFolderThatGetsAnEntry) {
    makeEndless("a/big");
    folder_.write("a/z", "last");
    const OnceOpen meanwhile(path("a/big"), [&] {
        folder_.write("a/new", "new");
        EXPECT_EQ(::truncate(native("a/big").constData(), 0), 0);
    });
    EXPECT_EQ(captured().files, (QList{directory(root_), unreadable(path("a"), folderChanged),
                                       unreadable(path("a/big"), fileChanged), regularFile(path("a/z"), "last")}))
        << "what was there at first is looked at";
}

TEST_F(SettingsCaptureTest, DetectsAFolderThatLosesAnEntry) {
    makeEndless("a/big");
    folder_.write("a/z", "last");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::unlink(native("a/z").constData()), 0);
        EXPECT_EQ(::truncate(native("a/big").constData(), 0), 0);
    });
    EXPECT_EQ(captured().files, (QList{directory(root_), unreadable(path("a"), folderChanged),
                                       unreadable(path("a/big"), fileChanged), missing(path("a/z"))}));
}

TEST_F(SettingsCaptureTest, DetectsAFolderInWhichAnEntryGetsAnotherName) {
    makeEndless("a/big");
    folder_.write("a/z", "last");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::rename(native("a/z").constData(), native("a/y").constData()), 0);
        EXPECT_EQ(::truncate(native("a/big").constData(), 0), 0);
    });
    EXPECT_EQ(entryOf(captured(), path("a")), unreadable(path("a"), folderChanged));
}

TEST_F(SettingsCaptureTest, GoesByTheNamesInAFolderAlone) {
    makeEndless("a/big");
    folder_.write("a/z", "old");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::unlink(native("a/z").constData()), 0);
        folder_.write("a/z", "new");
        EXPECT_EQ(::truncate(native("a/big").constData(), 0), 0);
    });
    const auto snapshot = captured();
    EXPECT_EQ(entryOf(snapshot, path("a")), directory(path("a")));
    EXPECT_EQ(entryOf(snapshot, path("a/z")), regularFile(path("a/z"), "new"));
}

TEST_F(SettingsCaptureTest, FindsAFolderMissingThatIsRemovedWhileItIsRead) {
    makeEndless("a/big");
    keep("a/big");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::rename(native("a").constData(), outside_.native("a").constData()), 0);
        cutKept();
    });
    EXPECT_EQ(captured().files, (QList{unreadable(root_, folderChanged), missing(path("a")), missing(path("a/big"))}));
}

TEST_F(SettingsCaptureTest, FollowsNoLinkThatComesInThePlaceOfAFolder) {
    makeEndless("a/big");
    folder_.write("a/z", "private");
    keep("a/big");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::rename(native("a").constData(), outside_.native("a").constData()), 0);
        EXPECT_EQ(::symlink(outside_.native("a").constData(), native("a").constData()), 0);
        cutKept();
    });
    const QString words = QStringLiteral(": Too many levels of symbolic links");
    EXPECT_EQ(captured().files,
              (QList{directory(root_), unreadable(path("a"), folderChanged),
                     unreadable(path("a/big"), path("a/big") + words), unreadable(path("a/z"), path("a/z") + words)}));
}

TEST_F(SettingsCaptureTest, DetectsAFolderInWhosePlaceAnotherOfTheSameNamesComes) {
    makeEndless("a/big");
    keep("a/big");
    outside_.write("b/big", "content");
    const OnceOpen meanwhile(path("a/big"), [&] {
        EXPECT_EQ(::rename(native("a").constData(), outside_.native("a").constData()), 0);
        EXPECT_EQ(::rename(outside_.native("b").constData(), native("a").constData()), 0);
        cutKept();
    });
    EXPECT_EQ(entryOf(captured(), path("a")), unreadable(path("a"), folderChanged));
}

TEST_F(SettingsCaptureTest, CannotReadAFolderThatIsClosedMeanwhile) {
    makeEndless("a/big");
    keep("a/big");
    ASSERT_EQ(::chmod(kept().constData(), 0666), 0);
    folder_.setMode("", 0755);
    folder_.setMode("a", 0755);
    outside_.setMode("", 0755);
    const QByteArray answer = inChildProcess([&]() -> QByteArray {
        // The folder belongs to whoever reads it, so that he can close it.
        if (::geteuid() == 0 && ::chown(native("a").constData(), 65534, 65534) != 0) {
            return "no owner";
        }
        if (!becomeOrdinaryUser()) {
            return "still root";
        }
        const OnceOpen meanwhile(path("a/big"), [&] {
            EXPECT_EQ(::chmod(native("a").constData(), 0), 0);
            cutKept();
        });
        const auto entry = entryOf(captured(), path("a"));
        return entry == unreadable(path("a"), path("a") + QStringLiteral(": Permission denied")) ? "as it should"
                                                                                                 : "otherwise";
    });
    EXPECT_EQ(answer, "as it should");
    folder_.setMode("a", 0700);
}

TEST_F(SettingsCaptureTest, AsksForAnotherCheckInChineseToo) {
    makeEndless("a/big");
    const OnceOpen meanwhile(path("a/big"), [&] {
        folder_.write("a/new", "new");
        EXPECT_EQ(::truncate(native("a/big").constData(), 0), 0);
    });
    const test::InChinese inChinese;
    EXPECT_EQ(
        captured().files,
        (QList{directory(root_), unreadable(path("a"), QString::fromUtf8("读取期间文件夹发生了变化，请重新检查。")),
               unreadable(path("a/big"), QString::fromUtf8("读取期间文件发生了变化，请重新检查。"))}));
}

// A stop request

TEST_F(SettingsCaptureTest, StopsSoonInTheMiddleOfALargeFile) {
    makeEndless("big");
    std::stop_source stop;
    steady_clock::time_point asked;
    {
        const OnceOpen meanwhile(path("big"), [&] {
            asked = steady_clock::now();
            stop.request_stop();
        });
        EXPECT_THROW(
            static_cast<void>(SettingsPreservationService::capture({QUrl::fromLocalFile(root_)}, stop.get_token())),
            platform::Interrupted);
    }
    EXPECT_LT(steady_clock::now() - asked, std::chrono::seconds(2)); // a busy machine has time to spare
    EXPECT_FALSE(test::hasOpen(QStringLiteral("self"), path("big")));
}

TEST_F(SettingsCaptureTest, ReadsNothingOnceAStopIsRequested) {
    folder_.write("file", "content");
    test::AccessWatch watch;
    watch.add(native("file"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(
        static_cast<void>(SettingsPreservationService::capture({QUrl::fromLocalFile(path("file"))}, stop.get_token())),
        platform::Interrupted);
    EXPECT_EQ(watch.accessed(), QByteArrayList());
}

// Permissions

class SettingsCaptureWithoutPermission : public SettingsCaptureTest {
protected:
    void SetUp() override { folder_.setMode("", 0755); }

    /// The entries that an ordinary user gets, as JSON.
    QByteArray capturedByOrdinaryUser(const QString& root) const {
        return inChildProcess(
            [&] { return becomeOrdinaryUser() ? jsonOf(test::capture({root}).files) : "still root"; });
    }

    static QByteArray jsonOf(const QList<ProtectedSettingsFile>& files) {
        QByteArray lines;
        for (const ProtectedSettingsFile& file : files) {
            lines += QJsonDocument(file.toJson()).toJson(QJsonDocument::Compact) + '\n';
        }
        return lines;
    }

    ProtectedSettingsFile denied(const char* name) const {
        return unreadable(path(name), path(name) + QStringLiteral(": Permission denied"));
    }
};

TEST_F(SettingsCaptureWithoutPermission, TellsTheSystemsWordsForAFileAndAFolder) {
    folder_.write("file", "secret");
    folder_.write("folder/inner", "secret");
    folder_.write("open", "content");
    folder_.setMode("file", 0);
    folder_.setMode("folder", 0);
    const QByteArray found = capturedByOrdinaryUser(root_);
    const QByteArray below = capturedByOrdinaryUser(path("folder/inner"));
    const QByteArray absent = capturedByOrdinaryUser(path("folder/absent"));
    folder_.setMode("folder", 0700);
    EXPECT_EQ(found,
              jsonOf({directory(root_), denied("file"), denied("folder"), regularFile(path("open"), "content")}));
    EXPECT_EQ(below, jsonOf({denied("folder/inner")}));
    EXPECT_EQ(absent, jsonOf({denied("folder/absent")})) << "nobody can say that it is missing";
}

TEST_F(SettingsCaptureWithoutPermission, ListsAFolderThatMayNotBeEntered) {
    folder_.write("folder/inner", "secret");
    folder_.setMode("folder", 0444);
    const QByteArray found = capturedByOrdinaryUser(path("folder"));
    folder_.setMode("folder", 0700);
    EXPECT_EQ(found, jsonOf({directory(path("folder")), denied("folder/inner")}));
}

TEST_F(SettingsCaptureWithoutPermission, EntersAFolderThatMayNotBeListed) {
    const QString inner = folder_.write("folder/inner", "content");
    folder_.setMode("folder/inner", 0644);
    folder_.setMode("folder", 0111);
    const QByteArray found = capturedByOrdinaryUser(path("folder"));
    const QByteArray below = capturedByOrdinaryUser(path("folder/inner"));
    folder_.setMode("folder", 0700);
    EXPECT_EQ(found, jsonOf({denied("folder")}));
    EXPECT_EQ(below, jsonOf({regularFile(path("folder/inner"), "content")}));
}

TEST_F(SettingsCaptureWithoutPermission, ListsUnreadablePathsAsUnverifiable) {
    folder_.write("file", "secret");
    folder_.setMode("file", 0);
    const QByteArray paths = inChildProcess([&]() -> QByteArray {
        if (!becomeOrdinaryUser()) {
            return "still root";
        }
        const auto snapshot = captured();
        return SettingsPreservationService::compare(snapshot, snapshot).unverifiablePaths.join(u' ').toUtf8();
    });
    EXPECT_EQ(paths, path("file").toUtf8());
}

// Memory

class SettingsCaptureMemory : public SettingsCaptureTest {
protected:
    /// By how many KiB a capture makes the peak of memory higher than one of nothing does; the count of its entries;
    /// the hash of the last one.
    QByteArrayList growthCountAndHash() const {
        return inChildProcess([&] {
                   static_cast<void>(test::capture({}));
                   const qint64 before = peakKiB();
                   const auto files = captured().files;
                   return QByteArrayList{QByteArray::number(peakKiB() - before), QByteArray::number(files.size()),
                                         files.last().sha256.value_or(QString()).toLatin1()}
                       .join(' ');
               })
            .split(' ');
    }

#if defined(__SANITIZE_ADDRESS__)
    static constexpr qint64 share = 4; ///< the sanitizer holds back what has been freed
#else
    static constexpr qint64 share = 1;
#endif

private:
    static qint64 peakKiB() {
        const QByteArray key = "VmHWM:";
        for (const QByteArray& line : test::TemporaryFolder::read(QStringLiteral("/proc/self/status")).split('\n')) {
            if (line.startsWith(key)) {
                return line.mid(key.size()).simplified().split(' ').first().toLongLong();
            }
        }
        throw std::runtime_error("the system does not tell the peak of memory");
    }
};

TEST_F(SettingsCaptureMemory, DoesNotGrowWithTheSizeOfAFile) {
    folder_.makeSparse("big", 4096 * mebibyte);
    const QByteArrayList figures = growthCountAndHash();
    ASSERT_EQ(figures.size(), 3);
    RecordProperty("growthKiB", figures[0].toInt());
    EXPECT_LE(figures[0].toLongLong(), share * 8 * 1024);
    EXPECT_EQ(figures[1], "2");
    EXPECT_EQ(figures[2], "8479e43911dc45e89f934fe48d01297e16f51d17aa561d4d1c216b1ae0fcddca");
}

TEST_F(SettingsCaptureMemory, IsBoundedForALargeTree) {
    constexpr int folders = 100;
    constexpr int filesEach = 200;
    for (int folder = 0; folder < folders; ++folder) {
        const QByteArray name = "folder" + QByteArray::number(folder);
        ASSERT_EQ(::mkdir(native(name).constData(), 0700), 0);
        for (int file = 0; file < filesEach; ++file) {
            writeNative(name + "/file" + QByteArray::number(file), name);
        }
    }
    const QByteArrayList figures = growthCountAndHash();
    ASSERT_EQ(figures.size(), 3);
    RecordProperty("growthKiB", figures[0].toInt());
    EXPECT_LE(figures[0].toLongLong(), share * 48 * 1024);
    EXPECT_EQ(figures[1].toInt(), 1 + folders + folders * filesEach);
}

} // namespace orvex
