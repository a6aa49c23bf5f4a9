#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "ProtectedSettingsBaseline.h"
#include "SettingsPreservationService.h"

#include <cstdint>
#include <cstdlib>

// Settings baselines of any bytes: each is refused, or read, written so that it reads the same, and like itself.

using namespace orvex;

namespace {

void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void mustBeLikeItself(const ProtectedSettingsSnapshot& snapshot) {
    const auto comparison = SettingsPreservationService::compare(snapshot, snapshot);
    QStringList unverifiable;
    for (const ProtectedSettingsFile& file : snapshot.files) {
        if (!file.isVerifiable()) {
            unverifiable.append(file.path);
        }
    }
    mustHold(comparison.changes.isEmpty() && comparison.unverifiablePaths.size() == unverifiable.size());
    mustHold(comparison.isUnchanged() == unverifiable.isEmpty());
}

/// A snapshot that was read once must be readable again, so no error is expected here.
void mustSurviveWriting(const ProtectedSettingsSnapshot& snapshot) noexcept {
    const QByteArray written = platform::writeJson(snapshot.toJson(), platform::JsonForm::pretty);
    mustHold(ProtectedSettingsBaseline::decode(written) == snapshot);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto snapshot = ProtectedSettingsBaseline::decode(QByteArrayView(data, static_cast<qsizetype>(size)));
        mustSurviveWriting(snapshot);
        mustBeLikeItself(snapshot);
    } catch (const platform::JsonError&) {
        // No JSON, or not that of a snapshot.
    } catch (const InvalidBaselineError&) {
        // A snapshot that no capture makes.
    }
    return 0;
}
