#include "QueueDiscovery.h"

#include "CUPSInspectionError.h"
#include "Interrupted.h"
#include "OrvexLanguage.h"

namespace orvex {

/// What a pass knows of all queues before it asks for the options of each.
struct QueueDiscovery::Answers {
    InspectionResult statuses;
    InspectionResult devices{};
    InspectionResult jobs{};
    QMap<QString, QString> deviceURIs{};
    platform::Timestamp capturedAt{};
};

namespace {

/// Whether a status answer without queues says that there are none, and not that they could not be read.
bool tellsOfNoQueues(const InspectionResult& result) {
    if (result.timedOut || result.truncated) {
        return false;
    }
    const bool isSaid = result.output.toLower().contains(QStringLiteral("no destinations added"));
    const bool isEmpty = result.status == 0 && result.output.trimmed().isEmpty();
    return isSaid || isEmpty;
}

/// Adds what went wrong with an answer, if anything did.
void tell(QStringList& lines, const InspectionResult& result, const QString& context) {
    if (!result.isClean()) {
        lines.append(result.diagnostic(context));
    }
}

void tellOfOptions(QStringList& lines, const InspectionResult& result, bool hasOptions) {
    if (!result.isClean()) {
        lines.append(result.diagnostic(spt("无法读取驱动选项。", "Cannot read driver options")));
    } else if (!hasOptions) {
        lines.append(spt("驱动没有返回可读取的驱动选项，不能据此认定介质或裁切能力。",
                         "The driver returned no readable options. This does not establish media or cutting "
                         "capabilities."));
    } else if (lines.isEmpty()) {
        lines.append(spt("已只读检查本机 CUPS。请在打印机面板上确认设备连接、硬件错误和裁切行为。",
                         "Local CUPS was inspected read-only. Confirm device connectivity, hardware errors and cutting "
                         "behavior on the printer panel."));
    }
}

} // namespace

InspectionResult QueueDiscovery::ask(const InspectionCommand& command) const {
    InspectionResult result = run_(command);
    platform::throwIfStopped(stop_);
    return result;
}

QList<PrinterSnapshot> QueueDiscovery::snapshots() const {
    Answers answers{.statuses = ask(InspectionCommand::printerStatuses())};
    const QList<PrinterStatus> queues = CUPSParsers::printerStatuses(answers.statuses.output);
    if (queues.isEmpty()) {
        if (tellsOfNoQueues(answers.statuses)) {
            return {};
        }
        throw CUPSInspectionError::inspectionFailed(
            answers.statuses.diagnostic(spt("无法读取本机 CUPS 打印机。", "Cannot read local CUPS printers")));
    }
    answers.devices = ask(InspectionCommand::deviceURIs());
    answers.jobs = ask(InspectionCommand::pendingJobs());
    answers.deviceURIs = CUPSParsers::deviceURIs(answers.devices.output);
    answers.capturedAt = platform::Timestamp::now();
    QList<PrinterSnapshot> snapshots;
    for (const PrinterStatus& queue : queues) {
        platform::throwIfStopped(stop_);
        snapshots.append(snapshot(queue, answers));
    }
    return snapshots;
}

PrinterSnapshot QueueDiscovery::snapshot(const PrinterStatus& queue, const Answers& answers) const {
    const InspectionResult result = ask(InspectionCommand::driverOptions(queue.name));
    const QList<DriverOption> options =
        result.isClean() ? CUPSParsers::driverOptions(result.output) : QList<DriverOption>();

    QStringList lines;
    tell(lines, answers.statuses, spt("队列状态不完整。", "Queue status is incomplete"));
    tell(lines, answers.devices, spt("无法读取设备地址。", "Cannot read the device address"));
    if (!answers.deviceURIs.contains(queue.name)) {
        lines.append(spt("此队列没有返回设备地址。", "This queue did not return a device address."));
    }
    tell(lines, answers.jobs, spt("无法读取系统作业列表。", "Cannot read the system job list"));
    tellOfOptions(lines, result, !options.isEmpty());

    return {.name = queue.name,
            .summary = queue.summary,
            .deviceURI = answers.deviceURIs.value(queue.name),
            .options = options,
            .jobs =
                answers.jobs.isClean() ? CUPSParsers::jobs(answers.jobs.output, queue.name) : QList<SystemPrintJob>(),
            .capturedAt = answers.capturedAt,
            .diagnostic = lines.join(u'\n')};
}

} // namespace orvex
