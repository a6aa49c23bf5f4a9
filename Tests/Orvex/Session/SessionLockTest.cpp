#include "SessionLock.h"

#include "ChildProcess.h"
#include "TemporaryFolder.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

namespace orvex {

namespace {

using State = SessionLock::State;
using test::inChildProcess;

class SessionLockTest : public ::testing::Test {
protected:
    [[nodiscard]] QUrl folder() const { return QUrl::fromLocalFile(folder_.path()); }

    [[nodiscard]] State stateNow() const { return SessionLock::acquire(folder()).state(); }

    test::TemporaryFolder folder_;
};

/// Has an environment variable another value for the length of a test.
class Environment {
public:
    Environment(const char* name, const QString& value) : name_(name), before_(qgetenv(name)) {
        qputenv(name, value.toUtf8());
    }

    ~Environment() { before_.isNull() ? qunsetenv(name_) : qputenv(name_, before_); }

    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
    QByteArray before_;
};

} // namespace

TEST_F(SessionLockTest, IsHeldFromTheStartToTheEnd) {
    {
        const SessionLock lock = SessionLock::acquire(folder());
        EXPECT_EQ(lock.state(), State::held);
        EXPECT_EQ(stateNow(), State::heldByAnother);
    }
    EXPECT_EQ(stateNow(), State::held);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(SessionLockTest, IsHeldAgainstOtherProcesses) {
    const SessionLock lock = SessionLock::acquire(folder());
    EXPECT_EQ(inChildProcess([&] { return QByteArray::number(static_cast<int>(stateNow())); }),
              QByteArray::number(static_cast<int>(State::heldByAnother)));
}

TEST_F(SessionLockTest, WaitsForOneWhoHoldsItForAMoment) {
    auto moment = platform::FolderLock::tryLock(folder_.path());
    std::jthread other([&] {
        std::this_thread::sleep_for(SessionLock::patience / 4);
        moment.reset();
    });
    EXPECT_EQ(stateNow(), State::held);
}

TEST_F(SessionLockTest, GivesUpAfterItsPatience) {
    const SessionLock lock = SessionLock::acquire(folder());
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(stateNow(), State::heldByAnother);
    EXPECT_GE(clock.elapsed(), SessionLock::patience.count());
}

TEST_F(SessionLockTest, MakesAMissingFolder) {
    const QString inner = folder_.path(QStringLiteral("a/b"));
    EXPECT_EQ(SessionLock::acquire(QUrl::fromLocalFile(inner)).state(), State::held);
    EXPECT_TRUE(QFileInfo(inner).isDir());
}

TEST_F(SessionLockTest, IsOfTheApplicationFolderUnlessToldOtherwise) {
    const Environment data("XDG_DATA_HOME", folder_.path());
    const SessionLock lock = SessionLock::acquire();
    EXPECT_EQ(lock.state(), State::held);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("ORVEX")});
    EXPECT_FALSE(platform::FolderLock::tryLock(folder_.path(QStringLiteral("ORVEX"))));
}

TEST_F(SessionLockTest, IsImpossibleWhereThereCanBeNoFolder) {
    const QString file = folder_.write(QStringLiteral("file"), "kept");
    EXPECT_EQ(SessionLock::acquire(QUrl::fromLocalFile(file)).state(), State::impossible);
    EXPECT_EQ(SessionLock::acquire(QUrl::fromLocalFile(file + QStringLiteral("/inner"))).state(), State::impossible);
    EXPECT_EQ(test::TemporaryFolder::read(file), "kept");
}

TEST_F(SessionLockTest, IsImpossibleInAHomeThatIsReadOnly) {
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0555), 0);
    const QUrl missing = QUrl::fromLocalFile(folder_.path(QStringLiteral("ORVEX")));
    EXPECT_EQ(inChildProcess([&] {
                  return test::becomeOrdinaryUser()
                             ? QByteArray::number(static_cast<int>(SessionLock::acquire(missing).state()))
                             : QByteArray("still the superuser");
              }),
              QByteArray::number(static_cast<int>(State::impossible)));
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
}

TEST_F(SessionLockTest, IsHeldInAFolderThatMayOnlyBeRead) {
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0555), 0);
    EXPECT_EQ(inChildProcess([&] {
                  return test::becomeOrdinaryUser() ? QByteArray::number(static_cast<int>(stateNow()))
                                                    : QByteArray("still the superuser");
              }),
              QByteArray::number(static_cast<int>(State::held)));
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
}

} // namespace orvex
