#include "BatchPanel.h"

namespace orvex {
namespace {

using test::artwork;
using test::artworkAt;
using test::Barrier;
using test::id;
using test::InChinese;
using test::waitFor;

const char* const noPair = "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
                           "artwork was not changed, stretched or rounded at lower precision.";

class BatchCalculation : public test::BatchPanel {
protected:
    /// Begins a calculation that the barrier holds up.
    void begin() {
        panel->calculatePreview();
        ASSERT_TRUE(panel->calculating());
    }

    /// Lets it end.
    void end(Barrier& barrier) const {
        barrier.release();
        waitFor([this] { return !panel->calculating(); });
    }
};

TEST_F(BatchCalculation, showsTheArrangementOfTheTypedSizes) {
    openTwo();
    type(width(1), "24");
    calculate();
    RollLayout sized = panel->original().sizingArtworks({row(1).request(), row(2).request()}, true);
    ASSERT_TRUE(panel->preview());
    EXPECT_EQ(*panel->preview(), BatchArrangementPreview::make(sized, true));
    EXPECT_EQ(panel->preview()->layout.items.at(0).scale() * 30.0, 24.0);
    EXPECT_EQ(issue(), "(none)");
    EXPECT_TRUE(panel->canApply());
    EXPECT_TRUE(panel->canCalculatePreview());
}

TEST_F(BatchCalculation, turnsOnlyWhereAllowed) {
    openTwo();
    calculate();
    ASSERT_TRUE(panel->preview());
    EXPECT_EQ(panel->preview()->layout.lengthInches(), 35.0);
    EXPECT_EQ(panel->preview()->savedLength(), 15.0);
    panel->setAllowRotation(false);
    EXPECT_EQ(panel->preview(), std::nullopt);
    calculate();
    ASSERT_TRUE(panel->preview());
    EXPECT_EQ(panel->preview()->layout.lengthInches(), 50.0);
    EXPECT_EQ(panel->preview()->savedLength(), 0.0);
}

TEST_F(BatchCalculation, arrangesAllArtworksAndSizesTheTickedOnes) {
    open({artworkAt(0.0, 300.0, 30.0, 20.0, 1), artworkAt(0.0, 100.0, 4.001, 3.0, 2)});
    panel->setEnabled(id(2), false);
    type(width(1), "24");
    calculate();
    ASSERT_TRUE(panel->preview());
    const QList<RollArtwork> items = panel->preview()->layout.items;
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[1].widthInches * items[1].heightInches(), artwork(4.001, 3.0).heightInches() * 4.001);
    EXPECT_LT(panel->preview()->layout.lengthInches(), 100.0);
}

TEST_F(BatchCalculation, sizesAPastedTurnAsItWasPasted) {
    open({artwork(30.0, 20.0)});
    paste("16 24");
    calculate();
    ASSERT_TRUE(panel->preview());
    EXPECT_EQ(panel->preview()->layout.items.at(0).scale() * 30.0, 24.0);
}

TEST_F(BatchCalculation, refusesARowWithAnIssueAsLongAsItIsTicked) {
    open({artwork(30.0, 20.0, 1), artwork(4.001, 3.0, 2)});
    panel->calculatePreview();
    EXPECT_FALSE(panel->calculating());
    EXPECT_EQ(issue(), std::string("「art2」：") + noPair);
    panel->setEnabled(id(2), false);
    EXPECT_EQ(issue(), "(none)");
    calculate();
    EXPECT_TRUE(panel->preview());
}

TEST_F(BatchCalculation, refusesTheFirstOfTheRowsThatHaveNoSize) {
    openTwo();
    type(height(2), "");
    type(width(1), "abc");
    panel->calculatePreview();
    EXPECT_EQ(issue(), "“art1”: Enter a valid size greater than zero, in inches.");
    EXPECT_FALSE(panel->calculating());
    const InChinese chinese;
    panel->setEnabled(id(1), false);
    panel->calculatePreview();
    EXPECT_EQ(issue(), "「art2」：请输入大于零的有效尺寸（英寸）。");
}

TEST_F(BatchCalculation, refusesToSizeNoRow) {
    openTwo();
    panel->deselectAll();
    panel->calculatePreview();
    EXPECT_EQ(issue(), "Select the artworks to resize first.");
    EXPECT_FALSE(panel->calculating());
}

TEST_F(BatchCalculation, refusesWhatTheLayoutRefuses) {
    open({artwork(30.0, 20.0, 1), artworkAt(-1.0, 0.0, 3.0, 2.0, 2)});
    panel->setEnabled(id(2), false);
    panel->calculatePreview();
    EXPECT_EQ(issue().substr(0, 12), "“art2”: ");
    EXPECT_FALSE(panel->calculating());
}

TEST_F(BatchCalculation, dropsAnEarlierPreviewWhenItIsRefused) {
    openTwo();
    calculate();
    ASSERT_TRUE(panel->preview());
    paste("bad");
    EXPECT_EQ(panel->preview(), std::nullopt);
    EXPECT_FALSE(panel->canApply());
    EXPECT_NE(issue(), "(none)");
}

TEST_F(BatchCalculation, dropsThePreviewAndTheIssueWhenAnythingOfItChanges) {
    openTwo();
    const std::vector<std::function<void()>> changes{
        [this] { type(width(1), "24"); },
        [this] { panel->setEnabled(id(1), false); },
        [this] { panel->selectAll(); },
        [this] { fill("12"); },
        [this] { paste("24 16\n24 16"); },
        [this] { panel->setAllowRotation(false); },
        [this] {
            panel->deselectAll();
            panel->selectAll();
        },
    };
    for (const auto& change : changes) {
        calculate();
        ASSERT_TRUE(panel->preview());
        change();
        EXPECT_EQ(panel->preview(), std::nullopt);
        EXPECT_FALSE(panel->canApply());
    }
    paste("bad");
    type(width(1), "24");
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchCalculation, keepsThePreviewWhereNothingOfItChanges) {
    openTwo();
    calculate();
    panel->setDimensionFocus(width(1));
    panel->submit(width(1));
    panel->setDimension(BatchDimension::height);
    panel->setCommonSize(QStringLiteral("12"));
    panel->setPastedSizes(QStringLiteral("1 2"));
    panel->setPasteExpanded(true);
    panel->setEnabled(id(1), true);
    panel->setAllowRotation(true);
    EXPECT_TRUE(panel->preview());
}

TEST_F(BatchCalculation, isTheOnlyOneWhileItRuns) {
    openTwo();
    Barrier barrier;
    begin();
    EXPECT_FALSE(panel->canCalculatePreview());
    EXPECT_FALSE(panel->canApply());
    panel->deselectAll();
    panel->calculatePreview(); // would say that nothing is ticked
    EXPECT_EQ(issue(), "(none)");
    end(barrier);
}

TEST_F(BatchCalculation, hasNoResultForSizesThatChangedMeanwhile) {
    openTwo();
    Barrier barrier;
    begin();
    type(width(1), "24");
    EXPECT_TRUE(panel->calculating());
    end(barrier);
    EXPECT_EQ(panel->preview(), std::nullopt);
    EXPECT_EQ(issue(), "(none)");
    calculate();
    EXPECT_TRUE(panel->preview());
}

TEST_F(BatchCalculation, announcesItsBeginningAndItsEnd) {
    openTwo();
    QList<bool> seen;
    QObject::connect(panel.get(), &BatchSizingModel::changed, panel.get(), [&] { seen.append(panel->calculating()); });
    Barrier barrier;
    begin();
    waitFor([&] { return seen.size() == 1; });
    barrier.release();
    waitFor([&] { return seen.size() == 2; });
    EXPECT_EQ(seen, (QList<bool>{true, false}));
    EXPECT_TRUE(panel->preview());
}

TEST_F(BatchCalculation, showsWhyTheArrangementFailed) {
    // One below the other, frames of this length come to where a number has no room for a border.
    QList<RollArtwork> items;
    for (unsigned number = 1; number <= 12; ++number) {
        items.append(artwork(30.0, 3e15, number));
    }
    open(items);
    Barrier barrier;
    begin();
    end(barrier);
    EXPECT_EQ(panel->preview(), std::nullopt);
    EXPECT_EQ(issue(), "Cannot arrange the layout at valid finite coordinates. The canvas was not changed.");
    EXPECT_TRUE(panel->canCalculatePreview());
}

// Closing

TEST_F(BatchCalculation, isDroppedByCancel) {
    openTwo();
    Barrier barrier;
    begin();
    panel->cancel();
    EXPECT_EQ(closings, 1);
    end(barrier);
    EXPECT_EQ(panel->preview(), std::nullopt);
    EXPECT_EQ(issue(), "(none)");
    EXPECT_TRUE(applied.isEmpty());
}

TEST_F(BatchCalculation, mayOutliveItsPanel) {
    openTwo();
    Barrier barrier;
    begin();
    int changes = 0;
    QCoreApplication::processEvents();
    QObject::connect(panel.get(), &BatchSizingModel::changed, qApp, [&] { ++changes; });
    panel.reset();
    barrier.release();
    ASSERT_TRUE(platform::userInitiatedPool().waitForDone(30'000));
    QCoreApplication::processEvents();
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(applied.isEmpty());
}

TEST_F(BatchCalculation, closesWithoutOneToo) {
    openTwo();
    panel->cancel();
    EXPECT_EQ(closings, 1);
    EXPECT_TRUE(applied.isEmpty());
}

TEST_F(BatchCalculation, isAppliedWithTheLayoutThatItStartedFrom) {
    openTwo();
    type(width(1), "24");
    calculate();
    const RollLayout arranged = panel->preview()->layout;
    panel->apply();
    ASSERT_EQ(applied.size(), 1);
    EXPECT_EQ(applied[0].layout, arranged);
    EXPECT_EQ(applied[0].basedOn, panel->original());
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchCalculation, staysOpenWhenTheSessionRefusesIt) {
    openTwo();
    calculate();
    refusal = QStringLiteral("Wait.");
    panel->apply();
    EXPECT_EQ(issue(), "Wait.");
    EXPECT_EQ(closings, 0);
    EXPECT_TRUE(panel->preview());
    refusal.reset();
    panel->apply();
    EXPECT_EQ(applied.size(), 2);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchCalculation, isNotAppliedBeforeItHasEnded) {
    openTwo();
    panel->apply();
    Barrier barrier;
    begin();
    panel->apply();
    EXPECT_TRUE(applied.isEmpty());
    EXPECT_EQ(closings, 0);
    end(barrier);
}

} // namespace
} // namespace orvex
