#include "CanvasTest.h"
#include "InChinese.h"
#include "InLocale.h"

namespace orvex {
namespace {

/// The last step of the batch panel.
class BatchArrangement : public test::CanvasTest {
protected:
    BatchArrangement() {
        startWith(2);
        base = model->rollLayout();
        arranged = base;
        arranged.resize(idOf(0), 6.0);
        arranged.autoArrange(0.0);
    }

    /// Applies what must be refused with these words; nothing else may happen.
    void expectRefused(const RollLayout& layout, const RollLayout& basedOn, const char* words) {
        expectNothing([&] { EXPECT_EQ(model->applyBatchArrangement(layout, basedOn), QString::fromUtf8(words)); });
    }

    RollLayout base;
    RollLayout arranged;
};

TEST_F(BatchArrangement, IsOneStepAndSaved) {
    expectOneStep([this] { EXPECT_EQ(model->applyBatchArrangement(arranged, base), std::nullopt); });
    EXPECT_EQ(model->rollLayout(), arranged);
    EXPECT_EQ(lastStep(), base);
}

TEST_F(BatchArrangement, TellsOfTheResult) {
    static_cast<void>(model->applyBatchArrangement(arranged, base));
    EXPECT_EQ(model->message(), QStringLiteral("Applied batch sizes and optimized layout: 60 × 13 in, 2 artworks. Each "
                                               "retains a 2.5-inch border on every side. Undo in one step."));
}

TEST_F(BatchArrangement, TellsOfTheResultInChineseAndInTheLocale) {
    arranged.resize(idOf(1), 12.3);
    const test::InChinese chinese;
    const test::InLocale german("de_DE");
    static_cast<void>(model->applyBatchArrangement(arranged, base));
    EXPECT_EQ(model->message(),
              QStringLiteral("已应用批量尺寸和省布排版：60 × 13,2 英寸，共 2 幅作品。每幅作品四周保留 "
                             "2.5 英寸白边，可一步撤销。"));
}

TEST_F(BatchArrangement, UpdatesThePageOfTheSelectedArtwork) {
    model->selectArtwork(idOf(0));
    static_cast<void>(model->applyBatchArrangement(arranged, base));
    EXPECT_EQ(model->presetForm().settings.widthMM, 11.0 * 25.4);
}

TEST_F(BatchArrangement, EqualToTheCanvasIsNoStepAndToldAllTheSame) {
    forgetAutosave();
    EXPECT_EQ(model->applyBatchArrangement(base, base), std::nullopt);
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_FALSE(isAutosaved());
    EXPECT_EQ(model->message(), QStringLiteral("Applied batch sizes and optimized layout: 60 × 13 in, 2 artworks. Each "
                                               "retains a 2.5-inch border on every side. Undo in one step."));
}

TEST_F(BatchArrangement, WaitsForOtherWork) {
    const test::HeldBusy busy(*model);
    const RollLayout other({}, 40.0);
    expectRefused(arranged, other, "Wait for the current operation to finish before applying.");
    const test::InChinese chinese;
    expectRefused(arranged, other, "请等待当前操作完成后再应用。");
}

TEST_F(BatchArrangement, NeverOverwritesLaterEdits) {
    model->moveArtwork(idOf(1), 20.0, std::nullopt);
    const RollLayout narrower({}, 40.0);
    expectRefused(narrower, base, "The layout has changed. Reopen Batch Sizes to avoid overwriting your latest edits.");
    const test::InChinese chinese;
    expectRefused(narrower, base, "排版已发生变化。请重新打开批量尺寸，以免覆盖最新的编辑。");
}

TEST_F(BatchArrangement, KeepsTheWidthOfTheCanvas) {
    const RollLayout narrower({}, 40.0);
    expectRefused(narrower, base, "The canvas width has changed. Reopen Batch Sizes.");
    const test::InChinese chinese;
    expectRefused(narrower, base, "画布宽度已发生变化。请重新打开批量尺寸。");
}

TEST_F(BatchArrangement, KeepsTheArtworksAndTheirOrder) {
    constexpr auto words = "The artwork list has changed. The batch layout was not applied.";
    RollLayout swapped = base;
    swapped.items.swapItemsAt(0, 1);
    expectRefused(swapped, base, words);
    RollLayout shorter = base;
    shorter.items.removeLast();
    expectRefused(shorter, base, words);
    RollLayout longer = base;
    longer.append(artwork(), 0.0);
    expectRefused(longer, base, words);
    const test::InChinese chinese;
    expectRefused(swapped, base, "作品列表已发生变化，未应用批量排版。");
}

TEST_F(BatchArrangement, RefusesWhatCannotBeExported) {
    RollLayout overlapping = base;
    overlapping.move(idOf(1), 10.0, 0.0);
    expectRefused(overlapping, base,
                  "Manual-trim frames overlap: nowhere.png and nowhere.png. Move the artwork or arrange "
                  "automatically.");
}

TEST_F(BatchArrangement, OfAnEmptyCanvasIsRefused) {
    SessionBackdoor::set(model->rollLayout, RollLayout());
    expectRefused(RollLayout(), RollLayout(), "Add artwork to the roll canvas first.");
}

} // namespace
} // namespace orvex
