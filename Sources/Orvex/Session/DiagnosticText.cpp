#include "DiagnosticText.h"

#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "PanelTexts.h"
#include "ReadinessPolicies.h"

namespace orvex {

namespace {

QString none() {
    return spt("无", "None");
}

QString describeOption(const DriverOption& option) {
    return QStringLiteral("%1 / %2: %3 [default=%4]")
        .arg(option.keyword, option.label, option.choices.join(u' '),
             option.defaultChoice.value_or(QStringLiteral("unknown")));
}

QString describeOptions(const std::optional<PrinterSnapshot>& printer) {
    if (!printer) {
        return spt("未找到队列", "No queue found");
    }
    QStringList lines;
    for (const DriverOption& option : printer->options) {
        lines.append(describeOption(option));
    }
    return lines.join(u'\n');
}

QString describeObservation(const PrintObservation& observation) {
    return spt("%1 第%2张 %3 | %4 | %5 | %6 | %7 | ICC=%8 | %9", "%1 Print %2 %3 | %4 | %5 | %6 | %7 | ICC=%8 | %9")
        .arg(dateText(observation.createdAt), QString::number(observation.sequenceNumber), label(observation.result),
             observation.artwork, observation.media, observation.preset, observation.colorMode,
             observation.iccSHA256.value_or(none()), observation.note);
}

QString describeObservations(const QList<PrintObservation>& observations) {
    QStringList lines;
    for (const PrintObservation& observation : observations) {
        lines.append(describeObservation(observation));
    }
    return lines.join(u'\n');
}

QStringList printerLines(const std::optional<PrinterSnapshot>& printer) {
    return {spt("队列：%1", "Queue: %1").arg(printer ? printer->name : spt("未选择", "Not selected")),
            printer ? printer->summary : spt("未读取", "Not read"),
            spt("URI：%1", "URI: %1").arg(printer ? printer->deviceURI : spt("未知", "Unknown")),
            describeOptions(printer), printer ? printer->diagnostic : QString()};
}

QStringList settingsLines(const OrvexModel& session, const std::optional<PrinterSnapshot>& printer) {
    return {spt("用户报告：打印机面板已停用裁切，现有设置可正常工作。",
                "User reported: cutting was disabled on the printer panel and the existing setup worked."),
            spt("应用策略：不写入裁切、介质库或佳能默认设置；不提供直接提交到硬件的接口。",
                "App policy: no cutting, media-library or Canon-default writes; no direct hardware submission "
                "interface."),
            spt("本地设置检查：%1", "Local settings check: %1").arg(session.protectionMessage()),
            spt("已变化的路径：%1", "Changed paths: %1").arg(session.protectionChanges().join(u'\n')),
            spt("公开的裁切能力：%1", "Public cutting capability: %1")
                .arg(ManualCuttingPolicy::evaluate(printer).blockingReason)};
}

QString colorLine(const ColorWorkflow& workflow) {
    return spt("当前颜色：%1 / %2", "Current colour: %1 / %2").arg(label(workflow.mode), label(workflow.intent));
}

QStringList canvasLines(const OrvexModel& session) {
    const PresetForm& form = session.presetForm();
    const QString sha256 = form.iccAsset ? form.iccAsset->sha256 : none();
    return {
        spt("画布：%1。未读取面板的私有介质参数。", "Canvas: %1. Private panel-media parameters have not been read.")
            .arg(form.mediaName),
        spt("卷布：%1 × %2 英寸；%3 幅作品，每幅四周保留 2.5 英寸白边，白边外沿印有裁剪虚线。",
            "Roll: %1 × %2 in; %3 artworks, each with a 2.5-inch border on every side and trim guides at the outer "
            "border.")
            .arg(session.rollWidthLabel(), session.rollLengthLabel(),
                 QString::number(session.rollLayout().items.size())),
        colorLine(form.colorWorkflow),
        spt("ICC：%1 / %2", "ICC: %1 / %2").arg(form.icc ? form.icc->name : spt("未选择", "Not selected"), sha256),
        spt("原图：%1", "Source image: %1")
            .arg(session.image() ? session.image()->sourceColorProfile.displayName() : spt("未导入", "Not imported")),
        spt("维护墨盒和打印头：CUPS 未提供数据时为未知。空闲状态不代表硬件正常。",
            "Maintenance cartridge and printhead: unknown when CUPS exposes no data. Idle does not confirm hardware "
            "health."),
        spt("已报告问题：连续打印数张后出现紫色斑块，位置不固定。原因和修复均未经实物验证。",
            "Reported issue: purple patches after several prints, in varying positions. Causes and repairs have "
            "not been physically validated.")};
}

} // namespace

QString diagnosticText(const OrvexModel& session, platform::Timestamp now) {
    const auto printer = session.printerReadings().selectedPrinter();
    QStringList lines{QStringLiteral("orvex ") + appVersion(),
                      spt("记录时间：%1", "Recorded at: %1").arg(dateText(now))};
    lines += printerLines(printer);
    lines += QString();
    lines += settingsLines(session, printer);
    lines += canvasLines(session);
    lines += QString();
    lines += spt("实物观察（手动记录，并非设备测量结果）：",
                 "Physical observations (entered manually, not device measurements):");
    lines += describeObservations(session.observations());
    return lines.join(u'\n');
}

} // namespace orvex
