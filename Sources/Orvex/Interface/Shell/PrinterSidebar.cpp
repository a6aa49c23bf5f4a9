#include "PrinterSidebar.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"

#include <QHBoxLayout>

#include <algorithm>

namespace orvex {

namespace {

/// A note that stands on a card of its own.
QWidget* carded(const QString& name, SymbolNote* note) {
    auto* card = new Card;
    card->content().addWidget(note);
    return controls::named(name, card);
}

SymbolNote* readinessNote() {
    return new SymbolNote({.symbol = OrvexIcons::Symbol::pause,
                           .color = OrvexTheme::danger,
                           .title = spt("打印队列尚未就绪", "Print queue not ready"),
                           .text = {}});
}

SymbolNote* hardwareNote() {
    return new SymbolNote(
        {.symbol = OrvexIcons::Symbol::waveform,
         .color = OrvexTheme::accent,
         .title = spt("仅显示已上报的硬件状态", "Only reported hardware status is shown"),
         .text = spt("能读取队列并不代表打印头正常。接口未公开的墨水、维护墨盒或打印头数据显示为“未提供”。",
                     "A readable queue does not confirm printhead health. Ink, maintenance cartridge or printhead data "
                     "that is not exposed appears as “Not provided”.")});
}

} // namespace

PrinterSidebar::PrinterSidebar(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      refresh_(controls::iconButton(QStringLiteral("refreshPrintersButton"), spt("刷新打印机", "Refresh printers"),
                                    OrvexIcons::Symbol::refresh)),
      reading_(
          controls::named(QStringLiteral("readingLabel"), controls::note(spt("正在读取状态…", "Reading status…")))),
      refreshError_(
          controls::named(QStringLiteral("refreshErrorLabel"),
                          controls::warning(spt("刷新失败。下方若列出队列，均来自上一次成功的读取。",
                                                "Refresh failed. Any queues shown below are from the last successful "
                                                "reading.")))),
      noPrinters_(controls::named(
          QStringLiteral("noPrintersLabel"),
          controls::note(spt("未找到已配置的打印队列。您仍可导入和排版作品。本应用不会安装驱动或添加打印机。",
                             "No configured queues found. You can still import and arrange artwork. This "
                             "app does not install drivers or add printers.")))),
      monitor_(controls::button(QStringLiteral("openMonitorButton"), spt("打开佳能监视器", "Open Canon monitor"))) {
    build();
    connectSignals();
    syncFromSession();
}

void PrinterSidebar::build() {
    setObjectName(QStringLiteral("printerSidebar"));
    setFixedWidth(columnWidth);
    controls::column(this)->addWidget(controls::scrolling(content()));
}

QWidget* PrinterSidebar::content() {
    auto* content = new QWidget;
    auto* layout = controls::column(content);
    layout->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    layout->addLayout(headingRow());
    for (QLabel* label : {reading_, refreshError_, noPrinters_}) {
        layout->addWidget(label);
    }
    auto* rows = controls::named(QStringLiteral("printerRows"), new QWidget);
    rows->setAccessibleName(spt("打印机", "Printers"));
    rowsLayout_ = controls::column(rows);
    rowsLayout_->setSpacing(2);
    layout->addWidget(rows);
    reason_ = readinessNote();
    notReady_ = carded(QStringLiteral("queueNotReady"), reason_);
    layout->addWidget(notReady_);
    layout->addWidget(carded(QStringLiteral("hardwareNote"), hardwareNote()));
    layout->addWidget(monitor_);
    layout->addStretch(1);
    layout->addWidget(footer());
    return content;
}

QLayout* PrinterSidebar::headingRow() {
    refresh_->setToolTip(
        spt("刷新本机 CUPS 队列，不更改任何设置", "Refresh local CUPS queues without changing settings"));
    refresh_->setAccessibleDescription(refresh_->toolTip());
    auto* row = controls::row();
    row->addWidget(controls::heading(spt("打印机", "Printers")), 1);
    row->addWidget(refresh_);
    return row;
}

QWidget* PrinterSidebar::footer() {
    return controls::note(spt("每 30 秒只读刷新一次\n佳能驱动和系统设置保持不变",
                              "Read-only refresh every 30 seconds\nCanon drivers and system settings are unchanged"));
}

void PrinterSidebar::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &PrinterSidebar::syncFromSession);
    connect(refresh_, &QPushButton::clicked, &session_, [this] { session_.refresh(); });
    connect(monitor_, &QPushButton::clicked, &session_, &OrvexModel::openCanonMonitor);
}

void PrinterSidebar::syncFromSession() {
    const bool isRefreshing = session_.refreshing();
    const PrinterReadings& readings = session_.printerReadings();
    refresh_->setEnabled(!isRefreshing);
    reading_->setVisible(isRefreshing);
    refreshError_->setVisible(readings.lastRefreshError.has_value());
    noPrinters_->setVisible(readings.printers.isEmpty() && !isRefreshing);
    syncRows();
    syncReadiness();
}

/// Rows of printers that are still there stay, so that the keyboard stays where it is.
void PrinterSidebar::syncRows() {
    const PrinterReadings& readings = session_.printerReadings();
    QList<PrinterRow*> before;
    before.swap(rows_);
    for (const PrinterSnapshot& printer : readings.printers) {
        PrinterRow* row = takeRow(before, printer);
        row->setSummary(printer.summary);
        row->setSelected(printer.name == readings.selectedPrinterName);
        rows_.append(row);
    }
    for (PrinterRow* gone : std::as_const(before)) {
        gone->hide();
        gone->deleteLater();
    }
    syncTabOrder();
}

/// Rows that come later are reached at their place all the same.
void PrinterSidebar::syncTabOrder() {
    QWidget* before = refresh_;
    for (PrinterRow* row : std::as_const(rows_)) {
        if (before->nextInFocusChain() != row) {
            setTabOrder(before, row);
        }
        before = row;
    }
}

/// The row of the printer, at its place.
PrinterRow* PrinterSidebar::takeRow(QList<PrinterRow*>& from, const PrinterSnapshot& printer) {
    const auto place = static_cast<int>(rows_.size());
    const auto found = std::ranges::find_if(from, [&](const PrinterRow* each) { return each->name() == printer.name; });
    if (found == from.end()) {
        auto* row = new PrinterRow(printer);
        rowsLayout_->insertWidget(place, row);
        connectRow(row);
        return row;
    }
    PrinterRow* row = *found;
    from.erase(found);
    if (rowsLayout_->indexOf(row) != place) {
        rowsLayout_->removeWidget(row);
        rowsLayout_->insertWidget(place, row);
    }
    return row;
}

void PrinterSidebar::connectRow(PrinterRow* row) {
    connect(row, &PrinterRow::clicked, this, [this, row] { session_.selectPrinter(row->name()); });
    connect(row, &PrinterRow::stepped, this, [this, row](int rows) { step(row, rows); });
}

void PrinterSidebar::step(PrinterRow* from, int rows) {
    const qsizetype target = rows_.indexOf(from) + rows;
    if (target < 0 || target >= rows_.size()) {
        return;
    }
    rows_.at(target)->setFocus(rows > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void PrinterSidebar::syncReadiness() {
    const std::optional<NativePrintReadinessAssessment> readiness = session_.cachedNativePrintReadiness();
    const bool isNotReady = readiness && !readiness->isAllowed();
    notReady_->setVisible(isNotReady);
    reason_->setText(isNotReady ? readiness->blockingReason.value_or(QString()) : QString());
}

} // namespace orvex
