#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "InputFile.h"
#include "Output/NativePrintDocument.h"

#include <QJsonObject>

namespace orvex {

namespace {

struct CheckOptions {
    std::string pdf;
    std::optional<double> widthInches;
    std::optional<double> heightInches;
};

void runCheck(const CheckOptions& options) {
    const InputFile file(fileArgument(options.pdf));
    const NativePrintSource source =
        NativePrintFactory::openDocument(file.url(), options.widthInches, options.heightInches);
    printResult(QJsonObject{{QStringLiteral("widthInches"), source.geometry.widthInches()},
                            {QStringLiteral("heightInches"), source.geometry.heightInches()},
                            {QStringLiteral("userUnit"), source.geometry.userUnit}});
}

} // namespace

void addCheckCommand(CLI::App& app, CommandContext&) {
    CLI::App* command =
        app.add_subcommand("check", description("不用打印机，按直接打印的规则检查 PDF",
                                                "check a PDF as direct printing does, without a printer"));
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("PDF", options->pdf, description("卷布 PDF", "the roll PDF"))->required()->type_name("");
    CLI::Option* width = command->add_option("--width-inches", options->widthInches,
                                             description("预期宽度（英寸）", "the width it must have, in inches"));
    CLI::Option* height = command->add_option("--height-inches", options->heightInches,
                                              description("预期高度（英寸）", "the height it must have, in inches"));
    width->type_name("W")->needs(height);
    height->type_name("H")->needs(width);
    command->callback([options] { runCheck(*options); });
}

} // namespace orvex
