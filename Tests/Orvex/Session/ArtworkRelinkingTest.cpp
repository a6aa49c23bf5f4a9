#include "BackgroundSteps.h"
#include "InChinese.h"
#include "Json/JsonWriter.h"
#include "SessionFixture.h"

namespace orvex {
namespace {

class Relink : public test::SessionTest {
protected:
    Relink() {
        start();
        import({a});
        model->rotateSelectedArtwork();
        model->moveArtwork(item().id, 3.0, 4.0);
    }

    QUrl a = picture(QStringLiteral("a.png"), 120, 80);
    QUrl larger = picture(QStringLiteral("larger.png"), 240, 160);

    [[nodiscard]] const RollArtwork& item() const { return model->rollLayout().items.first(); }

    void relink(const QUrl& file) {
        services.chosenFiles = {{file}};
        model->relinkSelectedArtwork();
        settle();
    }
};

TEST_F(Relink, AsksForOnePicture) {
    model->relinkSelectedArtwork();
    const test::InChinese chinese;
    model->relinkSelectedArtwork();
    ASSERT_EQ(services.openRequests.size(), 2);
    EXPECT_EQ(services.openRequests.first().title, u"Relink a.png");
    EXPECT_EQ(services.openRequests.first().kind, FileKind::image);
    EXPECT_FALSE(services.openRequests.first().allowsMultiple);
    EXPECT_EQ(services.openRequests.last().title, u"重新关联 a.png");
    EXPECT_FALSE(model->busy()) << "both dialogs were cancelled";
}

TEST_F(Relink, NeedsASelectedArtwork) {
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    model->relinkSelectedArtwork();
    EXPECT_TRUE(services.openRequests.isEmpty());
}

TEST_F(Relink, WaitsForOtherWork) {
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    model->relinkSelectedArtwork();
    EXPECT_TRUE(services.openRequests.isEmpty());
}

TEST_F(Relink, KeepsTheSizeAndPlaceAndTakesTheRestOfTheFile) {
    const RollArtwork before = item();
    SessionBackdoor::set(model->rollLoadWarnings, QHash<QUuid, QString>{{before.id, QStringLiteral("changed")}});
    model->setDriverColorCorrectionDisabledConfirmed(true);
    const RollLayout layout = model->rollLayout();
    relink(larger);
    RollArtwork expected = before;
    expected.sourceURL = larger;
    expected.title = QStringLiteral("larger.png");
    expected.pixelWidth = 240;
    expected.pixelHeight = 160;
    const ImageMetadata metadata = ImageMetadata::load(larger);
    expected.originalWidthInches = metadata.originalWidthInches;
    expected.originalHeightInches = metadata.originalHeightInches;
    EXPECT_EQ(item(), expected);
    EXPECT_EQ(item().widthInches, 8.0);
    EXPECT_EQ(model->metadataFor(item())->url, larger);
    EXPECT_EQ(model->image(), model->metadataFor(item()));
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    EXPECT_FALSE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))).contains("larger.png"));
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), layout) << "one step";
}

TEST_F(Relink, ShowsWhatItDoes) {
    services.chosenFiles = {{larger}};
    const QString message = model->message();
    const test::Barrier barrier;
    model->relinkSelectedArtwork();
    EXPECT_TRUE(model->busy());
    EXPECT_EQ(model->progress(), (SessionProgress{.done = 0, .total = 1, .what = QStringLiteral("Reading originals")}));
    EXPECT_EQ(model->message(), message);
}

TEST_F(Relink, OfAFileThatCannotBeReadIsToldAndChangesNothing) {
    const RollLayout before = model->rollLayout();
    const auto previews = model->artworkPreviews();
    relink(QUrl::fromLocalFile(folder.path(QStringLiteral("gone.png"))));
    EXPECT_EQ(model->errorMessage(), u"Cannot read the image or valid dimensions. Check file integrity and whether the "
                                     u"system supports this JPEG, PNG, TIFF or HEIC file.");
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(model->artworkPreviews(), previews);
    EXPECT_FALSE(model->busy());
}

TEST_F(Relink, RefusesAFileWithWhichTheArtworkWouldBeInvalid) {
    RollLayout layout = model->rollLayout();
    layout.items.first().xInches = 59.0;
    SessionBackdoor::set(model->rollLayout, layout);
    const auto previews = model->artworkPreviews();
    RollArtwork replacement = layout.items.first();
    const auto expected = replacement.validationError(60.0);
    ASSERT_TRUE(expected);
    relink(larger);
    EXPECT_EQ(model->errorMessage(), expected);
    EXPECT_EQ(model->rollLayout(), layout);
    EXPECT_EQ(model->artworkPreviews(), previews);
    EXPECT_EQ(model->image()->url, a);
}

TEST_F(Relink, ReplacesNothingIfTheArtworkIsGone) {
    services.chosenFiles = {{larger}};
    {
        const test::Barrier barrier;
        model->relinkSelectedArtwork();
        SessionBackdoor::set(model->rollLayout, RollLayout());
    }
    settle();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_FALSE(model->busy());
}

TEST_F(Relink, EndsWithTheSession) {
    services.chosenFiles = {{larger}};
    test::Barrier barrier;
    model->relinkSelectedArtwork();
    test::closeWhileHeld(model, barrier);
    start();
    EXPECT_EQ(item().sourceURL, a);
}

TEST_F(Relink, LetsARollGoThatWasStopped) {
    ASSERT_TRUE(QFile::remove(a.toLocalFile()));
    start();
    model->restoreRollPreviews(false);
    settle();
    EXPECT_EQ(model->rollExportIssue(), u"Cannot read the original: a.png. Relink the file.");
    relink(larger);
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
    EXPECT_EQ(model->rollLoadWarnings(), (QHash<QUuid, QString>()));
}

// Copies of an artwork

class Duplicate : public Relink {};

TEST_F(Duplicate, HasEverythingOfTheArtworkButItsId) {
    const RollArtwork original = item();
    model->duplicateSelectedArtwork();
    ASSERT_EQ(model->rollLayout().items.size(), 2);
    const RollArtwork copy = model->rollLayout().items.last();
    EXPECT_NE(copy.id, original.id);
    RollArtwork expected = original;
    expected.id = copy.id;
    expected.xInches = copy.xInches;
    expected.yInches = copy.yInches;
    EXPECT_EQ(copy, expected);
    EXPECT_EQ(item(), original) << "which is not moved";
    EXPECT_EQ(model->rollLayout().exportValidationError(), std::nullopt);
    EXPECT_EQ(model->metadataFor(copy), model->metadataFor(original));
    EXPECT_EQ(model->sizingDescriptions().value(platform::uuidText(copy.id)),
              model->sizingDescriptions().value(platform::uuidText(original.id)));
    EXPECT_EQ(model->sizingDescriptions().size(), 2);
    EXPECT_EQ(model->selectedArtworkID(), copy.id);
    EXPECT_EQ(model->image(), model->metadataFor(copy));
    EXPECT_TRUE(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json")))
                    .contains(platform::uuidText(copy.id).toUtf8()));
}

TEST_F(Duplicate, IsOneStepOfUndo) {
    const RollLayout before = model->rollLayout();
    model->duplicateSelectedArtwork();
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(Duplicate, HasNoDescriptionIfTheArtworkHasNone) {
    SessionBackdoor::set(model->sizingDescriptions, QMap<QString, QString>());
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->rollLayout().items.size(), 2);
    EXPECT_TRUE(model->sizingDescriptions().isEmpty());
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
}

TEST_F(Duplicate, KeepsTheGapThatIsSet) {
    model->moveArtwork(item().id, 0.0, 0.0);
    model->setRollGap(1.0);
    const double right = item().trimRectInches().maxX();
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->rollLayout().items.last().xInches, right + 1.0);
}

TEST_F(Duplicate, OfAnArtworkThatCannotBePlacedIsToldAndChangesNothing) {
    RollLayout layout = model->rollLayout();
    layout.schemaVersion = 2;
    SessionBackdoor::set(model->rollLayout, layout);
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->errorMessage(), layout.versionValidationError());
    EXPECT_EQ(model->rollLayout(), layout);
    EXPECT_EQ(model->selectedArtworkID(), item().id);
}

TEST_F(Duplicate, NeedsASelectedArtworkAndNoOtherWork) {
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->rollLayout().items.size(), 1);
    model->selectArtwork(item().id);
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->rollLayout().items.size(), 1);
}

TEST_F(Duplicate, EndsARunOfTheKeyboard) {
    const RollLayout before = model->rollLayout();
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    const RollLayout nudged = model->rollLayout();
    ASSERT_FALSE(nudged == before);
    model->duplicateSelectedArtwork();
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), nudged);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

} // namespace
} // namespace orvex
