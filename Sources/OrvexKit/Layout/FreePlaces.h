#pragma once

#include "Layout/Geometry.h"
#include "Layout/PackingBox.h"

#include <optional>
#include <vector>

namespace orvex {

/// The free places of a roll beside the boxes on it, for frames that keep a gap from the boxes. Inches; the origin is
/// the roll's top left corner. A plain value; one thread at a time.
///
/// A place is found by walks: at each candidate x, ascending, a frame starts at y 0 and moves to below every box that
/// it meets, in the order of the boxes; a later x wins only if it ends higher up by more than the tolerance.
///
/// Most walks are not made, and this cannot change the result. Wherever a walk ends, its frame overlaps no box by more
/// than the tolerance and the rounding of a few sums: it has moved below all that it met, and once it ends above a box,
/// it ends above all later ones, which begin no higher. Make every box smaller by `slackInches`, which is much more
/// than both: then the frame lies in one of the largest rectangles that are free. Besides, a walk ends at 0 or exactly
/// below a box. So an x can be passed over if in each such rectangle that holds the frame there, already the first y at
/// which a walk can end is too low to win. Whatever decides between places is compared in a walk, to the last bit.
class FreePlaces {
public:
    /// An empty roll. No frame will be asked for that is smaller than `smallest` in either direction.
    FreePlaces(double gap, double rollWidth, const Size& smallest);

    /// Puts a box on the roll.
    void add(const PackingBox& box);

    /// The free place for a frame with the smallest y, then the smallest x. Absent if the frame is too wide or not of a
    /// finite positive size, or if no place has finite coordinates.
    [[nodiscard]] std::optional<Point> vacancy(const Size& frame) const;

private:
    /// A box as walks compare it with a frame.
    struct Obstacle {
        double leftLimit;
        double rightLimit;
        double topLimit;
        double bottomLimit;
        double exitLimit;
        double next;
    };

    /// One of the largest free rectangles.
    struct FreeRect {
        double left;
        double right;
        double top;
        double bottom;
        double firstEnd; ///< the least y from `top` on at which a walk can end

        [[nodiscard]] bool contains(const FreeRect& other) const {
            return left <= other.left && other.right <= right && top <= other.top && other.bottom <= bottom;
        }
    };

    /// What a free rectangle offers to one frame: the candidates from `nextX` to `lastX`.
    struct Opening {
        double nextX;
        double lastX;
        double firstEnd;
    };

    void addCandidates(const PackingBox& box);
    void occupy(const PackingBox& box, double next);
    void lowerFirstEnds(double next);
    void addIfLargest(const FreeRect& piece, std::vector<FreeRect>& pieces) const;
    [[nodiscard]] double firstEndFrom(double top) const;
    [[nodiscard]] double lastCandidate(double frameWidth) const;
    [[nodiscard]] double candidateFrom(double x, double frameWidth) const;
    [[nodiscard]] std::vector<Opening> openings(const Size& frame) const;
    [[nodiscard]] std::optional<double> walk(double x, const Size& frame, double yLimit) const;

    double gap_;
    double rollWidth_;
    Size smallest_;
    RollPacking::Occupied boxes_;
    std::vector<Obstacle> obstacles_; // of the boxes, in the same order
    std::vector<double> rightSides_;  // candidates at the right of boxes; ascending, each once
    std::vector<double> leftEdges_;   // of boxes, for the candidates at their left; ascending, each once
    std::vector<FreeRect> rects_;
    bool isPruning_ = true; // until a coordinate is too large for the slack to cover its rounding
};

} // namespace orvex
