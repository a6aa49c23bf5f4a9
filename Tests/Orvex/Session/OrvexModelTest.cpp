#include "CanvasTest.h"
#include "InChinese.h"

namespace orvex {
namespace {

using test::CanvasTest;

class FreshSession : public CanvasTest {};

TEST_F(FreshSession, HasAnEmptyCanvasOfSixtyInches) {
    start();
    EXPECT_EQ(model->rollLayout().schemaVersion, 1);
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_EQ(model->rollLayout().widthInches, 60.0);
    EXPECT_EQ(model->selectedArtworkID(), std::nullopt);
    EXPECT_EQ(model->selectedArtwork(), std::nullopt);
    EXPECT_EQ(model->image(), nullptr);
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_TRUE(model->sizingDescriptions().isEmpty());
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    EXPECT_EQ(model->arrangementGap(), 0.0);
}

TEST_F(FreshSession, HasAQuietBoard) {
    start();
    EXPECT_EQ(model->rollZoom(), 1.0);
    EXPECT_TRUE(model->rollSnapToQuarter());
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_FALSE(model->rollRedoAvailable());
    EXPECT_EQ(model->rollKeyboardFocusRequest(), 0);
    EXPECT_FALSE(model->batchSizingPresented());
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_EQ(model->rollGestureFrameLength(), std::nullopt);
    EXPECT_EQ(model->tab(), 0);
    EXPECT_FALSE(model->busy());
    EXPECT_FALSE(model->refreshing());
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(FreshSession, HasAPageAsWideAsTheRollForTheReferencePicture) {
    start();
    const DocumentSettings& settings = model->presetForm().settings;
    EXPECT_EQ(settings.widthMM, 1524.0);
    EXPECT_EQ(settings.marginMM, 63.5);
    EXPECT_EQ(settings.heightMM, ((60.0 - 5.0) * 12000.0 / 18000.0 + 5.0) * 25.4);
    EXPECT_EQ(settings.placement, Placement::fit);
    EXPECT_EQ(settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(settings.mediaNote, QString());
    EXPECT_EQ(settings.driverPageSize, QString());
}

TEST_F(FreshSession, LeavesColoursToTheDriver) {
    start();
    const PresetForm& form = model->presetForm();
    EXPECT_EQ(form.colorWorkflow.mode, ColorManagementMode::driverManaged);
    EXPECT_EQ(form.colorWorkflow.intent, ColorRenderingIntent::relativeColorimetric);
    EXPECT_FALSE(form.colorWorkflow.driverColorCorrectionDisabledConfirmed);
    EXPECT_EQ(form.icc, std::nullopt);
    EXPECT_EQ(form.iccAsset, std::nullopt);
    EXPECT_EQ(form.mediaName, QStringLiteral("HP Professional Matte Canvas · J3E87B"));
    EXPECT_EQ(form.qualityChoice, QString());
    EXPECT_EQ(form.selectedPresetID, QString());
    EXPECT_EQ(model->selectedPreset(), std::nullopt);
}

TEST_F(FreshSession, KnowsNoPrinterYet) {
    start();
    EXPECT_EQ(model->printerReadings(), PrinterReadings());
    EXPECT_EQ(model->printerReadings().selectedPrinter(), std::nullopt);
    EXPECT_EQ(model->printerReadings().qualityChoices(), QStringList());
    EXPECT_TRUE(model->protectionChanges().isEmpty());
}

TEST_F(FreshSession, HasLoadedItsEmptyStores) {
    start();
    EXPECT_TRUE(model->presets().isEmpty());
    EXPECT_TRUE(model->presetsAvailable());
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    EXPECT_TRUE(model->jobs().isEmpty());
    EXPECT_TRUE(model->queueAvailable());
    EXPECT_TRUE(model->observations().isEmpty());
    EXPECT_EQ(model->observationForm().observationResult, PrintObservationResult::purple);
    EXPECT_EQ(model->observationForm().observationSequence, 1);
}

TEST_F(FreshSession, SpeaksEnglish) {
    start();
    EXPECT_EQ(model->message(), QStringLiteral("Import artwork. The Cutting setting already disabled on the printer "
                                               "panel is preserved."));
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layouts save automatically"));
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("Reading existing settings fingerprints…"));
    EXPECT_EQ(model->presetForm().presetName, QStringLiteral("HP Canvas · 60 in · 2.5-inch border"));
    EXPECT_EQ(model->observationForm().observationNote,
              QStringLiteral("Appears after several prints, in varying locations"));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(FreshSession, SpeaksChinese) {
    const test::InChinese chinese;
    start();
    EXPECT_EQ(model->message(), QStringLiteral("请导入作品。打印机面板上已停用的裁切设置会原样保留。"));
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("排版会自动保存"));
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("正在读取现有设置指纹…"));
    EXPECT_EQ(model->presetForm().presetName, QStringLiteral("HP 画布 · 60 英寸 · 白边 2.5 英寸"));
    EXPECT_EQ(model->observationForm().observationNote, QStringLiteral("连续打印数张后出现，位置不固定"));
}

TEST_F(FreshSession, AnnouncesItsFieldsOnceForEachTurn) {
    start();
    QCoreApplication::processEvents();
    int announced = 0;
    QObject::connect(model.get(), &OrvexModel::changed, model.get(), [&announced] { ++announced; });
    model->zoomIn();
    model->zoomIn();
    model->setTab(2);
    EXPECT_EQ(announced, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(announced, 1);
    model->setTab(2);
    model->setRollSnapToQuarter(true);
    QCoreApplication::processEvents();
    EXPECT_EQ(announced, 1);
}

class SessionTab : public CanvasTest {
protected:
    SessionTab() { startWith(1); }

    void nudge() { model->nudgeSelectedArtwork(RollNudgeDirection::right, false); }
};

TEST_F(SessionTab, EndsAKeyboardRunWhenItChanges) {
    nudge();
    expectOneStepOfRun([this] { model->setTab(1); });
    EXPECT_EQ(model->tab(), 1);
}

TEST_F(SessionTab, LeavesAKeyboardRunOpenWhenItIsWrittenUnchanged) {
    nudge();
    expectNothing([this] { model->setTab(0); });
    nudge();
    model->endKeyboardNudge();
    EXPECT_EQ(undoSteps(), 1);
}

TEST_F(SessionTab, IsStoredWhileTheSessionIsBusy) {
    const test::HeldBusy busy(*model);
    model->setTab(3);
    EXPECT_EQ(model->tab(), 3);
}

class KeyboardRun : public CanvasTest {
protected:
    KeyboardRun() { startWith(1); }
};

TEST_F(KeyboardRun, EndsWhenTheBatchPanelOpens) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectOneStepOfRun([this] { model->setBatchSizingPresented(true); });
    EXPECT_TRUE(model->batchSizingPresented());
}

TEST_F(KeyboardRun, GoesOnWhenTheBatchPanelIsToldToClose) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectNothing([this] { model->setBatchSizingPresented(false); });
}

TEST_F(KeyboardRun, EndsWhenBackgroundWorkBegins) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    const test::Barrier barrier;
    expectOneStepOfRun([this] { model->restoreRollPreviews(true); });
    EXPECT_TRUE(model->busy());
}

class Alert : public CanvasTest {};

TEST_F(Alert, StaysUntilItIsDismissedWhateverSucceedsMeanwhile) {
    startWith(1);
    model->setRollGap(-1.0);
    const auto words = model->errorMessage();
    ASSERT_TRUE(words);
    model->rotateSelectedArtwork();
    model->setRollGap(1.0);
    model->arrangeRoll(true);
    EXPECT_EQ(model->errorMessage(), words);
    model->dismissError();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

class Closing : public CanvasTest {};

TEST_F(Closing, WaitsForTheWorkInTheBackgroundAndKeepsWhatItHasDone) {
    startWith(2);
    {
        test::Barrier barrier;
        model->changeRollWidth(40.0);
        ASSERT_TRUE(model->busy());
    }
    model.reset();
    EXPECT_EQ(autosaved().layout.widthInches, 40.0);
}

TEST_F(Closing, PassesOverWhatWasPostponed) {
    startWith(1);
    model->rotateSelectedArtwork();
    model->undoRollEdit();
    model.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(autosaved().layout.items.first().rotationQuarterTurns, 0);
}

} // namespace
} // namespace orvex
