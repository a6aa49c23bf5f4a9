#include "CanvasTest.h"
#include "InChinese.h"
#include "InLocale.h"

namespace orvex {
namespace {

const QString unchanged = QStringLiteral("The canvas width and original layout are unchanged. Resize artworks that do "
                                         "not fit before trying again.");

/// Another width of the canvas, for which all artworks are arranged anew.
class WidthChange : public test::CanvasTest {
protected:
    WidthChange() { startWith(3); }

    void change(double width) {
        model->changeRollWidth(width);
        settle();
    }
};

TEST_F(WidthChange, ArrangesAnewInOneStep) {
    expectOneStep([this] { change(40.0); });
    EXPECT_EQ(model->rollLayout().widthInches, 40.0);
    EXPECT_EQ(model->rollLayout().exportValidationError(), std::nullopt);
    EXPECT_FALSE(model->busy());
}

TEST_F(WidthChange, TellsOfTheWorkAndOfItsEnd) {
    {
        const test::Barrier barrier;
        model->changeRollWidth(34.5);
        EXPECT_TRUE(model->busy());
        EXPECT_EQ(model->message(), QStringLiteral("Rearranging for the new canvas width while keeping each artwork’s "
                                                   "physical size…"));
    }
    settle();
    EXPECT_EQ(model->message(),
              QStringLiteral("Rearranged for a 34.5-inch canvas, 26 inches long. Artwork sizes and 2.5-inch borders on "
                             "every side are preserved. Undo in one step."));
}

TEST_F(WidthChange, TellsOfItInChineseAndInTheLocale) {
    const test::InChinese chinese;
    const test::InLocale german("de_DE");
    {
        const test::Barrier barrier;
        model->changeRollWidth(34.5);
        EXPECT_EQ(model->message(), QStringLiteral("正在按新的画布宽度重新排版，每幅作品的实际尺寸保持不变…"));
    }
    settle();
    EXPECT_EQ(model->message(), QStringLiteral("已按 34,5 英寸画布重新排版，长 26 英寸。作品尺寸和四周 2.5 英寸白边保持"
                                               "不变，可一步撤销。"));
}

TEST_F(WidthChange, TurnsWhatFitsOnlyThen) {
    change(14.0);
    EXPECT_EQ(model->rollLayout().widthInches, 14.0);
    for (const RollArtwork& each : model->rollLayout().items) {
        EXPECT_EQ(each.widthInches, 8.0);
        EXPECT_EQ(each.heightInches(), 12.0);
    }
    EXPECT_EQ(model->presetForm().settings.widthMM, 13.0 * 25.4) << "the page of the selected artwork";
}

TEST_F(WidthChange, ToThePresentWidthDoesNothing) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectNothing([this] { change(60.0); });
}

TEST_F(WidthChange, IsLockedByWorkTheBatchPanelAndGestures) {
    {
        const test::HeldBusy busy(*model);
        expectNothing([this] { model->changeRollWidth(40.0); });
        expectNothing([this] { model->changeRollWidth(4.0); });
    }
    model->setBatchSizingPresented(true);
    expectNothing([this] { model->changeRollWidth(40.0); });
    model->setBatchSizingPresented(false);
    model->beginArrangeGesture();
    expectNothing([this] { model->changeRollWidth(40.0); });
}

TEST_F(WidthChange, RefusesWhatIsNoWidthOfThisPrinter) {
    for (const double bad : {5.0, 4.0, 0.0, -10.0, 60.000001, nan, infinity, -infinity}) {
        model->dismissError();
        expectRefusal([this, bad] { change(bad); },
                      QStringLiteral("Canvas width must be greater than 5 inches and no wider than the iPF9400’s "
                                     "60-inch capacity."));
    }
    const test::InChinese chinese;
    expectRefusal([this] { change(5.0); }, QStringLiteral("画布宽度须大于 5 英寸，且不超过 iPF9400 支持的 60 英寸。"));
}

TEST_F(WidthChange, AcceptsTheFullWidthAgain) {
    change(40.0);
    change(60.0);
    EXPECT_EQ(model->rollLayout().widthInches, 60.0);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(WidthChange, EndsAKeyboardRunEvenWhereTheWidthIsRefused) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectOneStepOfRun([this] { change(5.0); });
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    change(40.0);
    EXPECT_EQ(undoSteps(), 3);
}

TEST_F(WidthChange, ThatLeavesNoPlaceForAnArtworkChangesNothing) {
    forgetAutosave();
    test::CanvasState expected = state();
    change(12.0);
    expected.errorMessage = model->errorMessage();
    expected.message = unchanged;
    EXPECT_EQ(state(), expected);
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(QStringLiteral("nowhere.png"))) << "it names the artwork";
    EXPECT_FALSE(model->busy());
    const test::InChinese chinese;
    change(12.0);
    EXPECT_EQ(model->message(), QStringLiteral("画布宽度和原排版均未改变。请先调整放不下的作品尺寸，再重试。"));
}

TEST_F(WidthChange, IsDroppedWhereTheCanvasIsAnotherByThen) {
    RollLayout other = model->rollLayout();
    other.move(idOf(0), 1.0, 0.0);
    const auto changeMeanwhile = [&] {
        {
            const test::Barrier barrier;
            model->changeRollWidth(40.0);
            SessionBackdoor::set(model->rollLayout, other);
        }
        settle();
    };
    forgetAutosave();
    test::CanvasState expected = state();
    expected.layout = other;
    expected.errorMessage = QStringLiteral("The layout has changed. Enter the canvas width again.");
    expected.message = unchanged;
    changeMeanwhile();
    EXPECT_EQ(state(), expected);
    EXPECT_FALSE(model->busy());
    const test::InChinese chinese;
    SessionBackdoor::set(model->rollLayout, RollLayout({}, 50.0));
    changeMeanwhile();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("排版已发生变化。请重新输入画布宽度。"));
}

TEST_F(WidthChange, OfAnEmptyCanvasIsAStepToo) {
    SessionBackdoor::set(model->rollLayout, RollLayout());
    expectOneStep([this] { change(40.0); });
    EXPECT_EQ(model->message(),
              QStringLiteral("Rearranged for a 40-inch canvas, 0 inches long. Artwork sizes and 2.5-inch borders on "
                             "every side are preserved. Undo in one step."));
}

} // namespace
} // namespace orvex
