#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Files/Paths.h"
#include "Output/ColorManagement.h"

#include <QJsonObject>

namespace orvex {

namespace {

constexpr qint64 largestProfileBytes = 1 << 30; // of one that comes through a pipe

void runIcc(const std::string& file) {
    const QString path = fileArgument(file);
    const OutputICCProfile profile = isStandardStream(path)
                                         ? OutputICCProfile::inspect(readInput(path, largestProfileBytes), path)
                                         : OutputICCProfile::inspect(platform::fileUrl(path));
    printResult(QJsonObject{{QStringLiteral("name"), profile.name},
                            {QStringLiteral("profileClass"), profile.profileClass},
                            {QStringLiteral("colorModel"), profile.colorModel},
                            {QStringLiteral("componentCount"), profile.componentCount},
                            {QStringLiteral("sha256"), profile.sha256}});
}

} // namespace

void addIccCommand(CLI::App& app, CommandContext&) {
    CLI::App* command =
        app.add_subcommand("icc", description("查看输出 ICC 配置文件的信息", "tell what an output ICC profile is"));
    const auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, description("配置文件", "the profile"))->required()->type_name("");
    command->callback([file] { runIcc(*file); });
}

} // namespace orvex
