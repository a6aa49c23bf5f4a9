#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Files/TemporaryFolder.h"
#include "Imaging/PngWriter.h"
#include "InputFile.h"
#include "Interrupted.h"
#include "LayoutFile.h"
#include "PDF/PdfView.h"
#include "RollAnswers.h"

namespace orvex {

namespace {

constexpr QByteArrayView pdfMark = "%PDF-";

struct PreviewOptions {
    std::string input;
    std::string output;
    int pixels = 2400;
};

QByteArray pngOf(const QString& pdfPath, int longerSidePixels) {
    const platform::PdfPicture picture = platform::PdfView::renderPage(pdfPath, longerSidePixels);
    return platform::encodePng(picture.width, picture.height, {.model = platform::ColorModel::rgb},
                               std::as_bytes(std::span(picture.rgb)));
}

/// A picture of the layout is the picture of the PDF that it becomes.
QByteArray pngOfLayout(const LayoutFile& file, int longerSidePixels, const std::stop_token& stop) {
    const platform::TemporaryFolder folder;
    const QString pdf = folder.filePath(QStringLiteral("roll.pdf"));
    (void)renderWithProgress(file.layout, rollTitle({}), platform::fileUrl(pdf), {}, stop);
    return pngOf(pdf, longerSidePixels);
}

QByteArray pngOfInput(const QString& path, const PreviewOptions& options, const std::stop_token& stop) {
    if (platform::RandomAccessFile::open(path).bytesAt(0, pdfMark.size()) == pdfMark) {
        return pngOf(path, options.pixels);
    }
    const LayoutFile file = LayoutFile::read(path);
    refuseOverwriting(fileArgument(options.output), file.sources());
    return pngOfLayout(file, options.pixels, stop);
}

void runPreview(const PreviewOptions& options, const CommandContext& context) {
    const QString input = fileArgument(options.input);
    const QString output = fileArgument(options.output);
    if (!isStandardStream(input)) {
        refuseOverwriting(output, {platform::fileUrl(input)});
    }
    const InputFile file(input);
    const QByteArray png = pngOfInput(file.path(), options, context.stop);
    platform::throwIfStopped(context.stop); // the drawing itself cannot be stopped
    writeOutput(output, png);
}

} // namespace

void addPreviewCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand("preview", description("生成卷布预览图", "make a picture of a roll"));
    const auto options = std::make_shared<PreviewOptions>();
    command
        ->add_option("INPUT", options->input,
                     description("排版文件、工作区文件或卷布 PDF", "a layout or workspace file, or a roll PDF"))
        ->required()
        ->type_name("");
    command->add_option("-o", options->output, description("图片文件", "the picture"))
        ->required()
        ->type_name("OUT.png");
    command->add_option("--pixels", options->pixels, description("图片长边的像素数", "the longer side of the picture"))
        ->type_name("N")
        ->check(CLI::Range(1, platform::PdfView::largestSidePixels));
    command->callback([options, &context] { runPreview(*options, context); });
}

} // namespace orvex
