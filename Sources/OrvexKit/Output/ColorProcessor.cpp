#include "Output/ColorProcessor.h"

#include "Imaging/OverlappedRows.h"
#include "Interrupted.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "ParallelLoop.h"

#include <QtNumeric>

#include <cstring>
#include <limits>
#include <new>

namespace orvex {

using platform::ColorModel;
using platform::ColorTransform;
using platform::PixelFormat;
using platform::Raster;
using platform::RowSink;
using platform::RowStrip;

namespace {

OrvexError unusableClass(ICCUse use) {
    return OrvexError::invalid(
        use == ICCUse::output
            ? spt("输出 ICC 必须是 RGB/CMYK "
                  "的打印机、显示器或色彩空间配置文件；不接受设备链接、抽象和命名颜色配置文件。",
                  "The output ICC must be an RGB/CMYK printer, display or color-space profile. Device-link, abstract "
                  "and named-color profiles are not accepted.")
            : spt("暂不支持安全转换此原图 ICC 的类别或色彩空间。",
                  "This source ICC class or color space is not currently supported for safe conversion."));
}

bool isUsableClass(const QByteArray& profileClass, ICCUse use) {
    return profileClass == "prtr" || profileClass == "mntr" || profileClass == "spac" ||
           (profileClass == "scnr" && use == ICCUse::source);
}

bool isUsableModel(ColorModel model, ICCUse use) {
    return model != ColorModel::gray || use == ICCUse::source;
}

/// The operator's share: what must be chosen and confirmed before any profile is looked at.
void requireChoices(const SourceColorProfile& source, const ColorWorkflow& workflow,
                    const std::optional<QByteArray>& outputICC) {
    if (!workflow.driverColorCorrectionDisabledConfirmed) {
        throw OrvexError::invalid(
            spt("为避免重复颜色管理，请先在佳能打印设置中关闭颜色校正，并在应用中记录您的确认。该记录不会更改或验证驱动"
                "设置。",
                "To avoid double color management, first turn off color correction in Canon print settings and record "
                "your confirmation in the app. This record does not change or verify the driver."));
    }
    if (!source.embeddedICCData) {
        throw OrvexError::invalid(
            spt("原图未报告内嵌 ICC 配置文件，无法猜测其色彩空间。请在创作软件中正确标记，或改由驱动管理颜色。",
                "The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it correctly in "
                "your creative software or use driver-managed color."));
    }
    if (!outputICC) {
        throw OrvexError::invalid(
            spt("由应用管理颜色时，需要与介质和质量相符的输出 ICC 配置文件。",
                "App-managed color requires an output ICC profile matching the media and quality."));
    }
}

void requireSourceSpace(const Raster& image, const ParsedICC& source) {
    if (image.iccProfile() != source.profile.data() || image.format().model != source.model) {
        throw OrvexError::invalid(spt("原图 ICC 与解码后图像的色彩空间不一致。转换已停止，以免指定错误的配置文件。",
                                      "The source ICC does not match the decoded image color space. Conversion was "
                                      "stopped to avoid assigning the wrong profile."));
    }
}

/// The bits of the conversion's samples on both sides, for a source whose depth can be kept.
int workBits(const PixelFormat& source) {
    if (source.isFloat || source.bitsPerComponent > 16) {
        throw OrvexError::invalid(
            spt("ICC 转换支持 8/16 位整数图像。请先在创作软件中转换浮点或更高位深的图像。应用不会擅自将其降为 8 位。",
                "ICC conversion supports 8/16-bit integer images. Convert floating-point or higher-bit-depth images in "
                "creative software first. The app will not silently reduce them to 8 bits."));
    }
    if (source.model == ColorModel::cmyk && source.bitsPerComponent > 8) {
        throw OrvexError::invalid(spt(
            "目前无法安全地规范化此 16 位 CMYK 原图。请改由驱动管理颜色，或在创作软件中转换。应用不会擅自降低位深。",
            "This 16-bit CMYK source cannot currently be normalized safely. Use driver-managed color or convert it "
            "in creative software. The app will not silently lower bit depth."));
    }
    return source.bitsPerComponent > 8 ? 16 : 8;
}

platform::RenderingIntent renderingIntent(ColorRenderingIntent intent) {
    switch (intent) {
    case ColorRenderingIntent::perceptual:
        return platform::RenderingIntent::perceptual;
    case ColorRenderingIntent::relativeColorimetric:
        return platform::RenderingIntent::relativeColorimetric;
    case ColorRenderingIntent::saturation:
        return platform::RenderingIntent::saturation;
    case ColorRenderingIntent::absoluteColorimetric:
        return platform::RenderingIntent::absoluteColorimetric;
    }
    return platform::RenderingIntent::relativeColorimetric;
}

ColorTransform makeTransform(const ParsedICC& source, const ParsedICC& output, int bits, ColorRenderingIntent intent) {
    auto transform = ColorTransform::make(source.profile, bits, output.profile, bits, renderingIntent(intent));
    if (!transform) {
        throw OrvexError::invalid(
            spt("ColorSync 无法为所选 ICC 配置文件和渲染意图创建转换。",
                "ColorSync could not create a transform for the selected ICC profile and rendering intent."));
    }
    return *transform;
}

/// Every size that follows from the picture's own must be a number, for the source's samples and for the converted
/// ones.
void requireCountableBytes(const Raster& image, const PixelFormat& converted) {
    for (const PixelFormat& format : {image.format(), converted}) {
        qint64 rowBytes = 0;
        qint64 totalBytes = 0;
        if (qMulOverflow(image.storedWidth(), format.bytesPerPixel(), &rowBytes) ||
            qMulOverflow(rowBytes, image.storedHeight(), &totalBytes) || totalBytes < 1) {
            throw OrvexError::invalid(spt("图像缓冲区尺寸溢出。", "Image buffer dimensions overflow."));
        }
    }
}

template <typename Sample>
Sample load(const std::byte* at) {
    Sample sample;
    std::memcpy(&sample, at, sizeof(Sample));
    return sample;
}

/// Lays pixels with alpha on paper: each sample becomes the mean of its colour and the paper's, weighted by alpha and
/// rounded to the nearest.
template <typename Sample>
void layOnPaper(std::span<const std::byte> pixels, int components, Sample paper, std::span<std::byte> opaque) {
    constexpr quint32 full = std::numeric_limits<Sample>::max();
    const auto pixelBytes = (static_cast<std::size_t>(components) + 1) * sizeof(Sample);
    std::byte* to = opaque.data();
    for (const std::byte* from = pixels.data(); from != pixels.data() + pixels.size(); from += pixelBytes) {
        const quint32 alpha = load<Sample>(from + pixelBytes - sizeof(Sample));
        for (int i = 0; i < components; ++i) {
            const quint32 color = load<Sample>(from + static_cast<std::size_t>(i) * sizeof(Sample));
            const auto laid = static_cast<Sample>((color * alpha + paper * (full - alpha) + full / 2) / full);
            std::memcpy(to, &laid, sizeof(Sample));
            to += sizeof(Sample);
        }
    }
}

/// What the work gives, with the words of a conversion that finds no memory.
template <typename Work>
auto withinMemory(const Work& work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw OrvexError::invalid(
            spt("无法按原始位深分配颜色转换缓冲区。请检查可用内存。",
                "Cannot allocate a color conversion buffer at the original bit depth. Check available memory."));
    }
}

QByteArray buffer(qint64 bytes) {
    return withinMemory([bytes] { return QByteArray(bytes, Qt::Uninitialized); });
}

std::span<std::byte> writable(QByteArray& bytes) {
    return std::as_writable_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size())));
}

/// What is known of a conversion before its first pixel.
struct Conversion {
    Raster source;
    ColorTransform transform;
    PixelFormat format; ///< of the converted pixels
    std::stop_token stop;

    [[nodiscard]] qint64 rowBytes() const { return source.storedWidth() * format.bytesPerPixel(); }
};

/// One reading of the converted rows: takes the strips of the source and hands on its own.
class ConvertedStrips {
public:
    ConvertedStrips(const Conversion& conversion, const RowSink& sink)
        : conversion_(conversion),
          sink_(sink),
          stripRows_(platform::stripRowsFor(conversion.rowBytes())),
          converted_(buffer(stripRows_ * conversion.rowBytes())),
          opaque_(conversion.source.format().hasAlpha
                      ? buffer(stripRows_ * conversion.source.storedWidth() * opaquePixelBytes())
                      : QByteArray()) {}

    void take(const RowStrip& strip) {
        const qint64 sourceRowBytes = conversion_.source.rowBytes();
        const qint64 rowsLeft = conversion_.source.storedHeight() - nextRow();
        require(strip.firstRow == nextRow() && strip.rowCount >= 0 && strip.rowCount <= rowsLeft);
        require(strip.bytes.size() == static_cast<std::size_t>(strip.rowCount * sourceRowBytes));
        for (qint64 taken = 0; taken < strip.rowCount;) {
            const qint64 count = std::min(strip.rowCount - taken, stripRows_ - filledRows_);
            convert(strip.bytes.subspan(static_cast<std::size_t>(taken * sourceRowBytes),
                                        static_cast<std::size_t>(count * sourceRowBytes)),
                    count);
            taken += count;
            if (filledRows_ == stripRows_) {
                handOn();
            }
        }
    }

    void finish() {
        require(nextRow() == conversion_.source.storedHeight());
        if (filledRows_ > 0) {
            handOn();
        }
    }

private:
    static void require(bool holds) {
        if (!holds) {
            throw OrvexError::invalid(spt("ColorSync 像素转换失败。未生成任何部分结果。",
                                          "ColorSync pixel conversion failed. No partial result was produced."));
        }
    }

    [[nodiscard]] qint64 nextRow() const { return firstRow_ + filledRows_; }

    [[nodiscard]] qint64 opaquePixelBytes() const {
        return static_cast<qint64>(conversion_.transform.sourcePixelBytes());
    }

    /// The pixels without alpha; where they have any, they are laid on paper in `room`.
    std::span<const std::byte> opaque(std::span<const std::byte> pixels, std::span<std::byte> room) const {
        const PixelFormat& format = conversion_.source.format();
        if (!format.hasAlpha) {
            return pixels;
        }
        const int components = componentCount(format.model);
        const bool isInk = format.model == ColorModel::cmyk;
        if (format.bitsPerComponent == 16) {
            layOnPaper<quint16>(pixels, components, isInk ? 0 : 0xFFFF, room);
        } else {
            layOnPaper<quint8>(pixels, components, isInk ? 0 : 0xFF, room);
        }
        return room;
    }

    /// Converts rows behind those that are filled, in pieces on as many threads as the processor has.
    void convert(std::span<const std::byte> pixels, qint64 rowCount) {
        // The colours of a piece may all be new, which takes a thousand times as long as to know them.
        constexpr qint64 pieceOfPixels = 2048;
        const qint64 pixelCount = rowCount * conversion_.source.storedWidth();
        const auto target =
            writable(converted_).subspan(static_cast<std::size_t>(filledRows_ * conversion_.rowBytes()));
        const auto room = writable(opaque_);
        const auto pieces = static_cast<std::size_t>((pixelCount + pieceOfPixels - 1) / pieceOfPixels);
        platform::parallelLoop(pieces, [&](std::size_t piece) {
            platform::throwIfStopped(conversion_.stop);
            const qint64 first = static_cast<qint64>(piece) * pieceOfPixels;
            const qint64 count = std::min(pieceOfPixels, pixelCount - first);
            const auto ofPiece = [&](auto bytes, qint64 pixelBytes) {
                return bytes.empty() ? bytes
                                     : bytes.subspan(static_cast<std::size_t>(first * pixelBytes),
                                                     static_cast<std::size_t>(count * pixelBytes));
            };
            const auto source =
                opaque(ofPiece(pixels, conversion_.source.format().bytesPerPixel()), ofPiece(room, opaquePixelBytes()));
            const auto converted = ofPiece(target, conversion_.format.bytesPerPixel());
            require(withinMemory(
                [&] { return conversion_.transform.convert(source, converted, static_cast<std::size_t>(count)); }));
        });
        filledRows_ += rowCount;
    }

    void handOn() {
        const auto bytes = static_cast<std::size_t>(filledRows_ * conversion_.rowBytes());
        sink_({.firstRow = firstRow_, .rowCount = filledRows_, .bytes = writable(converted_).first(bytes)});
        firstRow_ += filledRows_;
        filledRows_ = 0;
    }

    const Conversion& conversion_;
    const RowSink& sink_;
    qint64 stripRows_;
    qint64 firstRow_ = 0;   // of the strip that is being filled
    qint64 filledRows_ = 0; // and how much of it there is
    QByteArray converted_;
    QByteArray opaque_;
};

/// Holds nothing between two readings, and one strip during each.
class ConvertedRows : public platform::RowSource {
public:
    explicit ConvertedRows(Conversion conversion) : conversion_(std::move(conversion)) {}

    void rows(const RowSink& sink) const override {
        ConvertedStrips strips(conversion_, sink);
        // Decoding goes on in a thread of its own.
        platform::overlappedRows(conversion_.source, [&strips](const RowStrip& strip) { strips.take(strip); });
        strips.finish();
    }

private:
    Conversion conversion_;
};

} // namespace

namespace ColorProcessor {

ParsedICC parseICC(const QByteArray& data, ICCUse use) {
    if (!platform::hasIccSignature(data)) {
        throw OrvexError::invalid(spt("ICC 文件头或签名无效。", "Invalid ICC header or signature."));
    }
    const auto profile = platform::IccProfile::fromData(data);
    if (!profile) {
        throw OrvexError::invalid(
            spt("ColorSync 无法验证此 ICC 配置文件，文件可能已损坏或不受支持。",
                "ColorSync could not validate this ICC profile. It may be damaged or unsupported."));
    }
    const auto model = platform::colorModel(profile->space());
    if (!model || !isUsableModel(*model, use) || !isUsableClass(profile->profileClass(), use)) {
        throw unusableClass(use);
    }
    return {.profile = *profile, .model = *model, .profileClass = QString::fromLatin1(profile->profileClass())};
}

Raster apply(const Raster& image, const SourceColorProfile& sourceProfile, const ColorWorkflow& workflow,
             const std::optional<QByteArray>& outputICC) {
    LastColorTransform none;
    return apply(image, sourceProfile, workflow, outputICC, none);
}

Raster apply(const Raster& image, const SourceColorProfile& sourceProfile, const ColorWorkflow& workflow,
             const std::optional<QByteArray>& outputICC, LastColorTransform& last, const std::stop_token& stop) {
    if (workflow.mode != ColorManagementMode::appManaged) {
        return image;
    }
    requireChoices(sourceProfile, workflow, outputICC);
    const ParsedICC source = parseICC(*sourceProfile.embeddedICCData, ICCUse::source);
    const ParsedICC output = last.output(*outputICC, parseICC);
    requireSourceSpace(image, source);
    const int bits = workBits(image.format());
    const ColorTransform transform =
        withinMemory([&] { return last.of(source, output, bits, workflow.intent, makeTransform); });
    const PixelFormat format{.model = output.model, .bitsPerComponent = bits};
    requireCountableBytes(image, format);
    return {image.storedWidth(), image.storedHeight(),
            image.orientation(), format,
            outputICC,           std::make_shared<ConvertedRows>(Conversion{image, transform, format, stop})};
}

} // namespace ColorProcessor

} // namespace orvex
