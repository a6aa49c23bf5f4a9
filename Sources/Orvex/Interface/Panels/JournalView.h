#pragma once

#include "OrvexModel.h"
#include "Panels/ObservationListView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QWidget>

namespace orvex {

/// The journal of physical prints: the form for another entry, and the entries. Main thread.
class JournalView : public QWidget {
    Q_OBJECT

public:
    explicit JournalView(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is.
    void syncFromSession();

private:
    void build();
    [[nodiscard]] QLayout* links();
    [[nodiscard]] QLayout* form();
    void connectSignals();
    void update(const std::function<void(ObservationForm&)>& change);
    void syncSequence(qint64 sequence);

    OrvexModel& session_;
    QSpinBox* sequence_;
    QComboBox* result_;
    QLineEdit* note_;
    QPushButton* record_;
    QPushButton* export_;
    ObservationListView* list_;
};

} // namespace orvex
