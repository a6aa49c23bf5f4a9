#include "InChinese.h"
#include "SessionFixture.h"

namespace orvex {
namespace {

class Removal : public test::SessionTest {
protected:
    Removal() { start(); }

    [[nodiscard]] QUuid id(qsizetype index) const { return model->rollLayout().items.at(index).id; }

    [[nodiscard]] static RollArtwork named(const QString& title) {
        RollArtwork result = artwork();
        result.title = title;
        return result;
    }

    void placeThree() {
        place({named(QStringLiteral("one")), named(QStringLiteral("two")), named(QStringLiteral("three"))});
    }

    void removeAndSettle(const QUuid& artwork) {
        model->removeArtwork(artwork);
        settle();
    }
};

TEST_F(Removal, RepacksTheOtherArtworksInOneStep) {
    placeThree();
    const RollLayout before = model->rollLayout();
    RollLayout expected = before;
    ASSERT_TRUE(expected.removeAndOptimize(id(0), true, 0.0));
    const QUuid selected = id(2);
    removeAndSettle(id(0));
    EXPECT_EQ(model->rollLayout(), expected);
    EXPECT_EQ(model->rollLayout().items.size(), 2);
    EXPECT_EQ(model->selectedArtworkID(), selected) << "which is still there";
    EXPECT_EQ(model->message(), QStringLiteral("Removed one and repacked the remaining 2 artworks. Roll length: %1 in. "
                                               "Undo in one step.")
                                    .arg(model->rollLengthLabel()));
    EXPECT_EQ(model->rollLengthLabel(), u"13");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))).contains("three"));
    EXPECT_FALSE(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))).contains("\"one\""));
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(Removal, TurnsArtworksWhereThatSavesCanvas) {
    place({artwork(), artwork(54.0, 10.0), artwork(10.0, 54.0)});
    RollLayout layout = model->rollLayout();
    layout.widthInches = 60.0;
    SessionBackdoor::set(model->rollLayout, layout);
    RollLayout turned = layout;
    RollLayout unturned = layout;
    static_cast<void>(turned.removeAndOptimize(id(0), true, 0.0));
    static_cast<void>(unturned.removeAndOptimize(id(0), false, 0.0));
    ASSERT_FALSE(turned == unturned);
    removeAndSettle(id(0));
    EXPECT_EQ(model->rollLayout(), turned);
}

TEST_F(Removal, KeepsTheGapThatIsSet) {
    placeThree();
    model->setRollGap(2.0);
    RollLayout expected = model->rollLayout();
    static_cast<void>(expected.removeAndOptimize(id(1), true, 2.0));
    removeAndSettle(id(1));
    EXPECT_EQ(model->rollLayout(), expected);
    EXPECT_TRUE(RollLayout::hasSpacing(model->rollLayout().items, 2.0));
}

TEST_F(Removal, TellsWhatItDoesMeanwhile) {
    placeThree();
    {
        const test::Barrier barrier;
        model->removeArtwork(id(1));
        EXPECT_TRUE(model->busy());
        EXPECT_EQ(model->message(), u"Removing two and repacking the remaining artworks…");
        model->cancelOperation(); // which is not for this
    }
    settle();
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

TEST_F(Removal, SpeaksChinese) {
    const test::InChinese chinese;
    placeThree();
    {
        const test::Barrier barrier;
        model->removeArtwork(id(1));
        EXPECT_EQ(model->message(), u"正在移除 two，其余作品自动补位…");
    }
    settle();
    EXPECT_EQ(model->message(), u"已移除 two，其余 2 幅作品已自动补位。卷布长度：13 英寸。可一步撤销。");
    removeAndSettle(id(0));
    removeAndSettle(id(0));
    EXPECT_EQ(model->message(), u"已移除 three，画布已空。原文件已保留，可撤销。");
}

// The selection

TEST_F(Removal, OfTheSelectedArtworkSelectsTheOneInItsPlace) {
    placeThree();
    model->selectArtwork(id(1));
    const QUuid next = id(2);
    removeAndSettle(id(1));
    EXPECT_EQ(model->selectedArtworkID(), next);
}

TEST_F(Removal, OfTheSelectedLastArtworkSelectsTheNewLastOne) {
    placeThree();
    const QUuid previous = id(1);
    removeAndSettle(id(2));
    EXPECT_EQ(model->selectedArtworkID(), previous);
}

TEST_F(Removal, OfTheOnlyArtworkLeavesTheCanvasEmptyUntilUndo) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    import({file});
    const RollLayout before = model->rollLayout();
    const SharedImageMetadata preview = model->image();
    removeAndSettle(id(0));
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_EQ(model->selectedArtworkID(), std::nullopt);
    EXPECT_EQ(model->image(), nullptr);
    EXPECT_EQ(model->message(),
              u"Removed a.png. The canvas is empty. The original file is retained. You can undo this.");
    EXPECT_TRUE(QFile::exists(file.toLocalFile()));
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(model->image(), preview) << "which was kept, not read again";
}

// What stops it

TEST_F(Removal, OfAnUnknownArtworkDoesNothing) {
    placeThree();
    const RollLayout before = model->rollLayout();
    const QString message = model->message();
    removeAndSettle(QUuid::createUuid());
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(model->message(), message);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(Removal, WaitsForOtherWorkGesturesAndTheBatchPanel) {
    placeThree();
    const RollLayout before = model->rollLayout();
    const QString message = model->message();
    model->beginArrangeGesture();
    model->removeArtwork(id(0));
    EXPECT_FALSE(model->busy());
    model->endArrangeGesture();
    model->setBatchSizingPresented(true);
    model->removeArtwork(id(0));
    EXPECT_FALSE(model->busy());
    model->setBatchSizingPresented(false);
    EXPECT_EQ(model->message(), message);
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    const QString narrowing = model->message();
    model->removeArtwork(id(0));
    EXPECT_EQ(model->message(), narrowing);
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(Removal, EndsARunOfTheKeyboard) {
    placeThree();
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    const RollLayout nudged = model->rollLayout();
    removeAndSettle(id(0));
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), nudged);
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Removal, IsDroppedIfTheLayoutHasChanged) {
    placeThree();
    RollLayout changed = model->rollLayout();
    changed.items.last().yInches += 1.0;
    {
        const test::Barrier barrier;
        model->removeArtwork(id(0));
        SessionBackdoor::set(model->rollLayout, changed);
    }
    settle();
    EXPECT_EQ(model->rollLayout(), changed);
    EXPECT_EQ(model->errorMessage(), u"The layout has changed. Remove the artwork again.");
    EXPECT_EQ(model->message(), u"Removal and repacking could not be completed. The original layout is retained.");
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_FALSE(QFile::exists(stored(QStringLiteral("roll-layout.json"))));
}

TEST_F(Removal, IsDroppedInChinese) {
    const test::InChinese chinese;
    placeThree();
    {
        const test::Barrier barrier;
        model->removeArtwork(id(0));
        SessionBackdoor::set(model->rollLayout, RollLayout());
    }
    settle();
    EXPECT_EQ(model->errorMessage(), u"排版已发生变化。请重新移除该作品。");
    EXPECT_EQ(model->message(), u"未能完成移除和自动补位，原排版保持不变。");
}

TEST_F(Removal, TellsWhyTheRestCannotBePacked) {
    placeThree();
    RollLayout doubled = model->rollLayout();
    doubled.items[1].id = doubled.items[0].id;
    SessionBackdoor::set(model->rollLayout, doubled);
    removeAndSettle(id(2));
    EXPECT_EQ(model->errorMessage(), u"Duplicate artwork IDs. No artwork was removed and the layout was not changed.");
    EXPECT_EQ(model->message(), u"Removal and repacking could not be completed. The original layout is retained.");
    EXPECT_EQ(model->rollLayout(), doubled);
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_FALSE(model->busy());
}

} // namespace
} // namespace orvex
