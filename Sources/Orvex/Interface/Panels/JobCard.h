#pragma once

#include "Controls/Controls.h"
#include "OrvexModel.h"

#include <QPushButton>

namespace orvex {

/// A job of the local queue, with what can be done with it. Main thread.
class JobCard : public Card {
    Q_OBJECT

public:
    JobCard(OrvexModel& session, const StagedJob& job, QWidget* parent = nullptr);

    [[nodiscard]] const StagedJob& job() const { return job_; }

    /// The texts of a job never change; what can be done with it does.
    void syncFromSession();

private:
    void build();
    void connectSignals();

    OrvexModel& session_;
    const StagedJob job_;
    QPushButton* print_;
    QPushButton* export_;
    QPushButton* reveal_;
    QPushButton* remove_;
};

} // namespace orvex
