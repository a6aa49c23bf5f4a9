#include "ProgressBar.h"

#include "Command.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <stdexcept>

namespace orvex {
namespace {

TEST(ProgressLine, fillsTheTerminalButForItsLastColumn) {
    EXPECT_EQ(progressLine(QStringLiteral("Writing 1/3"), 0.5, 30), QStringLiteral("Writing 1/3 [#####-----]  50%"));
    EXPECT_EQ(progressLine(QStringLiteral("Writing 1/3"), 0, 30), QStringLiteral("Writing 1/3 [----------]   0%"));
    EXPECT_EQ(progressLine(QStringLiteral("Writing 1/3"), 1, 30), QStringLiteral("Writing 1/3 [##########] 100%"));
    EXPECT_EQ(progressLine(QStringLiteral("Writing 1/3"), 0, 1000).size(), 12 + 52 + 5);
}

TEST(ProgressLine, countsTheTwoColumnsOfChineseCharacters) {
    EXPECT_EQ(columnsOf(QStringLiteral("写入 1/3")), 8);
    EXPECT_EQ(progressLine(QStringLiteral("写入 1/3"), 0.5, 27), QStringLiteral("写入 1/3 [#####-----]  50%"));
}

TEST(ProgressLine, leavesOutWhatFindsNoRoom) {
    const QString label = QStringLiteral("Writing 1/3");
    EXPECT_EQ(progressLine(label, 0.5, 25), QStringLiteral("Writing 1/3 [##---]  50%"));
    EXPECT_EQ(progressLine(label, 0.5, 24), QStringLiteral("Writing 1/3  50%"));
    EXPECT_EQ(progressLine(label, 0.5, 17), QStringLiteral("Writing 1/3  50%"));
    EXPECT_EQ(progressLine(label, 0.5, 16), QStringLiteral(" 50%"));
    EXPECT_EQ(progressLine(label, 0.5, 5), QStringLiteral(" 50%"));
    EXPECT_EQ(progressLine(label, 0.5, 4), QString());
    EXPECT_EQ(progressLine(label, 0.5, 0), QString());
}

/// A terminal of 40 columns, its far end as a program sees it.
class Terminal {
public:
    Terminal() : near_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        const struct winsize size { .ws_row = 24, .ws_col = 40, .ws_xpixel = 0, .ws_ypixel = 0 };

        if (near_ < 0 || ::grantpt(near_) != 0 || ::unlockpt(near_) != 0) {
            throw std::runtime_error("there is no terminal to be had");
        }
        far_ = ::open(::ptsname(near_), O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (far_ < 0 || ::ioctl(far_, TIOCSWINSZ, &size) != 0) {
            throw std::runtime_error("the terminal has no far end");
        }
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    ~Terminal() {
        ::close(far_);
        ::close(near_);
    }

    [[nodiscard]] int farEnd() const { return far_; }

    /// What has been written on it since the last call.
    [[nodiscard]] QByteArray read() const {
        QByteArray text;
        char piece[4096];
        for (ssize_t count = 0; (count = ::read(near_, piece, sizeof piece)) > 0;) {
            text.append(piece, count);
        }
        return text;
    }

private:
    int near_;
    int far_ = -1;
};

class DrawnProgress : public ::testing::Test {
protected:
    Terminal terminal_;
    std::chrono::milliseconds time_{0};
    std::optional<ProgressBar> bar_{std::in_place, terminal_.farEnd(),
                                    [this] { return std::chrono::steady_clock::time_point(time_); }};
};

TEST_F(DrawnProgress, isKeptBackForATenthOfASecond) {
    time_ = std::chrono::milliseconds(99);
    bar_->show(QStringLiteral("Reading 1/2"), 0.25);
    EXPECT_EQ(terminal_.read(), QByteArray());
    time_ = std::chrono::milliseconds(100);
    bar_->show(QStringLiteral("Reading 1/2"), 0.5);
    EXPECT_EQ(terminal_.read(), "\rReading 1/2 [##########----------]  50%");
}

TEST_F(DrawnProgress, isRedrawnTenTimesASecond) {
    int count = 0;
    for (; time_ < std::chrono::seconds(1); ++time_) {
        bar_->show(QStringLiteral("Reading 1/2"), 0.5);
        count += terminal_.read().isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(count, 9);
}

TEST_F(DrawnProgress, coversALongerLine) {
    time_ = std::chrono::milliseconds(100);
    bar_->show(QStringLiteral("Reading 1/2"), 0.5);
    time_ = std::chrono::milliseconds(200);
    (void)terminal_.read();
    bar_->show(QString(36, u'x'), 0.5);
    EXPECT_EQ(terminal_.read(), "\r 50%" + QByteArray(35, ' '));
}

TEST_F(DrawnProgress, isErasedAtTheEnd) {
    time_ = std::chrono::milliseconds(100);
    bar_->show(QStringLiteral("Reading 1/2"), 0.5);
    (void)terminal_.read();
    bar_.reset();
    EXPECT_EQ(terminal_.read(), "\r" + QByteArray(39, ' ') + "\r");
}

TEST_F(DrawnProgress, leavesNothingOfShortWork) {
    bar_->show(QStringLiteral("Reading 1/2"), 0.5);
    bar_.reset();
    EXPECT_EQ(terminal_.read(), QByteArray());
}

/// Pixels that take more than a moment to compress.
QByteArray largeTiff() {
    test::TiffFixture tiff{.width = 6000, .height = 5000};
    tiff.pixels.resize(6000LL * 5000 * 3);
    quint32 state = 1;
    for (char& sample : tiff.pixels) {
        state = state * 1664525U + 1013904223U;
        sample = static_cast<char>(state >> 24U);
    }
    return tiff.bytes();
}

class ShownProgress : public ::testing::Test {
protected:
    /// What stands on standard error, a terminal, after `orvexctl roll` of these images.
    QString errorsOfRoll(const QStringList& images, const QString& language) {
        const Terminal terminal;
        QProcess process;
        process.setChildProcessModifier([&] { ::dup2(terminal.farEnd(), STDERR_FILENO); });
        QElapsedTimer time;
        time.start();
        process.start(QStringLiteral(ORVEXCTL),
                      QStringList{QStringLiteral("--language"), language, QStringLiteral("roll"), QStringLiteral("-o"),
                                  folder_.path(QStringLiteral("out.pdf"))} +
                          images);
        QByteArray text;
        while (process.state() != QProcess::NotRunning) {
            process.waitForFinished(10);
            text += terminal.read();
        }
        tenthsOfSecond_ = time.elapsed() / 100 + 1;
        return QString::fromUtf8(text + terminal.read());
    }

    test::TemporaryFolder folder_;
    qint64 tenthsOfSecond_ = 0;
};

TEST_F(ShownProgress, isOneLineThatIsErasedAtTheEnd) {
    const QString image = folder_.write(QStringLiteral("a.tif"), largeTiff());
    const QStringList lines = errorsOfRoll({image}, QStringLiteral("en")).split(u'\r');
    const QStringList drawn = lines.filter(QStringLiteral("1/1 ["));
    EXPECT_FALSE(drawn.filter(QStringLiteral("Writing 1/1 [#")).isEmpty()) << lines.join(u'\n').toStdString();
    EXPECT_LE(drawn.size(), tenthsOfSecond_);
    for (const QString& line : drawn) {
        EXPECT_EQ(columnsOf(line), 39) << line.toStdString();
    }
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[lines.size() - 2], QString(39, u' '));
    EXPECT_EQ(lines.last(), QString());
}

TEST_F(ShownProgress, speaksChinese) {
    const QString image = folder_.write(QStringLiteral("a.tif"), largeTiff());
    EXPECT_TRUE(errorsOfRoll({image}, QStringLiteral("zh-Hans")).contains(QStringLiteral("写入 1/1 [")));
}

TEST_F(ShownProgress, makesWayForAMessage) {
    const QString image = folder_.write(QStringLiteral("a.tif"), largeTiff());
    QStringList images(20, image); // one is read in no time
    images.append(folder_.path(QStringLiteral("b.tif")));
    const QStringList lines = errorsOfRoll(images, QStringLiteral("en")).split(u'\r');
    ASSERT_GE(lines.size(), 5);
    EXPECT_TRUE(lines[1].contains(QRegularExpression(QStringLiteral("^Reading \\d+/21 \\["))));
    EXPECT_EQ(lines[lines.size() - 3], QString(39, u' '));
    EXPECT_TRUE(lines[lines.size() - 2].startsWith(QStringLiteral("b.tif"))) << lines.join(u'\n').toStdString();
    EXPECT_EQ(lines.last(), QStringLiteral("\n"));
}

TEST_F(ShownProgress, isKeptFromWhatIsNoTerminal) {
    const QString image = folder_.write(QStringLiteral("a.tif"), largeTiff());
    const test::CommandResult result = test::runCommand(
        {QStringLiteral("roll"), image, QStringLiteral("-o"), folder_.path(QStringLiteral("out.pdf"))});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
}

} // namespace
} // namespace orvex
