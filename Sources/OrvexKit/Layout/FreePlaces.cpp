#include "Layout/FreePlaces.h"

#include "Layout/InchLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvex {

namespace {

constexpr double tolerance = PrintUnits::toleranceInches;
constexpr double infinity = std::numeric_limits<double>::infinity();

// Up to here a sum of four coordinates is rounded by less than a tenth of a millionth of an inch.
constexpr double farthestInches = 0x1p26;
constexpr double slackInches = 1e-6;

bool isNear(double coordinate) {
    return std::abs(coordinate) <= farthestInches;
}

bool isUsable(const Size& frame, double rollWidth) {
    return std::isfinite(frame.width) && frame.width > 0.0 && std::isfinite(frame.height) && frame.height > 0.0 &&
           frame.width <= rollWidth + tolerance;
}

void insertOnce(double value, std::vector<double>& ascending) {
    const auto place = std::lower_bound(ascending.begin(), ascending.end(), value);
    if (place == ascending.end() || *place != value) {
        ascending.insert(place, value);
    }
}

} // namespace

FreePlaces::FreePlaces(double gap, double rollWidth, const Size& smallest)
    : gap_(gap),
      rollWidth_(rollWidth),
      smallest_(smallest),
      rects_{{.left = -slackInches,
              .right = rollWidth + slackInches,
              .top = -slackInches,
              .bottom = infinity,
              .firstEnd = 0.0}} {}

void FreePlaces::add(const PackingBox& box) {
    const double next = gap_ + (box.y + box.height);
    const auto place = static_cast<std::ptrdiff_t>(RollPacking::insert(box, boxes_));
    obstacles_.insert(obstacles_.begin() + place, {.leftLimit = (box.x - gap_) + tolerance,
                                                   .rightLimit = (gap_ + (box.x + box.width)) - tolerance,
                                                   .topLimit = (box.y - gap_) + tolerance,
                                                   .bottomLimit = next - tolerance,
                                                   .exitLimit = box.y + tolerance,
                                                   .next = next});
    addCandidates(box);
    const bool isAllNear =
        isNear(gap_) && isNear(box.x) && isNear(box.width) && isNear(box.y) && isNear(box.height) && isNear(next);
    if (isPruning_ && isAllNear) {
        occupy(box, next);
    } else {
        isPruning_ = false;
        rects_ = {{.left = -infinity, .right = infinity, .top = -infinity, .bottom = infinity, .firstEnd = 0.0}};
    }
}

void FreePlaces::addCandidates(const PackingBox& box) {
    const double rightSide = gap_ + (box.width + box.x);
    if (0.0 <= rightSide && rightSide <= rollWidth_) {
        insertOnce(rightSide, rightSides_);
    }
    if (std::isfinite(box.x)) {
        insertOnce(box.x, leftEdges_);
    }
}

/// Replaces every free rectangle that the reduced box cuts by the largest ones that are left of it.
void FreePlaces::occupy(const PackingBox& box, double next) {
    const double left = (box.x - gap_) + slackInches;
    const double right = (gap_ + (box.x + box.width)) - slackInches;
    const double top = (box.y - gap_) + slackInches;
    const double bottom = next - slackInches;
    if (!(left < right && top < bottom)) {
        lowerFirstEnds(next); // nothing is left of it to keep a frame from anywhere, but walks can end below it
        return;
    }
    const auto firstCut = std::partition(rects_.begin(), rects_.end(), [&](const FreeRect& rect) {
        return rect.right <= left || right <= rect.left || rect.bottom <= top || bottom <= rect.top;
    });
    const std::vector<FreeRect> cut(firstCut, rects_.end());
    rects_.erase(firstCut, rects_.end());
    const double firstEnd = firstEndFrom(bottom);
    std::vector<FreeRect> pieces;
    for (const FreeRect& rect : cut) {
        FreeRect piece = rect;
        piece.right = std::min(rect.right, left);
        addIfLargest(piece, pieces);
        piece = rect;
        piece.left = std::max(rect.left, right);
        addIfLargest(piece, pieces);
        piece = rect;
        piece.bottom = std::min(rect.bottom, top);
        addIfLargest(piece, pieces);
        piece = rect;
        piece.top = std::max(rect.top, bottom);
        piece.firstEnd = firstEnd;
        addIfLargest(piece, pieces);
    }
    rects_.insert(rects_.end(), pieces.begin(), pieces.end());
    lowerFirstEnds(next);
}

/// Has every rectangle know that a walk can end at `next`.
void FreePlaces::lowerFirstEnds(double next) {
    for (FreeRect& rect : rects_) {
        if (rect.top <= next && next < rect.firstEnd) {
            rect.firstEnd = next;
        }
    }
}

void FreePlaces::addIfLargest(const FreeRect& piece, std::vector<FreeRect>& pieces) const {
    if (piece.right - piece.left < smallest_.width || piece.bottom - piece.top < smallest_.height) {
        return;
    }
    const auto containsPiece = [&](const FreeRect& rect) { return rect.contains(piece); };
    if (std::any_of(rects_.begin(), rects_.end(), containsPiece) ||
        std::any_of(pieces.begin(), pieces.end(), containsPiece)) {
        return;
    }
    std::erase_if(pieces, [&](const FreeRect& rect) { return piece.contains(rect); });
    pieces.push_back(piece);
}

double FreePlaces::firstEndFrom(double top) const {
    if (top <= 0.0) {
        return 0.0;
    }
    double first = infinity;
    for (const Obstacle& obstacle : obstacles_) {
        if (top <= obstacle.next && obstacle.next < first) {
            first = obstacle.next;
        }
    }
    return first;
}

double FreePlaces::lastCandidate(double frameWidth) const {
    return std::max(rollWidth_ - frameWidth, 0.0);
}

/// The first candidate from `x` on, which is not negative; infinity if there is none.
double FreePlaces::candidateFrom(double x, double frameWidth) const {
    const double maxX = lastCandidate(frameWidth);
    if (x <= 0.0 || x > maxX) {
        return x <= 0.0 ? 0.0 : infinity;
    }
    double candidate = maxX;
    const auto rightSide = std::lower_bound(rightSides_.begin(), rightSides_.end(), x);
    if (rightSide != rightSides_.end()) {
        candidate = std::min(candidate, *rightSide);
    }
    const auto leftSide = [&](double edge) { return (edge - frameWidth) - gap_; };
    const auto edge =
        std::partition_point(leftEdges_.begin(), leftEdges_.end(), [&](double each) { return leftSide(each) < x; });
    if (edge != leftEdges_.end()) {
        candidate = std::min(candidate, leftSide(*edge));
    }
    return candidate;
}

std::vector<FreePlaces::Opening> FreePlaces::openings(const Size& frame) const {
    std::vector<Opening> openings;
    for (const FreeRect& rect : rects_) {
        if (rect.bottom - rect.top < frame.height || rect.right - rect.left < frame.width) {
            continue;
        }
        openings.push_back({.nextX = candidateFrom(rect.left, frame.width),
                            .lastX = std::min(rect.right - frame.width, lastCandidate(frame.width)),
                            .firstEnd = rect.firstEnd});
    }
    return openings;
}

/// The y where the walk at `x` ends. Absent if that is not above the limit: it only ever goes down on the way.
std::optional<double> FreePlaces::walk(double x, const Size& frame, double yLimit) const {
    double y = 0.0;
    const double right = frame.width + x;
    for (const Obstacle& obstacle : obstacles_) {
        const bool isAcross = x < obstacle.rightLimit && obstacle.leftLimit < right;
        if (!isAcross) {
            continue;
        }
        if (gap_ + (frame.height + y) <= obstacle.exitLimit) {
            break; // it ends above this box, and so above all later ones
        }
        const bool isAlong = y < obstacle.bottomLimit && obstacle.topLimit < frame.height + y;
        if (isAlong) {
            y = obstacle.next;
            if (!(y < yLimit)) {
                return std::nullopt;
            }
        }
    }
    return y < yLimit && std::isfinite(frame.height + y) ? std::optional(y) : std::nullopt;
}

std::optional<Point> FreePlaces::vacancy(const Size& frame) const {
    if (!isUsable(frame, rollWidth_)) {
        return std::nullopt;
    }
    std::vector<Opening> open = openings(frame);
    std::optional<Point> best;
    double yLimit = infinity;
    while (true) {
        std::erase_if(open, [&](const Opening& each) { return each.nextX > each.lastX || each.firstEnd >= yLimit; });
        if (open.empty()) {
            return best;
        }
        const double x = std::min_element(open.begin(), open.end(), [](const Opening& a, const Opening& b) {
                             return a.nextX < b.nextX;
                         })->nextX;
        if (const auto y = walk(x, frame, yLimit)) {
            best = Point{x, *y};
            yLimit = *y - tolerance;
        }
        const double following = candidateFrom(std::nextafter(x, infinity), frame.width);
        for (Opening& each : open) {
            each.nextX = each.nextX == x ? following : each.nextX;
        }
    }
}

} // namespace orvex
