// Disks, folders and destinations that cannot take a file: the old content stays and the system's words say why, or the
// complete new file is there, and never anything else.

#include "ChildProcess.h"
#include "Files/FileReplacer.h"
#include "FolderContent.h"
#include "ForkedWork.h"
#include "OnPrivateMachine.h"
#include "PrivateDisk.h"
#include "SavedKinds.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <functional>

namespace orvex {
namespace {

using test::Outcome;
using test::PrivateDisk;
using test::SavedKind;
using test::TemporaryFolder;

using Content = QMap<QString, QByteArray>;

constexpr qint64 smallDiskBytes = 64 * 1024;
constexpr qint64 largerDiskBytes = 1024 * 1024;
constexpr qint64 onePageBytes = 4096; // what such a disk gives away at once

constexpr const char* isFull = ": No space left on device";
constexpr const char* isReadOnly = ": Read-only file system";
constexpr const char* isMissing = ": No such file or directory";
constexpr const char* isForbidden = ": Permission denied";
constexpr const char* isALink = "The file is missing, is not a regular file, or is a link: ";

/// Needs disks of its own; without the superuser's rights there are none.
class Disks : public test::OnPrivateMachine<> {};

/// Fills the disk of a folder but for so many bytes, in whole pages.
void fill(const QString& folder, qint64 bytesLeft) {
    QFile filler(folder + QStringLiteral("/filler"));
    ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(onePageBytes, 'f')) == onePageBytes) {
    }
    ASSERT_EQ(filler.error(), QFileDevice::ResourceError);
    ASSERT_TRUE(filler.resize(filler.size() - bytesLeft));
}

bool isProfile(const SavedKind& kind) {
    return std::string(kind.name) == "profile";
}

/// Presets and profiles must be files themselves.
bool refusesLinks(const SavedKind& kind) {
    return isProfile(kind) || std::string(kind.name) == "preset";
}

// Contents of any size, on disks of two sizes, of which more or less is free

struct Room {
    qint64 diskBytes;
    qint64 freeBytes; ///< besides the old file; -1 if nothing fills the disk
};

class Sizes : public Disks, public ::testing::WithParamInterface<std::tuple<Room, int>> {};

constexpr std::array rooms{Room{smallDiskBytes, 0},  Room{smallDiskBytes, onePageBytes},  Room{smallDiskBytes, -1},
                           Room{largerDiskBytes, 0}, Room{largerDiskBytes, onePageBytes}, Room{largerDiskBytes, -1}};

std::string nameOfRoom(const ::testing::TestParamInfo<std::tuple<Room, int>>& test) {
    const auto& [room, size] = test.param;
    return std::to_string(size) + "On" + std::to_string(room.diskBytes) +
           (room.freeBytes < 0 ? "Empty" : "Free" + std::to_string(room.freeBytes));
}

INSTANTIATE_TEST_SUITE_P(Contents, Sizes,
                         ::testing::Combine(::testing::ValuesIn(rooms), ::testing::Values(10, 5'000, 20'000, 200'000)),
                         nameOfRoom);

TEST_P(Sizes, areReplacedWholeOrNotAtAll) {
    const auto& [room, size] = GetParam();
    const TemporaryFolder folder;
    const PrivateDisk disk(folder.path(), room.diskBytes);
    const QString file = folder.write(QStringLiteral("file"), "old");
    if (room.freeBytes >= 0) {
        fill(folder.path(), room.freeBytes);
    }
    const qint64 freeBytes = room.freeBytes < 0 ? room.diskBytes - onePageBytes : room.freeBytes;
    const QByteArray content(size, 'n');
    const Outcome outcome = test::outcomeOf([&] { platform::FileReplacer::replace(file, content); });
    EXPECT_EQ(outcome.status, size <= freeBytes ? 0 : 1);
    EXPECT_EQ(outcome.message, size <= freeBytes ? QByteArray() : file.toUtf8() + isFull);
    EXPECT_EQ(TemporaryFolder::read(file), size <= freeBytes ? content : "old");
    EXPECT_EQ(test::temporariesIn(folder.path()), QStringList());
}

/// Each kind of file in a place that something is wrong with.
class Places : public Disks, public ::testing::WithParamInterface<SavedKind> {
protected:
    void SetUp() override {
        Disks::SetUp();
        ASSERT_EQ(::chmod(root_.path().toUtf8().constData(), 0755), 0);
        ASSERT_TRUE(QDir().mkpath(folder_));
    }

    static const SavedKind& kind() { return GetParam(); }

    /// The old states.
    void saveFirst() const {
        const mode_t mask = ::umask(022);
        test::save(kind(), folder_, 46);
        test::save(kind(), folder_, earlier_);
        ::umask(mask);
    }

    QString destination() const { return kind().file(folder_, number_); }

    /// The folder that the file is in.
    QString home() const { return QFileInfo(destination()).path(); }

    Outcome save() const {
        return test::outcomeOf([this] { test::save(kind(), folder_, number_); });
    }

    Outcome saveAsOrdinaryUser() const {
        return test::outcomeOf([this] {
            if (!test::becomeOrdinaryUser()) {
                throw std::runtime_error("still the superuser");
            }
            test::save(kind(), folder_, number_);
        });
    }

    /// Saving fails with words like these, and leaves all files as they are.
    void expectRefused(const std::function<Outcome()>& saving, const char* words) const {
        const Content before = test::contentOf(root_.path());
        const Outcome outcome = saving();
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.message.contains(words)) << outcome.message.constData();
        EXPECT_TRUE(test::contentOf(root_.path()) == before);
    }

    void expectRefused(const char* words) const {
        expectRefused([this] { return save(); }, words);
    }

    static void changeMode(const QString& path, mode_t mode) {
        ASSERT_EQ(::chmod(path.toUtf8().constData(), mode), 0) << path.toStdString();
    }

    void linkDestinationTo(const QString& target) const {
        QFile::remove(destination());
        ASSERT_EQ(::symlink(target.toUtf8().constData(), destination().toUtf8().constData()), 0);
    }

    /// A destination that is a link to something else than a regular file.
    void expectLinkRefused(const QString& target, const char* words,
                           const char* wordsIfLinksAreRefused = isALink) const {
        saveFirst();
        linkDestinationTo(target);
        expectRefused(refusesLinks(kind()) ? wordsIfLinksAreRefused : words);
        EXPECT_EQ(QFile::symLinkTarget(destination()), target);
    }

    // All of them have few records, so that there is room for two on a small disk.
    const int earlier_ = 100;
    const int number_ = 146;
    const TemporaryFolder root_;
    const QString folder_ = root_.path(QStringLiteral("store"));
};

INSTANTIATE_TEST_SUITE_P(Kinds, Places, ::testing::ValuesIn(test::savedKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(Places, thatAreFullKeepTheirFiles) {
    for (const qint64 size : {smallDiskBytes, largerDiskBytes}) {
        const PrivateDisk disk(folder_, size);
        saveFirst();
        fill(folder_, 0);
        expectRefused(isFull);
        EXPECT_EQ(kind().find(folder_).newest, earlier_);
        ASSERT_TRUE(QFile::remove(folder_ + QStringLiteral("/filler")));
        EXPECT_EQ(save().status, 0);
        EXPECT_EQ(kind().find(folder_).newest, number_);
    }
}

TEST_P(Places, withOnePageLeftTakeWhatFitsAndNoMore) {
    constexpr int large = 154;
    for (const int number : {number_, large}) {
        const PrivateDisk disk(folder_, largerDiskBytes);
        saveFirst();
        const Content before = test::contentOf(folder_);
        test::save(kind(), folder_, number);
        const qint64 sizeBytes = QFileInfo(kind().file(folder_, number)).size();
        ASSERT_TRUE(QFile::remove(kind().file(folder_, number)));
        const QString earlier = kind().file(folder_, earlier_);
        ASSERT_TRUE(before.contains(earlier));
        root_.write(QDir(root_.path()).relativeFilePath(earlier), before[earlier]);
        fill(folder_, onePageBytes);
        const Outcome outcome = test::outcomeOf([&] { test::save(kind(), folder_, number); });
        EXPECT_EQ(outcome.status, sizeBytes <= onePageBytes ? 0 : 1) << sizeBytes;
        EXPECT_EQ(outcome.message.contains(isFull), sizeBytes > onePageBytes) << outcome.message.constData();
        EXPECT_EQ(kind().find(folder_).newest, sizeBytes <= onePageBytes ? number : earlier_);
        EXPECT_EQ(test::temporariesIn(folder_), QStringList());
    }
}

TEST_P(Places, thatAreReadOnlyKeepTheirFiles) {
    const PrivateDisk disk(folder_, largerDiskBytes);
    saveFirst();
    disk.makeReadOnly();
    expectRefused(isReadOnly);
    EXPECT_EQ(kind().find(folder_).newest, earlier_);
}

TEST_P(Places, thatHaveVanishedStayAway) {
    saveFirst();
    const Outcome outcome = test::outcomeOf([this] {
        const auto save = kind().open(folder_);
        if (!QDir(folder_).removeRecursively()) {
            throw std::runtime_error("the folder stays");
        }
        save(number_);
    });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.message.contains(isMissing)) << outcome.message.constData();
    EXPECT_EQ(root_.names(), QStringList());
}

TEST_P(Places, thatAreFilesStayFiles) {
    ASSERT_TRUE(QDir(folder_).removeRecursively());
    root_.write(QStringLiteral("store"), "a file");
    expectRefused(": Not a directory");
}

TEST_P(Places, belowFilesAreNone) {
    root_.write(QStringLiteral("file"), "a file");
    const QString below = root_.path(QStringLiteral("file/store"));
    expectRefused([&] { return test::outcomeOf([&] { test::save(kind(), below, number_); }); }, ": Not a directory");
}

TEST_P(Places, whereTheUserMayNotWriteKeepTheirFiles) {
    saveFirst();
    expectRefused([this] { return saveAsOrdinaryUser(); }, isForbidden);
    EXPECT_EQ(kind().find(folder_).newest, earlier_);
}

TEST_P(Places, thatTheUserMayNotEnterKeepTheirFiles) {
    saveFirst();
    changeMode(root_.path(), 0700);
    expectRefused([this] { return saveAsOrdinaryUser(); }, isForbidden);
}

TEST_P(Places, thatTheUserMayNotListKeepTheirFiles) {
    saveFirst();
    changeMode(home(), 0733);
    expectRefused([this] { return saveAsOrdinaryUser(); }, isForbidden);
}

TEST_P(Places, withAFileThatTheUserMayNotWriteKeepIt) {
    if (isProfile(kind())) {
        test::save(kind(), folder_, number_); // each profile is a new file: there is none yet that may not be written
    }
    saveFirst();
    changeMode(home(), 0777);
    changeMode(destination(), 0444);
    const Content before = test::contentOf(folder_);
    const Outcome outcome = saveAsOrdinaryUser();
    EXPECT_TRUE(test::contentOf(folder_) == before);
    const bool isThereAlready = isProfile(kind());
    EXPECT_EQ(outcome.status, isThereAlready ? 0 : 1);
    EXPECT_EQ(outcome.message, isThereAlready ? QByteArray() : destination().toUtf8() + isForbidden);
}

TEST_P(Places, withALinkToAFileHaveItsTargetReplaced) {
    saveFirst();
    const QString target = root_.path(QStringLiteral("target"));
    const bool isLinkRefused = refusesLinks(kind());
    if (isLinkRefused) {
        test::save(kind(), folder_, number_);
    }
    ASSERT_TRUE(QFile::rename(destination(), target));
    linkDestinationTo(target);
    const QByteArray before = TemporaryFolder::read(target);
    const Outcome outcome = save();
    EXPECT_EQ(QFile::symLinkTarget(destination()), target);
    EXPECT_EQ(test::temporariesIn(root_.path()), QStringList());
    if (isLinkRefused) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.message.contains(isALink)) << outcome.message.constData();
        EXPECT_EQ(TemporaryFolder::read(target), before);
    } else {
        EXPECT_EQ(outcome.status, 0) << outcome.message.constData();
        EXPECT_NE(TemporaryFolder::read(target), before);
        EXPECT_EQ(kind().find(folder_).newest, number_);
    }
}

TEST_P(Places, withALinkToADeviceSpareIt) {
    expectLinkRefused(QStringLiteral("/dev/null"), ": Invalid argument");

    struct stat facts {};

    ASSERT_EQ(::stat("/dev/null", &facts), 0);
    EXPECT_TRUE(S_ISCHR(facts.st_mode));
}

TEST_P(Places, withALinkToAFifoSpareIt) {
    const QString fifo = root_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    expectLinkRefused(fifo, ": Invalid argument");

    struct stat facts {};

    ASSERT_EQ(::lstat(fifo.toUtf8().constData(), &facts), 0);
    EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

TEST_P(Places, withALinkToAFolderSpareIt) {
    const QString other = root_.path(QStringLiteral("other"));
    ASSERT_TRUE(QDir().mkpath(other));
    expectLinkRefused(other, ": Is a directory");
    EXPECT_TRUE(QDir(other).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
}

TEST_P(Places, withALinkToNothingKeepIt) {
    const QString nothing = root_.path(QStringLiteral("nothing"));
    expectLinkRefused(nothing, isMissing, isProfile(kind()) ? isMissing : isALink);
    EXPECT_FALSE(QFileInfo::exists(nothing));
}

} // namespace
} // namespace orvex
