#include "BoardGestures.h"

#include "Layout/RollInteraction.h"

#include <QLineF>

#include <algorithm>

namespace orvex {

void BoardGestures::press(const BoardHit& hit, const QPointF& position) {
    cancel();
    if (session_.busy()) {
        return;
    }
    pressed_ = hit;
    pressPosition_ = position;
}

void BoardGestures::drag(const QPointF& position, double scale) {
    if (!pressed_ || session_.busy()) {
        return;
    }
    if (isDragging() && !session_.arrangingGesture()) {
        forget();
        return;
    }
    const QPointF translation = position - pressPosition_;
    if (!isDragging() && QLineF(QPointF(), translation).length() < dragDistance) {
        return;
    }
    if (!isDragging()) {
        begin(*pressed_, scale);
    }
    move(pressed_->id, translation);
    resize(pressed_->id, translation);
}

void BoardGestures::release() {
    if (!pressed_) {
        return;
    }
    const QUuid id = pressed_->id;
    const bool isTap = !isDragging();
    cancel();
    if (isTap) {
        session_.selectArtwork(id);
    }
}

void BoardGestures::cancel() {
    pressed_.reset();
    if (isDragging()) {
        endDrag();
    }
}

void BoardGestures::begin(const BoardHit& hit, double scale) {
    if (hit.part == BoardHit::Part::handle) {
        beginResize(hit.id, scale);
    } else {
        beginMove(hit.id, scale);
    }
    if (!isDragging()) {
        pressed_.reset(); // the session is in the middle of something else: this press comes to nothing
    }
}

void BoardGestures::beginMove(const QUuid& id, double scale) {
    session_.selectArtwork(id);
    const auto item = artwork(id);
    if (item && session_.beginArrangeGesture()) {
        moveOrigins_.insert(id, {.point = {.x = item->xInches, .y = item->yInches}, .scale = scale});
    }
}

void BoardGestures::beginResize(const QUuid& id, double scale) {
    const auto item = artwork(id);
    if (item && session_.beginArrangeGesture()) {
        resizeOrigins_.insert(
            id, {.width = item->widthInches, .height = item->heightInches(), .x = item->xInches, .scale = scale});
    }
}

void BoardGestures::move(const QUuid& id, const QPointF& translation) {
    const auto origin = moveOrigins_.constFind(id);
    if (origin != moveOrigins_.constEnd()) {
        session_.dragArtwork(id, origin->point.x + translation.x() / origin->scale,
                             origin->point.y + translation.y() / origin->scale);
    }
}

void BoardGestures::resize(const QUuid& id, const QPointF& translation) {
    const auto origin = resizeOrigins_.constFind(id);
    if (origin != resizeOrigins_.constEnd()) {
        session_.resizeArtworkGesture(id, RollInteraction::resizedWidth(origin->width, origin->height,
                                                                        translation.x() / origin->scale,
                                                                        translation.y() / origin->scale, origin->x,
                                                                        session_.rollLayout().widthInches));
    }
}

void BoardGestures::endDrag() {
    session_.endArrangeGesture();
    forget();
    session_.requestKeyboardFocus();
}

void BoardGestures::forget() {
    pressed_.reset();
    moveOrigins_.clear();
    resizeOrigins_.clear();
}

std::optional<RollArtwork> BoardGestures::artwork(const QUuid& id) const {
    const QList<RollArtwork>& items = session_.rollLayout().items;
    const auto found = std::ranges::find(items, id, &RollArtwork::id);
    return found != items.end() ? std::optional(*found) : std::nullopt;
}

} // namespace orvex
