#include "BatchSizingPresenter.h"

#include "BatchSizing/BatchSizingView.h"
#include "OrvexModel.h"

namespace orvex {

BatchSizingPresenter::BatchSizingPresenter(OrvexModel& session, QWidget* window, BatchRollPreview::Pictures pictures)
    : QObject(window),
      session_(session),
      window_(window),
      pictures_(std::move(pictures)) {
    connect(&session_, &OrvexModel::changed, this, &BatchSizingPresenter::syncFromSession);
    syncFromSession();
}

void BatchSizingPresenter::syncFromSession() {
    if (session_.batchSizingPresented() && view_ == nullptr) {
        open();
    } else if (!session_.batchSizingPresented() && view_ != nullptr) {
        view_->reject();
    }
}

void BatchSizingPresenter::updatePictures() {
    if (auto* preview = view_ ? view_->findChild<BatchRollPreview*>() : nullptr) {
        preview->update();
    }
}

void BatchSizingPresenter::open() {
    view_ = new BatchSizingView(session_, pictures_, window_);
    connect(view_, &QDialog::finished, this, &BatchSizingPresenter::finish);
    view_->open();
}

void BatchSizingPresenter::finish() {
    view_->deleteLater();
    view_ = nullptr; // the session may ask for the panel again before it is deleted
    session_.setBatchSizingPresented(false);
}

} // namespace orvex
