#include "HeldReading.h"
#include "InChinese.h"
#include "SessionFixture.h"

namespace orvex {
namespace {

/// A desktop on which applications take their time to start.
class SlowDesktop : public test::FakeServices {
public:
    test::HeldReading<std::optional<QString>> starting;

    [[nodiscard]] QCoro::Task<std::optional<QString>> openApplication(const QUrl& application) override {
        opened.append(application);
        const QFuture<std::optional<QString>> started = starting.ask();
        const std::optional<QString> failure = co_await started;
        co_return failure;
    }
};

class Monitor : public test::SessionTest {
protected:
    const QUrl application{QStringLiteral("file:///monitor.app")};
};

TEST_F(Monitor, IsNotFoundOnThisMachine) {
    start();
    const QString message = model->message();
    model->openCanonMonitor();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("Canon Printmonitor was not found."));
    EXPECT_EQ(model->message(), message);
    EXPECT_TRUE(services.opened.isEmpty());
    const test::InChinese chinese;
    model->openCanonMonitor();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("未找到佳能 Printmonitor。"));
}

TEST_F(Monitor, OpensWithoutAWord) {
    start();
    const QString message = model->message();
    SessionBackdoor(*model).openMonitor(application);
    EXPECT_EQ(services.opened, QList{application});
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Monitor, TellsWhatKeptItFromOpening) {
    services.openingFailure = QStringLiteral("It is damaged.");
    start();
    SessionBackdoor(*model).openMonitor(application);
    EXPECT_EQ(model->errorMessage(), QStringLiteral("It is damaged."));
}

TEST_F(Monitor, MayStartAfterTheSessionIsClosed) {
    SlowDesktop desktop;
    model = std::make_unique<OrvexModel>(desktop, SessionAccess::full, readings);
    SessionBackdoor(*model).openMonitor(application);
    model.reset();
    desktop.starting.answer(QStringLiteral("It is damaged."));
    QCoreApplication::processEvents();
    EXPECT_EQ(desktop.opened.size(), 1);
}

} // namespace
} // namespace orvex
