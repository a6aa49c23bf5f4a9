#include "RollAnswers.h"

#include "CommandFiles.h"
#include "OrvexLanguage.h"
#include "ProgressBar.h"
#include "RollRendering.h"

namespace orvex {

namespace {

QString progressLabel(const RollPDFRenderer::RenderProgress& progress) {
    const QString label = progress.stage == RollPDFRenderer::RenderStage::preflight
                              ? spt("检查 %1/%2", "Checking %1/%2")
                              : spt("写入 %1/%2", "Writing %1/%2");
    return label.arg(progress.artwork).arg(progress.artworkCount);
}

} // namespace

QString rollTitle(const std::string& argument) {
    return argument.empty() ? rollPDFTitle() : argumentText(argument);
}

QList<RollSourceAudit> renderWithProgress(const RollLayout& layout, const QString& title, const QUrl& to,
                                          const ColorOptions& color, const std::stop_token& stop) {
    const ColorWorkflow workflow = color.workflow();
    const std::optional<QByteArray> outputProfile = color.outputProfile();
    ProgressBar bar;
    return RollPDFRenderer::render(layout, title, to, workflow, outputProfile, stop,
                                   [&bar](const RollPDFRenderer::RenderProgress& progress) {
                                       bar.show(progressLabel(progress), progress.fraction());
                                   });
}

} // namespace orvex
