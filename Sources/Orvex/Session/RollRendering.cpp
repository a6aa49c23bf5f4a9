#include "RollRendering.h"

#include "BackgroundTask.h"
#include "Color/IccProfile.h"
#include "Files/FileRemoval.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "OrvexLanguage.h"
#include "SessionOperation.h"

namespace orvex {

namespace {

SessionProgress sessionProgress(const RollPDFRenderer::RenderProgress& progress) {
    return {.done = progress.artwork - 1,
            .total = progress.artworkCount,
            .what = renderStageLabel(progress.stage),
            .fraction = progress.fraction()};
}

} // namespace

QString rollPDFTitle() {
    return spt("orvex · 卷布排版", "orvex · Roll Layout");
}

QString exportCancelled() {
    return spt("已取消导出，没有写入 PDF。", "The export was cancelled. No PDF was written.");
}

QString renderStageLabel(RollPDFRenderer::RenderStage stage) {
    return stage == RollPDFRenderer::RenderStage::preflight ? spt("检查原图", "Checking originals")
                                                            : spt("写入 PDF", "Writing the PDF");
}

QFuture<QList<RollSourceAudit>> startRollRendering(const RollRendering& rendering, const QString& title,
                                                   SessionOperation& operation) {
    operation.show(sessionProgress({.artworkCount = rendering.layout.items.size()}));
    const auto report = operation.report();
    return platform::startUserInitiatedTask([rendering, title, stop = operation.stopToken(), report] {
        return RollPDFRenderer::render(
            rendering.layout, title, rendering.to, rendering.workflow, rendering.outputICC, stop,
            [&report](const RollPDFRenderer::RenderProgress& progress) { report(sessionProgress(progress)); });
    });
}

QByteArray readManagedICC(const PresetStore& presets, const ManagedICCAsset& asset) {
    return platform::readWholeFile(platform::localPath(presets.resolveICC(asset)), platform::IccProfile::largestBytes);
}

void removeQuietly(const QUrl& file) {
    try {
        platform::removeFile(platform::localPath(file));
    } catch (const platform::FileSystemError&) {
        // what failed before is what the user has to know
    }
}

} // namespace orvex
