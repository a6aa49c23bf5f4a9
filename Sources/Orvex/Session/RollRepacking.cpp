// Repacking of the whole canvas in the background: for another width, or after a removal.

#include "BackgroundTask.h"
#include "Layout/InchLayout.h"
#include "Layout/RollLayout.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "SessionOperation.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr bool allowQuarterTurns = true;

QFuture<RollLayout> startWidthChange(const RollLayout& layout, double width) {
    return platform::startUserInitiatedTask([layout, width] {
        RollLayout changed = layout;
        changed.changeRollWidth(width, allowQuarterTurns);
        return changed;
    });
}

QFuture<RollLayout> startRemoval(const RollLayout& layout, const QUuid& id, double gapInches) {
    return platform::startUserInitiatedTask([layout, id, gapInches] {
        RollLayout changed = layout;
        changed.removeAndOptimize(id, allowQuarterTurns, gapInches);
        return changed;
    });
}

} // namespace

void OrvexModel::changeRollWidth(double width) {
    if (isGestureLocked() || width == rollLayout().widthInches) {
        return;
    }
    endKeyboardNudge();
    const bool isPossible =
        std::isfinite(width) && width > PrintUnits::bothBordersInches && width <= RollLayout::rollWidthInches;
    if (!isPossible) {
        errorMessage.set(spt("画布宽度须大于 5 英寸，且不超过 iPF9400 支持的 60 英寸。",
                             "Canvas width must be greater than 5 inches and no wider than the iPF9400’s 60-inch "
                             "capacity."));
        return;
    }
    runWidthChange(width);
}

QCoro::Task<> OrvexModel::runWidthChange(double width) {
    const SessionOperation operation(*this);
    const RollLayout original = rollLayout();
    message.set(spt("正在按新的画布宽度重新排版，每幅作品的实际尺寸保持不变…",
                    "Rearranging for the new canvas width while keeping each artwork’s physical size…"));
    std::optional<QString> failure;
    try {
        const QFuture<RollLayout> rearranging = startWidthChange(original, width);
        const RollLayout rearranged = co_await rearranging;
        if (takeRepacked(rearranged, original)) {
            syncSelectedArtwork();
            persistRollLayout();
            message.set(spt("已按 %1 英寸画布重新排版，长 %2 英寸。作品尺寸和四周 2.5 英寸白边保持不变，可一步撤销。",
                            "Rearranged for a %1-inch canvas, %2 inches long. Artwork sizes and 2.5-inch borders on "
                            "every side are preserved. Undo in one step.")
                            .arg(rollWidthLabel(), rollLengthLabel()));
        } else {
            failure =
                spt("排版已发生变化。请重新输入画布宽度。", "The layout has changed. Enter the canvas width again.");
        }
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        errorMessage.set(failure);
        message.set(spt("画布宽度和原排版均未改变。请先调整放不下的作品尺寸，再重试。",
                        "The canvas width and original layout are unchanged. Resize artworks that do not fit before "
                        "trying again."));
    }
}

/// Puts a layout that was made from `original` on the canvas, if that is still the one there.
bool OrvexModel::takeRepacked(const RollLayout& repacked, const RollLayout& original) {
    if (!(rollLayout() == original)) {
        return false;
    }
    recordRollUndo(original);
    rollLayout.set(repacked);
    return true;
}

void OrvexModel::removeArtwork(const QUuid& id) {
    const auto item = artwork(id);
    if (isGestureLocked() || !item) {
        return;
    }
    endKeyboardNudge();
    runRemoval(*item);
}

QCoro::Task<> OrvexModel::runRemoval(RollArtwork artwork) {
    const SessionOperation operation(*this);
    const RollLayout original = rollLayout();
    message.set(
        spt("正在移除 %1，其余作品自动补位…", "Removing %1 and repacking the remaining artworks…").arg(artwork.title));
    std::optional<QString> failure;
    try {
        const QFuture<RollLayout> repacking = startRemoval(original, artwork.id, arrangementGap());
        const RollLayout repacked = co_await repacking;
        if (takeRepacked(repacked, original)) {
            finishRemoval(artwork, original.index(artwork.id));
        } else {
            failure = spt("排版已发生变化。请重新移除该作品。", "The layout has changed. Remove the artwork again.");
        }
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        errorMessage.set(failure);
        message.set(spt("未能完成移除和自动补位，原排版保持不变。",
                        "Removal and repacking could not be completed. The original layout is retained."));
    }
}

/// Selects the artwork that took the place of a removed one, unless another was selected, and tells of it.
void OrvexModel::finishRemoval(const RollArtwork& removed, qsizetype index) {
    const QList<RollArtwork>& items = rollLayout().items;
    if (!selectedArtwork()) {
        selectedArtworkID.set(items.isEmpty() ? std::nullopt
                                              : std::optional(items[std::min(index, items.size() - 1)].id));
    }
    syncSelectedArtwork();
    persistRollLayout();
    if (items.isEmpty()) {
        message.set(spt("已移除 %1，画布已空。原文件已保留，可撤销。",
                        "Removed %1. The canvas is empty. The original file is retained. You can undo this.")
                        .arg(removed.title));
        return;
    }
    message.set(spt("已移除 %1，其余 %2 幅作品已自动补位。卷布长度：%3 英寸。可一步撤销。",
                    "Removed %1 and repacked the remaining %2 artworks. Roll length: %3 in. Undo in one step.")
                    .arg(removed.title, QString::number(items.size()), rollLengthLabel()));
}

} // namespace orvex
