#include "Workspace/ArtworkInspector.h"

#include "InChinese.h"
#include "PanelFixture.h"

namespace orvex {
namespace {

class ArtworkInspectorTest : public test::CanvasPanelTest<ArtworkInspector> {
protected:
    static constexpr std::array buttons{"inspectorRotateButton", "duplicateButton", "fitRollWidthButton",
                                        "referenceSizeButton",   "relinkButton",    "removeArtworkButton"};

    /// Selects an artwork as a click on the board does.
    void select(qsizetype number) {
        model->selectArtwork(idOf(number));
        announced();
    }
};

TEST_F(ArtworkInspectorTest, SaysHowToBeginWithoutASelection) {
    openWith(0);
    EXPECT_TRUE(isShown("inspectorEmptyState"));
    EXPECT_FALSE(isShown("inspectorSelectedState"));
    EXPECT_TRUE(shows("Add Your First Artwork"));
    EXPECT_TRUE(
        shows("Select multiple JPEG, PNG, TIFF, or HEIC files at once. Then select each artwork to set its size "
              "and drag it into place."));
    const test::InChinese chinese;
    open();
    EXPECT_TRUE(shows("添加第一幅作品"));
    EXPECT_TRUE(shows("可一次选择多个 JPEG、PNG、TIFF 或 HEIC 文件，再逐一选中作品，设置尺寸并拖动到位。"));
}

TEST_F(ArtworkInspectorTest, TellsWhatTheSelectedArtworkIs) {
    openWith(1);
    EXPECT_FALSE(isShown("inspectorEmptyState"));
    EXPECT_TRUE(shows("Selected Artwork"));
    EXPECT_EQ(textOf("inspectorTitle"), QStringLiteral("nowhere.png"));
    EXPECT_EQ(textOf("inspectorPixelSize"), QStringLiteral("1200 × 800 pixels"));
    EXPECT_EQ(textOf("artworkWidthField"), QStringLiteral("12.00"));
    EXPECT_EQ(textOf("artworkHeightField"), QStringLiteral("8.00"));
    EXPECT_TRUE(
        shows("Both dimensions use the nearest proportional quarter-inch size. Scaling is still available after "
              "rotation. Press Return or leave the field to apply."));
    EXPECT_EQ(textOf("inspectorReference"), QStringLiteral("Original reference: 12.00 × 8.00 in"));
    EXPECT_EQ(textOf("inspectorSizeSource"), QStringLiteral("Uses the reference size recorded in the file"));
    EXPECT_EQ(textOf("artworkScaleField"), QStringLiteral("100"));
    EXPECT_EQ(textOf("inspectorBorderFrame"), QStringLiteral("Border frame: 17.00 × 13.00 in"));
    EXPECT_EQ(textOf("artworkLeftField"), QStringLiteral("0"));
    EXPECT_EQ(textOf("artworkTopField"), QStringLiteral("0"));
    EXPECT_EQ(textOf("inspectorResolution"), QStringLiteral("Effective resolution: 100 ppi\nRotation: 0°"));
}

TEST_F(ArtworkInspectorTest, NamesItsFieldsAndButtons) {
    openWith(1);
    for (const char* label : {"Artwork width", "Artwork height", "Scale", "From roll left", "From roll start", "%"}) {
        EXPECT_TRUE(shows(label)) << label;
    }
    const QStringList texts{QStringLiteral("Rotate 90°"),       QStringLiteral("Duplicate"),
                            QStringLiteral("Fit Roll Width"),   QStringLiteral("Reference Size"),
                            QStringLiteral("Relink Original…"), QStringLiteral("Remove Artwork")};
    QStringList shown;
    for (const char* button : buttons) {
        shown.append(textOf(button));
    }
    EXPECT_EQ(shown, texts);
}

TEST_F(ArtworkInspectorTest, NamesThemInChinese) {
    const test::InChinese chinese;
    openWith(1);
    for (const char* label : {"所选作品", "作品宽度", "作品高度", "缩放", "距卷布左侧", "距卷布起点", "英寸"}) {
        EXPECT_TRUE(shows(label)) << label;
    }
    const QStringList texts{QStringLiteral("旋转 90°"), QStringLiteral("复制一份"),      QStringLiteral("适合卷布宽度"),
                            QStringLiteral("参考尺寸"), QStringLiteral("重新关联原图…"), QStringLiteral("移除作品")};
    QStringList shown;
    for (const char* button : buttons) {
        shown.append(textOf(button));
    }
    EXPECT_EQ(shown, texts);
}

TEST_F(ArtworkInspectorTest, TakesTheWidthAndTheHeight) {
    openWith(1);
    expectOneStep([this] { enter("artworkWidthField", QStringLiteral("18")); });
    EXPECT_EQ(item(0).widthInches, 18.0);
    EXPECT_EQ(textOf("artworkHeightField"), QStringLiteral("12.00"));
    EXPECT_EQ(textOf("artworkScaleField"), QStringLiteral("150"));
    expectOneStep([this] { enter("artworkHeightField", QStringLiteral("16")); });
    EXPECT_EQ(item(0).widthInches, 24.0);
    EXPECT_EQ(textOf("artworkWidthField"), QStringLiteral("24.00"));
}

TEST_F(ArtworkInspectorTest, TakesTheScaleInPercent) {
    openWith(1);
    expectOneStep([this] { enter("artworkScaleField", QStringLiteral("50")); });
    EXPECT_EQ(item(0).widthInches, 6.0);
    EXPECT_EQ(textOf("inspectorResolution"), QStringLiteral("Effective resolution: 200 ppi\nRotation: 0°"));
}

TEST_F(ArtworkInspectorTest, TakesThePosition) {
    openWith(2);
    select(0);
    expectOneStep([this] { enter("artworkLeftField", QStringLiteral("40.125")); });
    EXPECT_EQ(item(0).xInches, 40.125);
    EXPECT_EQ(item(0).yInches, 0.0);
    EXPECT_EQ(textOf("artworkLeftField"), QStringLiteral("40.125"));
    RollLayout longer = model->rollLayout();
    longer.items[1].yInches = 30.0;
    put(model->rollLayout, longer);
    expectOneStep([this] { enter("artworkTopField", QStringLiteral("7")); });
    EXPECT_EQ(item(0).xInches, 40.125);
    EXPECT_EQ(item(0).yInches, 7.0);
}

TEST_F(ArtworkInspectorTest, GivesWhatWasTypedToTheArtworkThatItWasTypedFor) {
    openWith(2);
    select(0);
    type("artworkWidthField", QStringLiteral("18"));
    select(1);
    EXPECT_EQ(item(0).widthInches, 18.0);
    EXPECT_EQ(item(1).widthInches, 12.0);
    EXPECT_EQ(textOf("artworkWidthField"), QStringLiteral("12.00"));
}

TEST_F(ArtworkInspectorTest, DropsWhatWasTypedForAnArtworkThatIsGone) {
    openWith(1);
    type("artworkWidthField", QStringLiteral("18"));
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    put(model->rollLayout, RollLayout());
    EXPECT_TRUE(isShown("inspectorEmptyState"));
    EXPECT_EQ(model->rollLayout(), RollLayout());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(ArtworkInspectorTest, KeepsWhatIsTypedWhileOtherThingsChange) {
    openWith(2);
    select(0);
    type("artworkWidthField", QStringLiteral("18"));
    RollLayout moved = model->rollLayout();
    moved.items[0].xInches = 1.0;
    put(model->rollLayout, moved);
    EXPECT_EQ(textOf("artworkWidthField"), QStringLiteral("18"));
    EXPECT_EQ(textOf("artworkLeftField"), QStringLiteral("1"));
}

TEST_F(ArtworkInspectorTest, FollowsTheSelectionAndItsChanges) {
    openWith(2);
    put(model->selectedArtworkID, std::optional(idOf(1)));
    EXPECT_EQ(textOf("artworkLeftField"), QStringLiteral("17"));
    model->rotateSelectedArtwork();
    announced();
    EXPECT_EQ(textOf("artworkWidthField"), QStringLiteral("8.00"));
    EXPECT_EQ(textOf("inspectorBorderFrame"), QStringLiteral("Border frame: 13.00 × 17.00 in"));
    EXPECT_EQ(textOf("inspectorResolution"), QStringLiteral("Effective resolution: 100 ppi\nRotation: 90°"));
}

TEST_F(ArtworkInspectorTest, WarnsOfASourceThatIsNotThere) {
    openWith(1);
    EXPECT_TRUE(isShown("inspectorMissingOriginal"));
    EXPECT_EQ(textOf("inspectorMissingOriginal"),
              QStringLiteral("The original file is unavailable. Relink it before exporting."));
    import({picture(QStringLiteral("a.png"), 120, 80)});
    select(1);
    EXPECT_FALSE(isShown("inspectorMissingOriginal"));
    EXPECT_EQ(textOf("inspectorSizeSource"), QStringLiteral("File metadata: 10.01 ppi"));
}

TEST_F(ArtworkInspectorTest, DisablesItsButtonsWhileTheSessionIsBusy) {
    openWith(1);
    put(model->busy, true);
    for (const char* button : buttons) {
        EXPECT_FALSE(isEnabled(button)) << button;
    }
    put(model->busy, false);
    for (const char* button : buttons) {
        EXPECT_TRUE(isEnabled(button)) << button;
    }
}

TEST_F(ArtworkInspectorTest, ChangesTheArtworkByItsButtons) {
    openWith(1);
    expectOneStep([this] { click("inspectorRotateButton"); });
    EXPECT_EQ(item(0).rotationQuarterTurns, 1);
    expectOneStep([this] { click("fitRollWidthButton"); });
    EXPECT_EQ(item(0).widthInches, 55.0);
    expectOneStep([this] { click("referenceSizeButton"); });
    EXPECT_EQ(item(0).widthInches, 8.0);
    expectOneStep([this] { click("duplicateButton"); });
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

TEST_F(ArtworkInspectorTest, AsksForTheOriginalToRelink) {
    openWith(1);
    click("relinkButton");
    EXPECT_EQ(services.openRequests.size(), 1);
}

TEST_F(ArtworkInspectorTest, RemovesTheSelectedArtwork) {
    openWith(2);
    const QUuid other = idOf(1);
    select(0);
    click("removeArtworkButton");
    settle();
    ASSERT_EQ(model->rollLayout().items.size(), 1);
    EXPECT_EQ(idOf(0), other);
}

TEST_F(ArtworkInspectorTest, IsNotMadeWiderByALongName) {
    openWith(1);
    const int before = panel->minimumSizeHint().width();
    RollArtwork long_ = item(0);
    long_.title = QString(200, u'W');
    put(model->rollLayout, RollLayout({long_}));
    EXPECT_EQ(textOf("inspectorTitle"), long_.title);
    EXPECT_EQ(panel->minimumSizeHint().width(), before);
}

TEST_F(ArtworkInspectorTest, IsReachedByTabInReadingOrder) {
    openWith(1);
    QStringList expected{QStringLiteral("artworkWidthField"), QStringLiteral("artworkHeightField"),
                         QStringLiteral("artworkScaleField"), QStringLiteral("artworkLeftField"),
                         QStringLiteral("artworkTopField")};
    for (const char* button : buttons) {
        expected.append(QString::fromLatin1(button));
    }
    EXPECT_EQ(tabOrder(), expected);
}

} // namespace
} // namespace orvex
