#include "DiagnosticsPanel.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Shell/HelpLinks.h"

#include <QHBoxLayout>

namespace orvex {

namespace {

constexpr int leastReportHeight = 180;

QString cuttingText() {
    return spt("打印机面板上的裁切已停用。本应用不猜测佳能的私有选项。“打印”会打开佳能原生窗口，由您核对并提交作业。"
               "公开接口无法核实面板上的值；无人值守自动发送保持停用。",
               "Cutting is disabled on the printer panel. The app does not guess Canon’s private options. Print opens "
               "the native Canon window for you to review and submit the job. Public interfaces cannot verify panel "
               "values; unattended submission remains disabled.");
}

QString manualText() {
    return spt(
        "佳能说明书区分驱动中的 Automatic Cutting（自动裁切）、面板上的 Cutting Mode（裁切模式）和 Trim Edge First"
        "（先裁切前端）。按键后，Eject（退纸）仍可能使用内置刀具。"
        "如曾出现硬件故障，请先通过面板和佳能维护流程解决。",
        "Canon’s manual distinguishes driver Automatic Cutting, panel Cutting Mode and Trim Edge First. Eject may "
        "still use the internal cutter after a button press. Resolve prior hardware faults using the panel and "
        "Canon maintenance workflow first.");
}

} // namespace

DiagnosticsPanel::DiagnosticsPanel(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      report_(new ReportView),
      export_(controls::button(QStringLiteral("exportDiagnosticsButton"), spt("导出诊断信息…", "Export diagnostics…"),
                               OrvexIcons::Symbol::exportFile)) {
    build();
    connectSignals();
    syncFromSession();
}

void DiagnosticsPanel::build() {
    setObjectName(QStringLiteral("diagnosticsPanel"));
    report_->setObjectName(QStringLiteral("diagnosticReport"));
    report_->setAccessibleName(spt("驱动能力与安全详情", "Driver capabilities & safety details"));
    report_->setMinimumHeight(leastReportHeight);
    auto* content = new QWidget;
    auto* layout = controls::column(content);
    layout->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    layout->addWidget(controls::body(cuttingText()));
    layout->addWidget(controls::note(manualText()));
    layout->addWidget(controls::heading(report_->accessibleName()));
    layout->addWidget(
        controls::note(spt("以下为当前队列的读取结果，其中包含设备 URI，分享前请先检查。",
                           "Current queue readings follow. They include the device URI; review before sharing.")));
    layout->addWidget(report_, 1);
    layout->addLayout(actions());
    controls::column(this)->addWidget(controls::scrolling(content));
}

QLayout* DiagnosticsPanel::actions() {
    auto* row = controls::row();
    row->addWidget(export_);
    row->addStretch(1);
    row->addWidget(controls::link(QStringLiteral("canonManualLink"),
                                  spt("佳能 iPF9400 原版说明书 ↗", "Canon iPF9400 original manual ↗"),
                                  HelpLinks::canonManual()));
    row->addWidget(controls::link(QStringLiteral("cupsOptionsLink"), spt("CUPS 选项指南 ↗", "CUPS options guide ↗"),
                                  HelpLinks::cupsOptions()));
    return row;
}

void DiagnosticsPanel::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &DiagnosticsPanel::syncFromSession);
    connect(export_, &QPushButton::clicked, &session_, &OrvexModel::exportDiagnostics);
}

void DiagnosticsPanel::syncFromSession() {
    if (isVisible()) {
        report_->setReport(session_.diagnosticText());
    }
}

void DiagnosticsPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    syncFromSession();
}

} // namespace orvex
