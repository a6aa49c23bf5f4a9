// From the operator's click to the print window: nothing is printed without it, and it opens only for a queue that has
// just said that it can take the job.

#include "Files/TemporaryFolder.h"
#include "Interrupted.h"
#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "RollRendering.h"
#include "SessionOperation.h"

namespace orvex {

namespace {

QString selectPrinterFirst() {
    return spt("请先选择已配置的打印机。", "Select a configured printer first.");
}

} // namespace

bool OrvexModel::canPrintCurrent() const {
    if (busy() || batchSizingPresented() || nativePrintRequestPending ||
        printerReadings().selectedPrinterName.isEmpty() || rollExportIssue()) {
        return false;
    }
    const auto readiness = cachedNativePrintReadiness();
    return !readiness || readiness->state != NativePrintReadinessState::unavailable;
}

std::optional<NativePrintReadinessAssessment> OrvexModel::cachedNativePrintReadiness() const {
    return printerReadings().cachedNativePrintReadiness(services_.now());
}

void OrvexModel::printCurrentRoll() {
    if (busy() || batchSizingPresented() || nativePrintRequestPending) {
        return;
    }
    nativePrintRequestPending = true;
    announcer_.announce(); // the command is off until then
    services_.commitEditing();
    // A turn later, so that what the field held has reached the layout.
    later([this] {
        nativePrintRequestPending = false;
        announcer_.announce();
        prepareCurrentRollForPrinting();
    });
}

void OrvexModel::prepareCurrentRollForPrinting() {
    if (busy() || refusesExport()) {
        return;
    }
    if (printerReadings().selectedPrinterName.isEmpty()) {
        errorMessage.set(selectPrinterFirst());
        return;
    }
    runCurrentPrint();
}

QCoro::Task<> OrvexModel::runCurrentPrint() {
    // Copies: later edits do not reach this print.
    const RollLayout layout = rollLayout();
    const ColorWorkflow workflow = presetForm().colorWorkflow;
    const std::optional<ManagedICCAsset> asset = presetForm().iccAsset;
    const QString queue = printerReadings().selectedPrinterName;
    SessionOperation operation(*this, SessionOperation::Cancelling::possible);
    message.set(spt("正在生成原始分辨率的卷布打印文件…", "Preparing an original-resolution print file for the roll…"));
    std::optional<QString> failure;
    try {
        const QString folderName = QStringLiteral("orvex-print-") + platform::uuidText(QUuid::createUuid());
        co_await requireFreshNativePrintReadiness(queue);
        const platform::TemporaryFolder folder(folderName);
        const QUrl pdf = QUrl::fromLocalFile(folder.filePath(QStringLiteral("orvex-卷布打印.pdf")));
        const std::optional<QByteArray> outputICC = outputICCData(workflow, asset);
        const RollRendering rendering{.layout = layout, .to = pdf, .workflow = workflow, .outputICC = outputICC};
        const QFuture<QList<RollSourceAudit>> rendered =
            startRollRendering(rendering, spt("orvex · 卷布排版", "orvex · Roll layout"), operation);
        static_cast<void>(co_await rendered);
        co_await requireFreshNativePrintReadiness(queue);
        platform::throwIfStopped(operation.stopToken()); // no window for a print that was cancelled
        operation.hideProgress();
        const auto prepared = services_.prepareNativePrint(
            {.pdfURL = pdf,
             .queueName = queue,
             .jobTitle = spt("orvex · %1 幅作品", "orvex · %1 artworks").arg(layout.items.size()),
             .widthInches = layout.widthInches,
             .heightInches = layout.lengthInches(),
             .workflow = workflow});
        runNativePrintWindow(*prepared);
    } catch (const platform::Interrupted&) {
        message.set(
            spt("已取消打印准备，未提交打印。", "Print preparation was cancelled. Printing has not been submitted."));
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        errorMessage.set(failure);
        message.set(spt("未提交打印。", "Printing has not been submitted."));
    }
}

void OrvexModel::printSavedJob(const StagedJob& job) {
    if (busy() || batchSizingPresented() || !store) {
        return;
    }
    const QString& selected = printerReadings().selectedPrinterName;
    const QString queue = selected.isEmpty() ? job.printerName : selected;
    if (queue.isEmpty()) {
        errorMessage.set(selectPrinterFirst());
        return;
    }
    runSavedPrint(job, queue);
}

QCoro::Task<> OrvexModel::runSavedPrint(StagedJob job, QString queue) {
    const SessionOperation operation(*this);
    std::optional<QString> failure;
    try {
        co_await requireFreshNativePrintReadiness(queue);
        platform::throwIfStopped(operation.stopToken());
        const auto prepared = services_.prepareNativePrint({.pdfURL = store->pdfURL(job),
                                                            .queueName = queue,
                                                            .jobTitle = job.title,
                                                            .widthInches = PrintUnits::inches(job.settings.widthMM),
                                                            .heightInches = PrintUnits::inches(job.settings.heightMM),
                                                            .workflow = job.colorWorkflow.value_or(ColorWorkflow{})});
        runNativePrintWindow(*prepared);
    } catch (const platform::Interrupted&) {
        // the session closes
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        errorMessage.set(failure);
        message.set(
            spt("未提交打印，已保存的 PDF 保持不变。", "Printing has not been submitted; the saved PDF is unchanged."));
    }
}

/// Reads the queue afresh. Raises OrvexError unless it can take a job now.
QCoro::Task<> OrvexModel::requireFreshNativePrintReadiness(QString queue) {
    std::optional<PrinterTelemetrySnapshot> state;
    QString reason;
    try {
        const QFuture<PrinterTelemetrySnapshot> reading = readings_.readTelemetry(queue, closing_.get_token());
        state = co_await reading;
    } catch (const platform::Interrupted&) {
        throw;
    } catch (const std::exception& exception) {
        reason = failureMessage(exception);
    }
    if (!state) {
        if (printerReadings().selectedPrinterName == queue) {
            forgetTelemetry(reason);
        }
        throw OrvexError::invalid(
            spt("无法在不更改设置的情况下确认系统打印队列可接收作业，未打开打印。请刷新打印机并检查系统打印队列。",
                "Could not confirm, without changing settings, that the system print queue can "
                "accept jobs. Printing was not opened. Refresh printers and check the system "
                "queue.") +
            u'\n' + reason);
    }
    takeTelemetry(*state, queue);
    const auto readiness = NativePrintReadinessPolicy::evaluate(state, queue);
    if (!readiness.isAllowed()) {
        throw OrvexError::invalid(readiness.blockingReason.value_or(spt(
            "系统打印队列尚未就绪，未打开打印。", "The system print queue is not ready. Printing was not opened.")));
    }
}

void OrvexModel::runNativePrintWindow(NativePrintOperation& prepared) {
    message.set(spt("请在系统打印窗口核对纸张、100% 实际尺寸、画布、颜色和裁切设置，再点击打印。",
                    "Review paper, 100% actual size, canvas, colour and cutting settings in the system print window, "
                    "then click Print."));
    const bool isSubmitted = prepared.run();
    message.set(isSubmitted ? spt("系统打印流程已结束。请在系统打印队列查看作业状态，并在打印机上确认实物完成。",
                                  "The system print workflow has finished. Check job status in the system queue and "
                                  "confirm physical completion at the printer.")
                            : spt("打印未提交或已取消。本地作品和 PDF 保持不变。",
                                  "Printing was not submitted or was cancelled. Local artwork and PDFs are "
                                  "unchanged."));
    later([this] { refresh(); });
}

} // namespace orvex
