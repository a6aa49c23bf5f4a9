#pragma once

#include "Output/ColorManagement.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace orvex {

/// The colour options that the rendering commands share.
struct ColorOptions {
    std::optional<std::string> outputIccPath; ///< never empty
    std::string intent = "relativeColorimetric";
    bool isDriverCorrectionOff = false;

    void addTo(CLI::App& command);

    /// Application-managed if an output profile is named, otherwise driver-managed.
    [[nodiscard]] ColorWorkflow workflow() const;

    /// The bytes of the output profile; absent if none is named. Raises FileSystemError.
    [[nodiscard]] std::optional<QByteArray> outputProfile() const;

    [[nodiscard]] QList<QUrl> inputs() const;
};

} // namespace orvex
