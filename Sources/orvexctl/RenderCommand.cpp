#include "ColorOptions.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Files/Paths.h"
#include "Json/JsonRecords.h"
#include "LayoutFile.h"
#include "PdfDestination.h"
#include "RollAnswers.h"

namespace orvex {

namespace {

struct RenderOptions {
    std::string layout;
    std::string output;
    std::string title;
    ColorOptions color;
};

void runRender(const RenderOptions& options, const CommandContext& context) {
    const QString layoutPath = fileArgument(options.layout);
    const LayoutFile file = LayoutFile::read(layoutPath);
    const QString output = fileArgument(options.output);
    QList<QUrl> inputs = options.color.inputs();
    if (!isStandardStream(layoutPath)) {
        inputs.append(platform::fileUrl(layoutPath));
    }
    refuseOverwriting(output, inputs);
    const PdfDestination destination(output);
    const QList<RollSourceAudit> audits =
        renderWithProgress(file.layout, rollTitle(options.title), destination.url(), options.color, context.stop);
    if (destination.isStandardOutput()) {
        destination.deliver(context.stop);
        return;
    }
    printResult(platform::jsonArray(audits));
}

} // namespace

void addRenderCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand("render", description("将排版写成卷布 PDF", "write a layout as a roll PDF"));
    const auto options = std::make_shared<RenderOptions>();
    command->add_option("LAYOUT", options->layout, description("排版文件或工作区文件", "a layout or workspace file"))
        ->required()
        ->type_name("");
    command
        ->add_option("-o", options->output,
                     description("PDF 文件；写到标准输出时不打印记录",
                                 "the PDF; for standard output the audits are not printed"))
        ->required()
        ->type_name("OUT.pdf");
    command->add_option("--title", options->title, description("PDF 的标题", "the PDF's title"))->type_name("TEXT");
    options->color.addTo(*command);
    command->callback([options, &context] { runRender(*options, context); });
}

} // namespace orvex
