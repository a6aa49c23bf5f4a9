#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// What the board shows as long as there is no artwork: what it is for, and the way to begin. Main thread.
class BoardEmptyState : public QWidget {
    Q_OBJECT

public:
    explicit BoardEmptyState(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    OrvexModel& session_;
    QLabel* title_;
    QPushButton* add_;
};

} // namespace orvex
