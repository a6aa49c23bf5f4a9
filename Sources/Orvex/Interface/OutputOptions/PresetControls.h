#pragma once

#include "OrvexModel.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// The saved presets: choosing, saving and deleting one, and the one that loads by itself. Main thread.
class PresetControls : public QWidget {
    Q_OBJECT

public:
    explicit PresetControls(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    [[nodiscard]] QWidget* buttons();
    void connectSignals();

    OrvexModel& session_;
    QComboBox* presets_;
    QLineEdit* name_;
    QPushButton* save_;
    QPushButton* update_;
    QPushButton* delete_;
    QPushButton* makeDefault_;
    QLabel* canvasDefault_;
    QLabel* unavailable_;
};

} // namespace orvex
