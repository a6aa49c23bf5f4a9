#include "QueuePanel.h"

#include "OrvexLanguage.h"
#include "QueueTexts.h"

#include <algorithm>

namespace orvex {

namespace {

QString introduction() {
    return spt(
        "每个作业都保存一份原始分辨率的 PDF 和制作设置，重新启动后仍会保留。打印前请在佳能打印流程中核对打印质量。",
        "Each job keeps an original-resolution PDF and preparation settings across restarts. Check print quality "
        "in the Canon workflow before printing.");
}

} // namespace

QueuePanel::QueuePanel(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      unavailable_(controls::named(QStringLiteral("queueUnavailableLabel"),
                                   controls::warning(QueueTexts::localQueueUnavailable()))),
      noJobs_(controls::named(
          QStringLiteral("noJobsLabel"),
          controls::note(spt("还没有本地作业。请先完成排版，再选择“将卷布加入待打印队列”。",
                             "No local jobs yet. Finish your layout, then choose Add roll to print queue.")))),
      systemJobs_(controls::named(QStringLiteral("systemJobsLabel"), controls::note())) {
    build();
    connectSignals();
    syncFromSession();
}

void QueuePanel::build() {
    setObjectName(QStringLiteral("queuePanel"));
    auto* content = new QWidget;
    auto* layout = controls::column(content);
    layout->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    layout->addWidget(controls::heading(spt("本地待打印队列", "Local print queue")));
    layout->addWidget(controls::note(introduction()));
    layout->addWidget(unavailable_);
    layout->addWidget(noJobs_);
    auto* cards = new QWidget;
    cardsLayout_ = controls::column(cards);
    layout->addWidget(cards);
    layout->addSpacing(controls::spacing);
    layout->addWidget(controls::heading(spt("系统打印队列 · 只读", "System print queue · Read-only")));
    layout->addWidget(systemJobs_);
    layout->addStretch(1);
    controls::column(this)->addWidget(controls::scrolling(content));
}

void QueuePanel::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &QueuePanel::syncFromSession);
}

void QueuePanel::syncFromSession() {
    unavailable_->setVisible(!session_.queueAvailable());
    noJobs_->setVisible(session_.jobs().isEmpty());
    systemJobs_->setText(QueueTexts::systemJobs(session_.printerReadings()));
    syncCards();
    for (JobCard* card : std::as_const(cards_)) {
        card->syncFromSession();
    }
}

void QueuePanel::syncCards() {
    if (shown_ == session_.jobs()) {
        return;
    }
    shown_ = session_.jobs();
    QList<JobCard*> before;
    before.swap(cards_);
    for (const StagedJob& job : shown_) {
        JobCard* card = takeCard(before, job);
        cards_.append(card);
    }
    for (JobCard* gone : std::as_const(before)) {
        gone->hide();
        gone->deleteLater();
    }
}

/// The card of the job, at its place.
JobCard* QueuePanel::takeCard(QList<JobCard*>& from, const StagedJob& job) {
    const auto place = static_cast<int>(cards_.size());
    const auto found =
        std::ranges::find_if(from, [&](const JobCard* each) { return each->job().id == job.id && each->job() == job; });
    if (found == from.end()) {
        auto* card = new JobCard(session_, job);
        cardsLayout_->insertWidget(place, card);
        return card;
    }
    JobCard* card = *found;
    from.erase(found);
    if (cardsLayout_->indexOf(card) != place) {
        cardsLayout_->removeWidget(card);
        cardsLayout_->insertWidget(place, card);
    }
    return card;
}

} // namespace orvex
