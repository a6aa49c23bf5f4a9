#pragma once

#include <QObject>
#include <QPointF>
#include <QTimer>

class QAbstractScrollArea;

namespace orvex {

/// Scrolls a view on while something is dragged to one of its edges, the faster the nearer. Main thread.
class EdgeScrolling : public QObject {
    Q_OBJECT

public:
    /// The view must outlive it.
    explicit EdgeScrolling(QAbstractScrollArea& view, QObject* parent = nullptr);

    /// What is dragged was taken at this place of the viewport. It may be near an edge: only what goes on towards that
    /// edge scrolls.
    void start(const QPointF& position);

    /// What is dragged is at this place now.
    void follow(const QPointF& position);

    void stop();

Q_SIGNALS:
    /// The view has scrolled by a step.
    void scrolled();

private:
    void scroll();
    [[nodiscard]] QPointF speed() const;
    [[nodiscard]] QPointF beyondEdges(const QPointF& position) const;

    QAbstractScrollArea& view_;
    QPointF start_; ///< how far it was inside the zones at the edges then
    QPointF position_;
    QTimer timer_;
};

} // namespace orvex
