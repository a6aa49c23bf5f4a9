#pragma once

#include "OrvexModel.h"
#include "Panels/ReportView.h"

#include <QPushButton>
#include <QWidget>

namespace orvex {

/// What can be said about cutting, and the report on the session and the machine. Main thread.
class DiagnosticsPanel : public QWidget {
    Q_OBJECT

public:
    explicit DiagnosticsPanel(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is. The report is made only while somebody can see it.
    void syncFromSession();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void build();
    [[nodiscard]] QLayout* actions();
    void connectSignals();

    OrvexModel& session_;
    ReportView* report_;
    QPushButton* export_;
};

} // namespace orvex
