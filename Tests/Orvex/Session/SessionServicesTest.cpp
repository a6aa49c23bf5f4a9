#include "SessionFixture.h"

#include <thread>

namespace orvex {
namespace {

using test::waitFor;

class Sleep : public ::testing::Test {
protected:
    /// Sleeps as every desktop does, and notes the end.
    void sleep(std::chrono::nanoseconds duration) { run(duration); }

    [[nodiscard]] bool isOver() const { return isOver_; }

    std::stop_source stop;

private:
    QCoro::Task<> run(std::chrono::nanoseconds duration) {
        const std::stop_token token = stop.get_token();
        co_await services_.SessionServices::sleep(duration, token);
        isOver_ = true;
    }

    test::FakeServices services_;
    bool isOver_ = false;
};

constexpr std::chrono::nanoseconds anHour = std::chrono::hours(1);

TEST_F(Sleep, EndsWhenItsTimeIsOver) {
    sleep(std::chrono::nanoseconds(1));
    EXPECT_FALSE(isOver());
    waitFor([this] { return isOver(); });
}

TEST_F(Sleep, DoesNotHoldUpTheEventLoop) {
    sleep(anHour);
    bool hasTurned = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&hasTurned] { hasTurned = true; }, Qt::QueuedConnection);
    waitFor([&hasTurned] { return hasTurned; });
    EXPECT_FALSE(isOver());
    stop.request_stop();
    waitFor([this] { return isOver(); });
}

TEST_F(Sleep, DoesNotBeginOnceAStopWasRequested) {
    stop.request_stop();
    sleep(anHour);
    EXPECT_TRUE(isOver());
}

TEST_F(Sleep, EndsWithAStopOfAnotherThread) {
    sleep(anHour);
    std::thread other([this] { stop.request_stop(); });
    waitFor([this] { return isOver(); });
    other.join();
}

} // namespace
} // namespace orvex
