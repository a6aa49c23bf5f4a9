#pragma once

#include "LabelledValue.h"
#include "Output/ColorManagement.h"
#include "Stores/PrintPresets.h"

#include <QList>
#include <QStringList>

namespace orvex {

/// What can be chosen in the output controls, and what is said about a choice, in the current language. Any thread.
namespace OutputChoices {

/// The driver's resolutions, after the driver's own setting, whose value is empty. A choice that the driver does not
/// offer stays among them and says so.
[[nodiscard]] QList<LabelledValue> qualities(const QStringList& offered, const QString& current);

/// The values are raw values.
[[nodiscard]] QList<LabelledValue> colorManagementModes();
[[nodiscard]] QList<LabelledValue> renderingIntents();

/// What becomes of the colours in this mode.
[[nodiscard]] QString explanation(ColorManagementMode mode);

/// All presets by the text of their ids, after the settings that belong to none, whose value is empty.
[[nodiscard]] QList<LabelledValue> presets(const QList<PrintPreset>& presets);

/// The name of the preset that loads by itself, or how to choose one.
[[nodiscard]] QString canvasDefault(const std::optional<QString>& name);

} // namespace OutputChoices

} // namespace orvex
