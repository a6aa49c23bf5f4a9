#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Interrupted.h"
#include "LayoutFile.h"

namespace orvex {

namespace {

struct PackOptions {
    std::string layout;
    std::optional<double> gapInches;
    std::optional<double> widthInches;
    bool allowsTurns = false;
    std::string output = "-";
};

/// The gap that was asked for, or else the one that the layout is kept with.
double gapInches(const PackOptions& options, const LayoutFile& file) {
    const double kept = file.workspace ? file.workspace->gapInches : RollLayout::defaultGapInches;
    return options.gapInches.value_or(kept);
}

void runPack(const PackOptions& options, const CommandContext& context) {
    LayoutFile file = LayoutFile::read(fileArgument(options.layout));
    const QString output = fileArgument(options.output);
    refuseOverwriting(output, file.sources());
    if (options.widthInches) {
        file.layout.changeRollWidth(*options.widthInches, options.allowsTurns);
    }
    file.layout.optimizeArrangement(options.allowsTurns, gapInches(options, file));
    platform::throwIfStopped(context.stop);
    writeOutput(output, file.encoded());
}

} // namespace

void addPackCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command =
        app.add_subcommand("pack", description("重新排列作品，尽量少用画布",
                                               "arrange a layout's artworks on as little canvas as possible"));
    const auto options = std::make_shared<PackOptions>();
    command->add_option("LAYOUT", options->layout, description("排版文件或工作区文件", "a layout or workspace file"))
        ->required()
        ->type_name("");
    command
        ->add_option("--gap", options->gapInches,
                     description("手裁框的间距（英寸）；省略时用排版自己的间距",
                                 "the distance of trim frames, in inches; the layout's own without it"))
        ->type_name("IN");
    command->add_flag("--turns", options->allowsTurns,
                      description("允许将作品旋转 90° 以节省画布", "let artworks turn by 90° where that saves canvas"));
    command
        ->add_option("--width", options->widthInches,
                     description("新的卷布宽度（英寸）", "the roll's new width, in inches"))
        ->type_name("IN");
    command
        ->add_option(
            "-o", options->output,
            description("排版的输出文件；省略则写到标准输出", "where the layout goes; standard output without it"))
        ->type_name("FILE");
    command->callback([options, &context] { runPack(*options, context); });
}

} // namespace orvex
