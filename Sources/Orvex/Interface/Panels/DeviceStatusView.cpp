#include "DeviceStatusView.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <QHBoxLayout>

namespace orvex {

DeviceStatusView::DeviceStatusView(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      refresh_(
          controls::button(QStringLiteral("refreshDeviceButton"), spt("刷新", "Refresh"), OrvexIcons::Symbol::refresh)),
      monitor_(controls::button(QStringLiteral("openPrintmonitorButton"),
                                spt("打开佳能 Printmonitor", "Open Canon Printmonitor"))),
      sampled_(controls::named(QStringLiteral("sampledLabel"), controls::note())),
      reports_(controls::named(QStringLiteral("queueReportsLabel"), controls::body())),
      missingLevels_(controls::named(QStringLiteral("missingLevelsLabel"), controls::note())),
      unavailability_(controls::named(QStringLiteral("telemetryUnavailableLabel"), controls::body())) {
    build();
    connectSignals();
    syncFromSession();
}

void DeviceStatusView::build() {
    auto* layout = controls::column(this);
    layout->addWidget(controls::heading(spt("设备监视", "Device monitor")));
    layout->addLayout(actions());
    layout->addWidget(controls::note(
        spt("读取本机 macOS 队列提供的状态。内容可能来自缓存；完整信息请查看打印机面板和佳能监视器。",
            "Read the status supplied by the local macOS queue. It may be cached; check the printer panel and Canon "
            "monitor for complete information.")));
    reading_ = new QWidget;
    auto* reading = controls::column(reading_);
    reading->addWidget(sampled_);
    auto* card = new Card;
    table_ = card;
    table_->setObjectName(QStringLiteral("telemetryTable"));
    tableLayout_ = new QGridLayout;
    tableLayout_->setColumnStretch(0, 3);
    tableLayout_->setColumnStretch(1, 2);
    card->content().addLayout(tableLayout_);
    reading->addWidget(card);
    reading->addWidget(reports_);
    reading->addWidget(missingLevels_);
    layout->addWidget(reading_);
    layout->addWidget(unavailability_);
    layout->addStretch(1);
}

QLayout* DeviceStatusView::actions() {
    auto* row = controls::row();
    row->addWidget(refresh_);
    row->addWidget(monitor_);
    row->addStretch(1);
    return row;
}

void DeviceStatusView::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &DeviceStatusView::syncFromSession);
    connect(refresh_, &QPushButton::clicked, &session_, [this] { session_.refresh(); });
    connect(monitor_, &QPushButton::clicked, &session_, &OrvexModel::openCanonMonitor);
}

void DeviceStatusView::syncFromSession() {
    refresh_->setEnabled(!session_.refreshing());
    syncReading();
    controls::setOptionalText(*unavailability_, TelemetryTexts::unavailability(session_.printerReadings()));
}

void DeviceStatusView::syncReading() {
    const std::optional<PrinterTelemetrySnapshot>& telemetry = session_.printerReadings().telemetry;
    reading_->setVisible(telemetry.has_value());
    if (!telemetry) {
        return;
    }
    sampled_->setText(TelemetryTexts::sampled(*telemetry));
    syncRows(TelemetryTexts::rows(*telemetry));
    controls::setOptionalText(*reports_, TelemetryTexts::reports(*telemetry).join(u'\n'));
    controls::setOptionalText(*missingLevels_, TelemetryTexts::missingLevels(*telemetry));
}

void DeviceStatusView::syncRows(const QList<TelemetryTexts::Row>& rows) {
    if (rows_ == rows) {
        return;
    }
    rows_ = rows;
    qDeleteAll(table_->findChildren<QLabel*>());
    for (int row = 0; row < rows.size(); ++row) {
        QLabel* name = controls::note(rows.at(row).label);
        QLabel* value = controls::body(rows.at(row).value);
        value->setAccessibleName(spt("%1：%2", "%1: %2").arg(rows.at(row).label, rows.at(row).value));
        tableLayout_->addWidget(name, row, 0, Qt::AlignTop);
        tableLayout_->addWidget(value, row, 1, Qt::AlignTop);
    }
}

} // namespace orvex
