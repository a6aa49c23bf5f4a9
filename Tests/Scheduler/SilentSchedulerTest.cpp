#include "SilentScheduler.h"

#include "SchedulerTest.h"

#include <QProcess>

namespace orvex {
namespace {

class ClientOfASilentScheduler : public test::SchedulerTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ClientOfASilentScheduler, WaitsUntilItIsGone) {
    QProcess client;
    {
        test::SilentScheduler scheduler;
        client.start(QStringLiteral("/usr/bin/lpstat"),
                     {QStringLiteral("-h"), QString::fromUtf8(GetParam()), QStringLiteral("-p")});
        scheduler.waitForClient();
        constexpr int longerThanAnAnswerMilliseconds = 300;
        EXPECT_FALSE(client.waitForFinished(longerThanAnAnswerMilliseconds));
    }
    EXPECT_TRUE(client.waitForFinished(60'000));
    EXPECT_EQ(client.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(client.exitCode(), 1);
}

INSTANTIATE_TEST_SUITE_P(Addresses, ClientOfASilentScheduler,
                         ::testing::Values("/run/cups/cups.sock", "localhost:631"));

} // namespace
} // namespace orvex
