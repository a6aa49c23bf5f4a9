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
    profile->type_name("FILE");
    command.add_option("--intent", intent, description("转换所用的渲染意图", "the rendering intent of the conversion"))
        ->check(CLI::IsMember(intents))
        ->needs(profile);
    command.add_flag(
        "--driver-correction-off", isDriverCorrectionOff,
        description("确认驱动自身的颜色校正已关闭", "confirm that the driver's own colour correction is off"));
}

ColorWorkflow ColorOptions::workflow() const {
    return {.mode = outputIccPath.empty() ? ColorManagementMode::driverManaged : ColorManagementMode::appManaged,
            .intent = intents.at(intent),
            .driverColorCorrectionDisabledConfirmed = isDriverCorrectionOff};
}

std::optional<QByteArray> ColorOptions::outputProfile() const {
    if (outputIccPath.empty()) {
        return std::nullopt;
    }
    return readInput(argumentText(outputIccPath), largestProfileBytes);
}

QList<QUrl> ColorOptions::inputs() const {
    const QString path = argumentText(outputIccPath);
    return path.isEmpty() || isStandardStream(path) ? QList<QUrl>() : QList<QUrl>{platform::fileUrl(path)};
}

} // namespace orvex
