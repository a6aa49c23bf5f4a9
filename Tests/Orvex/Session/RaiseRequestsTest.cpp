#include "RaiseRequests.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvex {

namespace {

using namespace std::chrono_literals;

class RaiseRequestsTest : public ::testing::Test {
protected:
    [[nodiscard]] QUrl folder() const { return QUrl::fromLocalFile(folder_.path()); }

    /// How often the window is to be raised, once the event loop has seen to this many, or until it has been `atLeast`.
    static int countAfter(const RaiseRequests& requests, int expected, std::chrono::milliseconds atLeast = 0ms) {
        int count = 0;
        const QObject listener;
        QObject::connect(&requests, &RaiseRequests::raiseRequested, &listener, [&count] { ++count; });
        const QDeadlineTimer least(atLeast);
        const QDeadlineTimer end(30s);
        while ((count < expected || !least.hasExpired()) && !end.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        return count;
    }

    const QString name_ = QStringLiteral("raise-window");
    test::TemporaryFolder folder_;
};

} // namespace

TEST_F(RaiseRequestsTest, AreSeenAndTakenAway) {
    const RaiseRequests requests(folder());
    RaiseRequests::send(folder());
    EXPECT_EQ(folder_.names(), QStringList{name_});
    EXPECT_EQ(countAfter(requests, 1), 1);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(RaiseRequestsTest, AreSeenAgainAndAgain) {
    const RaiseRequests requests(folder());
    RaiseRequests::send(folder());
    EXPECT_EQ(countAfter(requests, 1), 1);
    RaiseRequests::send(folder());
    EXPECT_EQ(countAfter(requests, 1), 1);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(RaiseRequestsTest, ComeFromOtherProcesses) {
    const RaiseRequests requests(folder());
    EXPECT_EQ(test::inChildProcess([&] {
                  RaiseRequests::send(folder());
                  return QByteArray("sent");
              }),
              "sent");
    EXPECT_EQ(countAfter(requests, 1), 1);
}

TEST_F(RaiseRequestsTest, AreForgottenIfTheyAreFromBeforeTheStart) {
    RaiseRequests::send(folder());
    const RaiseRequests requests(folder());
    EXPECT_EQ(folder_.names(), QStringList());
    EXPECT_EQ(countAfter(requests, 0, 200ms), 0);
}

TEST_F(RaiseRequestsTest, AreNotTakenForOtherChangesInTheFolder) {
    const RaiseRequests requests(folder());
    folder_.write(QStringLiteral("queue.json"), "[]");
    folder_.write(QStringLiteral("raise-window.json"), "{}");
    EXPECT_EQ(countAfter(requests, 0, 200ms), 0);
    EXPECT_EQ(folder_.names(), (QStringList{QStringLiteral("queue.json"), QStringLiteral("raise-window.json")}));
}

TEST_F(RaiseRequestsTest, MakeAMissingFolder) {
    const QUrl missing = QUrl::fromLocalFile(folder_.path(QStringLiteral("a/b")));
    const RaiseRequests requests(missing);
    RaiseRequests::send(missing);
    EXPECT_EQ(countAfter(requests, 1), 1);
}

TEST_F(RaiseRequestsTest, AreNothingWhereThereCanBeNoFolder) {
    const QUrl file = QUrl::fromLocalFile(folder_.write(QStringLiteral("file"), "kept"));
    const RaiseRequests requests(file);
    EXPECT_THROW(RaiseRequests::send(file), platform::FileSystemError);
    EXPECT_EQ(countAfter(requests, 0, 50ms), 0);
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(QStringLiteral("file"))), "kept");
}

TEST_F(RaiseRequestsTest, CannotBeSentToAFolderThatMayOnlyBeRead) {
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0555), 0);
    EXPECT_EQ(test::inChildProcess([&] {
                  if (!test::becomeOrdinaryUser()) {
                      return QByteArray("still the superuser");
                  }
                  try {
                      RaiseRequests::send(folder());
                  } catch (const platform::FileSystemError& error) {
                      return QByteArray::number(error.code());
                  }
                  return QByteArray("sent");
              }),
              QByteArray::number(EACCES));
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
}

} // namespace orvex
