#include "EdgeScrolling.h"

#include <QAbstractScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr int intervalMilliseconds = 16;
constexpr double edgeZone = 24.0;
constexpr double fastestStep = 12.0;

/// How far a place lies inside the zone at either end of a side, from -1 to 1.
double beyondEdge(double position, double length) {
    const double before = std::min(position - edgeZone, 0.0);
    const double behind = std::max(position - (length - edgeZone), 0.0);
    return std::clamp((before + behind) / edgeZone, -1.0, 1.0);
}

double onward(double now, double atStart) {
    return std::abs(now) > std::abs(atStart) ? now : 0.0;
}

void moveBy(QScrollBar& bar, double step) {
    bar.setValue(bar.value() + qRound(step));
}

} // namespace

EdgeScrolling::EdgeScrolling(QAbstractScrollArea& view, QObject* parent) : QObject(parent), view_(view) {
    timer_.setInterval(intervalMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &EdgeScrolling::scroll);
}

void EdgeScrolling::start(const QPointF& position) {
    start_ = beyondEdges(position);
}

void EdgeScrolling::follow(const QPointF& position) {
    position_ = position;
    if (!speed().isNull() && !timer_.isActive()) {
        timer_.start();
    }
}

void EdgeScrolling::stop() {
    timer_.stop();
}

/// In parts of the fastest step, both ways.
QPointF EdgeScrolling::speed() const {
    const QPointF now = beyondEdges(position_);
    return {onward(now.x(), start_.x()), onward(now.y(), start_.y())};
}

QPointF EdgeScrolling::beyondEdges(const QPointF& position) const {
    const QSize size = view_.viewport()->size();
    return {beyondEdge(position.x(), size.width()), beyondEdge(position.y(), size.height())};
}

void EdgeScrolling::scroll() {
    const QPointF step = speed() * fastestStep;
    if (step.isNull()) {
        stop();
        return;
    }
    moveBy(*view_.horizontalScrollBar(), step.x());
    moveBy(*view_.verticalScrollBar(), step.y());
    Q_EMIT scrolled();
}

} // namespace orvex
