#include "StagedJobRecord.h"

#include "Layout/InchLayout.h"
#include "OrvexLanguage.h"
#include "Text.h"

#include <set>

namespace orvex {

namespace {

DocumentSettings pageOf(const RollLayout& layout) {
    return {.widthMM = PrintUnits::millimetres(layout.widthInches),
            .heightMM = PrintUnits::millimetres(layout.lengthInches()),
            .marginMM = PrintUnits::whiteBorderMM,
            .placement = Placement::fit,
            .paperSource = QStringLiteral("卷纸"),
            .mediaNote = {},
            .driverPageSize = {}};
}

/// The names of all source profiles, each once.
QString sourceProfiles(const QList<RollSourceAudit>& audits) {
    std::set<QString, platform::ScalarOrder> names;
    for (const RollSourceAudit& audit : audits) {
        names.insert(audit.sourceProfileName);
    }
    return QStringList(names.begin(), names.end()).join(QStringLiteral(" / "));
}

} // namespace

StagedJob stagedJob(const RollLayout& layout, const PresetForm& form, const std::optional<PrintPreset>& preset,
                    const QString& printerName) {
    StagedJob job{.id = QUuid::createUuid(),
                  .title = spt("卷布排版 · %1 幅作品", "Roll Layout · %1 Artworks").arg(layout.items.size()),
                  .printerName = printerName,
                  .settings = pageOf(layout),
                  .sourceProfile = {},
                  .colorWorkflow = form.colorWorkflow,
                  .driverQuality = form.driverQuality(),
                  .canvasMediaName = form.mediaName,
                  .rollLayout = layout};
    if (preset) {
        job.presetName = preset->name;
    }
    if (form.iccAsset) {
        job.inspectedICC = form.iccAsset->displayName;
    }
    if (form.iccAsset && form.colorWorkflow.mode == ColorManagementMode::appManaged) {
        job.outputICCSHA256 = form.iccAsset->sha256;
    }
    return job;
}

void finishStagedJob(StagedJob& job, const QList<RollSourceAudit>& audits, platform::Timestamp now) {
    job.createdAt = now;
    job.sourceProfile = sourceProfiles(audits);
    job.rollSourceAudits = audits;
}

} // namespace orvex
