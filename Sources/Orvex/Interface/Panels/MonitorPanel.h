#pragma once

#include "OrvexModel.h"
#include "Panels/DeviceStatusView.h"
#include "Panels/JournalView.h"

#include <QWidget>

namespace orvex {

/// The state of the device, and beside it the journal of physical prints. Main thread.
class MonitorPanel : public QWidget {
    Q_OBJECT

public:
    explicit MonitorPanel(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is.
    void syncFromSession();

private:
    DeviceStatusView* device_;
    JournalView* journal_;
};

} // namespace orvex
