// The roll as a PDF: what speaks against it, into the local queue, to a place of the user's choice.

#include "BackgroundTask.h"
#include "FileGuard.h"
#include "Interrupted.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "RollRendering.h"
#include "SessionOperation.h"
#include "SizeTexts.h"
#include "StagedJobRecord.h"

#include <algorithm>

namespace orvex {

std::optional<QString> OrvexModel::rollExportIssue() const {
    if (auto issue = rollLayout().exportValidationError()) {
        return issue;
    }
    for (const RollArtwork& item : rollLayout().items) {
        if (!metadataFor(item)) {
            return spt("无法读取原图：%1。请重新关联文件。", "Cannot read the original: %1. Relink the file.")
                .arg(item.title);
        }
    }
    return colorPreflight();
}

std::optional<QString> OrvexModel::colorPreflight() const {
    const PresetForm& form = presetForm();
    if (form.colorWorkflow.mode != ColorManagementMode::appManaged) {
        return std::nullopt;
    }
    if (!form.iccAsset) {
        return spt("请选择与打印机、画布和质量匹配的 ICC。",
                   "Choose an ICC that matches the printer, canvas and quality.");
    }
    for (const RollArtwork& item : rollLayout().items) {
        const SharedImageMetadata metadata = metadataFor(item);
        if (!metadata || !metadata->sourceColorProfile.isTagged()) {
            return spt("部分作品没有已确认的嵌入源 ICC，无法猜测其色彩空间。请添加源 ICC 配置文件，或由佳能管理颜色。",
                       "Some artworks have no confirmed embedded source ICC. The colour space cannot be guessed. Add "
                       "the source profile or let Canon manage colour.");
        }
    }
    if (!form.colorWorkflow.driverColorCorrectionDisabledConfirmed) {
        return spt("请确认佳能颜色校正已关闭，以免重复进行颜色管理。应用不会更改该设置。",
                   "Confirm that Canon colour correction is off to avoid double colour management. The app does not "
                   "change that setting.");
    }
    return std::nullopt;
}

/// The profile to convert to; absent if the driver manages colour. Raises OrvexError and FileSystemError.
std::optional<QByteArray> OrvexModel::outputICCData(const ColorWorkflow& workflow,
                                                    const std::optional<ManagedICCAsset>& asset) const {
    if (workflow.mode != ColorManagementMode::appManaged) {
        return std::nullopt;
    }
    if (!asset || !presetStore) {
        throw OrvexError::invalid(spt("缺少输出 ICC。", "An output ICC is missing."));
    }
    return readManagedICC(*presetStore, *asset);
}

/// Tells why the roll cannot go, if it cannot.
bool OrvexModel::refusesExport() {
    const auto issue = rollExportIssue();
    if (issue) {
        errorMessage.set(issue);
    }
    return issue.has_value();
}

bool OrvexModel::canExportRoll() const {
    return !busy() && !rollExportIssue();
}

bool OrvexModel::canStageRoll() const {
    return canExportRoll() && queueAvailable();
}

void OrvexModel::stageRollPDF() {
    if (busy() || !store || refusesExport()) {
        return;
    }
    runStaging();
}

QCoro::Task<> OrvexModel::runStaging() {
    SessionOperation operation(*this, SessionOperation::Cancelling::possible);
    StagedJob job = stagedJob(rollLayout(), presetForm(), selectedPreset(), printerReadings().selectedPrinterName);
    const QUrl pdf = store->pdfURL(job);
    try {
        const std::optional<QByteArray> outputICC = outputICCData(*job.colorWorkflow, presetForm().iccAsset);
        const RollRendering rendering{
            .layout = *job.rollLayout, .to = pdf, .workflow = *job.colorWorkflow, .outputICC = outputICC};
        const QFuture<QList<RollSourceAudit>> rendered = startRollRendering(rendering, rollPDFTitle(), operation);
        const QList<RollSourceAudit> audits = co_await rendered;
        platform::throwIfStopped(operation.stopToken()); // nothing is staged before its record
        finishStagedJob(job, audits, services_.now());
        const QList<StagedJob> list = QList{job} + jobs();
        const QFuture<void> saving = platform::startUserInitiatedTask([store = *store, list] { store.save(list); });
        co_await saving;
        jobs.set(list);
        message.set(spt("已生成包含 %1 幅作品和裁剪虚线的卷布 PDF，尚未发送到打印机。",
                        "Roll PDF prepared with %1 artworks and trim dashes. It has not been sent to the printer.")
                        .arg(job.rollLayout->items.size()));
        setTab(1);
        co_return;
    } catch (const platform::Interrupted&) {
        message.set(spt("已取消加入待打印队列，未保留任何文件。",
                        "Adding the roll to the queue was cancelled. No file was kept."));
    } catch (const std::exception& exception) {
        errorMessage.set(failureMessage(exception));
    }
    removeUnlessRecorded(pdf, job.id);
}

/// Removes the PDF of a job that could not be staged: there is never one without a record. Saving the record may have
/// failed at its very end, when it was in place already; then both stay.
void OrvexModel::removeUnlessRecorded(const QUrl& pdf, const QUuid& id) {
    QList<StagedJob> recorded;
    const auto failure = failureMessageOf([&] { recorded = store->load(); });
    if (!failure && std::ranges::find(recorded, id, &StagedJob::id) != recorded.end()) {
        jobs.set(recorded);
        return;
    }
    removeQuietly(pdf);
}

void OrvexModel::exportRollPDF() {
    if (busy() || refusesExport()) {
        return;
    }
    const auto file = services_.saveFile(
        {.proposedName = spt("orvex-%1英寸卷布排版.pdf", "orvex-%1in-roll-layout.pdf").arg(rollWidthLabel()),
         .kind = FileKind::pdf});
    if (file && !busy()) {
        runExport(*file);
    }
}

QCoro::Task<> OrvexModel::runExport(QUrl file) {
    SessionOperation operation(*this, SessionOperation::Cancelling::possible);
    const RollLayout layout = rollLayout();
    const ColorWorkflow workflow = presetForm().colorWorkflow;
    try {
        refuseOverwritingOwnData(file);
        const std::optional<QByteArray> outputICC = outputICCData(workflow, presetForm().iccAsset);
        const RollRendering rendering{.layout = layout, .to = file, .workflow = workflow, .outputICC = outputICC};
        const QFuture<QList<RollSourceAudit>> rendered = startRollRendering(rendering, rollPDFTitle(), operation);
        static_cast<void>(co_await rendered);
        message.set(spt("已导出卷布 PDF：%1 × %2 英寸，包含手裁虚线。",
                        "Roll PDF exported: %1 × %2 in, including manual trim dashes.")
                        .arg(inchesText(layout.widthInches), inchesText(layout.lengthInches())));
        services_.revealFile(file);
    } catch (const platform::Interrupted&) {
        message.set(exportCancelled());
    } catch (const std::exception& exception) {
        errorMessage.set(failureMessage(exception));
    }
}

} // namespace orvex
