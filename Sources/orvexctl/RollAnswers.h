#pragma once

#include "ColorOptions.h"
#include "Output/RollPDFRenderer.h"

#include <QString>

#include <string>

namespace orvex {

/// The title that was asked for, or the one that the window gives its rolls.
[[nodiscard]] QString rollTitle(const std::string& argument);

/// RollPDFRenderer::render, with a progress bar.
[[nodiscard]] QList<RollSourceAudit> renderWithProgress(const RollLayout& layout, const QString& title, const QUrl& to,
                                                        const ColorOptions& color, const std::stop_token& stop);

} // namespace orvex
