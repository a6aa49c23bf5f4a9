#include "StoredRecords.h"
#include "Stores/PrintPresets.h"

#include <cstdint>

// Presets of any bytes: each is refused, or read, validated and written so that it reads the same.

using namespace orvex;

namespace {

PrintPreset readPreset(QByteArrayView bytes) {
    return PrintPreset::fromJson(platform::JsonReader::parse(bytes));
}

/// A preset that was read once must be readable again, so no error is expected here.
void mustSurviveWriting(const PrintPreset& preset) noexcept {
    const auto issue = preset.validationError();
    fuzz::mustHold(!issue || !issue->isEmpty());
    const PrintPreset again = readPreset(platform::writeJson(preset.toJson(), platform::JsonForm::pretty));
    fuzz::mustHold(again == preset && again.validationError() == issue);
}

/// A preset that breaks no rule names no file but one in the folder of profiles.
void mustStayInItsFolder(const PrintPreset& preset) {
    if (preset.iccAsset && !preset.validationError()) {
        fuzz::mustHold(!preset.iccAsset->filename.contains(u'/') && !preset.iccAsset->filename.startsWith(u'.'));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const PrintPreset preset = readPreset(QByteArrayView(data, static_cast<qsizetype>(size)));
        mustSurviveWriting(preset);
        mustStayInItsFolder(preset);
    } catch (const platform::JsonError&) {
        // No JSON, or not that of a preset.
    }
    return 0;
}
