#include "Color/IccProfile.h"
#include "IccFixtures.h"
#include "Imaging/PngWriter.h"
#include "Interrupted.h"
#include "JpegFixture.h"
#include "Output/RollPDFRenderer.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <gtest/gtest.h>

#include <chrono>

namespace orvex {
namespace {

using std::chrono::steady_clock;

constexpr unsigned width = 3'000;
constexpr unsigned height = 2'000;

QByteArray noise(int samplesPerPixel = 3) {
    QByteArray pixels(qsizetype{width} * height * samplesPerPixel, Qt::Uninitialized);
    quint32 state = 1;
    for (char& sample : pixels) {
        state = state * 1664525U + 1013904223U;
        sample = static_cast<char>(state >> 24U);
    }
    return pixels;
}

QByteArray jpeg(test::JpegFixture::Coding coding) {
    return test::JpegFixture{.width = width,
                             .height = height,
                             .coding = coding,
                             .quality = 75,
                             .lumaSampling = 2,
                             .profile = platform::sRgbProfileData(),
                             .pixels = noise()}
        .bytes();
}

QByteArray baselineJpeg() {
    return jpeg(test::JpegFixture::Coding::baseline);
}

/// A file that is read to its end before there is a row.
QByteArray progressiveJpeg() {
    return jpeg(test::JpegFixture::Coding::progressive);
}

/// With alpha, so that its rows are read twice, and without a profile.
QByteArray png() {
    const QByteArray pixels = noise(4);
    return platform::encodePng(width, height, {.model = platform::ColorModel::rgb, .hasAlpha = true},
                               std::as_bytes(std::span(pixels)));
}

QByteArray tiff() {
    return test::TiffFixture{
        .width = width, .height = height, .profile = platform::sRgbProfileData(), .pixels = noise()}
        .bytes();
}

/// Hardly two pixels of one colour, and none of a colour like another's.
QByteArray sixteenBitTiff() {
    return test::TiffFixture{
        .width = width, .height = height, .bits = 16, .profile = platform::sRgbProfileData(), .pixels = noise(6)}
        .bytes();
}

struct Kind {
    const char* name;
    QByteArray (*file)();
    ColorManagementMode mode = ColorManagementMode::driverManaged;
};

class StoppedRendering : public ::testing::TestWithParam<Kind> {
protected:
    void SetUp() override {
        const QString file = sources_.write(QStringLiteral("picture"), GetParam().file());
        layout_ = RollLayout({RollArtwork::make({.id = QUuid::createUuid(),
                                                 .sourceURL = QUrl::fromLocalFile(file),
                                                 .pixelWidth = width,
                                                 .pixelHeight = height,
                                                 .widthInches = 40})});
    }

    void render(const std::stop_token& stop, const RollPDFRenderer::ProgressReport& report) const {
        (void)RollPDFRenderer::render(layout_, {}, QUrl::fromLocalFile(out_),
                                      {.mode = GetParam().mode, .driverColorCorrectionDisabledConfirmed = true},
                                      test::icc::saved(test::icc::cmyk()), stop, report);
    }

    test::TemporaryFolder sources_;
    test::TemporaryFolder folder_;
    QString out_ = folder_.path(QStringLiteral("out.pdf"));
    RollLayout layout_;
};

TEST_P(StoppedRendering, endsSoonInEveryStageAndLeavesNothingBehind) {
    using RollPDFRenderer::RenderStage;
    for (const RenderStage stage : {RenderStage::preflight, RenderStage::drawing}) {
        for (const double fraction : {0.0, 0.5}) {
            SCOPED_TRACE(testing::Message() << "stage " << static_cast<int>(stage) << " from " << fraction);
            std::stop_source stop;
            steady_clock::time_point asked;
            const auto report = [&](const RollPDFRenderer::RenderProgress& progress) {
                if (progress.stage == stage && progress.fraction() >= fraction && !stop.stop_requested()) {
                    asked = steady_clock::now();
                    stop.request_stop();
                }
            };
            EXPECT_THROW(render(stop.get_token(), report), platform::Interrupted);
            EXPECT_LT(steady_clock::now() - asked, std::chrono::seconds(2)); // a busy machine has time to spare
            EXPECT_EQ(folder_.names(), QStringList());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, StoppedRendering,
                         ::testing::Values(Kind{"convertedJpeg", baselineJpeg, ColorManagementMode::appManaged},
                                           Kind{"convertedTiff", sixteenBitTiff, ColorManagementMode::appManaged},
                                           Kind{"progressiveJpeg", progressiveJpeg}, Kind{"png", png},
                                           Kind{"tiff", tiff}),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace orvex
