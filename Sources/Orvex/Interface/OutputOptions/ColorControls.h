#pragma once

#include "OrvexModel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// Who converts the colours of the print, and by which profile. Main thread.
class ColorControls : public QWidget {
    Q_OBJECT

public:
    explicit ColorControls(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    [[nodiscard]] QWidget* conversion();
    void connectSignals();

    void chooseMode();
    void chooseIntent();

    OrvexModel& session_;
    QComboBox* mode_;
    QLabel* explanation_;
    QWidget* conversion_; ///< what only a conversion by this program needs
    QComboBox* intent_;
    QLabel* profile_;
    QPushButton* importProfile_;
    QPushButton* clearProfile_;
    QCheckBox* confirmation_;
    QLabel* preflight_;
};

} // namespace orvex
