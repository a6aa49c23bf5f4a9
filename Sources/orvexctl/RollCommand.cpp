#include "ColorOptions.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Failure.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "Interrupted.h"
#include "Json/JsonRecords.h"
#include "Json/JsonWriter.h"
#include "Layout/NumberText.h"
#include "Layout/RollLayout.h"
#include "Layout/RollSummary.h"
#include "Layout/RollWorkspaceFile.h"
#include "OrvexError.h"
#include "Output/ArtworkImport.h"
#include "Output/RollPDFRenderer.h"
#include "PdfDestination.h"
#include "ProgressBar.h"
#include "RollAnswers.h"

#include <QJsonObject>

namespace orvex {

namespace {

/// A size as the command line gives it; without either side, none.
struct PrintSize {
    std::optional<double> widthInches;
    std::optional<double> heightInches;

    [[nodiscard]] bool isGiven() const { return widthInches || heightInches; }
};

struct RollOptions {
    std::vector<std::string> images;
    std::string output;
    double widthInches = RollLayout::rollWidthInches;
    double gapInches = RollLayout::defaultGapInches;
    std::vector<std::string> sizeTexts; ///< of the images at the same places; the others follow the import rule
    bool allowsTurns = false;
    std::string layoutOutput;
    std::string title;
    ColorOptions color;
};

[[noreturn]] void failSize(const std::string& text) {
    throw CLI::ValidationError("--size", description("尺寸须为 WxH（英寸），例如 24x16，- 表示不指定：",
                                                     "a size is WxH in inches, such as 24x16, with - for none: ") +
                                             text);
}

/// One side of a size, "-" for none. Whether it can be printed is the layout's to say.
std::optional<double> sizeSide(const std::string& side, const std::string& text) {
    const auto inches = parseWholeDouble(QByteArray::fromStdString(side));
    if (!inches && side != "-") {
        failSize(text);
    }
    return inches;
}

PrintSize printSize(const std::string& text) {
    if (text == "-") {
        return {};
    }
    const std::size_t separator = text.find('x');
    if (separator == std::string::npos) {
        failSize(text);
    }
    return {sizeSide(text.substr(0, separator), text), sizeSide(text.substr(separator + 1), text)};
}

/// A size for each image.
std::vector<PrintSize> printSizes(const RollOptions& options) {
    if (options.sizeTexts.size() > options.images.size()) {
        throw CLI::ValidationError("--size", description("尺寸的个数多于图像", "there are more sizes than images"));
    }
    std::vector<PrintSize> sizes;
    std::transform(options.sizeTexts.begin(), options.sizeTexts.end(), std::back_inserter(sizes), printSize);
    sizes.resize(options.images.size());
    return sizes;
}

/// The images on a roll, and what the operator should know of them.
struct ImportedRoll {
    RollWorkspaceFile workspace;
    QList<BatchArtworkSizeRequest> sizeRequests;
    QStringList warnings;
};

void importImage(const ImageMetadata& metadata, const PrintSize& size, ImportedRoll& roll) {
    RollLayout& layout = roll.workspace.layout;
    const RollArtwork artwork =
        size.isGiven() ? artworkOf(metadata, layout.widthInches) : importedArtwork(metadata, layout.widthInches);
    const QUuid id = layout.append(artwork, roll.workspace.gapInches);
    if (size.isGiven()) {
        roll.sizeRequests.append({id, size.widthInches, size.heightInches});
    }
    roll.workspace.sizingDescriptions.insert(platform::uuidText(id), metadata.physicalSizeSource);
    roll.workspace.selection = id;
    if (metadata.isPhysicalSizeEstimated()) {
        roll.warnings.append(metadata.url.fileName() + u'：' + metadata.physicalSizeSourceLabel());
    }
}

/// Raises OrvexError with a line for each image that cannot be imported.
ImportedRoll importImages(const QList<QUrl>& urls, const std::vector<PrintSize>& sizes, const RollOptions& options,
                          const std::stop_token& stop) {
    ImportedRoll roll;
    roll.workspace.layout = RollLayout({}, options.widthInches);
    roll.workspace.gapInches = options.gapInches;
    QStringList failures;
    ProgressBar bar;
    for (qsizetype index = 0; index < urls.size(); ++index) {
        const QString label = spt("读取 %1/%2", "Reading %1/%2").arg(index + 1).arg(urls.size());
        const auto showProgress = [&](qint64 done, qint64 count) {
            const double ofImage = static_cast<double>(done) / static_cast<double>(count);
            bar.show(label, (static_cast<double>(index) + ofImage) / static_cast<double>(urls.size()));
        };
        platform::throwIfStopped(stop);
        try {
            importImage(ImageMetadata::load(urls[index], stop, showProgress), sizes[static_cast<std::size_t>(index)],
                        roll);
        } catch (const Failure& failure) {
            failures.append(urls[index].fileName() + u'：' + failure.message());
        }
    }
    if (!failures.isEmpty()) {
        throw OrvexError::invalid(failures.join(u'\n'));
    }
    return roll;
}

/// Gives the artworks their sizes and packs them. The length that the roll would have without turns, in inches.
double pack(ImportedRoll& roll, const RollOptions& options) {
    RollLayout& layout = roll.workspace.layout;
    layout = layout.sizingArtworks(roll.sizeRequests, options.allowsTurns);
    RollLayout conventional = layout;
    conventional.autoArrange(options.gapInches);
    layout.optimizeArrangement(options.allowsTurns, options.gapInches);
    return conventional.lengthInches();
}

QJsonObject describe(const ImportedRoll& roll, double conventionalLengthInches, const QList<RollSourceAudit>& audits) {
    const RollLayout& layout = roll.workspace.layout;
    QStringList warnings = roll.warnings;
    if (const auto advisory = rollAdvisory(layout)) {
        warnings.append(*advisory);
    }
    const Size page = RollPDFRenderer::pageSizePoints(layout);
    return {{QStringLiteral("layout"), layout.toJson()},
            {QStringLiteral("audits"), platform::jsonArray(audits)},
            {QStringLiteral("widthInches"), layout.widthInches},
            {QStringLiteral("lengthInches"), layout.lengthInches()},
            {QStringLiteral("conventionalLengthInches"), conventionalLengthInches},
            {QStringLiteral("utilization"), utilizationPercent(layout)},
            {QStringLiteral("userUnit"), RollPDFRenderer::userUnit(page.width, page.height)},
            {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)}};
}

/// Where the images lie. A roll names its sources for later, so none can come through a pipe.
QList<QUrl> imageUrls(const RollOptions& options) {
    QList<QUrl> urls;
    for (const std::string& image : options.images) {
        const QString path = fileArgument(image);
        if (isStandardStream(path)) {
            throw CLI::ValidationError("IMAGE", description("作品必须是文件，不能使用标准输入",
                                                            "an artwork must be a file; standard input cannot be one"));
        }
        urls.append(platform::fileUrl(path));
    }
    return urls;
}

/// Neither result may go over an input, nor over the other.
void refuseOverwritingInputs(const RollOptions& options, const QList<QUrl>& images) {
    const QString output = fileArgument(options.output);
    const QString layoutOutput = fileArgument(options.layoutOutput);
    const QList<QUrl> inputs = images + options.color.inputs();
    refuseOverwriting(output, inputs);
    if (isStandardStream(layoutOutput)) {
        throw CLI::ValidationError("--layout-out", description("标准输出已用于结果或 PDF",
                                                               "standard output has the answer or the PDF already"));
    }
    if (!layoutOutput.isEmpty()) {
        refuseOverwriting(layoutOutput, inputs + QList{platform::fileUrl(output)});
    }
}

void runRoll(const RollOptions& options, const CommandContext& context) {
    const QList<QUrl> urls = imageUrls(options);
    const std::vector<PrintSize> sizes = printSizes(options);
    refuseOverwritingInputs(options, urls);
    refuse(RollLayout({}, options.widthInches).widthValidationError());
    RollLayout::validateGap(options.gapInches);
    ImportedRoll roll = importImages(urls, sizes, options, context.stop);
    const double conventionalLengthInches = pack(roll, options);
    // Written before the PDF is in place: what keeps the one from being saved keeps the other as it was.
    std::optional<platform::FileReplacer> layoutFile;
    if (!options.layoutOutput.empty()) {
        layoutFile.emplace(platform::FileReplacer::open(fileArgument(options.layoutOutput)))
            .write(roll.workspace.encode());
    }
    const PdfDestination destination(fileArgument(options.output));
    const QList<RollSourceAudit> audits = renderWithProgress(roll.workspace.layout, rollTitle(options.title),
                                                             destination.url(), options.color, context.stop);
    if (layoutFile) {
        layoutFile->commit();
    }
    if (destination.isStandardOutput()) {
        destination.deliver(context.stop);
        return;
    }
    printResult(describe(roll, conventionalLengthInches, audits));
}

} // namespace

void addRollCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "roll", description("将图像排上卷布并写出卷布 PDF", "put images on a roll and write the roll PDF"));
    const auto options = std::make_shared<RollOptions>();
    command
        ->add_option("IMAGE", options->images,
                     description("JPEG、PNG、TIFF 或 HEIC 文件", "JPEG, PNG, TIFF or HEIC files"))
        ->required()
        ->type_name("");
    command
        ->add_option(
            "-o", options->output,
            description("PDF 文件；写到标准输出时不打印结果", "the PDF; for standard output the answer is not printed"))
        ->required()
        ->type_name("OUT.pdf");
    command
        ->add_option("--width", options->widthInches,
                     description("卷布宽度（英寸）", "the width of the roll, in inches"))
        ->type_name("IN");
    command
        ->add_option("--gap", options->gapInches,
                     description("手裁框的间距（英寸）", "the distance of trim frames, in inches"))
        ->type_name("IN");
    command
        ->add_option("--size", options->sizeTexts,
                     description("同一位置图像的打印尺寸（英寸），- 表示不指定；可重复",
                                 "the print size of the image at the same place, in inches, - for none; repeatable"))
        ->allow_extra_args(false)
        ->type_name("WxH");
    command->add_flag("--turns", options->allowsTurns,
                      description("允许将作品旋转 90° 以节省画布", "let artworks turn by 90° where that saves canvas"));
    command
        ->add_option("--layout-out", options->layoutOutput,
                     description("将排版写成工作区文件", "write the layout as a workspace file"))
        ->type_name("FILE");
    command->add_option("--title", options->title, description("PDF 的标题", "the PDF's title"))->type_name("TEXT");
    options->color.addTo(*command);
    command->callback([options, &context] { runRoll(*options, context); });
}

} // namespace orvex
