#include "ColorOptions.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Failure.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "Interrupted.h"
#include "Json/JsonWriter.h"
#include "Layout/LayoutTexts.h"
#include "Layout/RollLayout.h"
#include "Layout/RollSummary.h"
#include "Layout/RollWorkspaceFile.h"
#include "OrvexError.h"
#include "Output/ArtworkImport.h"
#include "Output/RollPDFRenderer.h"
#include "PdfDestination.h"
#include "RollAnswers.h"

#include <QJsonObject>

namespace orvex {

namespace {

struct RollOptions {
    std::vector<std::string> images;
    std::string output;
    double widthInches = RollLayout::rollWidthInches;
    double gapInches = RollLayout::defaultGapInches;
    std::string layoutOutput;
    std::string title;
    ColorOptions color;
};

/// The images on a roll, and what the operator should know of them.
struct ImportedRoll {
    RollWorkspaceFile workspace;
    QStringList warnings;
};

void importImage(const QUrl& url, ImportedRoll& roll) {
    const ImageMetadata metadata = ImageMetadata::load(url);
    RollLayout& layout = roll.workspace.layout;
    const QUuid id = layout.append(importedArtwork(metadata, layout.widthInches), roll.workspace.gapInches);
    roll.workspace.sizingDescriptions.insert(platform::uuidText(id), metadata.physicalSizeSource);
    roll.workspace.selection = id;
    if (metadata.isPhysicalSizeEstimated()) {
        roll.warnings.append(url.fileName() + u'：' + metadata.physicalSizeSourceLabel());
    }
}

/// Raises OrvexError with a line for each image that cannot be imported.
ImportedRoll importImages(const QList<QUrl>& urls, const RollOptions& options, const std::stop_token& stop) {
    ImportedRoll roll;
    roll.workspace.layout = RollLayout({}, options.widthInches);
    roll.workspace.gapInches = options.gapInches;
    QStringList failures;
    for (const QUrl& url : urls) {
        platform::throwIfStopped(stop);
        try {
            importImage(url, roll);
        } catch (const Failure& failure) {
            failures.append(url.fileName() + u'：' + failure.message());
        }
    }
    if (!failures.isEmpty()) {
        throw OrvexError::invalid(failures.join(u'\n'));
    }
    return roll;
}

QJsonObject describe(const ImportedRoll& roll, const QList<RollSourceAudit>& audits) {
    const RollLayout& layout = roll.workspace.layout;
    QStringList warnings = roll.warnings;
    if (const auto advisory = rollAdvisory(layout)) {
        warnings.append(*advisory);
    }
    const Size page = RollPDFRenderer::pageSizePoints(layout);
    return {{QStringLiteral("layout"), layout.toJson()},
            {QStringLiteral("audits"), toJson(audits)},
            {QStringLiteral("widthInches"), layout.widthInches},
            {QStringLiteral("lengthInches"), layout.lengthInches()},
            {QStringLiteral("conventionalLengthInches"), layout.lengthInches()},
            {QStringLiteral("utilization"), utilizationPercent(layout)},
            {QStringLiteral("userUnit"), RollPDFRenderer::userUnit(page.width, page.height)},
            {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)}};
}

void runRoll(const RollOptions& options, const CommandContext& context) {
    QList<QUrl> urls;
    for (const std::string& image : options.images) {
        urls.append(platform::fileUrl(argumentText(image)));
    }
    const QString output = argumentText(options.output);
    const QString layoutOutput = argumentText(options.layoutOutput);
    refuseOverwriting(output, urls + options.color.inputs());
    if (isStandardStream(layoutOutput)) {
        throw CLI::ValidationError("--layout-out", "standard output has the answer or the PDF already");
    }
    if (!layoutOutput.isEmpty()) {
        refuseOverwriting(layoutOutput, urls + options.color.inputs() + QList{platform::fileUrl(output)});
    }
    refuse(RollLayout({}, options.widthInches).widthValidationError());
    RollLayout::validateGap(options.gapInches);
    ImportedRoll roll = importImages(urls, options, context.stop);
    roll.workspace.layout.autoArrange(options.gapInches);
    // Written before the PDF is in place: what keeps the one from being saved keeps the other as it was.
    std::optional<platform::FileReplacer> layoutFile;
    if (!layoutOutput.isEmpty()) {
        layoutFile.emplace(platform::FileReplacer::open(layoutOutput)).write(roll.workspace.encode());
    }
    const PdfDestination destination(output);
    const QList<RollSourceAudit> audits =
        RollPDFRenderer::render(roll.workspace.layout, rollTitle(options.title), destination.url(),
                                options.color.workflow(), options.color.outputProfile(), context.stop);
    if (layoutFile) {
        layoutFile->commit();
    }
    if (destination.isStandardOutput()) {
        destination.deliver(context.stop);
        return;
    }
    printResult(describe(roll, audits));
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
        ->add_option("--layout-out", options->layoutOutput,
                     description("将排版写成工作区文件", "write the layout as a workspace file"))
        ->type_name("FILE");
    command->add_option("--title", options->title, description("PDF 的标题", "the PDF's title"))->type_name("TEXT");
    options->color.addTo(*command);
    command->callback([options, &context] { runRoll(*options, context); });
}

} // namespace orvex
