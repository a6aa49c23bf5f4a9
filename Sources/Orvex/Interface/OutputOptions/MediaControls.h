#pragma once

#include "OrvexModel.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

namespace orvex {

/// What is recorded of the canvas that is loaded, and of the print's quality. Main thread.
class MediaControls : public QWidget {
    Q_OBJECT

public:
    explicit MediaControls(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    void connectSignals();

    OrvexModel& session_;
    QLineEdit* name_;
    QLabel* source_;
    QLineEdit* note_;
    QComboBox* quality_;
};

} // namespace orvex
