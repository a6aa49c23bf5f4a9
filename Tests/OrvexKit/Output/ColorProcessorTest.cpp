#include "Output/ColorProcessor.h"

#include "Color/ColorConverter.h"
#include "Color/ColorTransform.h"
#include "IccFixtures.h"
#include "Imaging/ImageError.h"
#include "InChinese.h"
#include "Interrupted.h"
#include "OrvexError.h"
#include "RasterReading.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#if defined(__SANITIZE_ADDRESS__)
// A buffer that cannot be had is one of the refusals; the allocator must say so as it does without the sanitizer.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
#endif

namespace orvex {

using namespace test;
using platform::ColorModel;
using platform::PixelFormat;
using platform::Raster;
using platform::RowSink;
using platform::RowStrip;

namespace {

// The pictures and profiles of these tests.

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

const QByteArray& iccOf(ColorModel model) {
    return model == ColorModel::gray ? grayICC() : model == ColorModel::rgb ? rgbICC() : cmykICC();
}

/// Rows out of memory, in strips of any height.
class MemoryRows : public platform::RowSource {
public:
    MemoryRows(QByteArray pixels, qint64 rowBytes, qint64 stripRows)
        : pixels_(std::move(pixels)),
          rowBytes_(rowBytes),
          stripRows_(stripRows) {}

    void rows(const RowSink& sink) const override {
        const auto bytes = std::as_bytes(std::span(pixels_.constData(), static_cast<std::size_t>(pixels_.size())));
        const qint64 height = pixels_.size() / rowBytes_;
        for (qint64 row = 0; row < height; row += stripRows_) {
            const qint64 count = std::min(stripRows_, height - row);
            sink({row, count,
                  bytes.subspan(static_cast<std::size_t>(row * rowBytes_),
                                static_cast<std::size_t>(count * rowBytes_))});
        }
    }

private:
    QByteArray pixels_;
    qint64 rowBytes_;
    qint64 stripRows_;
};

/// Rows that come by a function.
class ScriptedRows : public platform::RowSource {
public:
    explicit ScriptedRows(std::function<void(const RowSink&)> script) : script_(std::move(script)) {}

    void rows(const RowSink& sink) const override { script_(sink); }

private:
    std::function<void(const RowSink&)> script_;
};

QByteArray noise(qint64 size) {
    QByteArray bytes(size, '\0');
    quint32 state = 1;
    for (char& each : bytes) {
        state = state * 1664525U + 1013904223U;
        each = static_cast<char>(state >> 24);
    }
    return bytes;
}

Raster picture(qint64 width, const QByteArray& pixels, const PixelFormat& format, qint64 stripRows = 256,
               int orientation = 1) {
    const qint64 rowBytes = width * format.bytesPerPixel();
    return {width,  pixels.size() / rowBytes, orientation,
            format, iccOf(format.model),      std::make_shared<MemoryRows>(pixels, rowBytes, stripRows)};
}

/// A picture whose pixels nobody asks for.
Raster pixelless(const PixelFormat& format, qint64 width = 10, qint64 height = 10) {
    return {width, height, 1, format, iccOf(format.model), std::make_shared<ScriptedRows>([](const RowSink&) {
                throw std::logic_error("the pixels were read");
            })};
}

SourceColorProfile tagged(const QByteArray& data) {
    return {data, QStringLiteral("source")};
}

ColorWorkflow appManaged(ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric) {
    return {ColorManagementMode::appManaged, intent, true};
}

std::vector<qint64> stripHeights(const Raster& raster) {
    std::vector<qint64> heights;
    raster.rows([&heights](const RowStrip& strip) { heights.push_back(strip.rowCount); });
    return heights;
}

Raster convert(const Raster& image, const QByteArray& outputICC,
               ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric) {
    return ColorProcessor::apply(image, tagged(*image.iccProfile()), appManaged(intent), outputICC);
}

template <typename Action>
QString refusal(const Action& action) {
    try {
        action();
    } catch (const OrvexError& error) {
        return error.message();
    }
    return QStringLiteral("no refusal");
}

QString applyRefusal(const Raster& image, const SourceColorProfile& source, const ColorWorkflow& workflow,
                     const std::optional<QByteArray>& outputICC) {
    return refusal([&] { (void)ColorProcessor::apply(image, source, workflow, outputICC); });
}

QString conversionRefusal(const Raster& image) {
    return applyRefusal(image, tagged(iccOf(image.format().model)), appManaged(), outputRgbICC());
}

QString parseRefusal(const QByteArray& data, ICCUse use) {
    return refusal([&] { (void)ColorProcessor::parseICC(data, use); });
}

template <typename Sample>
std::vector<double> numbers(const QByteArray& bytes) {
    std::vector<double> values;
    for (qsizetype at = 0; at + qsizetype{sizeof(Sample)} <= bytes.size(); at += qsizetype{sizeof(Sample)}) {
        Sample sample;
        std::memcpy(&sample, bytes.constData() + at, sizeof(Sample));
        values.push_back(sample);
    }
    return values;
}

template <typename Sample>
QByteArray bytesOf(const std::vector<Sample>& samples) {
    return {reinterpret_cast<const char*>(samples.data()), static_cast<qsizetype>(samples.size() * sizeof(Sample))};
}

cmsUInt32Number doubleFormat(ColorModel model) {
    return model == ColorModel::gray ? TYPE_GRAY_DBL : model == ColorModel::rgb ? TYPE_RGB_DBL : TYPE_CMYK_DBL;
}

/// What the engine computes in floating point from samples of 0 to `full`, on the same scale.
std::vector<double> reference(std::vector<double> samples, ColorModel from, const QByteArray& fromICC, ColorModel to,
                              const QByteArray& toICC, double full, cmsUInt32Number intent) {
    for (double& each : samples) {
        each *= (from == ColorModel::cmyk ? 100.0 : 1.0) / full;
    }
    const icc::Profile input = icc::opened(fromICC);
    const icc::Profile output = icc::opened(toICC);
    cmsHTRANSFORM transform = cmsCreateTransform(input.get(), doubleFormat(from), output.get(), doubleFormat(to),
                                                 intent, cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE);
    const std::size_t pixels = samples.size() / static_cast<std::size_t>(componentCount(from));
    std::vector<double> result(pixels * static_cast<std::size_t>(componentCount(to)));
    cmsDoTransform(transform, samples.data(), result.data(), static_cast<cmsUInt32Number>(pixels));
    cmsDeleteTransform(transform);
    for (double& each : result) {
        each = std::clamp(each / (to == ColorModel::cmyk ? 100.0 : 1.0), 0.0, 1.0) * full;
    }
    return result;
}

template <typename Sample>
void expectNear(const QByteArray& converted, const std::vector<double>& expected, double tolerance) {
    const auto values = numbers<Sample>(converted);
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_NEAR(values[i], expected[i], tolerance) << "sample " << i;
    }
}

template <typename Sample>
void expectReferenceColors(ColorModel from, ColorModel to, ColorRenderingIntent intent, int engineIntent) {
    constexpr int bits = sizeof(Sample) * 8;
    const PixelFormat format{.model = from, .bitsPerComponent = bits};
    const QByteArray pixels = noise(20 * 30 * format.bytesPerPixel());
    const QByteArray& toICC = to == ColorModel::cmyk ? cmykICC() : outputRgbICC();
    const Raster converted = convert(picture(20, pixels, format), toICC, intent);
    EXPECT_EQ(converted.format(), (PixelFormat{.model = to, .bitsPerComponent = bits}));
    // Half a step for the rounding, and one step of 16 bits, from which 8 are rounded again; RGB of 16 bits is computed
    // between exact colours.
    constexpr double range = std::numeric_limits<Sample>::max();
    const bool isInterpolated = from == ColorModel::rgb && bits == 16;
    const double tolerance = isInterpolated ? platform::ColorAccuracy::usualError * range : 0.5 + range / 65535.0;
    expectNear<Sample>(pixelsOf(converted),
                       reference(numbers<Sample>(pixels), from, iccOf(from), to, toICC,
                                 std::numeric_limits<Sample>::max(), static_cast<cmsUInt32Number>(engineIntent)),
                       tolerance);
}

const PixelFormat rgb8{};
const PixelFormat rgb16{.bitsPerComponent = 16};
const PixelFormat rgba8{.hasAlpha = true};
const PixelFormat cmyk8{.model = ColorModel::cmyk};
const PixelFormat gray8{.model = ColorModel::gray};

const QString noConfirmation =
    QStringLiteral("To avoid double color management, first turn off color correction in Canon print settings and "
                   "record your confirmation in the app. This record does not change or verify the driver.");
const QString noSource =
    QStringLiteral("The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it correctly "
                   "in your creative software or use driver-managed color.");
const QString noOutput =
    QStringLiteral("App-managed color requires an output ICC profile matching the media and quality.");
const QString badHeader = QStringLiteral("Invalid ICC header or signature.");
const QString badProfile =
    QStringLiteral("ColorSync could not validate this ICC profile. It may be damaged or unsupported.");
const QString badOutputClass =
    QStringLiteral("The output ICC must be an RGB/CMYK printer, display or color-space profile. Device-link, abstract "
                   "and named-color profiles are not accepted.");
const QString badSourceClass =
    QStringLiteral("This source ICC class or color space is not currently supported for safe conversion.");
const QString otherSpace = QStringLiteral("The source ICC does not match the decoded image color space. Conversion "
                                          "was stopped to avoid assigning the wrong profile.");
const QString tooDeep = QStringLiteral(
    "ICC conversion supports 8/16-bit integer images. Convert floating-point or higher-bit-depth images in creative "
    "software first. The app will not silently reduce them to 8 bits.");
const QString deepCmyk =
    QStringLiteral("This 16-bit CMYK source cannot currently be normalized safely. Use driver-managed color or "
                   "convert it in creative software. The app will not silently lower bit depth.");
const QString noTransform =
    QStringLiteral("ColorSync could not create a transform for the selected ICC profile and rendering intent.");
const QString overflow = QStringLiteral("Image buffer dimensions overflow.");
const QString noBuffer =
    QStringLiteral("Cannot allocate a color conversion buffer at the original bit depth. Check available memory.");
const QString failed = QStringLiteral("ColorSync pixel conversion failed. No partial result was produced.");

} // namespace

// parseICC

TEST(ParsedICC, TellsClassAndModel) {
    const ParsedICC printer = ColorProcessor::parseICC(cmykICC(), ICCUse::output);
    EXPECT_EQ(printer.profileClass, QStringLiteral("prtr"));
    EXPECT_EQ(printer.model, ColorModel::cmyk);
    EXPECT_EQ(printer.profile.data(), cmykICC());
    EXPECT_EQ(ColorProcessor::parseICC(grayICC(), ICCUse::source).model, ColorModel::gray);
}

TEST(ParsedICC, IsRefusedByUseClassAndModel) {
    struct Case {
        const char* name;
        QByteArray data;
        bool isSource;
        bool isOutput;
    };

    const std::vector<Case> cases{
        {"RGB display", rgbICC(), true, true},
        {"RGB printer", outputRgbICC(), true, true},
        {"RGB colour space", icc::saved(icc::rgb(1.8, cmsSigColorSpaceClass)), true, true},
        {"RGB scanner", icc::saved(icc::rgb(1.8, cmsSigInputClass)), true, false},
        {"CMYK printer", cmykICC(), true, true},
        {"CMYK display", icc::saved(icc::cmyk(cmsSigDisplayClass)), true, true},
        {"CMYK colour space", icc::saved(icc::cmyk(cmsSigColorSpaceClass)), true, true},
        {"CMYK scanner", icc::saved(icc::cmyk(cmsSigInputClass)), true, false},
        {"gray display", grayICC(), true, false},
        {"gray scanner", icc::saved(icc::gray(2.2, cmsSigInputClass)), true, false},
        {"gray printer", icc::saved(icc::gray(2.2, cmsSigOutputClass)), true, false},
        {"device link", icc::saved(icc::deviceLink()), false, false},
        {"abstract", icc::saved(icc::abstract()), false, false},
        {"named colours", icc::saved(icc::namedColor()), false, false},
        {"Lab colour space", icc::saved(icc::lab()), false, false},
    };
    const QString passes = QStringLiteral("no refusal");
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(parseRefusal(each.data, ICCUse::source), each.isSource ? passes : badSourceClass);
        EXPECT_EQ(parseRefusal(each.data, ICCUse::output), each.isOutput ? passes : badOutputClass);
    }
    const InChinese chinese;
    EXPECT_EQ(parseRefusal(icc::saved(icc::abstract()), ICCUse::source),
              QStringLiteral("暂不支持安全转换此原图 ICC 的类别或色彩空间。"));
}

TEST(ParsedICC, IsRefusedByHeaderThenEngineThenClass) {
    const QByteArray link = icc::saved(icc::deviceLink());
    EXPECT_EQ(parseRefusal(link.first(131), ICCUse::source), badHeader);
    EXPECT_EQ(parseRefusal(QByteArray(link).replace(36, 1, "x").replace(0, 4, "\xFF\xFF\xFF\xFF"), ICCUse::output),
              badHeader);
    EXPECT_EQ(parseRefusal(link.chopped(1), ICCUse::source), badProfile);
    EXPECT_EQ(parseRefusal(QByteArray(link).replace(12, 4, "abcd"), ICCUse::source), badProfile);
    EXPECT_EQ(parseRefusal(link, ICCUse::source), badSourceClass);
}

// apply: the checks

TEST(ColorProcessor, HandsBackTheVeryPictureIfTheDriverManagesColor) {
    const QByteArray pixels = noise(4 * 4 * 16);
    const PixelFormat oddFormat{.model = ColorModel::rgb, .bitsPerComponent = 32, .isFloat = true, .hasAlpha = true};
    const Raster image(4, 4, 6, oddFormat, QByteArray("no profile"),
                       std::make_shared<MemoryRows>(pixels, 4 * oddFormat.bytesPerPixel(), 3));
    for (const bool confirmed : {false, true}) {
        const Raster same = ColorProcessor::apply(
            image, SourceColorProfile::untagged(),
            {ColorManagementMode::driverManaged, ColorRenderingIntent::saturation, confirmed}, std::nullopt);
        EXPECT_EQ(same.format(), oddFormat);
        EXPECT_EQ(same.orientation(), 6);
        EXPECT_EQ(same.iccProfile(), QByteArray("no profile"));
        EXPECT_EQ(pixelsOf(same), pixels);
        EXPECT_EQ(stripHeights(same), (std::vector<qint64>{3, 1}));
    }
}

TEST(ColorProcessor, ChecksInTheOrderThatTheOperatorCanFollow) {
    // Everything is wrong at first; each step mends what was told.
    const PixelFormat deepInk{.model = ColorModel::cmyk, .bitsPerComponent = 16};
    const PixelFormat floats{.model = ColorModel::cmyk, .bitsPerComponent = 32, .isFloat = true};
    const QByteArray oneWay = icc::saved(icc::cmyk(cmsSigOutputClass, icc::Tables::toConnectionOnly));
    const auto untagged = SourceColorProfile::untagged();
    const auto broken = tagged("broken");
    ColorWorkflow workflow = appManaged();
    workflow.driverColorCorrectionDisabledConfirmed = false;
    const Raster rgbPicture = pixelless(rgb8, 0, 0);
    EXPECT_EQ(applyRefusal(rgbPicture, untagged, workflow, std::nullopt), noConfirmation);
    workflow.driverColorCorrectionDisabledConfirmed = true;
    EXPECT_EQ(applyRefusal(rgbPicture, untagged, workflow, std::nullopt), noSource);
    EXPECT_EQ(applyRefusal(rgbPicture, broken, workflow, std::nullopt), noOutput);
    EXPECT_EQ(applyRefusal(rgbPicture, broken, workflow, icc::saved(icc::abstract())), badHeader);
    EXPECT_EQ(applyRefusal(rgbPicture, tagged(icc::saved(icc::abstract())), workflow, QByteArray("broken")),
              badSourceClass);
    EXPECT_EQ(applyRefusal(rgbPicture, tagged(cmykICC()), workflow, QByteArray("broken")), badHeader);
    EXPECT_EQ(applyRefusal(rgbPicture, tagged(cmykICC()), workflow, grayICC()), badOutputClass);
    EXPECT_EQ(applyRefusal(rgbPicture, tagged(cmykICC()), workflow, oneWay), otherSpace);
    EXPECT_EQ(applyRefusal(pixelless(floats, 0, 0), tagged(cmykICC()), workflow, oneWay), tooDeep);
    EXPECT_EQ(applyRefusal(pixelless(deepInk, 0, 0), tagged(cmykICC()), workflow, oneWay), deepCmyk);
    EXPECT_EQ(applyRefusal(pixelless(cmyk8, 0, 0), tagged(cmykICC()), workflow, oneWay), noTransform);
    EXPECT_EQ(applyRefusal(pixelless(cmyk8, 0, 0), tagged(cmykICC()), workflow, rgbICC()), overflow);
    EXPECT_EQ(applyRefusal(pixelless(cmyk8), tagged(cmykICC()), workflow, rgbICC()), QStringLiteral("no refusal"));
}

TEST(ColorProcessor, RefusesInChineseToo) {
    const InChinese chinese;
    const PixelFormat deepInk{.model = ColorModel::cmyk, .bitsPerComponent = 16};
    const QByteArray oneWay = icc::saved(icc::cmyk(cmsSigOutputClass, icc::Tables::toConnectionOnly));
    ColorWorkflow unconfirmed = appManaged();
    unconfirmed.driverColorCorrectionDisabledConfirmed = false;
    const auto source = tagged(cmykICC());
    EXPECT_EQ(
        applyRefusal(pixelless(rgb8), source, unconfirmed, {}),
        QStringLiteral("为避免重复颜色管理，请先在佳能打印设置中关闭颜色校正，并在应用中记录您的确认。该记录不会更改"
                       "或验证驱动设置。"));
    EXPECT_EQ(applyRefusal(pixelless(rgb8), SourceColorProfile::untagged(), appManaged(), {}),
              QStringLiteral("原图未报告内嵌 ICC 配置文件，无法猜测其色彩空间。请在创作软件中正确标记，或改由驱动管理"
                             "颜色。"));
    EXPECT_EQ(applyRefusal(pixelless(rgb8), source, appManaged(), {}),
              QStringLiteral("由应用管理颜色时，需要与介质和质量相符的输出 ICC 配置文件。"));
    EXPECT_EQ(applyRefusal(pixelless(rgb8), source, appManaged(), rgbICC()),
              QStringLiteral("原图 ICC 与解码后图像的色彩空间不一致。转换已停止，以免指定错误的配置文件。"));
    EXPECT_EQ(
        applyRefusal(pixelless({.model = ColorModel::cmyk, .bitsPerComponent = 32}), source, appManaged(), rgbICC()),
        QStringLiteral("ICC 转换支持 8/16 位整数图像。请先在创作软件中转换浮点或更高位深的图像。应用不会擅自将其降"
                       "为 8 位。"));
    EXPECT_EQ(
        applyRefusal(pixelless(deepInk), source, appManaged(), rgbICC()),
        QStringLiteral("目前无法安全地规范化此 16 位 CMYK 原图。请改由驱动管理颜色，或在创作软件中转换。应用不会擅自"
                       "降低位深。"));
    EXPECT_EQ(applyRefusal(pixelless(cmyk8), source, appManaged(), oneWay),
              QStringLiteral("ColorSync 无法为所选 ICC 配置文件和渲染意图创建转换。"));
    EXPECT_EQ(applyRefusal(pixelless(cmyk8, 0, 0), source, appManaged(), rgbICC()),
              QStringLiteral("图像缓冲区尺寸溢出。"));
    const Raster nothing(1, 1, 1, cmyk8, cmykICC(), std::make_shared<ScriptedRows>([](const RowSink&) {}));
    EXPECT_EQ(refusal([&] { (void)pixelsOf(convert(nothing, rgbICC())); }),
              QStringLiteral("ColorSync 像素转换失败。未生成任何部分结果。"));
    EXPECT_EQ(refusal([] { (void)pixelsOf(convert(pixelless(cmyk8, qint64{1} << 58, 1), rgbICC())); }),
              QStringLiteral("无法按原始位深分配颜色转换缓冲区。请检查可用内存。"));
}

TEST(ColorProcessor, RefusesASourceProfileThatIsNotTheDecodersOwn) {
    const QByteArray other = icc::saved(icc::rgb(1.9));
    EXPECT_EQ(applyRefusal(pixelless(rgb8), tagged(rgbICC()), appManaged(), cmykICC()), QStringLiteral("no refusal"));
    EXPECT_EQ(applyRefusal(pixelless(rgb8), tagged(other), appManaged(), cmykICC()), otherSpace);
    EXPECT_EQ(applyRefusal(pixelless(rgb8), tagged(rgbICC() + '\0'), appManaged(), cmykICC()), otherSpace);
    const Raster deviceRgb(10, 10, 1, rgb8, std::nullopt, nullptr);
    EXPECT_EQ(applyRefusal(deviceRgb, tagged(rgbICC()), appManaged(), cmykICC()), otherSpace);
    const Raster grayPixels(10, 10, 1, gray8, rgbICC(), nullptr);
    EXPECT_EQ(applyRefusal(grayPixels, tagged(rgbICC()), appManaged(), cmykICC()), otherSpace);
}

TEST(ColorProcessor, RefusesDepthsThatItWouldHaveToReduce) {
    using enum ColorModel;
    for (const ColorModel model : {gray, rgb, cmyk}) {
        for (const bool hasAlpha : {false, true}) {
            const auto told = [&](int bits, bool isFloat) {
                return conversionRefusal(pixelless({model, bits, isFloat, hasAlpha}));
            };
            EXPECT_EQ(told(32, true), tooDeep);
            EXPECT_EQ(told(32, false), tooDeep);
            EXPECT_EQ(told(16, true), tooDeep);
            EXPECT_EQ(told(16, false), model == cmyk ? deepCmyk : QStringLiteral("no refusal"));
            EXPECT_EQ(told(8, false), QStringLiteral("no refusal"));
        }
    }
}

TEST(ColorProcessor, RefusesSizesThatCannotBeCounted) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    const QString passes = QStringLiteral("no refusal");
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, 0, 10)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, 10, 0)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, -1, 10)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, 1, 1)), passes);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, most / 3, 1)), passes);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, most / 3 + 1, 1)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, 1, most / 3)), passes);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, 1, most / 3 + 1)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(rgb8, most, most)), overflow);
    EXPECT_EQ(conversionRefusal(pixelless(gray8, most / 2, 1)), overflow) << "three samples for each of the source's";
    EXPECT_EQ(conversionRefusal(pixelless(cmyk8, most / 3, 1)), overflow) << "the source's own rows";
}

// apply: the pixels

TEST(ColorProcessor, ConvertsAsTheEngineComputesInFloatingPoint) {
    using enum ColorModel;
    const std::array<std::pair<ColorRenderingIntent, int>, 4> intents{
        {{ColorRenderingIntent::perceptual, INTENT_PERCEPTUAL},
         {ColorRenderingIntent::relativeColorimetric, INTENT_RELATIVE_COLORIMETRIC},
         {ColorRenderingIntent::saturation, INTENT_SATURATION},
         {ColorRenderingIntent::absoluteColorimetric, INTENT_ABSOLUTE_COLORIMETRIC}}};
    for (const auto& [intent, engineIntent] : intents) {
        for (const ColorModel from : {gray, rgb, cmyk}) {
            for (const ColorModel to : {rgb, cmyk}) {
                SCOPED_TRACE(testing::Message() << rawValue(intent).toStdString() << ", model "
                                                << static_cast<int>(from) << " to " << static_cast<int>(to));
                expectReferenceColors<quint8>(from, to, intent, engineIntent);
                if (from != cmyk) {
                    expectReferenceColors<quint16>(from, to, intent, engineIntent);
                }
            }
        }
    }
}

TEST(ColorProcessor, GivesPicturesThatCarryTheOutputProfileAndLieAsBefore) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Raster converted = convert(picture(3, noise(3 * 2 * 4), rgba8, 256, orientation), cmykICC());
        EXPECT_EQ(converted.orientation(), orientation);
        EXPECT_EQ(converted.storedWidth(), 3);
        EXPECT_EQ(converted.storedHeight(), 2);
        EXPECT_EQ(converted.iccProfile(), cmykICC());
        EXPECT_EQ(converted.format(), (PixelFormat{.model = ColorModel::cmyk, .bitsPerComponent = 8}));
    }
}

TEST(ColorProcessor, KeepsTheBytesBehindTheOutputProfile) {
    const QByteArray trailing = cmykICC() + "behind";
    EXPECT_EQ(convert(picture(1, noise(3), rgb8), trailing).iccProfile(), trailing);
}

TEST(ColorProcessor, LooksAtNoPixelBeforeItIsAsked) {
    const Raster converted = convert(pixelless(rgb8), cmykICC());
    EXPECT_THROW(pixelsOf(converted), std::logic_error);
}

TEST(ColorProcessor, ConvertsAnyCountOfRowsAlike) {
    constexpr qint64 width = 7;
    const QByteArray all = noise(600 * width * 3);
    const QByteArray whole = pixelsOf(convert(picture(width, all, rgb8), cmykICC()));
    for (const qint64 rows : {1, 255, 256, 257, 511, 512, 513, 600}) {
        SCOPED_TRACE(rows);
        EXPECT_EQ(pixelsOf(convert(picture(width, all.first(rows * width * 3), rgb8), cmykICC())),
                  whole.first(rows * width * 4));
    }
    EXPECT_EQ(stripHeights(convert(picture(width, all.first(256 * width * 3), rgb8), cmykICC())),
              (std::vector<qint64>{256}));
    EXPECT_EQ(stripHeights(convert(picture(width, all.first(257 * width * 3), rgb8), cmykICC())),
              (std::vector<qint64>{256, 1}));
}

TEST(ColorProcessor, HandsOnStripsOfItsOwnHeightWhateverTheSourceDelivers) {
    constexpr qint64 width = 7;
    const QByteArray pixels = noise(300 * width * 4);
    const QByteArray expected = pixelsOf(convert(picture(width, pixels, rgba8), cmykICC()));
    for (const qint64 sourceStrip : {1, 2, 100, 255, 256, 300}) {
        SCOPED_TRACE(sourceStrip);
        const Raster converted = convert(picture(width, pixels, rgba8, sourceStrip), cmykICC());
        EXPECT_EQ(pixelsOf(converted), expected);
        EXPECT_EQ(stripHeights(converted), (std::vector<qint64>{256, 44}));
    }
}

TEST(ColorProcessor, BoundsStripsOfWideRowsByTheirBytes) {
    // 70,000 gray pixels a row: 59 source rows to a strip, and 14 rows of four inks.
    constexpr qint64 width = 70'000;
    const QByteArray pixels = noise(width * 15);
    const Raster source = picture(width, pixels, gray8, 59);
    const Raster converted = convert(source, cmykICC());
    ASSERT_EQ(converted.stripRows(), 14);
    EXPECT_EQ(stripHeights(converted), (std::vector<qint64>{14, 1}));
    const QByteArray lastRow = pixelsOf(convert(picture(width, pixels.last(width), gray8), cmykICC()));
    EXPECT_EQ(pixelsOf(converted).last(width * 4), lastRow);
}

TEST(ColorProcessor, CanBePulledAgainAndFromSeveralThreads) {
    const Raster converted =
        convert(picture(9, noise(9 * 300 * 8), {.bitsPerComponent = 16, .hasAlpha = true}), outputRgbICC());
    const QByteArray expected = pixelsOf(converted);
    std::array<QByteArray, 3> results;
    {
        std::vector<std::jthread> threads;
        for (QByteArray& each : results) {
            threads.emplace_back([&each, &converted] { each = pixelsOf(converted); });
        }
    }
    for (const QByteArray& each : results) {
        EXPECT_EQ(each, expected);
    }
}

TEST(ColorProcessor, LaysTransparencyOnTheWhitePaperOfTheSource) {
    const std::vector<quint8> clear{10, 200, 30, 0};
    const std::vector<quint8> white{255, 255, 255, 255};
    const auto converted = [](const std::vector<quint8>& pixel, const QByteArray& icc) {
        return pixelsOf(convert(picture(1, bytesOf(pixel), rgba8), icc));
    };
    for (const QByteArray& output : {outputRgbICC(), cmykICC()}) {
        EXPECT_EQ(converted(clear, output), converted(white, output));
        EXPECT_NE(converted({10, 200, 30, 255}, output), converted(white, output));
    }
    EXPECT_EQ(converted(clear, outputRgbICC()), QByteArray("\xFF\xFF\xFF"));
    EXPECT_EQ(converted(clear, cmykICC()), QByteArray(4, '\0'));
}

TEST(ColorProcessor, MixesHalfTransparentPixelsWithThePaperBeforeItConverts) {
    // Rounded to the nearest: (value * alpha + paper * (255 - alpha)) / 255.
    const std::vector<quint8> pixels{0, 255, 100, 255, 0, 100, 200, 128, 1, 2, 3, 1, 254, 253, 0, 254};
    const std::vector<quint8> mixed{0, 255, 100, 127, 177, 227, 254, 254, 254, 254, 253, 1};
    EXPECT_EQ(pixelsOf(convert(picture(2, bytesOf(pixels), rgba8), outputRgbICC())),
              pixelsOf(convert(picture(2, bytesOf(mixed), rgb8), outputRgbICC())));
    const std::vector<quint16> deep{0, 65535, 1000, 65535, 0, 1000, 60000, 32768, 1, 2, 3, 1, 9, 8, 7, 0};
    const std::vector<quint16> deepMixed{0, 65535, 1000, 32767, 33267, 62767, 65534, 65534, 65534, 65535, 65535, 65535};
    EXPECT_EQ(pixelsOf(convert(picture(2, bytesOf(deep), {.bitsPerComponent = 16, .hasAlpha = true}), outputRgbICC())),
              pixelsOf(convert(picture(2, bytesOf(deepMixed), rgb16), outputRgbICC())));
}

TEST(ColorProcessor, LaysInkOnPaperWithoutInkAndGrayOnWhite) {
    const PixelFormat inkAlpha{.model = ColorModel::cmyk, .hasAlpha = true};
    const std::vector<quint8> ink{100, 200, 40, 255, 128, 100, 200, 40, 255, 0};
    const std::vector<quint8> inkMixed{50, 100, 20, 128, 0, 0, 0, 0};
    EXPECT_EQ(pixelsOf(convert(picture(2, bytesOf(ink), inkAlpha), outputRgbICC())),
              pixelsOf(convert(picture(2, bytesOf(inkMixed), cmyk8), outputRgbICC())));
    const PixelFormat grayAlpha{.model = ColorModel::gray, .hasAlpha = true};
    const std::vector<quint8> shade{100, 128, 100, 0, 100, 255, 0, 51};
    const std::vector<quint8> shadeMixed{177, 255, 100, 204};
    EXPECT_EQ(pixelsOf(convert(picture(2, bytesOf(shade), grayAlpha), cmykICC())),
              pixelsOf(convert(picture(2, bytesOf(shadeMixed), gray8), cmykICC())));
}

TEST(ColorProcessor, LeavesOpaquePixelsAsTheyAre) {
    const QByteArray opaque = noise(100 * 3);
    QByteArray withAlpha;
    for (qsizetype i = 0; i < opaque.size(); i += 3) {
        withAlpha += opaque.sliced(i, 3) + '\xFF';
    }
    EXPECT_EQ(pixelsOf(convert(picture(10, withAlpha, rgba8), cmykICC())),
              pixelsOf(convert(picture(10, opaque, rgb8), cmykICC())));
}

// rows: what can still fail

TEST(ColorProcessor, RefusesRowsThatAreNotThoseOfThePicture) {
    const std::vector<std::byte> bytes(1000);

    struct Case {
        const char* name;
        std::vector<RowStrip> strips;
    };

    const auto strip = [&bytes](qint64 first, qint64 count, std::size_t size) {
        return RowStrip{first, count, std::span(bytes).first(size)};
    };
    // Ten rows of ten pixels of three bytes.
    const std::vector<Case> cases{
        {"none", {}},
        {"too few", {strip(0, 9, 270)}},
        {"too many", {strip(0, 11, 330)}},
        {"too many at the end", {strip(0, 10, 300), strip(10, 1, 30)}},
        {"a gap", {strip(0, 4, 120), strip(5, 5, 150)}},
        {"one twice", {strip(0, 5, 150), strip(4, 6, 180)}},
        {"wrong order", {strip(5, 5, 150), strip(0, 5, 150)}},
        {"bytes missing", {strip(0, 10, 299)}},
        {"bytes to spare", {strip(0, 10, 301)}},
        {"less than none", {strip(0, -1, 0), strip(0, 10, 300)}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Raster image(10, 10, 1, rgb8, rgbICC(), std::make_shared<ScriptedRows>([&each](const RowSink& sink) {
                               for (const RowStrip& one : each.strips) {
                                   sink(one);
                               }
                           }));
        const Raster converted = convert(image, cmykICC());
        EXPECT_EQ(refusal([&converted] { converted.rows([](const RowStrip&) {}); }), failed);
    }
}

TEST(ColorProcessor, RefusesRowsThatNoMemoryCanHold) {
    const Raster converted = convert(pixelless(rgb8, qint64{1} << 58, 1), outputRgbICC());
    EXPECT_EQ(refusal([&converted] { (void)pixelsOf(converted); }), noBuffer);
    const Raster transparent = convert(pixelless(rgba8, qint64{1} << 58, 1), outputRgbICC());
    EXPECT_EQ(refusal([&transparent] { (void)pixelsOf(transparent); }), noBuffer);
}

TEST(LastColorTransform, ReadsAnOutputProfileOnceUntilThereIsAnother) {
    LastColorTransform last;
    int readings = 0;
    const auto parse = [&readings](const QByteArray& data, ICCUse use) {
        ++readings;
        return ColorProcessor::parseICC(data, use);
    };
    EXPECT_EQ(last.output(cmykICC(), parse).model, ColorModel::cmyk);
    EXPECT_EQ(last.output(cmykICC(), parse).model, ColorModel::cmyk);
    EXPECT_EQ(readings, 1);
    EXPECT_EQ(last.output(outputRgbICC(), parse).model, ColorModel::rgb);
    EXPECT_EQ(readings, 2);
    EXPECT_EQ(refusal([&] { (void)last.output(grayICC(), parse); }), parseRefusal(grayICC(), ICCUse::output));
    EXPECT_EQ(last.output(outputRgbICC(), parse).model, ColorModel::rgb);
    EXPECT_EQ(readings, 3);
}

TEST(ColorProcessor, StopsWithinAStrip) {
    std::stop_source stop;
    const QByteArray pixels = noise(300);
    const Raster image(10, 10, 1, rgb8, rgbICC(), std::make_shared<ScriptedRows>([&](const RowSink& sink) {
                           stop.request_stop(); // while the strip is on its way
                           sink({0, 10, std::as_bytes(std::span(pixels))});
                       }));
    LastColorTransform last;
    const Raster converted =
        ColorProcessor::apply(image, tagged(rgbICC()), appManaged(), cmykICC(), last, stop.get_token());
    EXPECT_THROW(converted.rows([](const RowStrip&) { ADD_FAILURE() << "rows came after the stop"; }),
                 platform::Interrupted);
}

TEST(ColorProcessor, PassesOnWhatSourceAndSinkRaise) {
    const Raster damaged(10, 10, 1, rgb8, rgbICC(), std::make_shared<ScriptedRows>([](const RowSink&) {
                             throw platform::ImageError(QStringLiteral("cut off"));
                         }));
    EXPECT_THROW(pixelsOf(convert(damaged, cmykICC())), platform::ImageError);
    const Raster converted = convert(picture(10, noise(300), rgb8), cmykICC());
    EXPECT_THROW(converted.rows([](const RowStrip&) { throw std::runtime_error("enough"); }), std::runtime_error);
}

} // namespace orvex
