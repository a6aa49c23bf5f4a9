#pragma once

#include "ProtectedSettings.h"

#include <QList>
#include <QUrl>

#include <stop_token>

namespace orvex {

/// Fingerprints the files in which the user's printer settings live, and compares such fingerprints. It reports, and
/// does nothing else: no protected path is ever written. Any thread.
class SettingsPreservationService {
public:
    /// The fingerprints of these locations and of all below them. Links are never followed, and nothing but regular
    /// files is opened; whatever goes wrong stands in the entries. Memory does not grow with the size of the files.
    /// Blocks, so it belongs on a background task. Raises Interrupted once a stop is requested, and nothing else.
    [[nodiscard]] static ProtectedSettingsSnapshot capture(const QList<QUrl>& paths, const std::stop_token& stop = {});

    /// What is not as it was, and what cannot be told. Pure.
    [[nodiscard]] static SettingsPreservationComparison compare(const ProtectedSettingsSnapshot& baseline,
                                                                const ProtectedSettingsSnapshot& current);
};

} // namespace orvex
