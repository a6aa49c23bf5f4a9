#include "Files/FolderLock.h"

#include "ChildProcess.h"
#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Process/ChildProcess.h"
#include "TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <thread>

namespace orvex::platform {

namespace {

using namespace std::chrono_literals;
using test::inChildProcess;
using test::TemporaryFolder;

bool isFree(const QString& path) {
    return FolderLock::tryLock(path).has_value();
}

/// What another process says of a folder.
QByteArray answerOfAnother(const QString& path) {
    return inChildProcess([&] { return isFree(path) ? QByteArray("free") : QByteArray("locked"); });
}

int failureCode(const QString& path) {
    try {
        (void)FolderLock::tryLock(path);
    } catch (const FileSystemError& error) {
        return error.code();
    }
    return 0;
}

/// A process that holds the lock of a folder until it is killed.
class Holder {
public:
    explicit Holder(const QString& path) {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0) {
            hold(path, ends[1]);
        }
        ::close(ends[1]);
        char said = 0;
        EXPECT_EQ(::read(ends[0], &said, 1), 1) << "the other process got no lock";
        ::close(ends[0]);
    }

    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    ~Holder() { kill(); }

    void kill() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
        process_ = -1;
    }

private:
    [[noreturn]] static void hold(const QString& path, int pipe) {
        constexpr unsigned longestSeconds = 60;
        ::alarm(longestSeconds);
        const auto lock = FolderLock::tryLock(path);
        if (!lock || ::write(pipe, "x", 1) != 1) {
            ::_exit(1);
        }
        for (;;) {
            ::pause();
        }
    }

    pid_t process_ = -1;
};

/// Another program, from its start to the end of this object.
class StartedProgram {
public:
    StartedProgram() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0) {
            ::execl("/bin/sleep", "sleep", "60", nullptr);
            ::_exit(1);
        }
        ::close(ends[1]);
        char none = 0;
        EXPECT_EQ(::read(ends[0], &none, 1), 0); // the pipe is closed by the program's start
        ::close(ends[0]);
    }

    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    ~StartedProgram() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

    [[nodiscard]] pid_t process() const { return process_; }

private:
    pid_t process_ = -1;
};

/// What the descriptors of a process lead to.
QStringList openFoldersOf(const QString& process) {
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    QStringList targets;
    for (const QFileInfo& each : descriptors.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        targets.append(each.symLinkTarget());
    }
    return targets;
}

class FolderLockTest : public ::testing::Test {
protected:
    [[nodiscard]] QString path() const { return folder_.path(); }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(FolderLockTest, IsHeldByOneAtATime) {
    {
        const auto lock = FolderLock::tryLock(path());
        ASSERT_TRUE(lock);
        EXPECT_FALSE(FolderLock::tryLock(path()));
        EXPECT_EQ(answerOfAnother(path()), "locked");
    }
    EXPECT_EQ(answerOfAnother(path()), "free");
    EXPECT_TRUE(isFree(path()));
}

TEST_F(FolderLockTest, HoldsForTheFolderByWhateverPath) {
    ASSERT_TRUE(QFile::link(path(), path() + QStringLiteral("/self")));
    const auto lock = FolderLock::tryLock(path() + QStringLiteral("/self/"));
    ASSERT_TRUE(lock);
    EXPECT_FALSE(isFree(path()));
}

TEST_F(FolderLockTest, SaysNothingOfOtherFolders) {
    const QString inner = folder_.path(QStringLiteral("inner"));
    ASSERT_TRUE(QDir().mkdir(inner));
    const auto lock = FolderLock::tryLock(path());
    EXPECT_TRUE(isFree(inner));
}

TEST_F(FolderLockTest, LeavesNoFile) {
    { const auto lock = FolderLock::tryLock(path()); }
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(FolderLockTest, DoesNotStandInTheWayOfWriting) {
    const auto lock = FolderLock::tryLock(path());
    const QString file = folder_.path(QStringLiteral("file"));
    EXPECT_EQ(inChildProcess([&] {
                  FileReplacer::replace(file, "content");
                  return QByteArray("written");
              }),
              "written");
    EXPECT_EQ(TemporaryFolder::read(file), "content");
    EXPECT_FALSE(isFree(path()));
}

TEST_F(FolderLockTest, EndsWithAProcessThatIsKilled) {
    Holder holder(path());
    EXPECT_FALSE(isFree(path()));
    holder.kill();
    EXPECT_TRUE(isFree(path()));
}

TEST_F(FolderLockTest, GoesWithTheObjectItIsMovedTo) {
    std::optional<FolderLock> first = FolderLock::tryLock(path());
    ASSERT_TRUE(first);
    std::optional<FolderLock> second(std::move(*first));
    first.reset();
    EXPECT_FALSE(isFree(path()));
    second.reset();
    EXPECT_TRUE(isFree(path()));
}

TEST_F(FolderLockTest, IsReleasedAtOnceByAnotherThatIsMovedOverIt) {
    const QString inner = folder_.path(QStringLiteral("inner"));
    ASSERT_TRUE(QDir().mkdir(inner));
    std::optional<FolderLock> outerLock = FolderLock::tryLock(path());
    std::optional<FolderLock> innerLock = FolderLock::tryLock(inner);
    *outerLock = std::move(*innerLock);
    EXPECT_TRUE(isFree(path()));
    EXPECT_FALSE(isFree(inner));
    innerLock.reset();
    EXPECT_FALSE(isFree(inner));
    outerLock.reset();
    EXPECT_TRUE(isFree(inner));
}

TEST_F(FolderLockTest, IsReleasedAlthoughAForkedProcessStillHasTheDescriptor) {
    std::optional<FolderLock> lock = FolderLock::tryLock(path());
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        ::pause();
        ::_exit(0);
    }
    lock.reset();
    EXPECT_TRUE(isFree(path()));
    ::kill(child, SIGKILL);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST_F(FolderLockTest, IsNotInheritedByAProgramThatIsStarted) {
    const auto lock = FolderLock::tryLock(path());
    ASSERT_TRUE(openFoldersOf(QStringLiteral("self")).contains(path()));
    const StartedProgram program;
    EXPECT_FALSE(openFoldersOf(QString::number(program.process())).contains(path()));
}

TEST_F(FolderLockTest, IsNotInheritedByATool) {
    const auto lock = FolderLock::tryLock(path());
    const ChildCommand tool{.executable = ORVEX_BAD_TOOL, .arguments = {"surroundings"}, .environment = {}};
    const ChildRules rules{.pipes = ChildPipes::shared,
                           .overflow = ChildOverflow::discarded,
                           .outputLimitBytes = 4096,
                           .readsPerTurn = 32,
                           .timeout = 60s,
                           .pollStep = 2ms,
                           .terminationGrace = 1s,
                           .killGrace = 1s,
                           .graceStep = 2ms};
    const ChildResult result = runChild(tool, rules);
    EXPECT_TRUE(result.output.contains("descriptor 2 "));
    EXPECT_FALSE(result.output.contains("descriptor 3 "));
    EXPECT_FALSE(isFree(path()));
}

TEST_F(FolderLockTest, IsThereForOneOfManyThreads) {
    constexpr int count = 16;
    std::vector<std::optional<FolderLock>> locks(count);
    {
        std::vector<std::jthread> threads;
        for (auto& lock : locks) {
            threads.emplace_back([&] { lock = FolderLock::tryLock(path()); });
        }
    }
    EXPECT_EQ(std::ranges::count_if(locks, [](const auto& lock) { return lock.has_value(); }), 1);
}

TEST_F(FolderLockTest, LocksAFolderThatMayOnlyBeRead) {
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0555), 0);
    EXPECT_EQ(inChildProcess([&] {
                  if (!test::becomeOrdinaryUser()) {
                      return QByteArray("still the superuser");
                  }
                  return isFree(path()) ? QByteArray("free") : QByteArray("locked");
              }),
              "free");
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0755), 0);
}

TEST_F(FolderLockTest, RefusesWhatCannotBeLocked) {
    EXPECT_EQ(failureCode(folder_.path(QStringLiteral("missing"))), ENOENT);
    EXPECT_EQ(failureCode(folder_.write(QStringLiteral("file"), "content")), ENOTDIR);
    EXPECT_EQ(failureCode(QString()), ENOENT);
}

TEST_F(FolderLockTest, RefusesAFolderThatMayNotBeRead) {
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0), 0);
    EXPECT_EQ(inChildProcess([&] {
                  if (!test::becomeOrdinaryUser()) {
                      return QByteArray("still the superuser");
                  }
                  return QByteArray::number(failureCode(path()));
              }),
              QByteArray::number(EACCES));
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0755), 0);
}

} // namespace orvex::platform
