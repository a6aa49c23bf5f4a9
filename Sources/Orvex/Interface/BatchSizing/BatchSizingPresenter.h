#pragma once

#include "BatchSizing/BatchRollPreview.h"

#include <QObject>
#include <QPointer>

namespace orvex {

class BatchSizingView;
class OrvexModel;

/// Shows the panel for the print sizes of many artworks over a window for as long as the session says so, and tells the
/// session when it has gone. Main thread.
class BatchSizingPresenter : public QObject {
    Q_OBJECT

public:
    /// The session must outlive it; it belongs to the window.
    BatchSizingPresenter(OrvexModel& session, QWidget* window,
                         BatchRollPreview::Pictures pictures = BatchRollPreview::noPicture);

    void syncFromSession();

    /// Better pictures have come.
    void updatePictures();

private:
    void open();
    void finish();

    OrvexModel& session_;
    QWidget* const window_;
    const BatchRollPreview::Pictures pictures_;
    QPointer<BatchSizingView> view_;
};

} // namespace orvex
