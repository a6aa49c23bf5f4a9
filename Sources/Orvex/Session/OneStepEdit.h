#pragma once

#include "Layout/RollLayout.h"

#include <optional>
#include <utility>

namespace orvex {

/// A series of changes that becomes one step of undo, however long it lasts: a gesture, or a run of keyboard nudges.
class OneStepEdit {
public:
    [[nodiscard]] bool isOpen() const { return initialLayout_.has_value(); }

    /// The layout at the start; absent while none is open.
    [[nodiscard]] const std::optional<RollLayout>& initialLayout() const { return initialLayout_; }

    /// Opens with the layout of this moment; one that is open goes on.
    void begin(const RollLayout& layout) {
        if (!isOpen()) {
            initialLayout_ = layout;
        }
    }

    /// Closes, if open. The layout to record, if the series has changed anything.
    [[nodiscard]] std::optional<RollLayout> end(const RollLayout& current) {
        std::optional<RollLayout> step = std::exchange(initialLayout_, std::nullopt);
        return step && !(*step == current) ? step : std::nullopt;
    }

private:
    std::optional<RollLayout> initialLayout_;
};

} // namespace orvex
