#include "Files/LinkFreeView.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <filesystem>

namespace orvex::platform {

namespace {

using test::becomeOrdinaryUser;
using test::inChildProcess;

ItemFacts facts(const QByteArray& path) {
    return LinkFreeView(path).facts(path);
}

QByteArrayList entries(const QByteArray& path) {
    return LinkFreeView(path).entries(path);
}

QByteArray linkTarget(const QByteArray& path) {
    return LinkFreeView(path).linkTarget(path);
}

/// The code of the failure; 0 if there was none.
template <typename Reading>
int failureOf(const Reading& reading) {
    try {
        static_cast<void>(reading());
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

void setModified(const QByteArray& path, time_t seconds, long nanoseconds) {
    const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                      {.tv_sec = seconds, .tv_nsec = nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW), 0);
}

class LinkFreeViewTest : public ::testing::Test {
protected:
    QByteArray path(const QByteArray& name) const { return folder_.path().toUtf8() + '/' + name; }

    QByteArray write(const QByteArray& name, const QByteArray& content = {}) const {
        const QByteArray file = path(name);
        const int descriptor = ::open(file.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        EXPECT_EQ(::write(descriptor, content.constData(), static_cast<std::size_t>(content.size())), content.size());
        ::close(descriptor);
        return file;
    }

    QByteArray makeFolder(const QByteArray& name) const {
        EXPECT_EQ(::mkdir(path(name).constData(), 0700), 0);
        return path(name);
    }

    QByteArray link(const QByteArray& target, const QByteArray& name) const {
        EXPECT_EQ(::symlink(target.constData(), path(name).constData()), 0);
        return path(name);
    }

    void TearDown() override {
        for (const auto& item : std::filesystem::directory_iterator(folder_.path().toStdString())) {
            std::filesystem::remove_all(item); // Qt leaves what has a name that is no text
        }
    }

    test::TemporaryFolder folder_;
};

} // namespace

// Facts

TEST_F(LinkFreeViewTest, TellsTheKindOfAnItem) {
    ASSERT_EQ(::mkfifo(path("fifo").constData(), 0600), 0);
    EXPECT_EQ(facts(write("file")).kind, ItemKind::regularFile);
    EXPECT_EQ(facts(makeFolder("folder")).kind, ItemKind::directory);
    EXPECT_EQ(facts(path("fifo")).kind, ItemKind::other);
    EXPECT_EQ(facts("/dev/null").kind, ItemKind::other);
    EXPECT_EQ(facts("/").kind, ItemKind::directory);
}

TEST_F(LinkFreeViewTest, TellsASocket) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);

    struct sockaddr_un address {};

    address.sun_family = AF_UNIX;
    const QByteArray name = path("socket");
    ASSERT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
    std::copy(name.cbegin(), name.cend(), address.sun_path);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const struct sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(facts(name).kind, ItemKind::other);
    ::close(socket);
}

TEST_F(LinkFreeViewTest, LooksAtALinkItself) {
    write("file", "12345");
    makeFolder("folder");
    for (const QByteArray target : {"file", "folder", "nowhere", "link"}) {
        const QByteArray name = link(target, "link");
        EXPECT_EQ(facts(name).kind, ItemKind::symbolicLink) << target.constData();
        EXPECT_EQ(facts(name).sizeBytes, target.size());
        ASSERT_EQ(::unlink(name.constData()), 0);
    }
}

TEST_F(LinkFreeViewTest, TellsSizeAndTime) {
    const QByteArray file = write("file", "12345");
    setModified(file, 1'700'000'000, 123'456'789);
    EXPECT_EQ(facts(file).sizeBytes, 5);
    EXPECT_EQ(facts(file).modifiedNanoseconds, 1'700'000'000'123'456'789);
    setModified(file, -2, 500'000'000);
    EXPECT_EQ(facts(file).modifiedNanoseconds, -1'500'000'000) << "before 1970";
    ASSERT_EQ(::truncate(file.constData(), 5'000'000'000), 0);
    EXPECT_EQ(facts(file).sizeBytes, 5'000'000'000);
}

TEST_F(LinkFreeViewTest, TellsOneFileFromAnother) {
    const QByteArray first = write("first", "content");
    const QByteArray second = write("second", "content");
    ASSERT_EQ(::link(first.constData(), path("third").constData()), 0);
    for (const QByteArray& file : {first, second}) {
        setModified(file, 1'700'000'000, 0);
    }
    EXPECT_NE(facts(first), facts(second));
    EXPECT_EQ(facts(first), facts(path("third"))) << "two names of one file";
    EXPECT_EQ(facts(first), facts(first));
}

TEST_F(LinkFreeViewTest, HasNoFactsWhereThereIsNothing) {
    write("file");
    link("loop", "loop");
    link("nowhere", "dangling");
    const auto failureFor = [](const QByteArray& name) { return failureOf([&] { return facts(name); }); };
    EXPECT_EQ(failureFor(path("none")), ENOENT);
    EXPECT_EQ(failureFor(path("none/deeper")), ENOENT);
    EXPECT_EQ(failureFor(path("file/below")), ENOTDIR);
    EXPECT_EQ(failureFor(path("dangling/below")), ENOENT);
    EXPECT_EQ(failureFor(path("loop/below")), ELOOP);
    EXPECT_EQ(failureFor(path(QByteArray(256, 'n'))), ENAMETOOLONG);
    EXPECT_EQ(failureFor(QByteArray()), ENOENT);
}

TEST_F(LinkFreeViewTest, NamesThePathInItsFailures) {
    try {
        static_cast<void>(facts(path("a\xff")));
        FAIL();
    } catch (const FileSystemError& error) {
        EXPECT_EQ(error.message(),
                  folder_.path() + QString::fromUtf8("/a\uFFFD: ") + QStringLiteral("No such file or directory"));
    }
}

// Entries

TEST_F(LinkFreeViewTest, ListsNamesSortedByTheirBytes) {
    const QByteArrayList names{"\x01", " ",    "!",   "-",  "..a", ".hidden", "A",    "B",
                               "a",    "a\nb", "a b", "卷", "（",  "😀",       "\xfe", "\xff"};
    for (const QByteArray& name : names) {
        write(name);
    }
    EXPECT_EQ(entries(path("")), names);
    EXPECT_EQ(entries(folder_.path().toUtf8()), names);
}

TEST_F(LinkFreeViewTest, ListsItemsOfEveryKind) {
    ASSERT_EQ(::mkfifo(path("fifo").constData(), 0600), 0);
    write("file");
    makeFolder("folder");
    link("nowhere", "link");
    EXPECT_EQ(entries(path("")), (QByteArrayList{"fifo", "file", "folder", "link"}));
    EXPECT_EQ(entries(path("folder")), QByteArrayList());
}

TEST_F(LinkFreeViewTest, ListsMoreEntriesThanTheSystemGivesAtOnce) {
    constexpr int count = 3'000;
    QByteArrayList names;
    for (int index = 0; index < count; ++index) {
        const QByteArray name = QByteArray::number(index) + QByteArray(100, 'n');
        write(name);
        names.append(name);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(entries(path("")), names);
}

TEST_F(LinkFreeViewTest, ListsNothingButFolders) {
    write("file");
    makeFolder("folder");
    link("folder", "link");
    ASSERT_EQ(::mkfifo(path("fifo").constData(), 0600), 0);
    const auto failureFor = [](const QByteArray& name) { return failureOf([&] { return entries(name); }); };
    EXPECT_EQ(failureFor(path("none")), ENOENT);
    EXPECT_EQ(failureFor(path("file")), ENOTDIR);
    EXPECT_EQ(failureFor(path("fifo")), ENOTDIR);
    EXPECT_NE(failureFor(path("link")), 0) << "a link is not followed";
    EXPECT_EQ(failureFor(path("folder")), 0);
}

TEST_F(LinkFreeViewTest, ClosesWhatItLists) {
    makeFolder("folder");
    const auto openCount = [] { return QDir(QStringLiteral("/proc/self/fd")).count(); };
    const auto before = openCount();
    for (int round = 0; round < 10; ++round) {
        static_cast<void>(entries(path("folder")));
        static_cast<void>(failureOf([&] { return entries(path("none")); }));
    }
    EXPECT_EQ(openCount(), before);
}

TEST_F(LinkFreeViewTest, NeedsThePermissionToList) {
    makeFolder("closed");
    write("closed/file");
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path("closed").constData(), 0), 0);
    const QByteArray codes = inChildProcess([&]() -> QByteArray {
        return becomeOrdinaryUser() ? QByteArray::number(failureOf([&] { return entries(path("closed")); })) + ' ' +
                                          QByteArray::number(failureOf([&] { return facts(path("closed/file")); })) +
                                          ' ' + QByteArray::number(failureOf([&] { return facts(path("closed")); }))
                                    : QByteArray("still root");
    });
    ASSERT_EQ(::chmod(path("closed").constData(), 0700), 0);
    const QByteArray denied = QByteArray::number(EACCES);
    EXPECT_EQ(codes, denied + ' ' + denied + " 0");
}

// Targets

TEST_F(LinkFreeViewTest, ReadsTheTextOfALink) {
    for (const QByteArray& target : QByteArrayList{"file", "/", ".", "../a b\n", "卷", "\xff\xfe", QByteArray(59, 'x'),
                                                   QByteArray(60, 'x'), QByteArray(PATH_MAX - 1, 'x')}) {
        const QByteArray name = link(target, "link");
        EXPECT_EQ(linkTarget(name), target);
        ASSERT_EQ(::unlink(name.constData()), 0);
    }
}

TEST_F(LinkFreeViewTest, ReadsTheTextOfLinksAlone) {
    const auto failureFor = [](const QByteArray& name) { return failureOf([&] { return linkTarget(name); }); };
    EXPECT_EQ(failureFor(write("file")), EINVAL);
    EXPECT_EQ(failureFor(makeFolder("folder")), EINVAL);
    EXPECT_EQ(failureFor(path("none")), ENOENT);
}

} // namespace orvex::platform
