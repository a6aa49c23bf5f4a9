// Every call of the system that a save makes goes wrong once, in every way: the destination has its old content or the
// complete new one, what failed is told, and nothing else has changed.

#include "FaultyRun.h"
#include "FolderContent.h"
#include "PrivateMachine.h"
#include "SavedKinds.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>

namespace orvex {
namespace {

using test::Fault;
using test::FaultyRun;
using test::LoggedCall;
using test::SavedKind;

using Content = QMap<QString, QByteArray>;

/// What there is before the save.
enum class Start { nothing, earlierStates, leftoverToo };

/// A file's content without the moment of the saving.
std::optional<QByteArray> comparable(const Content& content, const QString& path) {
    static const QRegularExpression moment(QStringLiteral("\"updatedAt\": [-0-9.e+]+"));
    const auto found = content.find(path);
    if (found == content.end()) {
        return std::nullopt;
    }
    return QString::fromLatin1(*found).replace(moment, QStringLiteral("moment")).toLatin1();
}

class Faults : public ::testing::TestWithParam<std::tuple<SavedKind, Start>> {
protected:
    void SetUp() override {
        if (start() != Start::nothing) {
            test::save(kind(), store_, 1);
            test::save(kind(), store_, 2);
            write(store_ + QStringLiteral("/neighbour.txt"), "of somebody else");
        }
        if (start() == Start::leftoverToo) {
            write(test::temporaryFor(destination_), "half");
        }
        before_ = test::contentOf(folder_);
        folders_ = test::foldersIn(folder_);
        const FaultyRun sound = run({});
        ASSERT_EQ(sound.outcome.status, 0) << sound.outcome.message.constData();
        ASSERT_EQ(kind().find(store_).newest, number_);
        after_ = test::contentOf(folder_);
        soundCalls_ = sound.calls;
    }

    static const SavedKind& kind() { return std::get<0>(GetParam()); }

    static Start start() { return std::get<1>(GetParam()); }

    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) << path.toStdString();
    }

    void restore() const {
        ASSERT_TRUE(QDir(folder_).removeRecursively());
        for (const QString& folder : QStringList{folder_} + folders_) {
            ASSERT_TRUE(QDir().mkpath(folder));
        }
        for (auto each = before_.cbegin(); each != before_.cend(); ++each) {
            write(each.key(), each.value());
        }
        QFile::setPermissions(destination_, unusualPermissions);
    }

    FaultyRun run(const Fault& fault) const {
        restore();
        return test::runWithFault(fault, folder_, root_.filePath(QStringLiteral("calls.log")),
                                  [this] { test::save(kind(), store_, number_); });
    }

    bool isCommit(const LoggedCall& call) const {
        return call.name == u"rename" && call.isDone() && call.newPath == destination_;
    }

    /// Whether the call's failure must be told: whatever is part of writing the file, and no more than that.
    bool mustBeTold(const LoggedCall& call, bool isCommitted) const {
        static const QStringList always{QStringLiteral("create"), QStringLiteral("write"),  QStringLiteral("pwrite"),
                                        QStringLiteral("fchmod"), QStringLiteral("rename"), QStringLiteral("mkdir")};
        static const QStringList ofTheFile{QStringLiteral("fsync"), QStringLiteral("flock"), QStringLiteral("fstat"),
                                           QStringLiteral("lstat")};
        const bool isOwn = test::isTemporary(call.path) && call.path != test::temporaryFor(destination_);
        const bool isFolder = call.path == QFileInfo(destination_).path();
        return call.hasFault() && (always.contains(call.name) || (isOwn && ofTheFile.contains(call.name)) ||
                                   (isCommitted && isFolder && call.name == u"fsync"));
    }

    /// A failure may be told although the file has its new content only if it came after the renaming: the folder
    /// could not be synchronised, or a profile could not be verified.
    void expectFailureAfterCommit(const LoggedCall& call) const {
        const bool isFolder = call.name == u"fsync" && call.path == QFileInfo(destination_).path();
        const bool isReading = kind().keepsAll && call.name != u"fsync" && !test::isTemporary(call.path);
        EXPECT_TRUE(isFolder || isReading) << call.name.toStdString() << ' ' << call.path.toStdString();
    }

    void expectOutcome(const FaultyRun& run, const Fault& fault) const {
        if (run.outcome.signal != 0) {
            EXPECT_EQ(run.outcome.signal, SIGKILL);
            EXPECT_TRUE(run.hasFault() && run.calls.last().fault.startsWith(QStringLiteral("killed")));
            return;
        }
        bool isCommitted = false;
        bool mustFail = false;
        for (const LoggedCall& call : run.calls) {
            EXPECT_FALSE(call.fault.startsWith(QStringLiteral("killed")));
            mustFail = mustFail || (call.fault == u"failed" && mustBeTold(call, isCommitted));
            isCommitted = isCommitted || isCommit(call);
        }
        if (run.outcome.status == 0) {
            EXPECT_FALSE(mustFail) << "what failed was not told";
            EXPECT_TRUE(isCommitted);
            return;
        }
        EXPECT_EQ(run.outcome.status, 1) << run.outcome.message.constData();
        EXPECT_TRUE(run.outcome.message.contains(std::strerror(fault.error))) << run.outcome.message.constData();
        EXPECT_TRUE(run.hasFault());
        if (isCommitted) {
            const auto failed = std::ranges::find_if(run.calls, &LoggedCall::hasFault);
            ASSERT_NE(failed, run.calls.end());
            expectFailureAfterCommit(*failed);
        }
    }

    /// The temporary files of the run itself that it could not remove: it was killed, or refused even this.
    static QStringList unremovable(const FaultyRun& run) {
        QStringList made;
        QStringList left;
        for (const LoggedCall& call : run.calls) {
            if (call.name == u"create" && call.isDone()) {
                made.append(call.path);
            } else if (call.isDone() && (call.name == u"rename" || call.name == u"unlink")) {
                made.removeAll(call.path);
            } else if (call.name == u"unlink" && call.hasFault() && made.contains(call.path)) {
                left.append(call.path);
            }
        }
        return run.outcome.signal != 0 ? made : left;
    }

    void expectFiles(const FaultyRun& run) const {
        const bool isCommitted = std::ranges::any_of(run.calls, [&](const auto& call) { return isCommit(call); });
        const Content now = test::contentOf(folder_);
        EXPECT_TRUE(comparable(now, destination_) == comparable(isCommitted ? after_ : before_, destination_));
        if (before_.contains(destination_)) {
            EXPECT_EQ(QFile::permissions(destination_) & ofOthers, unusualPermissions & ofOthers);
        }
        QStringList temporaries;
        for (const QString& path : now.keys()) {
            if (test::isTemporary(path)) {
                temporaries.append(path);
            } else if (path != destination_) {
                EXPECT_EQ(now[path], before_.value(path, "there was none")) << path.toStdString();
            }
        }
        for (const QString& path : before_.keys()) {
            EXPECT_TRUE(now.contains(path) || test::isTemporary(path)) << path.toStdString();
        }
        temporaries.removeAll(test::temporaryFor(destination_));
        EXPECT_EQ(temporaries, unremovable(run));
        EXPECT_LE(temporaries.size(), 1);
        const int earlier = start() == Start::nothing ? 0 : 2;
        EXPECT_EQ(kind().find(store_).newest, isCommitted ? number_ : earlier);
    }

    void expectNextSaveClearsUp() const {
        test::save(kind(), store_, number_ + 2);
        EXPECT_EQ(test::temporariesIn(folder_), QStringList());
        EXPECT_EQ(kind().find(store_).newest, number_ + 2);
    }

    /// Lets the first call go wrong, the second and so on, until there is none any more; gives how many there were.
    int expectSoundWith(const char* kindOfFault, int error) const {
        int faults = 0;
        for (int call = 1;; ++call) {
            const Fault fault{.call = call, .kind = kindOfFault, .error = error};
            const FaultyRun run = this->run(fault);
            SCOPED_TRACE(std::string(kindOfFault) + ' ' + std::strerror(error) + ", call " + std::to_string(call));
            expectOutcome(run, fault);
            expectFiles(run);
            if (!test::temporariesIn(folder_).isEmpty()) {
                expectNextSaveClearsUp();
            }
            faults += run.hasFault() ? 1 : 0;
            if (call > run.calls.size() || HasFailure()) {
                return faults;
            }
        }
    }

    /// With a leftover, too, the error makes no difference.
    static std::vector<int> errors() {
        return start() == Start::leftoverToo ? std::vector{EIO} : std::vector{EIO, ENOSPC, EDQUOT};
    }

    /// File systems in memory are fast, and what is tested here is not the disk.
    static QString place() {
        return (test::PrivateMachine::refusal().empty() ? QStringLiteral("/run") : QDir::tempPath()) +
               QStringLiteral("/faults-XXXXXX");
    }

    /// They tell a file whose permissions were not kept.
    static constexpr QFile::Permissions ofOthers{QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther};
    static constexpr QFile::Permissions unusualPermissions{QFile::ReadOwner | QFile::WriteOwner | QFile::WriteGroup};

    const QTemporaryDir root_{place()};
    const QString folder_ = root_.filePath(QStringLiteral("home"));
    const QString store_ = folder_ + QStringLiteral("/store");
    const int number_ = start() == Start::nothing ? 1 : 4;
    const QString destination_ = kind().file(store_, number_);
    Content before_;
    QStringList folders_;
    Content after_;
    QList<LoggedCall> soundCalls_; ///< of a run without a fault
};

/// The places in the log where something happened.
QList<qsizetype> placesOf(const QList<LoggedCall>& calls, const std::function<bool(const LoggedCall&)>& isMeant) {
    QList<qsizetype> places;
    for (qsizetype place = 0; place < calls.size(); ++place) {
        if (isMeant(calls[place])) {
            places.append(place);
        }
    }
    return places;
}

bool isWrite(const LoggedCall& call) {
    return call.name == u"pwrite" || call.name == u"write";
}

TEST_P(Faults, ofOneCallAreToldAndLeaveWholeFiles) {
    for (const int error : errors()) {
        EXPECT_EQ(expectSoundWith("once", error), soundCalls_.size());
    }
}

TEST_P(Faults, ofACallAndAllThatFollowAreToldAndLeaveWholeFiles) {
    for (const int error : errors()) {
        EXPECT_EQ(expectSoundWith("onwards", error), soundCalls_.size());
    }
}

TEST_P(Faults, ofACallAndAllOfItsNameAreToldAndLeaveWholeFiles) {
    EXPECT_EQ(expectSoundWith("alike", EIO), soundCalls_.size());
}

TEST_P(Faults, aShortWriteIsCompleted) {
    const auto writes = placesOf(soundCalls_, isWrite);
    ASSERT_FALSE(writes.isEmpty());
    EXPECT_EQ(expectSoundWith("short", EIO), writes.size());
}

TEST_P(Faults, aShortWriteOnAFullDiskIsTold) {
    const auto writes = placesOf(soundCalls_, isWrite);
    ASSERT_FALSE(writes.isEmpty());
    EXPECT_EQ(expectSoundWith("full", ENOSPC), writes.last() + 1);
}

TEST_P(Faults, ofTheProcessBeforeACallLeaveWholeFiles) {
    EXPECT_EQ(expectSoundWith("before", 0), soundCalls_.size());
}

TEST_P(Faults, ofTheProcessAfterACallLeaveWholeFiles) {
    EXPECT_EQ(expectSoundWith("after", 0), soundCalls_.size());
}

TEST_P(Faults, ofThePowerAreProvidedFor) {
    const QList<LoggedCall>& calls = soundCalls_;
    const auto commits = placesOf(calls, [&](const auto& call) { return isCommit(call); });
    ASSERT_EQ(commits.size(), 1);
    const QString temporary = calls[commits[0]].path;
    const auto writes =
        placesOf(calls, [&](const auto& call) { return call.name == u"pwrite" && call.path == temporary; });
    const auto fileSyncs =
        placesOf(calls, [&](const auto& call) { return call.name == u"fsync" && call.path == temporary; });
    const auto folderSyncs = placesOf(
        calls, [&](const auto& call) { return call.name == u"fsync" && call.path == QFileInfo(destination_).path(); });
    ASSERT_FALSE(writes.isEmpty());
    ASSERT_EQ(fileSyncs.size(), 1);
    ASSERT_FALSE(folderSyncs.isEmpty());
    EXPECT_LT(writes.last(), fileSyncs[0]);
    EXPECT_LT(fileSyncs[0], commits[0]);
    EXPECT_LT(commits[0], folderSyncs.last());
}

TEST_P(Faults, ofThePowerSpareTheFoldersThatWereMade) {
    const QList<LoggedCall>& calls = soundCalls_;
    const auto made = placesOf(calls, [](const auto& call) { return call.name == u"mkdir" && call.isDone(); });
    EXPECT_EQ(made.isEmpty(), start() != Start::nothing);
    for (const qsizetype place : made) {
        const QString parent = QFileInfo(calls[place].path).path();
        const auto syncs =
            placesOf(calls, [&](const auto& call) { return call.name == u"fsync" && call.path == parent; });
        ASSERT_FALSE(syncs.isEmpty()) << parent.toStdString();
        EXPECT_GT(syncs.last(), place);
    }
}

std::string nameOf(const ::testing::TestParamInfo<std::tuple<SavedKind, Start>>& info) {
    const auto& [kind, start] = info.param;
    const std::string name = kind.name;
    return name + (start == Start::nothing         ? "OverNothing"
                   : start == Start::earlierStates ? "OverEarlierStates"
                                                   : "OverALeftover");
}

INSTANTIATE_TEST_SUITE_P(Kinds, Faults,
                         ::testing::Combine(::testing::ValuesIn(test::savedKinds()),
                                            ::testing::Values(Start::nothing, Start::earlierStates,
                                                              Start::leftoverToo)),
                         nameOf);

} // namespace
} // namespace orvex
