#include "JobTexts.h"

#include "Layout/InchLayout.h"
#include "OrvexLanguage.h"
#include "PanelTexts.h"

namespace orvex {

namespace {

bool isBlank(const QString& text) {
    return text.trimmed().isEmpty();
}

QString textOr(const QString& text, const QString& fallback) {
    return isBlank(text) ? fallback : text;
}

/// What the PDF holds. Older versions printed one page with a margin of its own.
QString contentLine(const StagedJob& job) {
    if (!job.rollLayout) {
        return spt("PDF 实际边距：%1 英寸。已保存的文件保持不变。",
                   "Actual PDF margin: %1 in. The saved file is unchanged.")
            .arg(PrintUnits::formatMMAsInches(job.settings.marginMM));
    }
    return spt("%1 幅作品 · 每幅四周 2.5 英寸白边 · PDF 含外沿裁剪虚线",
               "%1 artworks · 2.5-inch border on each side · Outer trim guides included in PDF")
        .arg(job.rollLayout->items.size());
}

QString workflowLine(const std::optional<ColorWorkflow>& workflow) {
    return workflow ? label(workflow->mode) : spt("旧版默认流程", "Legacy default workflow");
}

} // namespace

QStringList JobTexts::lines(const StagedJob& job) {
    QStringList lines{
        orvexDateTime(job.createdAt),
        textOr(job.printerName, spt("未指定打印机", "No printer specified")),
        contentLine(job),
        textOr(job.canvasMediaName.value_or(QString()),
               spt("此旧作业未记录介质", "No media recorded in this older job")),
        workflowLine(job.colorWorkflow),
        textOr(job.driverQuality ? job.driverQuality->value : QString(),
               spt("沿用佳能质量设置", "Use Canon quality settings")),
        job.presetName.value_or(QString()),
    };
    lines.removeIf(isBlank);
    return lines;
}

} // namespace orvex
