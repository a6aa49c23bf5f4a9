#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

/// What the window is headed by: the program's name and state, and what is done most. Main thread.
class HeaderBar : public QWidget {
    Q_OBJECT

public:
    explicit HeaderBar(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is.
    void syncFromSession();

private:
    void build();
    void connectSignals();

    OrvexModel& session_;
    QLabel* version_;
    QPushButton* addArtworks_;
    QPushButton* exportPDF_;
    QPushButton* print_;
};

} // namespace orvex
