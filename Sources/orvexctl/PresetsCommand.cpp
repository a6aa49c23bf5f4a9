#include "CommandText.h"
#include "Commands.h"
#include "Files/ApplicationFolder.h"
#include "InputFile.h"
#include "OrvexQAWorkspace.h"
#include "PresetDeletion.h"
#include "StoreAnswers.h"
#include "StoreChange.h"
#include "Stores/PresetStore.h"

namespace orvex {

namespace {

PresetStore openPresets() {
    const auto workspace = OrvexQAWorkspace::directory();
    return PresetStore(workspace ? std::optional(PresetStore::folderIn(*workspace)) : std::nullopt);
}

void runDelete(const std::string& argument) {
    const QUuid id = idArgument(argument);
    const StoreChange change;
    const PresetStore presets = openPresets();
    const QUrl defaultsURL = CanvasPreference::url(platform::storeFolder(OrvexQAWorkspace::directory()));
    std::optional<CanvasPreference> preference = CanvasPreference::load(defaultsURL);
    static_cast<void>(presets.load()); // one that cannot be read refuses the deletion before anything is gone
    deletePreset(id, presets, defaultsURL, preference);
    printRecords(presets.load());
}

void runImport(const std::string& file) {
    const InputFile profile(fileArgument(file)); // reads standard input, which may take its time
    const StoreChange change;
    printResult(openPresets().importICC(profile.url()).toJson());
}

} // namespace

void addPresetsCommand(CLI::App& app, CommandContext&) {
    CLI::App* command = app.add_subcommand(
        "presets", description("查看或删除预设，导入输出 ICC", "look at presets or delete one; import an output ICC"));
    command->require_subcommand(0, 1);
    command->add_subcommand("list", description("列出预设（默认）", "list the presets; so does `presets` alone"));
    const auto argument = std::make_shared<std::string>();
    CLI::App* deleting = command->add_subcommand(
        "delete", description("删除预设；其 ICC 文件保留", "delete a preset; its ICC profile stays"));
    deleting->add_option("ID", *argument, description("预设的 ID", "the preset's id"))->required()->type_name("");
    CLI::App* importing =
        command->add_subcommand("import-icc", description("导入 ICC 配置文件，由应用统一保管",
                                                          "copy an ICC profile into the program's keeping"));
    importing->add_option("FILE", *argument, description("配置文件", "the profile"))->required()->type_name("");
    deleting->callback([argument] { runDelete(*argument); });
    importing->callback([argument] { runImport(*argument); });
    command->callback([command, deleting, importing] {
        if (!command->got_subcommand(deleting) && !command->got_subcommand(importing)) {
            printRecords(openPresets().load());
        }
    });
}

} // namespace orvex
