#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QWidget>

namespace orvex {

/// What stands under the board: how to move artworks, and what keeps the roll from being exported. Main thread.
class RollHelpLines : public QWidget {
    Q_OBJECT

public:
    explicit RollHelpLines(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    void connectSignals();

    OrvexModel& session_;
    QLabel* issue_;
};

} // namespace orvex
