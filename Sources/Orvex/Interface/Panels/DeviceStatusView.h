#pragma once

#include "OrvexModel.h"
#include "TelemetryTexts.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// What the selected queue told last. Main thread.
class DeviceStatusView : public QWidget {
    Q_OBJECT

public:
    explicit DeviceStatusView(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is.
    void syncFromSession();

private:
    void build();
    [[nodiscard]] QLayout* actions();
    void connectSignals();
    void syncReading();
    void syncRows(const QList<TelemetryTexts::Row>& rows);

    OrvexModel& session_;
    QPushButton* refresh_;
    QPushButton* monitor_;
    QWidget* reading_ = nullptr; ///< what is shown of a reading
    QLabel* sampled_;
    QWidget* table_ = nullptr;
    QGridLayout* tableLayout_ = nullptr;
    QList<TelemetryTexts::Row> rows_; ///< that the table shows
    QLabel* reports_;
    QLabel* missingLevels_;
    QLabel* unavailability_;
};

} // namespace orvex
