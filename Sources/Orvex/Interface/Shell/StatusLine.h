#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// What is being done or was done, how far it has come, and the way to stop it. Main thread.
class StatusLine : public QWidget {
    Q_OBJECT

public:
    explicit StatusLine(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();

    OrvexModel& session_;
    QLabel* message_ = nullptr;
    QLabel* what_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
};

} // namespace orvex
