#pragma once

#include "OrvexModel.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

class InchFieldView;

/// What stands above the board: the size of the canvas, and the commands for all of it. Goes on in further rows where
/// the width ends. Main thread.
class RollToolBar : public QWidget {
    Q_OBJECT

public:
    explicit RollToolBar(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    [[nodiscard]] QWidget* titleLine();
    [[nodiscard]] QWidget* widthRow();
    [[nodiscard]] QWidget* commands();
    [[nodiscard]] QPushButton* layoutFileMenu();
    [[nodiscard]] QWidget* zoomControls();
    void connectSignals();

    OrvexModel& session_;
    QLabel* title_;
    QLabel* count_;
    InchFieldView* width_;
    QPushButton* batch_;
    QPushButton* rotate_;
    QPushButton* pack_;
    QPushButton* undo_;
    QPushButton* redo_;
    QPushButton* layoutFile_;
    QPushButton* zoomOut_;
    QLabel* zoom_;
    QPushButton* zoomIn_;
    QPushButton* fitWidth_;
    QCheckBox* snap_;
};

} // namespace orvex
