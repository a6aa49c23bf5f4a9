#include "CanvasPreference.h"
#include "StoredRecords.h"

#include <cstdint>

// Records of a preset for a printer, of any bytes: each is refused, or read and written so that it reads the same.

using namespace orvex;

namespace {

CanvasPreference readPreference(QByteArrayView bytes) {
    return CanvasPreference::fromJson(platform::JsonReader::parse(bytes));
}

/// A record that was read once must be readable again, so no error is expected here.
void mustSurviveWriting(const CanvasPreference& preference) noexcept {
    const auto written = platform::writeJson(preference.toJson(), platform::JsonForm::compactEscapedSlashes);
    fuzz::mustHold(readPreference(written) == preference);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        mustSurviveWriting(readPreference(QByteArrayView(data, static_cast<qsizetype>(size))));
    } catch (const platform::JsonError&) {
        // No JSON, or not that of such a record.
    }
    return 0;
}
