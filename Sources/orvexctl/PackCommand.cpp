#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "LayoutFile.h"

namespace orvex {

namespace {

struct PackOptions {
    std::string layout;
    double gapInches = RollLayout::defaultGapInches;
    std::string output = "-";
};

void runPack(const PackOptions& options) {
    LayoutFile file = LayoutFile::read(argumentText(options.layout));
    const QString output = argumentText(options.output);
    refuseOverwriting(output, file.sources());
    file.layout.autoArrange(options.gapInches);
    writeOutput(output, file.encoded());
}

} // namespace

void addPackCommand(CLI::App& app, CommandContext&) {
    CLI::App* command =
        app.add_subcommand("pack", description("以尽量少的画布排列排版中的作品",
                                               "arrange a layout's artworks on as little canvas as possible"));
    const auto options = std::make_shared<PackOptions>();
    command->add_option("LAYOUT", options->layout, description("排版文件或工作区文件", "a layout or workspace file"))
        ->required()
        ->type_name("");
    command
        ->add_option("--gap", options->gapInches,
                     description("手裁框的间距（英寸）", "the distance of trim frames, in inches"))
        ->type_name("IN");
    command
        ->add_option(
            "-o", options->output,
            description("排版写到何处；省略时写到标准输出", "where the layout goes; standard output without it"))
        ->type_name("FILE");
    command->callback([options] { runPack(*options); });
}

} // namespace orvex
