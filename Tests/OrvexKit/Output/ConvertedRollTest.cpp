// A roll whose artworks are converted, read back by a reader of another house.

#include "Color/IccProfile.h"
#include "Files/Paths.h"
#include "IccFixtures.h"
#include "Imaging/ImageSource.h"
#include "OrvexError.h"
#include "Output/ColorProcessor.h"
#include "Output/RollPDFRenderer.h"
#include "QpdfReading.h"
#include "RasterReading.h"
#include "Sha256.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QRandomGenerator>
#include <QScopeGuard>

#include <gtest/gtest.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <thread>

namespace {

/// How many processors the machine pretends to have; none is the truth.
std::atomic<int> pretendedProcessors = 0;

} // namespace

/// Takes the place of the system's own, by which the standard library tells how many threads are worth having.
int get_nprocs() noexcept {
    const int pretended = pretendedProcessors;
    return pretended > 0 ? pretended : static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN));
}

namespace orvex {
namespace {

using namespace test;
using platform::Raster;

const QByteArray& rgbICC() {
    static const QByteArray data = icc::saved(icc::rgb(1.8));
    return data;
}

const QByteArray& grayICC() {
    static const QByteArray data = icc::saved(icc::gray(2.2));
    return data;
}

const QByteArray& cmykICC() {
    static const QByteArray data = icc::saved(icc::cmyk());
    return data;
}

const QByteArray& outputRgbICC() {
    static const QByteArray data = icc::saved(icc::rgb(2.4, cmsSigOutputClass));
    return data;
}

/// What the samples of a file mean.
struct Form {
    const char* name;
    quint16 samples;
    quint16 bits;
    quint16 photometric; ///< as in TiffFixture
    const QByteArray& (*profile)();
    bool hasAlpha = false;
};

constexpr Form gray8{"gray, 8 bits", 1, 8, 1, grayICC};
constexpr Form gray16{"gray, 16 bits", 1, 16, 1, grayICC};
constexpr Form rgb8{"RGB, 8 bits", 3, 8, 2, rgbICC};
constexpr Form rgb16{"RGB, 16 bits", 3, 16, 2, rgbICC};
constexpr Form rgba8{"RGB and alpha, 8 bits", 4, 8, 2, rgbICC, true};
constexpr Form rgba16{"RGB and alpha, 16 bits", 4, 16, 2, rgbICC, true};
constexpr Form cmyk8{"CMYK, 8 bits", 4, 8, 5, cmykICC};

qsizetype rowBytes(const Form& form, qsizetype width) {
    return width * form.samples * form.bits / 8;
}

TiffFixture file(const Form& form, qsizetype width, const QByteArray& pixels) {
    return {.width = static_cast<quint32>(width),
            .height = static_cast<quint32>(pixels.size() / rowBytes(form, width)),
            .samples = form.samples,
            .bits = form.bits,
            .photometric = form.photometric,
            .hasAlpha = form.hasAlpha,
            .profile = form.profile(),
            .pixels = pixels};
}

/// The same at every call, and longer noise begins with the shorter.
QByteArray noise(qsizetype size) {
    QRandomGenerator random(1);
    QByteArray bytes;
    while (bytes.size() < size) {
        bytes += static_cast<char>(random());
    }
    return bytes;
}

template <typename Sample>
QByteArray bytesOf(const std::vector<Sample>& samples) {
    return {reinterpret_cast<const char*>(samples.data()), static_cast<qsizetype>(samples.size() * sizeof(Sample))};
}

ColorWorkflow appManaged(ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric) {
    return {ColorManagementMode::appManaged, intent, true};
}

/// The picture of a file, converted as its roll is to hold it.
Raster converted(const QString& path, const QByteArray& outputICC,
                 ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric) {
    const Raster raster = platform::ImageSource::open(path)->full();
    const auto profile = SourceColorProfile::detect(QUrl::fromLocalFile(path), raster);
    return ColorProcessor::apply(raster, profile, appManaged(intent), outputICC);
}

/// Samples in the order of the bytes that a PDF has.
QByteArray bigEndian(QByteArray samples, int bits) {
    for (qsizetype i = 0; bits == 16 && i < samples.size(); i += 2) {
        std::swap(samples[i], samples[i + 1]);
    }
    return samples;
}

QByteArray rowsForPdf(const Raster& raster) {
    return bigEndian(pixelsOf(raster), raster.format().bitsPerComponent);
}

qsizetype distinctPixels(const QByteArray& pixels, qsizetype pixelBytes) {
    std::set<QByteArray> distinct;
    for (qsizetype at = 0; at < pixels.size(); at += pixelBytes) {
        distinct.insert(pixels.sliced(at, pixelBytes));
    }
    return static_cast<qsizetype>(distinct.size());
}

class ConvertedRoll : public testing::Test {
protected:
    QString write(const TiffFixture& tiff) {
        return sources_.write(QStringLiteral("%1.tif").arg(++fileCount_), tiff.bytes());
    }

    QString write(const Form& form, qsizetype width, const QByteArray& pixels) {
        return write(file(form, width, pixels));
    }

    /// A small picture of that form.
    QString write(const Form& form) { return write(form, 4, noise(2 * rowBytes(form, 4))); }

    /// The files one below the other, ten inches wide each.
    static RollLayout layoutOf(const QStringList& paths) {
        RollLayout layout;
        for (const QString& path : paths) {
            const Raster raster = platform::ImageSource::open(path)->full();
            layout.append(RollArtwork::make({.id = QUuid::createUuid(),
                                             .sourceURL = QUrl::fromLocalFile(path),
                                             .pixelWidth = raster.width(),
                                             .pixelHeight = raster.height(),
                                             .widthInches = 10}),
                          0.0);
        }
        return layout;
    }

    QList<RollSourceAudit> render(const QStringList& paths, const ColorWorkflow& workflow,
                                  const std::optional<QByteArray>& outputICC) {
        return RollPDFRenderer::render(layoutOf(paths), QStringLiteral("Test"), QUrl::fromLocalFile(out_), workflow,
                                       outputICC);
    }

    /// The pixels that the PDF shows of one converted file.
    QByteArray pixelsInPdf(const QString& path, const QByteArray& outputICC,
                           ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric) {
        (void)render({path}, appManaged(intent), outputICC);
        return QpdfReading::data(QpdfReading(out_).images().at(0));
    }

    /// The message of a refusal that leaves an earlier file, and the folder, as they were.
    QString refusal(const QStringList& paths, const ColorWorkflow& workflow,
                    const std::optional<QByteArray>& outputICC) {
        folder_.write(QStringLiteral("out.pdf"), "old");
        QString message = QStringLiteral("no refusal");
        try {
            (void)render(paths, workflow, outputICC);
        } catch (const OrvexError& error) {
            message = error.message();
        }
        EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("out.pdf")});
        EXPECT_EQ(TemporaryFolder::read(out_), "old");
        return message;
    }

    TemporaryFolder sources_;
    TemporaryFolder folder_;
    QString out_ = folder_.path(QStringLiteral("out.pdf"));

private:
    int fileCount_ = 0;
};

// The pixels

TEST_F(ConvertedRoll, HoldsExactlyTheRowsOfTheConversionAtAnyHeight) {
    constexpr qsizetype width = 5;
    constexpr qsizetype most = 513;
    for (const Form& form : {gray8, gray16, rgb8, rgb16, rgba8, rgba16, cmyk8}) {
        const QByteArray pixels = noise(most * rowBytes(form, width));
        const QByteArray whole = rowsForPdf(converted(write(form, width, pixels), cmykICC()));
        for (const qsizetype height : {qsizetype{255}, qsizetype{256}, qsizetype{257}, most}) {
            SCOPED_TRACE(testing::Message() << form.name << ", " << height << " rows");
            const QString path = write(form, width, pixels.first(height * rowBytes(form, width)));
            const QByteArray rows = rowsForPdf(converted(path, cmykICC()));
            EXPECT_EQ(rows, whole.first(height * width * 4 * form.bits / 8));
            EXPECT_EQ(pixelsInPdf(path, cmykICC()), rows);
        }
        const QString path = write(form, width, pixels.first(257 * rowBytes(form, width)));
        EXPECT_EQ(pixelsInPdf(path, outputRgbICC()), rowsForPdf(converted(path, outputRgbICC()))) << form.name;
    }
}

TEST_F(ConvertedRoll, GivesTheSameRowsToAnyNumberOfThreads) {
    constexpr qsizetype width = 61;
    for (const Form& form : {gray8, rgba16, cmyk8}) {
        const Raster raster = converted(write(form, width, noise(513 * rowBytes(form, width))), cmykICC());
        const QByteArray alone = pixelsOf(raster);
        for (const std::size_t threadCount : {1U, 2U, 4U}) {
            std::vector<QByteArray> results(threadCount);
            {
                std::vector<std::jthread> threads;
                for (QByteArray& result : results) {
                    threads.emplace_back([&result, &raster] { result = pixelsOf(raster); });
                }
            }
            EXPECT_EQ(results, std::vector(threadCount, alone)) << form.name << ", " << threadCount << " threads";
        }
    }
}

TEST_F(ConvertedRoll, IsTheSameFileOnAnyNumberOfProcessors) {
    constexpr qsizetype width = 101;
    const auto truth = qScopeGuard([] { pretendedProcessors = 0; });
    QStringList paths;
    for (const Form& form : {rgb8, rgba16, cmyk8}) {
        paths.append(write(form, width, noise(1025 * rowBytes(form, width))));
    }
    std::vector<QByteArray> files;
    for (const int processors : {1, 2, 4}) {
        pretendedProcessors = processors;
        ASSERT_EQ(std::thread::hardware_concurrency(), static_cast<unsigned>(processors));
        (void)render(paths, appManaged(), cmykICC());
        files.push_back(TemporaryFolder::read(out_));
    }
    EXPECT_TRUE(files[0] == files[1]);
    EXPECT_TRUE(files[0] == files[2]);
}

TEST_F(ConvertedRoll, ShowsHalfTransparentPatchesAsTheirFlattenedColors) {
    constexpr qsizetype width = 8;
    constexpr qsizetype height = 300;
    const auto patch = [](auto colors) {
        decltype(colors) samples;
        for (qsizetype i = 0; i < width * height; ++i) {
            samples.insert(samples.end(), colors.begin(), colors.end());
        }
        return bytesOf(samples);
    };
    // (colour x alpha + white x (full - alpha)) / full, to the nearest.
    const QByteArray half8 = patch(std::vector<quint8>{0, 100, 200, 128});
    const QByteArray flat8 = patch(std::vector<quint8>{127, 177, 227});
    const QByteArray half16 = patch(std::vector<quint16>{0, 1000, 60000, 32768});
    const QByteArray flat16 = patch(std::vector<quint16>{32767, 33267, 62767});
    for (const QByteArray& output : {cmykICC(), outputRgbICC()}) {
        const QByteArray shown8 = pixelsInPdf(write(rgba8, width, half8), output);
        EXPECT_EQ(shown8, pixelsInPdf(write(rgb8, width, flat8), output));
        EXPECT_EQ(distinctPixels(shown8, output == cmykICC() ? 4 : 3), 1);
        const QByteArray shown16 = pixelsInPdf(write(rgba16, width, half16), output);
        EXPECT_EQ(shown16, pixelsInPdf(write(rgb16, width, flat16), output));
        EXPECT_EQ(distinctPixels(shown16, output == cmykICC() ? 8 : 6), 1);
    }
    EXPECT_FALSE(QpdfReading(out_).images().at(0).getDict().hasKey("/SMask"));
}

TEST_F(ConvertedRoll, KeepsMoreLevelsOfARampThanTwelveBitsHave) {
    constexpr qsizetype levels = 65536;
    constexpr qsizetype width = 256;
    for (const Form& form : {gray16, rgb16}) {
        std::vector<quint16> ramp;
        for (qsizetype level = 0; level < levels; ++level) {
            ramp.insert(ramp.end(), form.samples, static_cast<quint16>(level));
        }
        const QString path = write(form, width, bytesOf(ramp));
        for (const QByteArray& output : {cmykICC(), outputRgbICC()}) {
            SCOPED_TRACE(testing::Message() << form.name << " to " << (output == cmykICC() ? "CMYK" : "RGB"));
            const QByteArray rows = rowsForPdf(converted(path, output));
            EXPECT_GT(distinctPixels(rows, output == cmykICC() ? 8 : 6), 4096);
            EXPECT_EQ(pixelsInPdf(path, output), rows);
        }
    }
}

TEST_F(ConvertedRoll, TakesShallowAndIndexedPicturesForOnesOfEightBits) {
    struct Case {
        TiffFixture tiff;
        Form form;         ///< of the same picture in whole bytes
        const char* bytes; ///< its two rows
    };

    const TiffFixture gray{.height = 2, .samples = 1, .photometric = 1, .profile = grayICC()};
    TiffFixture twoTones = gray;
    twoTones.width = 8;
    twoTones.bits = 1;
    twoTones.pixels = QByteArray::fromHex("a53c");
    TiffFixture sixteenTones = gray;
    sixteenTones.width = 8;
    sixteenTones.bits = 4;
    sixteenTones.pixels = QByteArray::fromHex("0123456789abcdef");
    const TiffFixture indexed{.width = 4,
                              .height = 2,
                              .samples = 1,
                              .bits = 2,
                              .photometric = 3,
                              .palette = {0x1111, 0x4444, 0x7777, 0xaaaa, // red
                                          0x2222, 0x5555, 0x8888, 0xbbbb, // green
                                          0x3333, 0x6666, 0x9999, 0xcccc},
                              .profile = rgbICC(),
                              .pixels = QByteArray::fromHex("1be4")};
    for (const Case& each : {Case{twoTones, gray8, "ff00ff0000ff00ff0000ffffffff0000"},
                             Case{sixteenTones, gray8, "00112233445566778899aabbccddeeff"},
                             Case{indexed, rgb8, "112233445566778899aabbccaabbcc778899445566112233"}}) {
        SCOPED_TRACE(testing::Message() << each.tiff.bits << " bits, " << each.form.name);
        const QString shallow = write(each.tiff);
        const QString deep = write(each.form, each.tiff.width, QByteArray::fromHex(each.bytes));
        for (const QByteArray& output : {cmykICC(), outputRgbICC()}) {
            const QByteArray expected = pixelsInPdf(deep, output);
            const auto audits = render({shallow}, appManaged(), output);
            QpdfReading pdf(out_);
            EXPECT_EQ(QpdfReading::data(pdf.images().at(0)), expected);
            EXPECT_EQ(pdf.images().at(0).getDict().getKey("/BitsPerComponent").getIntValue(), 8);
            EXPECT_EQ(audits.first().renderedBitsPerComponent, 8);
        }
    }
}

// What the PDF says of them

TEST_F(ConvertedRoll, CarriesTheOutputProfileOnceWithTheDepthOfEachSource) {
    const QStringList paths{write(rgb8), write(rgb16), write(gray16), write(cmyk8), write(rgba8)};
    for (const QByteArray& output : {cmykICC(), outputRgbICC()}) {
        const int components = output == cmykICC() ? 4 : 3;
        const auto audits = render(paths, appManaged(), output);
        QpdfReading pdf(out_);
        auto images = pdf.images();
        ASSERT_EQ(images.size(), 5U);
        std::set<int> profiles;
        std::multiset<int> depths;
        for (QPDFObjectHandle& image : images) {
            QPDFObjectHandle space = image.getDict().getKey("/ColorSpace");
            EXPECT_EQ(space.getArrayItem(0).getName(), "/ICCBased");
            EXPECT_EQ(space.getArrayItem(1).getDict().getKey("/N").getIntValue(), components);
            EXPECT_EQ(QpdfReading::data(space.getArrayItem(1)), output);
            profiles.insert(space.getArrayItem(1).getObjectID());
            depths.insert(static_cast<int>(image.getDict().getKey("/BitsPerComponent").getIntValue()));
            EXPECT_FALSE(image.getDict().hasKey("/SMask"));
            EXPECT_FALSE(image.getDict().hasKey("/Decode"));
        }
        EXPECT_EQ(profiles.size(), 1U);
        EXPECT_EQ(depths, (std::multiset{8, 8, 8, 16, 16}));
        QList<qint64> auditedBits;
        for (const RollSourceAudit& audit : audits) {
            auditedBits.append(audit.renderedBitsPerComponent);
            EXPECT_EQ(audit.renderedColorModel, components == 4 ? QStringLiteral("CMYK") : QStringLiteral("RGB"));
        }
        EXPECT_EQ(auditedBits, (QList<qint64>{8, 16, 16, 8, 8}));
        EXPECT_EQ(audits[0].sourceProfileSHA256, platform::sha256Hex(rgbICC()));
        EXPECT_EQ(audits[2].sourceProfileSHA256, platform::sha256Hex(grayICC()));
        EXPECT_EQ(audits[3].sourceProfileSHA256, platform::sha256Hex(cmykICC()));
    }
}

TEST_F(ConvertedRoll, StatesTheIntentAtEveryImage) {
    const std::vector<std::pair<ColorRenderingIntent, QByteArray>> names{
        {ColorRenderingIntent::perceptual, "/Perceptual ri "},
        {ColorRenderingIntent::relativeColorimetric, "/RelativeColorimetric ri "},
        {ColorRenderingIntent::saturation, "/Saturation ri "},
        {ColorRenderingIntent::absoluteColorimetric, "/AbsoluteColorimetric ri "}};
    const QStringList paths{write(rgb8), write(gray8)};
    std::set<QByteArray> shown;
    for (const auto& [intent, name] : names) {
        (void)render(paths, appManaged(intent), cmykICC());
        QpdfReading pdf(out_);
        EXPECT_EQ(pdf.content().count(name), 2) << pdf.content().toStdString();
        EXPECT_EQ(pdf.content().count(" ri "), 2);
        EXPECT_EQ(QpdfReading::data(pdf.images().at(0)), rowsForPdf(converted(paths[0], cmykICC(), intent)));
        shown.insert(QpdfReading::data(pdf.images().at(0)));
    }
    EXPECT_EQ(shown.size(), names.size()) << "every intent has a table of its own";
}

TEST_F(ConvertedRoll, LeavesPicturesTheirOwnProfilesIfTheDriverManagesColor) {
    const QStringList paths{write(rgb8), write(rgb16), write(gray8), write(cmyk8)};
    const auto audits = render(paths, {}, cmykICC());
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.content().count(" ri "), 0);
    std::map<QByteArray, std::set<int>> objects;
    std::multiset<long long> components;
    for (QPDFObjectHandle& image : pdf.images()) {
        QPDFObjectHandle profile = image.getDict().getKey("/ColorSpace").getArrayItem(1);
        objects[QpdfReading::data(profile)].insert(profile.getObjectID());
        components.insert(profile.getDict().getKey("/N").getIntValue());
    }
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_EQ(objects[rgbICC()].size(), 1U) << "two images of equal profiles share one object";
    EXPECT_EQ(objects[grayICC()].size(), 1U);
    EXPECT_EQ(objects[cmykICC()].size(), 1U);
    EXPECT_EQ(components, (std::multiset<long long>{1, 3, 3, 4}));
    EXPECT_EQ(audits[1].renderedBitsPerComponent, 16);
    EXPECT_EQ(audits[2].renderedColorModel, QStringLiteral("Gray"));
    EXPECT_EQ(audits[3].renderedColorModel, QStringLiteral("CMYK"));
}

// Refusals

const QString tooDeep = QStringLiteral(
    "ICC conversion supports 8/16-bit integer images. Convert floating-point or higher-bit-depth images in creative "
    "software first. The app will not silently reduce them to 8 bits.");
const QString untaggedSource =
    QStringLiteral("The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it correctly "
                   "in your creative software or use driver-managed color.");
const QString badOutputClass =
    QStringLiteral("The output ICC must be an RGB/CMYK printer, display or color-space profile. Device-link, abstract "
                   "and named-color profiles are not accepted.");
const QString damagedProfile =
    QStringLiteral("ColorSync could not validate this ICC profile. It may be damaged or unsupported.");

const QString noTransform =
    QStringLiteral("ColorSync could not create a transform for the selected ICC profile and rendering intent.");

TEST_F(ConvertedRoll, RefusesSourcesWhoseDepthItCannotKeep) {
    const QString deepInk =
        QStringLiteral("This 16-bit CMYK source cannot currently be normalized safely. Use driver-managed color or "
                       "convert it in creative software. The app will not silently lower bit depth.");
    const Form cmyk16{"CMYK, 16 bits", 4, 16, 5, cmykICC};
    const Form rgb32{"RGB, 32 bits", 3, 32, 2, rgbICC};
    EXPECT_EQ(refusal({write(cmyk16)}, appManaged(), cmykICC()), deepInk);
    EXPECT_EQ(refusal({write(rgb32)}, appManaged(), cmykICC()), tooDeep);
    TiffFixture floats = file(rgb32, 4, QByteArray(2 * rowBytes(rgb32, 4), '\0'));
    floats.sampleFormat = 3;
    EXPECT_EQ(refusal({write(floats)}, appManaged(), cmykICC()), tooDeep);
}

TEST_F(ConvertedRoll, RefusesDepthsThatItCannotKeepBeforeAnythingIsDrawn) {
    using RollPDFRenderer::RenderProgress;
    using RollPDFRenderer::RenderStage;
    constexpr qsizetype width = 4;
    const auto zeros = [](const Form& form) { return file(form, width, QByteArray(2 * rowBytes(form, width), '\0')); };
    const Form rgb32{"RGB, 32 bits", 3, 32, 2, rgbICC};
    TiffFixture floats = zeros(rgb32);
    floats.sampleFormat = 3;
    for (const TiffFixture& deep : {zeros({"CMYK, 16 bits", 4, 16, 5, cmykICC}), zeros(rgb32), floats}) {
        SCOPED_TRACE(testing::Message() << deep.samples << " samples of format " << deep.sampleFormat);
        QList<RenderProgress> told;
        const auto report = [&](const RenderProgress& progress) {
            told.append(progress);
            EXPECT_EQ(folder_.names(), QStringList()) << "no file until everything is proven";
        };
        const RollLayout layout = layoutOf({write(rgb8), write(deep)});
        EXPECT_THROW(
            (void)RollPDFRenderer::render(layout, {}, QUrl::fromLocalFile(out_), appManaged(), cmykICC(), {}, report),
            OrvexError);
        EXPECT_EQ(told, (QList<RenderProgress>{{RenderStage::preflight, 1, 2, 0, 2},
                                               {RenderStage::preflight, 1, 2, 2, 2},
                                               {RenderStage::preflight, 2, 2, 0, 2},
                                               {RenderStage::preflight, 2, 2, 2, 2}}));
        EXPECT_EQ(folder_.names(), QStringList());
    }
}

TEST_F(ConvertedRoll, RefusesSourcesWithoutAProfileThatFitsThem) {
    TiffFixture untagged = file(rgb8, 4, noise(24));
    untagged.profile.clear();
    EXPECT_EQ(refusal({write(untagged)}, appManaged(), cmykICC()), untaggedSource);
    for (const QByteArray& unfit : {grayICC(), cmykICC(), icc::saved(icc::deviceLink()), icc::saved(icc::lab()),
                                    rgbICC().chopped(1), QByteArray(200, 'x')}) {
        TiffFixture wrong = file(rgb8, 4, noise(24));
        wrong.profile = unfit;
        EXPECT_EQ(refusal({write(wrong)}, appManaged(), cmykICC()), untaggedSource);
    }
}

TEST_F(ConvertedRoll, RefusesWhatTheOperatorLeftOpen) {
    ColorWorkflow unconfirmed = appManaged();
    unconfirmed.driverColorCorrectionDisabledConfirmed = false;
    EXPECT_EQ(refusal({write(rgb8)}, unconfirmed, cmykICC()),
              QStringLiteral("To avoid double color management, first turn off color correction in Canon print "
                             "settings and record your confirmation in the app. This record does not change or "
                             "verify the driver."));
    EXPECT_EQ(refusal({write(rgb8)}, appManaged(), std::nullopt),
              QStringLiteral("App-managed color requires an output ICC profile matching the media and quality."));
}

/// The profile with the count of grid points of one of its 16-bit tables changed (ICC.1:2001-04, 6.1.2 and 6.5.7).
QByteArray withGridPoints(QByteArray profile, const char* tag, int points) {
    constexpr qsizetype directory = 132;
    constexpr qsizetype gridPointsOffset = 10;
    const qsizetype entry = profile.indexOf(tag, directory);
    const auto table = qFromBigEndian<quint32>(profile.constData() + entry + 4);
    EXPECT_EQ(profile.sliced(table, 4), "mft2");
    profile[table + gridPointsOffset] = static_cast<char>(points);
    return profile;
}

/// The profile cut off behind its tags' table, with a header that says so.
QByteArray withoutTagData(const QByteArray& profile) {
    const QByteArray cut = profile.first(400);
    return icc::patched(cut, 0, static_cast<quint32>(cut.size()));
}

TEST_F(ConvertedRoll, RefusesOutputProfilesThatAreNoneOrUnusable) {
    struct Case {
        const char* name;
        QByteArray profile;
        QString message;
    };

    const std::vector<Case> cases{
        {"gray", grayICC(), badOutputClass},
        {"scanner", icc::saved(icc::rgb(1.8, cmsSigInputClass)), badOutputClass},
        {"device link", icc::saved(icc::deviceLink()), badOutputClass},
        {"named colours", icc::saved(icc::namedColor()), badOutputClass},
        {"abstract", icc::saved(icc::abstract()), badOutputClass},
        {"Lab", icc::saved(icc::lab()), badOutputClass},
        {"nothing", QByteArray(), QStringLiteral("Invalid ICC header or signature.")},
        {"a header only", cmykICC().first(131), QStringLiteral("Invalid ICC header or signature.")},
        {"no signature", QByteArray(cmykICC()).replace(36, 4, "abcd"),
         QStringLiteral("Invalid ICC header or signature.")},
        {"cut off", cmykICC().chopped(1), damagedProfile},
        {"tags without data", withoutTagData(cmykICC()), damagedProfile},
        {"an absurdly large table", withGridPoints(cmykICC(), "A2B1", 255), damagedProfile},
        {"a table of one point", withGridPoints(cmykICC(), "A2B1", 1), damagedProfile},
        {"an absurdly large table of inks", withGridPoints(cmykICC(), "B2A1", 255), damagedProfile},
        {"a table of inks of one point", withGridPoints(cmykICC(), "B2A1", 1), damagedProfile},
        {"an unknown class", QByteArray(cmykICC()).replace(12, 4, "abcd"), damagedProfile},
        {"no way from the connection space", icc::saved(icc::cmyk(cmsSigOutputClass, icc::Tables::toConnectionOnly)),
         noTransform},
    };
    const QString path = write(rgb8);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(refusal({path}, appManaged(), each.profile), each.message);
    }
}

TEST_F(ConvertedRoll, RefusesTheLastArtworkBeforeItTouchesTheDestination) {
    // Without the destination's folder nothing can be written, and that would be the message if it were tried.
    out_ = folder_.path(QStringLiteral("missing/out.pdf"));
    const auto told = [this](const QStringList& paths, const std::optional<QByteArray>& outputICC) {
        try {
            (void)render(paths, appManaged(), outputICC);
        } catch (const OrvexError& error) {
            return error.message();
        }
        return QStringLiteral("no refusal");
    };
    TiffFixture untagged = file(rgb8, 4, noise(24));
    untagged.profile.clear();
    EXPECT_EQ(told({write(rgb8), write(untagged)}, cmykICC()), untaggedSource);
    EXPECT_EQ(told({write(rgb8)}, grayICC()), badOutputClass);
    EXPECT_EQ(told({write(rgb8)}, cmykICC()),
              QStringLiteral("Cannot create the roll PDF. Check permissions at the save location."));
    EXPECT_EQ(folder_.names(), QStringList());
}

} // namespace
} // namespace orvex
