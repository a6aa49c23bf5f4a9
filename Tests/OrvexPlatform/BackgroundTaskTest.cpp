#include "BackgroundTask.h"

#include "Files/FileSystemError.h"
#include "Interrupted.h"

#include <QSemaphore>
#include <QThread>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

namespace orvex::platform {

TEST(BackgroundTask, GivesWhatItsWorkReturns) {
    EXPECT_EQ(startUtilityTask([] { return QStringLiteral("done"); }).result(), QStringLiteral("done"));
}

TEST(BackgroundTask, RunsOnAnotherThread) {
    EXPECT_NE(startUtilityTask([] { return QThread::currentThread(); }).result(), QThread::currentThread());
}

TEST(BackgroundTask, RaisesWhatItsWorkRaisesWithItsType) {
    const auto future = startUtilityTask([]() -> int { throw FileSystemError(ENOENT, QStringLiteral("/nowhere")); });
    try {
        static_cast<void>(future.result());
        FAIL() << "nothing was raised";
    } catch (const FileSystemError& error) {
        EXPECT_TRUE(error.isMissing());
        EXPECT_EQ(error.message(), QStringLiteral("/nowhere: No such file or directory"));
    }
}

TEST(BackgroundTask, RaisesThatItWasInterrupted) {
    EXPECT_THROW(static_cast<void>(startUtilityTask([]() -> int { throw Interrupted(); }).result()), Interrupted);
}

TEST(BackgroundTask, DoesNotQueueBehindThreeThatWait) {
    QSemaphore barrier;
    const auto wait = [&barrier] {
        barrier.acquire();
        return true;
    };
    const std::array waiting{startUtilityTask(wait), startUtilityTask(wait), startUtilityTask(wait)};
    EXPECT_EQ(startUtilityTask([] { return 4; }).result(), 4);
    barrier.release(3);
    for (const auto& each : waiting) {
        EXPECT_TRUE(each.result());
    }
}

} // namespace orvex::platform
