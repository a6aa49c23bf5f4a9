#include "Output/RollPDFRenderer.h"

#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Imaging/ImageError.h"
#include "Imaging/ImageSource.h"
#include "Interrupted.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/ColorProcessor.h"
#include "Output/FileStamp.h"
#include "Output/ImageMetadata.h"
#include "Output/PageTransform.h"
#include "Output/RollPDFLimits.h"
#include "Output/RollPDFUserUnit.h"
#include "Output/RollPageContent.h"
#include "Output/SourceGuard.h"
#include "PDF/FlateRows.h"
#include "PDF/PdfError.h"
#include "PDF/PdfStructure.h"
#include "PDF/PdfWriter.h"
#include "Sha256.h"

#include <QHash>

namespace orvex::RollPDFRenderer {

namespace {

using RollPDFLimits::largestUserUnit;
using RollPDFLimits::sizeTolerancePoints;

const QString creator = QStringLiteral("orvex 0.8.4 · Roll Layout");

OrvexError refusal(const QString& message) {
    return OrvexError::invalid(message);
}

/// One rendering from its checks to the file in place.
class Rendering {
public:
    Rendering(const RollLayout& layout, const ColorWorkflow& workflow, const std::optional<QByteArray>& outputICC,
              const std::stop_token& stop, const ProgressReport& report)
        : layout_(layout),
          workflow_(workflow),
          outputICC_(outputICC),
          stop_(stop),
          report_(report) {}

    void guardSources(const QUrl& to) const;
    void measure();
    void preflight();
    QList<RollSourceAudit> writeTo(const QUrl& to, const QString& title);

private:
    /// An image that stands in the PDF already, and its audit.
    struct DrawnSource {
        platform::PdfImage image;
        int orientation = 1;
        qint64 storedRows = 0;
        RollSourceAudit audit;
    };

    [[nodiscard]] bool isAppManaged() const { return workflow_.mode == ColorManagementMode::appManaged; }

    [[nodiscard]] platform::RowProgress rowProgress(RenderStage stage, qsizetype index) const;
    qint64 preflightArtwork(qsizetype index);
    void requireStamp(const RollArtwork& item, const QString& message) const;
    QList<RollSourceAudit> draw(platform::PdfWriter& writer, RollPageContent& content);
    const DrawnSource& drawnSource(qsizetype index, platform::PdfWriter& writer);
    DrawnSource drawSource(const RollArtwork& item, platform::PdfWriter& writer, const platform::RowProgress& progress);
    platform::PdfImage embed(const RollArtwork& item, const platform::Raster& image,
                             const std::optional<platform::EncodedStream>& encoded, platform::PdfWriter& writer,
                             const platform::RowProgress& progress) const;
    void strokeFrames(RollPageContent& content) const;
    void verify(const QString& path) const;
    void confirmSources() const;

    const RollLayout& layout_;
    const ColorWorkflow& workflow_;
    const std::optional<QByteArray>& outputICC_;
    const std::stop_token& stop_;
    const ProgressReport& report_;
    double widthPoints_ = 0;
    double lengthPoints_ = 0;
    double userUnit_ = 1;
    LastColorTransform lastTransform_;
    QHash<QUuid, FileStamp> stamps_;
    QHash<QUrl, DrawnSource> drawn_;
};

void requireDimensions(const RollArtwork& item, qint64 width, qint64 height) {
    if (width != item.pixelWidth || height != item.pixelHeight) {
        throw refusal(spt("“%1”的像素尺寸在导入后发生了变化。导出已停止，请重新导入该作品。",
                          "Pixel dimensions of “%1” changed after import. Export was stopped. Import the artwork "
                          "again.")
                          .arg(item.title));
    }
}

QString colorModelText(platform::ColorModel model) {
    switch (model) {
    case platform::ColorModel::gray:
        return QStringLiteral("Gray");
    case platform::ColorModel::cmyk:
        return QStringLiteral("CMYK");
    case platform::ColorModel::rgb:
        break;
    }
    return QStringLiteral("RGB");
}

/// The names of ISO 32000-1, 8.6.5.8.
QByteArray intentName(ColorRenderingIntent intent) {
    switch (intent) {
    case ColorRenderingIntent::perceptual:
        return "Perceptual";
    case ColorRenderingIntent::relativeColorimetric:
        return "RelativeColorimetric";
    case ColorRenderingIntent::saturation:
        return "Saturation";
    case ColorRenderingIntent::absoluteColorimetric:
        return "AbsoluteColorimetric";
    }
    return {};
}

int embeddedBits(const platform::Raster& image, const std::optional<platform::EncodedStream>& encoded) {
    // The entries of a palette have eight bits, whatever its indices have.
    return encoded && encoded->palette.isEmpty() ? encoded->bitsPerComponent
                                                 : platform::pdfBitsPerComponent(image.format());
}

void Rendering::guardSources(const QUrl& to) const {
    QList<QUrl> sources;
    for (const RollArtwork& item : layout_.items) {
        sources.append(item.sourceURL);
    }
    if (platform::localPath(to).isEmpty() || overwritesSource(to, sources)) {
        throw refusal(spt("导出位置不能覆盖任何原图。请另选一个 PDF 文件。",
                          "The export location cannot overwrite any source artwork. Choose a separate PDF file."));
    }
}

void Rendering::measure() {
    const Size page = pageSizePoints(layout_);
    widthPoints_ = page.width;
    lengthPoints_ = page.height;
    const bool isValid = !layout_.items.isEmpty() && std::isfinite(widthPoints_) && std::isfinite(lengthPoints_) &&
                         widthPoints_ > 0 && lengthPoints_ > 0;
    if (!isValid) {
        throw refusal(
            spt("卷布排版为空，或计算出的长度无效。", "The roll layout is empty or its calculated length is invalid."));
    }
    validateFrames(layout_, {0, 0, widthPoints_, lengthPoints_});
    userUnit_ = userUnit(widthPoints_, lengthPoints_);
    if (!std::isfinite(userUnit_) || userUnit_ > largestUserUnit) {
        throw refusal(spt("计算出的卷布长度超出 PDF UserUnit 的范围。请将作品分到多个卷布文件。",
                          "The calculated roll length exceeds the PDF UserUnit range. Split the artworks into multiple "
                          "roll files."));
    }
}

platform::RowProgress Rendering::rowProgress(RenderStage stage, qsizetype index) const {
    return [this, stage, index](qint64 done, qint64 count) {
        if (report_) {
            report_({.stage = stage,
                     .artwork = index + 1,
                     .artworkCount = layout_.items.size(),
                     .rowsDone = done,
                     .rowCount = count});
        }
    };
}

/// The stored rows of the artwork's source.
qint64 Rendering::preflightArtwork(qsizetype index) {
    const RollArtwork& item = layout_.items[index];
    const FileStamp stamp = FileStamp::read(item.sourceURL);
    qint64 storedRows = 0;
    const ImageMetadata metadata = ImageMetadata::load(
        item.sourceURL, stop_, [&, tell = rowProgress(RenderStage::preflight, index)](qint64 done, qint64 count) {
            storedRows = count;
            tell(done, count);
        });
    requireDimensions(item, metadata.pixelWidth, metadata.pixelHeight);
    if (isAppManaged()) {
        const platform::Raster trial = ColorProcessor::apply(metadata.preview, metadata.sourceColorProfile, workflow_,
                                                             outputICC_, lastTransform_, stop_);
        trial.rows([](const platform::RowStrip&) {});
    }
    if (FileStamp::read(item.sourceURL) != stamp) {
        throw refusal(spt("作品在导出前检查期间发生了变化：%1。请重新导入。",
                          "Artwork changed during preflight: %1. Import it again.")
                          .arg(item.title));
    }
    stamps_.insert(item.id, stamp);
    return storedRows;
}

void Rendering::preflight() {
    // The first artwork of each source proves it for the later ones, whose stamps tell whether it is still the same.
    struct Proof {
        const RollArtwork* artwork = nullptr;
        qint64 storedRows = 0;
    };

    QHash<QUrl, Proof> proven;
    for (qsizetype index = 0; index < layout_.items.size(); ++index) {
        platform::throwIfStopped(stop_);
        const RollArtwork& item = layout_.items[index];
        const auto [first, storedRows] = proven.value(item.sourceURL);
        if (first != nullptr && FileStamp::read(item.sourceURL) == stamps_.value(first->id)) {
            requireDimensions(item, first->pixelWidth, first->pixelHeight);
            stamps_.insert(item.id, stamps_.value(first->id));
            rowProgress(RenderStage::preflight, index)(storedRows, storedRows);
            continue;
        }
        proven.insert(item.sourceURL, {&item, preflightArtwork(index)});
    }
}

void Rendering::requireStamp(const RollArtwork& item, const QString& message) const {
    const auto stamp = stamps_.constFind(item.id);
    if (stamp == stamps_.constEnd() || FileStamp::read(item.sourceURL) != *stamp) {
        throw refusal(message.arg(item.title));
    }
}

platform::PdfImage Rendering::embed(const RollArtwork& item, const platform::Raster& image,
                                    const std::optional<platform::EncodedStream>& encoded, platform::PdfWriter& writer,
                                    const platform::RowProgress& progress) const {
    const QString changed =
        spt("作品在读取期间发生了变化：%1。请重新导入。", "Artwork changed while being read: %1. Import it again.");
    try {
        const platform::PdfImage embedded = encoded ? writer.addImage(*encoded, image.iccProfile(), stop_, progress)
                                                    : writer.addImage(image, stop_, progress);
        requireStamp(item, changed);
        return embedded;
    } catch (const platform::ImageError&) {
        // A file that was whole at preflight and is damaged now has changed, and its stamp tells.
        requireStamp(item, changed);
        throw ImageMetadata::decodingError();
    } catch (const std::bad_alloc&) {
        throw ImageMetadata::decodingError();
    }
}

Rendering::DrawnSource Rendering::drawSource(const RollArtwork& item, platform::PdfWriter& writer,
                                             const platform::RowProgress& progress) {
    std::unique_ptr<platform::ImageSource> source;
    try {
        source = platform::ImageSource::open(platform::localPath(item.sourceURL), stop_);
    } catch (const Failure&) {
        throw refusal(spt("无法再次读取作品：%1。", "Cannot read the artwork again: %1.").arg(item.title));
    }
    const platform::Raster raster = source->full();
    requireDimensions(item, raster.width(), raster.height());
    const SourceColorProfile profile = SourceColorProfile::detect(item.sourceURL, raster);
    const platform::Raster converted =
        ColorProcessor::apply(raster, profile, workflow_, outputICC_, lastTransform_, stop_);
    const auto encoded = isAppManaged() ? std::nullopt : source->encodedStream();
    const platform::PdfImage image = embed(item, converted, encoded, writer, progress);
    return {.image = image,
            .orientation = converted.orientation(),
            .storedRows = converted.storedHeight(),
            .audit = {.artworkID = item.id,
                      .sourceURL = item.sourceURL,
                      .sourceProfileName = profile.name,
                      .sourceProfileSHA256 = profile.embeddedICCData
                                                 ? std::optional(platform::sha256Hex(*profile.embeddedICCData))
                                                 : std::nullopt,
                      .pixelWidth = raster.width(),
                      .pixelHeight = raster.height(),
                      .renderedBitsPerComponent = embeddedBits(converted, encoded),
                      .renderedColorModel = colorModelText(converted.format().model)}};
}

const Rendering::DrawnSource& Rendering::drawnSource(qsizetype index, platform::PdfWriter& writer) {
    const RollArtwork& item = layout_.items[index];
    const platform::RowProgress progress = rowProgress(RenderStage::drawing, index);
    requireStamp(item, spt("作品在导出前检查之后发生了变化：%1。请重新导入。",
                           "Artwork changed after preflight: %1. Import it again."));
    const auto drawn = drawn_.constFind(item.sourceURL);
    if (drawn == drawn_.constEnd()) {
        return *drawn_.insert(item.sourceURL, drawSource(item, writer, progress));
    }
    progress(drawn->storedRows, drawn->storedRows);
    return *drawn;
}

QList<RollSourceAudit> Rendering::draw(platform::PdfWriter& writer, RollPageContent& content) {
    const auto intent = isAppManaged() ? std::optional(intentName(workflow_.intent)) : std::nullopt;
    QList<RollSourceAudit> audits;
    for (qsizetype index = 0; index < layout_.items.size(); ++index) {
        platform::throwIfStopped(stop_);
        const RollArtwork& item = layout_.items[index];
        const DrawnSource& source = drawnSource(index, writer);
        const PageTransform placement =
            placementTransform(pageRect(item.artworkRectInches(), lengthPoints_), item.rotationQuarterTurns);
        content.drawImage(source.image.name(), uprightTransform(source.orientation).then(placement), intent);
        audits.append(source.audit);
        audits.last().artworkID = item.id;
    }
    return audits;
}

void Rendering::strokeFrames(RollPageContent& content) const {
    QList<Rect> frames;
    for (const RollArtwork& item : layout_.items) {
        frames.append(pageRect(item.trimRectInches(), lengthPoints_));
    }
    content.strokeFrames(frames);
}

void Rendering::confirmSources() const {
    for (const RollArtwork& item : layout_.items) {
        requireStamp(item, spt("作品在卷布导出期间发生了变化：%1。原有导出文件未被替换。请重新导入该作品。",
                               "Artwork changed during roll export: %1. The previous export was not replaced. Import "
                               "the artwork again."));
    }
}

void Rendering::verify(const QString& path) const {
    const auto matches = [this](double side, double expectedPoints) {
        return std::abs(side * userUnit_ - expectedPoints) < sizeTolerancePoints;
    };
    bool isVerified = false;
    try {
        const platform::PdfStructure pdf = platform::PdfStructure::open(path);
        isVerified = pdf.pageCount() == 1 && matches(pdf.mediaBox().width, widthPoints_) &&
                     matches(pdf.mediaBox().height, lengthPoints_);
    } catch (const platform::PdfError&) {
        isVerified = false; // a file that cannot be read is not verified
    }
    if (!isVerified) {
        throw refusal(spt("卷布 PDF 的尺寸或完整性验证失败。原有导出文件未被替换。",
                          "Roll PDF size or integrity verification failed. The previous export was not replaced."));
    }
}

platform::FileReplacer openTemporary(const QUrl& to) {
    const QString name =
        QStringLiteral(".orvex-roll-%1.pdf").arg(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    try {
        return platform::FileReplacer::open(platform::localPath(to), name);
    } catch (const platform::FileSystemError&) {
        throw refusal(spt("无法创建卷布 PDF。请检查保存位置的权限。",
                          "Cannot create the roll PDF. Check permissions at the save location."));
    }
}

QList<RollSourceAudit> Rendering::writeTo(const QUrl& to, const QString& title) {
    platform::FileReplacer file = openTemporary(to);
    platform::PdfWriter writer(file);
    RollPageContent content(widthPoints_, lengthPoints_, userUnit_);
    QList<RollSourceAudit> audits = draw(writer, content);
    strokeFrames(content);
    writer.finish({.widthPoints = widthPoints_ / userUnit_,
                   .heightPoints = lengthPoints_ / userUnit_,
                   .title = title,
                   .creator = creator},
                  content.bytes());
    if (userUnit_ > 1.0) {
        RollPDFUserUnit::apply(userUnit_, file.temporaryPath());
    }
    confirmSources();
    verify(file.temporaryPath());
    platform::throwIfStopped(stop_);
    file.commit();
    return audits;
}

} // namespace

double RenderProgress::fraction() const {
    const double ofArtwork = static_cast<double>(rowsDone) / static_cast<double>(rowCount);
    return (static_cast<double>(artwork - 1) + ofArtwork) / static_cast<double>(artworkCount);
}

QList<RollSourceAudit> render(const RollLayout& layout, const QString& title, const QUrl& to,
                              const ColorWorkflow& colorWorkflow, const std::optional<QByteArray>& outputICC,
                              const std::stop_token& stop, const ProgressReport& report) {
    if (const auto message = layout.exportValidationError()) {
        throw refusal(*message);
    }
    Rendering rendering(layout, colorWorkflow, outputICC, stop, report);
    rendering.guardSources(to);
    rendering.measure();
    rendering.preflight();
    return rendering.writeTo(to, title);
}

} // namespace orvex::RollPDFRenderer
