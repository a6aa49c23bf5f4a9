#include "QueueTexts.h"

#include "OrvexLanguage.h"

namespace orvex {

QString QueueTexts::systemJobs(const PrinterReadings& readings) {
    const std::optional<PrinterSnapshot> printer = readings.selectedPrinter();
    if (!printer) {
        return spt("未选择打印机。", "No printer selected.");
    }
    if (printer->jobs.isEmpty()) {
        return spt("此次读取未发现未完成的作业。请同时查看诊断信息中的读取错误。",
                   "No unfinished jobs were found in this reading. Also check diagnostics for read errors.");
    }
    QStringList lines;
    for (const SystemPrintJob& job : printer->jobs) {
        lines.append(job.rawLine);
    }
    return lines.join(u'\n');
}

QString QueueTexts::localQueueUnavailable() {
    return spt("本地待打印队列不可用。仍可导出 PDF；现有作业已保留。",
               "The local queue is unavailable. You can still export a PDF; existing jobs are preserved.");
}

} // namespace orvex
