#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace orvex {

class InchFieldView;

/// What holds for the whole roll: its rules, the gap between frames, and what the autosave has to say. Main thread.
class RollSummaryView : public QWidget {
    Q_OBJECT

public:
    explicit RollSummaryView(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    void addGap(QLayout& layout);
    void addNews(QLayout& layout);
    void connectSignals();

    OrvexModel& session_;
    QLabel* size_;
    InchFieldView* gap_;
    QPushButton* arrange_;
    QLabel* saveMessage_;
    QLabel* loadWarnings_;
    QLabel* advisory_;
};

} // namespace orvex
