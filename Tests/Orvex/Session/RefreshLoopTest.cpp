#include "HeldReading.h"
#include "RefreshTest.h"

namespace orvex {
namespace {

using test::hold;
using test::printer;
using test::waitFor;

const QMap<QString, Size> papers{{QStringLiteral("A4"), Size{595.0, 842.0}}};

class RefreshLoop : public test::RefreshTest {
protected:
    /// Lets everything happen that happens by itself.
    void idle() {
        for (int turn = 0; turn < 20; ++turn) {
            QCoreApplication::processEvents();
        }
    }
};

TEST_F(RefreshLoop, SleepsHalfAMinuteAfterTheEndOfAPass) {
    const auto checks = hold(readings.captureSettings);
    start();
    model->startRefreshing();
    waitFor([&] { return checks->isAwaited(); });
    idle();
    EXPECT_TRUE(services.sleeps.isEmpty());
    checks->answer({});
    waitFor([this] { return !services.sleeps.isEmpty(); });
    EXPECT_EQ(services.sleeps, QList{std::chrono::nanoseconds(30'000'000'000)});
    EXPECT_FALSE(model->refreshing());
    EXPECT_EQ(checks->count(), 1U);
}

/// A desktop whose sleeps end when the test says so.
class ShortNights : public test::FakeServices {
public:
    std::shared_ptr<test::HeldReading<bool>> night = std::make_shared<test::HeldReading<bool>>();

    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration, std::stop_token stop) override {
        sleeps.append(duration);
        night->partingAnswer = true;
        const QFuture<bool> waking = night->ask(stop);
        co_await waking;
    }
};

TEST_F(RefreshLoop, LooksAgainAfterEachSleep) {
    ShortNights desktop;
    int passes = 0;
    readings.discoverQueues = [&passes](const std::stop_token&) {
        ++passes;
        return QtFuture::makeReadyFuture(QList<PrinterSnapshot>());
    };
    model = std::make_unique<OrvexModel>(desktop, SessionAccess::full, readings);
    model->startRefreshing();
    for (int pass = 1; pass <= 3; ++pass) {
        waitFor([&] { return desktop.night->isAwaited(); });
        EXPECT_EQ(passes, pass);
        desktop.night->answer(true);
    }
    model.reset();
}

TEST_F(RefreshLoop, RestoresTheSourcesOfTheCanvasFirst) {
    const auto passes = hold(readings.discoverQueues);
    start();
    import({picture(QStringLiteral("a.png"), 120, 80)});
    start();
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    auto barrier = std::make_unique<test::Barrier>();
    model->startRefreshing();
    idle();
    EXPECT_EQ(passes->count(), 0U);
    barrier.reset();
    waitFor([&] { return passes->isAwaited(); });
    EXPECT_EQ(model->artworkPreviews().size(), 1);
    passes->answer({});
}

TEST_F(RefreshLoop, EndsWithItsSleep) {
    start();
    model->startRefreshing();
    waitFor([this] { return !services.sleeps.isEmpty(); });
    model->stopRefreshing();
    idle();
    EXPECT_EQ(services.sleeps.size(), 1);
    EXPECT_FALSE(model->refreshing());
}

TEST_F(RefreshLoop, RunsOnlyOnce) {
    start();
    model->startRefreshing();
    model->startRefreshing();
    waitFor([this] { return !services.sleeps.isEmpty(); });
    model->startRefreshing();
    idle();
    EXPECT_EQ(services.sleeps.size(), 1);
}

TEST_F(RefreshLoop, RunsAgainAfterAStop) {
    start();
    model->startRefreshing();
    waitFor([this] { return services.sleeps.size() == 1; });
    model->stopRefreshing();
    idle();
    model->startRefreshing();
    waitFor([this] { return services.sleeps.size() == 2; });
}

TEST_F(RefreshLoop, RunsAgainEvenIfTheStoppedOneHasNotEndedYet) {
    ShortNights desktop;
    model = std::make_unique<OrvexModel>(desktop, SessionAccess::full, readings);
    model->startRefreshing();
    waitFor([&] { return desktop.night->isAwaited(); });
    model->stopRefreshing();
    model->startRefreshing(); // in the same turn of the event loop
    waitFor([&] { return desktop.night->isAwaited(); });
    idle();
    EXPECT_EQ(desktop.sleeps.size(), 2);
    model.reset();
}

TEST_F(RefreshLoop, EndsAtOnceWithTheSession) {
    start();
    model->startRefreshing();
    waitFor([this] { return !services.sleeps.isEmpty(); });
    model.reset(); // returns, though half a minute is not over
    EXPECT_EQ(services.sleeps.size(), 1);
}

// A session that is closed while something is read

class ClosedSession : public test::RefreshTest {
protected:
    /// Closes the session as soon as somebody waits for a reading.
    template <typename Answer>
    void closeDuring(const std::shared_ptr<test::HeldReading<Answer>>& reading) {
        start();
        model->startRefreshing();
        waitFor([&] { return reading->isAwaited(); });
        model.reset();
        EXPECT_TRUE(services.sleeps.size() <= 1);
    }
};

TEST_F(ClosedSession, GivesUpAPass) {
    closeDuring(hold(readings.discoverQueues));
}

TEST_F(ClosedSession, TakesNoNoticeOfAPassThatEndsAfterAll) {
    const auto passes = hold(readings.discoverQueues);
    passes->partingAnswer = QList{printer(queue)};
    closeDuring(passes);
}

TEST_F(ClosedSession, GivesUpTheReadingOfAState) {
    closeDuring(hold(readings.readTelemetry));
}

TEST_F(ClosedSession, GivesUpTheCheckOfTheSettings) {
    closeDuring(hold(readings.captureSettings));
}

TEST_F(ClosedSession, RecordsNoBaselineAfterACheckThatWasGivenUp) {
    closeDuring(hold(readings.captureSettings));
    EXPECT_FALSE(QFile::exists(stored(QStringLiteral("settings-preservation-baseline.json"))));
}

TEST_F(ClosedSession, WaitsForTheReadingOfPapers) {
    const auto semaphore = std::make_shared<QSemaphore>();
    bool isAsked = false;
    readings.readPaperGeometry = [semaphore, &isAsked](const QString&) {
        isAsked = true;
        return platform::startUtilityTask([semaphore] {
            semaphore->acquire();
            return papers;
        });
    };
    start();
    model->refresh();
    waitFor([&isAsked] { return isAsked; });
    semaphore->release();
    model.reset();
}

TEST_F(ClosedSession, DoesNotBeginWhatWasPostedBefore) {
    const auto passes = hold(readings.discoverQueues);
    start();
    model->selectPrinter(queue); // which posts a pass
    model.reset();
    EXPECT_EQ(passes->count(), 0U);
}

} // namespace
} // namespace orvex
