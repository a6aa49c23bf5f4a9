#pragma once

#include "AlertRules.h"
#include "OrvexModel.h"
#include "Shell/AlertView.h"

#include <QPointer>
#include <QTimer>

namespace orvex {

/// Shows the session's error message in an alert over the window: one at a time, never in the middle of a movement and
/// never over another dialog, which it waits for. Main thread.
class AlertPresenter : public QObject {
    Q_OBJECT

public:
    AlertPresenter(OrvexModel& session, QWidget& window);
    ~AlertPresenter() override;

    void syncFromSession();

private:
    [[nodiscard]] bool mustWait() const;
    void show(const QString& text);
    void dismissed();

    OrvexModel& session_;
    QWidget& window_;
    AlertRules rules_;
    QTimer retry_;
    QPointer<AlertView> alert_;
};

} // namespace orvex
