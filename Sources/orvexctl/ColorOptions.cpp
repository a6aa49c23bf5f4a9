#include "ColorOptions.h"

#include "CommandFiles.h"
#include "CommandText.h"
#include "Files/Paths.h"

namespace orvex {

namespace {

constexpr qint64 largestProfileBytes = 1 << 30; // no profile is a tenth of it; more would not be worth reading

const std::map<std::string, ColorRenderingIntent> intents{
    {"perceptual", ColorRenderingIntent::perceptual},
    {"relativeColorimetric", ColorRenderingIntent::relativeColorimetric},
    {"saturation", ColorRenderingIntent::saturation},
    {"absoluteColorimetric", ColorRenderingIntent::absoluteColorimetric}};

} // namespace

void ColorOptions::addTo(CLI::App& command) {
    CLI::Option* profile = command.add_option("--output-icc", outputIccPath,
                                              description("转换到此输出 ICC", "convert to this output profile"));
    profile->type_name("FILE")->check([](const std::string& path) {
        return path.empty() ? description("输出 ICC 的路径不能为空", "the path of the output profile must not be empty")
                            : std::string();
    });
    command.add_option("--intent", intent, description("转换所用的渲染意图", "the rendering intent of the conversion"))
        ->check(CLI::IsMember(intents))
        ->needs(profile);
    command
        .add_flag("--driver-correction-off", isDriverCorrectionOff,
                  description("确认驱动自身的颜色校正已关闭", "confirm that the driver's own colour correction is off"))
        ->needs(profile);
}

ColorWorkflow ColorOptions::workflow() const {
    return {.mode = outputIccPath ? ColorManagementMode::appManaged : ColorManagementMode::driverManaged,
            .intent = intents.at(intent),
            .driverColorCorrectionDisabledConfirmed = isDriverCorrectionOff};
}

std::optional<QByteArray> ColorOptions::outputProfile() const {
    if (!outputIccPath) {
        return std::nullopt;
    }
    return readInput(fileArgument(*outputIccPath), largestProfileBytes);
}

QList<QUrl> ColorOptions::inputs() const {
    if (!outputIccPath || isStandardStream(fileArgument(*outputIccPath))) {
        return {};
    }
    return {platform::fileUrl(fileArgument(*outputIccPath))};
}

} // namespace orvex
