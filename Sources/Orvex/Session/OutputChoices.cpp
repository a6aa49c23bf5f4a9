#include "OutputChoices.h"

#include "Json/JsonWriter.h"
#include "OrvexLanguage.h"

namespace orvex {

namespace {

template <typename Values>
QList<LabelledValue> entriesOf(const Values& values) {
    QList<LabelledValue> entries;
    for (const auto value : values) {
        entries.append({label(value), rawValue(value)});
    }
    return entries;
}

} // namespace

QList<LabelledValue> OutputChoices::qualities(const QStringList& offered, const QString& current) {
    QList<LabelledValue> entries{{spt("沿用佳能当前设置", "Use current Canon settings"), QString()}};
    for (const QString& quality : offered) {
        entries.append({quality, quality});
    }
    if (!current.isEmpty() && !offered.contains(current)) {
        entries.append({current + spt(" · 当前不可用", " · Currently unavailable"), current});
    }
    return entries;
}

QList<LabelledValue> OutputChoices::colorManagementModes() {
    return entriesOf(allColorManagementModes);
}

QList<LabelledValue> OutputChoices::renderingIntents() {
    return entriesOf(allColorRenderingIntents);
}

QString OutputChoices::explanation(ColorManagementMode mode) {
    if (mode == ColorManagementMode::appManaged) {
        return spt("ColorSync 按原始分辨率转换像素，并嵌入输出配置文件。预览不做软打样。ICC 必须与 "
                   "iPF9400、画布和质量匹配，不能用 HP 打印机的 ICC 代替。",
                   "ColorSync converts original-resolution pixels and embeds the output profile. The preview is not "
                   "soft-proofed. The ICC must match the iPF9400, canvas and quality; an HP printer ICC is not a "
                   "substitute.");
    }
    return spt("保留源色彩空间，由佳能流程管理颜色。所选 ICC 只随预设记录，不用于转换此 PDF。",
               "Preserve the source colour space and let the Canon workflow manage colour. The selected ICC is "
               "recorded with the preset and is not used to convert this PDF.");
}

QList<LabelledValue> OutputChoices::presets(const QList<PrintPreset>& presets) {
    QList<LabelledValue> entries{{spt("自定义设置", "Custom settings"), QString()}};
    for (const PrintPreset& preset : presets) {
        entries.append({preset.name, platform::uuidText(preset.id)});
    }
    return entries;
}

QString OutputChoices::canvasDefault(const std::optional<QString>& name) {
    return name.value_or(spt("保存预设并将其设为默认后，重新打开时会自动载入。",
                             "Save a preset, then make it the default to load automatically on reopening."));
}

} // namespace orvex
