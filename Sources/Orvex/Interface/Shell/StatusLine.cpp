#include "StatusLine.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <QHBoxLayout>

#include <algorithm>

namespace orvex {

namespace {

constexpr int progressSteps = 1000;
constexpr int progressWidth = 220;
constexpr int verticalMargin = 4;

} // namespace

StatusLine::StatusLine(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connect(cancel_, &QPushButton::clicked, &session_, &OrvexModel::cancelOperation);
    connect(&session_, &OrvexModel::changed, this, &StatusLine::syncFromSession);
    syncFromSession();
}

void StatusLine::build() {
    message_ = controls::note();
    message_->setObjectName(QStringLiteral("statusMessage"));
    what_ = controls::body();
    what_->setWordWrap(false);
    progress_ = new QProgressBar;
    progress_->setObjectName(QStringLiteral("progressBar"));
    progress_->setRange(0, progressSteps);
    progress_->setTextVisible(false);
    progress_->setFixedWidth(progressWidth);
    cancel_ = controls::button(QStringLiteral("cancelOperationButton"), spt("取消", "Cancel"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(controls::margin, verticalMargin, controls::margin, verticalMargin);
    row->setSpacing(controls::spacing);
    row->addWidget(message_, 1);
    row->addWidget(what_);
    row->addWidget(progress_);
    row->addWidget(cancel_);
    // Room for two lines and for the button from the start: nothing jumps when work begins or says more.
    const int content = std::max(cancel_->sizeHint().height(), 2 * message_->fontMetrics().lineSpacing());
    setMinimumHeight(content + 2 * verticalMargin);
}

void StatusLine::syncFromSession() {
    if (message_->text() != session_.message()) {
        message_->setText(session_.message());
    }
    const auto& progress = session_.progress();
    what_->setVisible(progress.has_value());
    progress_->setVisible(progress.has_value());
    cancel_->setVisible(progress && progress->isCancellable);
    if (progress) {
        what_->setText(progress->what);
        progress_->setAccessibleName(progress->what);
        progress_->setValue(static_cast<int>(progress->fraction * progressSteps));
    }
}

} // namespace orvex
