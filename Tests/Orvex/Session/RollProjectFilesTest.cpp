#include "CanvasTest.h"
#include "InChinese.h"

#include <unistd.h>

namespace orvex {
namespace {

using test::CanvasTest;
using test::TemporaryFolder;

const QString autosavedWords = QStringLiteral("Layout autosaved");

class LayoutFileTest : public CanvasTest {
protected:
    const QString projectPath = folder.path(QStringLiteral("project.json"));
    const QUrl project = QUrl::fromLocalFile(projectPath);

    /// A file with two artworks, the second one selected, and a gap.
    RollWorkspaceFile twoArtworks() {
        RollWorkspaceFile file;
        file.layout.append(artwork(), 0.0);
        file.layout.append(artwork(9.0, 6.0), 0.5);
        file.selection = file.layout.items.last().id;
        file.gapInches = 0.5;
        return file;
    }

    QString writeProject(const RollWorkspaceFile& file) {
        return folder.write(QStringLiteral("project.json"), file.encode());
    }

    /// Leaves this as the canvas of the last run.
    void leave(const RollWorkspaceFile& file) {
        QDir(folder.path()).mkpath(QStringLiteral("data/ORVEX"));
        folder.write(QStringLiteral("data/ORVEX/roll-layout.json"), file.encode());
    }

    void open() {
        model->openLayoutFile(project);
        settle();
    }

    void save() {
        services.chosenPlaces.push_back(project);
        model->saveRollProject();
    }
};

// Autosave

using Autosave = LayoutFileTest;

TEST_F(Autosave, WritesTheWholeWorkspaceAndNothingElse) {
    startWith(2);
    model->setRollGap(0.25);
    EXPECT_EQ(TemporaryFolder::read(autosavePath), workspace().encode());
    EXPECT_EQ(model->rollSaveMessage(), autosavedWords);
    EXPECT_EQ(QDir(stored(QString())).entryList({QStringLiteral("*roll-layout*")}, QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("roll-layout.json")});
    const test::InChinese chinese;
    model->setRollGap(0.5);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("排版已自动保存"));
}

TEST_F(Autosave, ThatFailsIsToldWithoutAnAlertAndStopsNoEdit) {
    startWith(1);
    QDir().mkpath(autosavePath);
    model->rotateSelectedArtwork();
    EXPECT_EQ(item(0).rotationQuarterTurns, 1);
    EXPECT_EQ(undoSteps(), 1);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout not saved: %1: Is a directory").arg(autosavePath));
    const test::InChinese chinese;
    model->rotateSelectedArtwork();
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("排版未保存：%1: Is a directory").arg(autosavePath));
    QDir().rmdir(autosavePath);
    model->rotateSelectedArtwork();
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(Autosave, ThatFailsLeavesTheFileAsItWas) {
    startWith(1);
    model->rotateSelectedArtwork();
    const QByteArray before = TemporaryFolder::read(autosavePath);
    RollLayout broken = model->rollLayout();
    broken.items[0].yInches = -1.0;
    SessionBackdoor::set(model->rollLayout, broken);
    model->persistRollLayout();
    EXPECT_EQ(TemporaryFolder::read(autosavePath), before);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout not saved: Artwork positions must be valid nonnegative "
                                                       "values in inches."));
}

TEST_F(Autosave, WritesThroughALinkToWhereTheUserKeepsTheFile) {
    QDir(folder.path()).mkpath(QStringLiteral("data/ORVEX"));
    const QString kept = folder.write(QStringLiteral("kept.json"), twoArtworks().encode());
    ASSERT_EQ(::symlink(kept.toUtf8().constData(), autosavePath.toUtf8().constData()), 0);
    start();
    model->rotateSelectedArtwork();
    EXPECT_EQ(workspaceIn(kept), workspace());
    EXPECT_TRUE(QFileInfo(autosavePath).isSymLink());
}

TEST_F(Autosave, IsOffInASessionThatOnlyReads) {
    leave(twoArtworks());
    const QByteArray before = TemporaryFolder::read(autosavePath);
    start(SessionAccess::readOnly);
    EXPECT_EQ(model->rollLayout(), workspaceIn(autosavePath).layout);
    model->rotateSelectedArtwork();
    writeProject(RollWorkspaceFile());
    open();
    model->setRollGap(3.0);
    const QByteArray opened = TemporaryFolder::read(projectPath);
    save();
    model->setRollGap(4.0);
    EXPECT_EQ(TemporaryFolder::read(autosavePath), before);
    EXPECT_NE(TemporaryFolder::read(projectPath), opened);
    EXPECT_EQ(workspaceIn(projectPath).gapInches, 3.0) << "saved once, when the user asked for it";
}

// The start

using SavedCanvas = LayoutFileTest;

TEST_F(SavedCanvas, IsThereAgainAtTheNextStart) {
    start();
    import({picture(QStringLiteral("one.png"), 120, 80), picture(QStringLiteral("two.png"), 80, 120)});
    model->selectArtwork(idOf(0));
    model->setRollGap(1.25);
    const RollWorkspaceFile before = workspace();
    ASSERT_EQ(before.sizingDescriptions.size(), 2);
    start();
    EXPECT_EQ(workspace(), before);
    EXPECT_EQ(SessionBackdoor(*model).rollDocumentURL(), QUrl::fromLocalFile(autosavePath));
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layouts save automatically"));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(SavedCanvas, IsShownBeforeItsSourcesAreLookedAt) {
    leave(twoArtworks());
    start();
    QCoreApplication::processEvents();
    EXPECT_FALSE(model->busy());
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
}

TEST_F(SavedCanvas, IsEmptyAndSavedFromNowOnWhereThereIsNone) {
    start();
    EXPECT_FALSE(isAutosaved()) << "nothing to save yet";
    EXPECT_EQ(SessionBackdoor(*model).rollDocumentURL(), QUrl::fromLocalFile(autosavePath));
    model->setRollGap(1.0);
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(SavedCanvas, SelectsTheFirstArtworkWhereTheSelectedOneIsLost) {
    RollWorkspaceFile file = twoArtworks();
    file.selection = QUuid::createUuid();
    leave(file);
    start();
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    file.selection.reset();
    leave(file);
    start();
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    file.layout.items.clear();
    file.selection = QUuid::createUuid();
    leave(file);
    start();
    EXPECT_EQ(model->selectedArtworkID(), std::nullopt);
}

// Saving

using SavingALayout = LayoutFileTest;

TEST_F(SavingALayout, ProposesANameInTheLanguageOfTheProgram) {
    startWith(1);
    model->saveRollProject();
    const test::InChinese chinese;
    model->saveRollProject();
    ASSERT_EQ(services.saveRequests.size(), 2);
    EXPECT_EQ(services.saveRequests[0].proposedName, QStringLiteral("orvex-roll-layout.json"));
    EXPECT_EQ(services.saveRequests[1].proposedName, QStringLiteral("orvex-卷布排版.json"));
    EXPECT_EQ(services.saveRequests[0].kind, FileKind::layout);
}

TEST_F(SavingALayout, WritesTheWorkspaceAndTellsOfIt) {
    startWith(2);
    model->setRollGap(0.75);
    save();
    EXPECT_EQ(TemporaryFolder::read(projectPath), workspace().encode());
    EXPECT_EQ(model->message(), QStringLiteral("Layout saved with references to the originals. Print presets manage "
                                               "media and ICC choices."));
    const test::InChinese chinese;
    save();
    EXPECT_EQ(model->message(), QStringLiteral("排版已保存，其中只引用原图文件。介质和 ICC 选择由打印预设管理。"));
}

TEST_F(SavingALayout, LeavesTheAutosaveWhereItIs) {
    startWith(1);
    save();
    const QByteArray saved = TemporaryFolder::read(projectPath);
    model->rotateSelectedArtwork();
    EXPECT_EQ(TemporaryFolder::read(projectPath), saved);
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(SavingALayout, ThatIsCancelledDoesNothing) {
    startWith(1);
    expectNothing([this] { model->saveRollProject(); });
}

TEST_F(SavingALayout, IsLockedWhileTheSessionIsBusy) {
    startWith(1);
    const test::HeldBusy busy(*model);
    services.chosenPlaces.push_back(project);
    expectNothing([this] { model->saveRollProject(); });
    EXPECT_TRUE(services.saveRequests.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(projectPath));
}

TEST_F(SavingALayout, ThatFailsIsToldInAnAlert) {
    startWith(1);
    QDir().mkpath(projectPath);
    expectRefusal([this] { save(); }, projectPath + QStringLiteral(": Is a directory"));
    const QString nowhere = folder.path(QStringLiteral("missing/project.json"));
    services.chosenPlaces.push_back(QUrl::fromLocalFile(nowhere));
    expectRefusal([this] { model->saveRollProject(); },
                  folder.path(QStringLiteral("missing")) + QStringLiteral(": No such file or directory"));
}

TEST_F(SavingALayout, NeverReplacesAnOriginal) {
    start();
    const QUrl original = picture(QStringLiteral("one.png"), 120, 80);
    import({original});
    const QByteArray before = TemporaryFolder::read(original.toLocalFile());
    services.chosenPlaces.push_back(original);
    expectRefusal([this] { model->saveRollProject(); },
                  QStringLiteral("The chosen location cannot overwrite the original of an artwork. Choose a separate "
                                 "file."));
    EXPECT_EQ(TemporaryFolder::read(original.toLocalFile()), before);
}

TEST_F(SavingALayout, HasWhatAKeyboardRunHasMovedSoFar) {
    startWith(1);
    model->nudgeSelectedArtwork(RollNudgeDirection::right, true);
    save();
    EXPECT_EQ(workspaceIn(projectPath).layout.items.first().xInches, 0.1);
    EXPECT_EQ(undoSteps(), 0);
}

// Opening

using OpeningALayout = LayoutFileTest;

TEST_F(OpeningALayout, AsksForAFileByItsTitle) {
    start();
    model->openRollProject();
    const test::InChinese chinese;
    model->openRollProject();
    ASSERT_EQ(services.openRequests.size(), 2);
    EXPECT_EQ(services.openRequests[0].title, QStringLiteral("Open Roll Layout"));
    EXPECT_EQ(services.openRequests[1].title, QStringLiteral("打开卷布排版"));
    EXPECT_EQ(services.openRequests[0].kind, FileKind::layout);
    EXPECT_FALSE(services.openRequests[0].allowsMultiple);
}

TEST_F(OpeningALayout, TakesTheWholeWorkspace) {
    startWith(1);
    const RollWorkspaceFile file = twoArtworks();
    writeProject(file);
    services.chosenFiles.push_back({project});
    model->openRollProject();
    EXPECT_EQ(workspace(), file);
    EXPECT_EQ(model->message(),
              QStringLiteral("Artwork layout opened. Media and ICC choices remain in the current print preset."));
    const test::InChinese chinese;
    open();
    EXPECT_EQ(model->message(), QStringLiteral("已打开作品排版。介质和 ICC 选择仍以当前打印预设为准。"));
}

TEST_F(OpeningALayout, CanBeUndone) {
    startWith(1);
    const RollLayout before = model->rollLayout();
    writeProject(twoArtworks());
    open();
    EXPECT_EQ(undoSteps(), 1);
    EXPECT_EQ(lastStep(), before);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
}

TEST_F(OpeningALayout, ShowsTheCanvasAndAsksForTheConfirmationAnew) {
    startWith(1);
    writeProject(twoArtworks());
    model->setTab(2);
    model->setDriverColorCorrectionDisabledConfirmed(true);
    model->openLayoutFile(project);
    EXPECT_EQ(model->tab(), 0);
    EXPECT_FALSE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
}

TEST_F(OpeningALayout, SavesItToTheAutosaveAndLeavesTheOpenedFileAlone) {
    startWith(1);
    writeProject(twoArtworks());
    const QByteArray opened = TemporaryFolder::read(projectPath);
    open();
    EXPECT_EQ(autosaved(), workspace());
    model->rotateSelectedArtwork();
    EXPECT_EQ(TemporaryFolder::read(projectPath), opened);
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(OpeningALayout, LooksForItsSources) {
    start();
    import({picture(QStringLiteral("one.png"), 120, 80)});
    save();
    start();
    ASSERT_TRUE(model->artworkPreviews().isEmpty());
    open();
    EXPECT_NE(model->metadataFor(item(0)), nullptr);
    EXPECT_EQ(model->image(), model->metadataFor(item(0)));
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
}

TEST_F(OpeningALayout, LooksForItsSourcesEvenAfterThoseOfTheStart) {
    startWith(1);
    model->restoreRollPreviews(false);
    settle();
    writeProject(twoArtworks());
    open();
    EXPECT_EQ(model->rollLoadWarnings().size(), 2);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(OpeningALayout, ThatIsEmptyShowsNoPictureAnyMore) {
    start();
    import({picture(QStringLiteral("one.png"), 120, 80)});
    ASSERT_NE(model->image(), nullptr);
    writeProject(RollWorkspaceFile());
    open();
    EXPECT_EQ(model->selectedArtworkID(), std::nullopt);
    EXPECT_EQ(model->image(), nullptr);
}

TEST_F(OpeningALayout, EndsAKeyboardRunAsAStepOfItsOwn) {
    startWith(1);
    const RollLayout before = model->rollLayout();
    writeProject(twoArtworks());
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    open();
    EXPECT_EQ(undoSteps(), 2);
    model->undoRollEdit();
    settle();
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(OpeningALayout, ThatIsCancelledOnlyEndsAKeyboardRun) {
    startWith(1);
    expectNothing([this] { model->openRollProject(); });
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectOneStepOfRun([this] { model->openRollProject(); });
}

TEST_F(OpeningALayout, IsLockedWhileTheSessionIsBusy) {
    startWith(1);
    writeProject(twoArtworks());
    const test::HeldBusy busy(*model);
    services.chosenFiles.push_back({project});
    expectNothing([this] { model->openRollProject(); });
    EXPECT_TRUE(services.openRequests.isEmpty());
    expectNothing([this] { model->openLayoutFile(project); });
}

} // namespace
} // namespace orvex
