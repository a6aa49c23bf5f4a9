#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// Where the roll goes: into the local queue, or to the print window. Main thread.
class OutputButtons : public QWidget {
    Q_OBJECT

public:
    explicit OutputButtons(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    void connectSignals();

    OrvexModel& session_;
    QPushButton* stage_;
    QLabel* queueUnavailable_;
    QPushButton* print_;
};

} // namespace orvex
