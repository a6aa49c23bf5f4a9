#include "Command.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

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

TEST(Interruption, endsARenderingAndLeavesNothingBehind) {
    const test::TemporaryFolder sources;
    const test::TemporaryFolder folder;
    const QString image = sources.write(QStringLiteral("a.tif"), largePicture());
    const QString out = folder.write(QStringLiteral("out.pdf"), "old");

    QProcess process;
    process.start(QStringLiteral(ORVEXCTL), {QStringLiteral("roll"), image, QStringLiteral("-o"), out});
    ASSERT_TRUE(process.waitForStarted());
    // The temporary file tells that the PDF is being written.
    QElapsedTimer patience;
    patience.start();
    while (folder.names().size() < 2 && process.state() == QProcess::Running && patience.elapsed() < 120'000) {
        QThread::msleep(1);
    }
    ASSERT_EQ(process.state(), QProcess::Running);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(120'000));

    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(folder.names(), QStringList{QStringLiteral("out.pdf")});
    EXPECT_EQ(test::TemporaryFolder::read(out), "old");
}

} // namespace
} // namespace orvex
