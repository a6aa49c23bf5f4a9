#include "MonitorPanel.h"

#include "Controls/Controls.h"

#include <QHBoxLayout>

namespace orvex {

namespace {

/// A half of the panel, which scrolls by itself.
QWidget* half(QWidget* view) {
    auto* content = new QWidget;
    auto* layout = controls::column(content);
    layout->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    layout->addWidget(view);
    return controls::scrolling(content);
}

} // namespace

MonitorPanel::MonitorPanel(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      device_(new DeviceStatusView(session)),
      journal_(new JournalView(session)) {
    setObjectName(QStringLiteral("monitorPanel"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(half(device_), 1);
    layout->addWidget(half(journal_), 1);
}

void MonitorPanel::syncFromSession() {
    device_->syncFromSession();
    journal_->syncFromSession();
}

} // namespace orvex
