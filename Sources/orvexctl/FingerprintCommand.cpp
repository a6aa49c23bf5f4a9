#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "FileGuard.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "ProtectedSettingsBaseline.h"
#include "SettingsPreservationService.h"
#include "StoreChange.h"

#include <QFileInfo>
#include <QJsonObject>

#include <cerrno>

namespace orvex {

namespace {

struct FingerprintOptions {
    std::vector<std::string> paths;
    std::optional<std::string> baseline;
    bool isSaving = false;
};

/// A path that its text leads to. Another's fingerprint would be that of nothing, or of something else.
QString pathText(const std::string& argument) {
    if (argument.empty()) {
        throw OrvexError::invalid(spt("路径为空。", "A path is empty.")); // it would lead to the current folder
    }
    return fileArgument(argument);
}

QList<QUrl> locations(const std::vector<std::string>& paths) {
    QList<QUrl> locations;
    for (const std::string& path : paths) {
        locations.append(platform::fileUrl(pathText(path)));
    }
    return locations;
}

QList<QUrl> rootsOf(const ProtectedSettingsSnapshot& baseline) {
    QList<QUrl> roots;
    for (const QString& path : baseline.rootPaths) {
        roots.append(QUrl::fromLocalFile(platform::standardizedPath(path)));
    }
    return roots;
}

ProtectedSettingsSnapshot existingBaseline(const QString& path) {
    if (isStandardStream(path)) {
        return ProtectedSettingsBaseline::decode(readInput(path, ProtectedSettingsBaseline::largestBytes));
    }
    const auto baseline = ProtectedSettingsBaseline::load(path);
    if (!baseline) {
        throw platform::FileSystemError(ENOENT, path);
    }
    return *baseline;
}

/// What is there now, looked at where the baseline looked.
void compareWithBaseline(const QString& path, const CommandContext& context) {
    const ProtectedSettingsSnapshot baseline = existingBaseline(path);
    const auto current = SettingsPreservationService::capture(rootsOf(baseline), context.stop);
    printResult(SettingsPreservationService::compare(baseline, current).toJson());
}

/// Whether a file lies where the program keeps its own baseline.
bool isInStores(const QString& path) {
    return platform::isSameFile(QFileInfo(path).path(), platform::localPath(storesFolder()));
}

void saveBaseline(const ProtectedSettingsSnapshot& snapshot, const QString& path) {
    std::optional<StoreChange> change;
    if (isInStores(path)) {
        change.emplace();
    }
    ProtectedSettingsBaseline::save(snapshot, path);
}

void runFingerprint(const FingerprintOptions& options, const CommandContext& context) {
    if (options.paths.empty()) {
        compareWithBaseline(pathText(*options.baseline), context);
        return;
    }
    const auto snapshot = SettingsPreservationService::capture(locations(options.paths), context.stop);
    if (options.isSaving) {
        saveBaseline(snapshot, platform::localPath(platform::fileUrl(pathText(*options.baseline))));
    }
    printResult(snapshot.toJson());
}

/// Whether the options have one of the three forms: PATH..., --baseline FILE --save PATH..., --baseline FILE.
bool haveOneForm(const FingerprintOptions& options) {
    if (!options.baseline) {
        return !options.paths.empty() && !options.isSaving;
    }
    if (options.paths.empty()) {
        return !options.baseline->empty() && !options.isSaving;
    }
    // Standard input can be compared with, not replaced.
    return !options.baseline->empty() && options.isSaving && !isStandardStream(argumentText(*options.baseline));
}

void requireOneForm(const FingerprintOptions& options) {
    if (!haveOneForm(options)) {
        throw CLI::ValidationError("fingerprint", "PATH... | --baseline FILE --save PATH... | --baseline FILE");
    }
}

} // namespace

void addFingerprintCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "fingerprint", description("记录设置指纹，或与设置基线比较；不更改设置文件",
                                   "take the fingerprints of settings files, or compare them with a baseline; the "
                                   "files are not changed"));
    const auto options = std::make_shared<FingerprintOptions>();
    command->add_option("PATH", options->paths, description("文件或文件夹", "files or folders"))->type_name("");
    command
        ->add_option("--baseline", options->baseline,
                     description("设置基线文件；“-”表示从标准输入读取",
                                 "the settings baseline; - reads one from standard input"))
        ->type_name("FILE");
    command->add_flag("--save", options->isSaving,
                      description("将设置指纹存为设置基线", "save the fingerprints as the settings baseline"));
    command->callback([options, &context] {
        requireOneForm(*options);
        runFingerprint(*options, context);
    });
}

} // namespace orvex
