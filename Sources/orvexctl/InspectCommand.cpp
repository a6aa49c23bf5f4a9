#include "CommandFiles.h"
#include "CommandLine.h"
#include "CommandText.h"
#include "Commands.h"
#include "Failure.h"
#include "Files/Paths.h"
#include "InputFile.h"
#include "Interrupted.h"
#include "Json/JsonWriter.h"
#include "Output/ImageMetadata.h"
#include "Sha256.h"

#include <QJsonArray>
#include <QJsonObject>

namespace orvex {

namespace {

QJsonObject describe(const QString& url, const ImageMetadata& metadata) {
    QJsonObject json{{QStringLiteral("url"), url},
                     {QStringLiteral("pixelWidth"), metadata.pixelWidth},
                     {QStringLiteral("pixelHeight"), metadata.pixelHeight},
                     {QStringLiteral("profileName"), metadata.profileName},
                     {QStringLiteral("originalWidthInches"), metadata.originalWidthInches},
                     {QStringLiteral("originalHeightInches"), metadata.originalHeightInches},
                     {QStringLiteral("physicalSizeSource"), metadata.physicalSizeSource},
                     {QStringLiteral("previewWidth"), metadata.preview.width()},
                     {QStringLiteral("previewHeight"), metadata.preview.height()}};
    if (const auto& profile = metadata.sourceColorProfile.embeddedICCData) {
        json.insert(QStringLiteral("profileSHA256"), platform::sha256Hex(*profile));
    }
    return json;
}

void runInspect(const std::vector<std::string>& images, CommandContext& context) {
    QJsonArray answers;
    for (const std::string& image : images) {
        platform::throwIfStopped(context.stop);
        const QString path = argumentText(image);
        // What comes through a pipe has no place of its own; that of the temporary file would tell nothing.
        const QString url = isStandardStream(path) ? path : platform::urlText(platform::fileUrl(path));
        try {
            const InputFile file(fileArgument(image));
            answers.append(describe(url, ImageMetadata::load(file.url(), context.stop)));
        } catch (const Failure& failure) {
            answers.append(QJsonObject{{QStringLiteral("url"), url}, {QStringLiteral("error"), failure.message()}});
            context.exitStatus = exitRefused;
        }
    }
    printResult(answers);
}

} // namespace

void addInspectCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand("inspect", description("查看图像文件的信息", "tell what image files are"));
    const auto images = std::make_shared<std::vector<std::string>>();
    command->add_option("IMAGE", *images, description("JPEG、PNG、TIFF 或 HEIC 文件", "JPEG, PNG, TIFF or HEIC files"))
        ->required()
        ->type_name("");
    command->callback([images, &context] { runInspect(*images, context); });
}

} // namespace orvex
