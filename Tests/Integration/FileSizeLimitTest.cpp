// What is left where the disk takes no more of a roll.

#include "Command.h"
#include "IccFixtures.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::runCommand;

/// A picture of 4 x 3 inches whose samples cannot be compressed.
QByteArray picture() {
    test::TiffFixture tiff{.width = 400, .height = 300};
    tiff.density = {100, 100};
    tiff.profile = test::icc::saved(test::icc::rgb(1.8));
    quint32 state = 1;
    for (int sample = 0; sample < 400 * 300 * 3; ++sample) {
        state = state * 1664525U + 1013904223U;
        tiff.pixels.append(static_cast<char>(state >> 24U));
    }
    return tiff.bytes();
}

struct Kind {
    const char* name;
    const char* command;
    bool isConverted;
};

class FileSizeLimit : public ::testing::TestWithParam<Kind> {
protected:
    QString path(const char* name) const { return folder_.path(q(name)); }

    QStringList command() const {
        QStringList arguments{q(GetParam().command)};
        arguments += arguments.first() == q("roll") ? QStringList{path("a.tif"), q("--layout-out"), path("out.json")}
                                                    : QStringList{path("roll.json")};
        arguments += {q("-o"), path("out.pdf")};
        if (GetParam().isConverted) {
            arguments += {q("--output-icc"), path("out.icc"), q("--driver-correction-off")};
        }
        return arguments;
    }

    /// Runs the command with every signal as a shell leaves it and no file allowed to grow beyond a size.
    static CommandResult runWithin(rlim_t bytes, const QStringList& arguments) {
        return runCommand(arguments, {}, q("en"), [bytes] {
            const struct rlimit limit { bytes, bytes };

            std::signal(SIGXFSZ, SIG_DFL);
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
    }

    test::TemporaryFolder folder_;
};

TEST_P(FileSizeLimit, isAFailureThatLeavesTheEarlierFilesAndNoOther) {
    folder_.write(q("a.tif"), picture());
    folder_.write(q("out.icc"), test::icc::saved(test::icc::cmyk()));
    ASSERT_EQ(
        runCommand({q("roll"), path("a.tif"), q("-o"), path("whole.pdf"), q("--layout-out"), path("roll.json")}).status,
        0);
    ASSERT_EQ(runCommand(command()).status, 0);
    const auto wholeBytes = static_cast<rlim_t>(test::TemporaryFolder::read(path("out.pdf")).size());
    constexpr rlim_t amidThePicture = 100 * 1024;
    ASSERT_GT(wholeBytes, 2 * amidThePicture);
    folder_.write(q("out.pdf"), "old");
    folder_.write(q("out.json"), "old layout");
    const QStringList names = folder_.names();
    for (const rlim_t bytes : {amidThePicture, wholeBytes - 1}) {
        SCOPED_TRACE(bytes);
        const CommandResult result = runWithin(bytes, command());
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_EQ(result.errors, path("out.pdf") + q(": File too large\n"));
        EXPECT_EQ(test::TemporaryFolder::read(path("out.pdf")), "old");
        EXPECT_EQ(test::TemporaryFolder::read(path("out.json")), "old layout");
        EXPECT_EQ(folder_.names(), names);
    }
    EXPECT_EQ(runWithin(wholeBytes, command()).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, FileSizeLimit,
                         ::testing::Values(Kind{"roll", "roll", false}, Kind{"convertedRoll", "roll", true},
                                           Kind{"render", "render", false}, Kind{"convertedRender", "render", true}),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace orvex
