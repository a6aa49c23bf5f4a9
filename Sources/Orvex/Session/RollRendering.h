#pragma once

#include "Output/RollPDFRenderer.h"
#include "Stores/PresetStore.h"

#include <QFuture>

namespace orvex {

class SessionOperation;

/// All that the rendering of a roll needs; it refers to nothing of the session.
struct RollRendering {
    RollLayout layout;
    QUrl to;
    ColorWorkflow workflow;
    std::optional<QByteArray> outputICC;
};

/// The title of the PDFs that are kept.
[[nodiscard]] QString rollPDFTitle();

/// What a rendering does at a stage, for a progress display.
[[nodiscard]] QString renderStageLabel(RollPDFRenderer::RenderStage stage);

/// Renders in the background. The operation shows the progress, and stops it when it is cancelled.
[[nodiscard]] QFuture<QList<RollSourceAudit>> startRollRendering(const RollRendering& rendering, const QString& title,
                                                                 SessionOperation& operation);

/// The bytes of a profile in the keeping of the presets, verified. Raises OrvexError and FileSystemError.
[[nodiscard]] QByteArray readManagedICC(const PresetStore& presets, const ManagedICCAsset& asset);

/// What to say of an export that was cancelled.
[[nodiscard]] QString exportCancelled();

/// Removes a file that a failure may have left; what keeps it from that is passed over, as the failure is what counts.
void removeQuietly(const QUrl& file);

} // namespace orvex
