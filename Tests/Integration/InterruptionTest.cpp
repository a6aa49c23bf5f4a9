#include "Command.h"
#include "PdfFixtures.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace orvex {
namespace {

/// A picture of which the PDF takes longer to write than the signal takes to arrive.
QByteArray largePicture() {
    test::TiffFixture tiff{.width = 6000, .height = 6000};
    tiff.bits = 16;
    tiff.pixels.resize(6000LL * 6000 * 6);
    quint32 state = 1;
    for (qsizetype index = 0; index < tiff.pixels.size(); ++index) {
        state = state * 1664525U + 1013904223U;
        tiff.pixels[index] = static_cast<char>(state >> 24U);
    }
    return tiff.bytes();
}

class InterruptedRendering : public ::testing::TestWithParam<int> {};

TEST_P(InterruptedRendering, endsAndLeavesNothingBehind) {
    const test::TemporaryFolder sources;
    const test::TemporaryFolder folder;
    const QString image = sources.write(QStringLiteral("a.tif"), largePicture());
    const QString out = folder.write(QStringLiteral("out.pdf"), "old");

    QProcess process;
    process.setChildProcessModifier([] { std::signal(SIGHUP, SIG_DFL); }); // the tests may run without a terminal
    process.start(QStringLiteral(ORVEXCTL), {QStringLiteral("roll"), image, QStringLiteral("-o"), out});
    ASSERT_TRUE(process.waitForStarted());
    // The temporary file tells that the PDF is being written.
    QElapsedTimer patience;
    patience.start();
    while (folder.names().size() < 2 && process.state() == QProcess::Running && patience.elapsed() < 120'000) {
        QThread::msleep(1);
    }
    ASSERT_EQ(process.state(), QProcess::Running);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), GetParam()), 0);
    ASSERT_TRUE(process.waitForFinished(120'000));

    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(folder.names(), QStringList{QStringLiteral("out.pdf")});
    EXPECT_EQ(test::TemporaryFolder::read(out), "old");
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedRendering, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& signal) { return std::string(::strsignal(signal.param)); });

/// Waits until a command has its second thread, the one that receives signals.
void awaitReadinessForSignals(const QProcess& process) {
    const QDir threads(QStringLiteral("/proc/%1/task").arg(process.processId()));
    while (threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() < 2) {
        QThread::msleep(1);
    }
}

/// Waits until no signal that was sent to a command is still on its way, and all its threads wait for what comes next.
void awaitReceptionOfSignals(const QProcess& process) {
    const auto isSettled = [](const QByteArray& status) {
        return status.contains("ShdPnd:\t0000000000000000") && status.contains("State:\tS");
    };
    const QDir threads(QStringLiteral("/proc/%1/task").arg(process.processId()));
    bool areSettled = false;
    while (!areSettled) {
        QThread::msleep(1);
        const QStringList ids = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        areSettled = std::all_of(ids.begin(), ids.end(), [&](const QString& id) {
            return isSettled(test::TemporaryFolder::read(threads.filePath(id + QStringLiteral("/status"))));
        });
    }
}

TEST(Interruption, keepsADrawingThatEndsInTimeFromReplacingAPicture) {
    const test::TemporaryFolder folder;
    const QString out = folder.write(QStringLiteral("out.png"), "old");
    QProcess process;
    process.start(QStringLiteral(ORVEXCTL), {QStringLiteral("preview"), QStringLiteral("-"), QStringLiteral("-o"), out,
                                             QStringLiteral("--pixels"), QStringLiteral("10")});
    ASSERT_TRUE(process.waitForStarted());
    awaitReadinessForSignals(process);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    awaitReceptionOfSignals(process);
    process.write(test::onePagePdf("/MediaBox [0 0 100 100]"));
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(120'000));

    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(test::TemporaryFolder::read(out), "old");
}

TEST(Interruption, leavesACommandAloneThatIsToOutliveItsTerminal) {
    QProcess process;
    process.setProgram(QStringLiteral(ORVEXCTL));
    process.setArguments({QStringLiteral("apply")});
    process.setChildProcessModifier([] { std::signal(SIGHUP, SIG_IGN); }); // as nohup does
    process.start();
    ASSERT_TRUE(process.waitForStarted());
    awaitReadinessForSignals(process);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGHUP), 0);
    process.write("5\n");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(120'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
}

} // namespace
} // namespace orvex
