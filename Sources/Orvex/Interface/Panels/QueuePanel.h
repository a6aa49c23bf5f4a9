#pragma once

#include "OrvexModel.h"
#include "Panels/JobCard.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

namespace orvex {

/// The jobs that wait in the local queue, and those that the system's queue holds. Main thread.
class QueuePanel : public QWidget {
    Q_OBJECT

public:
    explicit QueuePanel(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is. The card of a job that has not changed stays.
    void syncFromSession();

private:
    void build();
    void connectSignals();
    void syncCards();
    [[nodiscard]] JobCard* takeCard(QList<JobCard*>& from, const StagedJob& job);

    OrvexModel& session_;
    QLabel* unavailable_;
    QLabel* noJobs_;
    QVBoxLayout* cardsLayout_ = nullptr;
    QList<JobCard*> cards_;
    QList<StagedJob> shown_; ///< shares its content with the session's list
    QLabel* systemJobs_;
};

} // namespace orvex
