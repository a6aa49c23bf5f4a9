#include "InChinese.h"
#include "Json/JsonWriter.h"
#include "PrinterFixtures.h"
#include "SessionFixture.h"
#include "Stores/PrintJournal.h"

namespace orvex {
namespace {

const QString queue = QStringLiteral("W9400");
const QByteArray damaged = "{ damaged";

/// A start after a session in which something of everything was stored.
class Start : public test::SessionTest {
protected:
    Start() {
        readings.discoverQueues = test::findingQueues({queue});
        start();
        model->refresh();
        settle();
        model->savePreset(true);
        model->bindCanvasDefault();
        preset = model->presets().value(0).id;
        model->recordObservation();
        place({artwork()});
        model->persistRollLayout();
        LocalQueueStore().save({job()});
        model.reset();
    }

    QUuid preset;

    static StagedJob job() {
        StagedJob job;
        job.id = QUuid(QStringLiteral("11111111-AAAA-4111-8111-111111111111"));
        job.title = QStringLiteral("Autumn");
        job.printerName = queue;
        job.createdAt = {1.0};
        return job;
    }

    void damage(const QString& name) const { folder.write(QStringLiteral("data/ORVEX/") + name, damaged); }

    [[nodiscard]] QByteArray bytesOf(const QString& name) const { return test::TemporaryFolder::read(stored(name)); }

    [[nodiscard]] QString presetName() const {
        return QStringLiteral("presets/") + preset.toString(QUuid::WithoutBraces) + QStringLiteral(".json");
    }

    /// What was loaded of each kind.
    struct Loaded {
        bool jobs = true;
        bool binding = true;
        bool presets = true;
        bool journal = true;
        bool baseline = true;
        bool canvas = true;
    };

    void expectLoaded(const Loaded& expected) const {
        EXPECT_EQ(model->queueAvailable(), expected.jobs);
        EXPECT_EQ(model->jobs(), expected.jobs ? QList{job()} : QList<StagedJob>());
        EXPECT_EQ(SessionBackdoor(*model).canvasPreference().has_value(), expected.binding);
        EXPECT_EQ(SessionBackdoor(*model).defaultsURL().has_value(), expected.binding);
        EXPECT_EQ(model->presetsAvailable(), expected.presets);
        EXPECT_EQ(model->presets().size(), expected.presets ? 1 : 0);
        EXPECT_EQ(model->canvasDefaultName().has_value(), expected.binding && expected.presets);
        EXPECT_EQ(model->observations().size(), expected.journal ? 1 : 0);
        EXPECT_EQ(SessionBackdoor(*model).hasBaseline(), expected.baseline);
        EXPECT_EQ(model->rollLayout().items.size(), expected.canvas ? 1 : 0);
        EXPECT_EQ(SessionBackdoor(*model).rollDocumentURL().has_value(), expected.canvas);
    }

    void expectError(const QString& beginning) const {
        const QString error = model->errorMessage().value_or(QString());
        EXPECT_TRUE(error.startsWith(beginning) && error.size() > beginning.size()) << error.toStdString();
    }
};

TEST_F(Start, LoadsEverything) {
    start();
    expectLoaded({});
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("HP Canvas · 60 in · 2.5-inch border"));
    EXPECT_EQ(SessionBackdoor(*model).defaultsURL()->toLocalFile(), stored(QStringLiteral("canvas-default.json")));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->presetForm(), PresetForm::initial()); // the default preset comes with its printer
}

TEST_F(Start, GreetsInBothLanguages) {
    start();
    EXPECT_EQ(model->message(), QStringLiteral("Import artwork. The Cutting setting already disabled on the printer "
                                               "panel is preserved."));
    EXPECT_EQ(
        model->observationForm(),
        (ObservationForm{.observationResult = PrintObservationResult::purple,
                         .observationSequence = 1,
                         .observationNote = QStringLiteral("Appears after several prints, in varying locations")}));
    const test::InChinese chinese;
    start();
    EXPECT_EQ(model->message(), QStringLiteral("请导入作品。打印机面板上已停用的裁切设置会原样保留。"));
    EXPECT_EQ(model->observationForm().observationNote, QStringLiteral("连续打印数张后出现，位置不固定"));
}

TEST_F(Start, GoesOnWithoutTheQueue) {
    damage(QStringLiteral("queue.json"));
    start();
    expectLoaded({.jobs = false, .binding = false});
    expectError(QStringLiteral("Could not load the local queue or default binding. Existing files are preserved: "));
    EXPECT_EQ(bytesOf(QStringLiteral("queue.json")), damaged);
    model->dismissError();
    model->bindCanvasDefault();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("Save a local preset and select a printer first."));
    place({artwork()});
    model->stageRollPDF();
    EXPECT_FALSE(model->busy());
    EXPECT_EQ(bytesOf(QStringLiteral("queue.json")), damaged);
}

TEST_F(Start, GoesOnWithoutTheBinding) {
    damage(QStringLiteral("canvas-default.json"));
    start();
    expectLoaded({.binding = false});
    expectError(QStringLiteral("Could not load the local queue or default binding. Existing files are preserved: "));
    model->refresh();
    settle();
    model->choosePreset(platform::uuidText(preset));
    model->bindCanvasDefault();
    model->deletePreset();
    EXPECT_EQ(bytesOf(QStringLiteral("canvas-default.json")), damaged);
    const test::InChinese chinese;
    start();
    expectError(QStringLiteral("无法载入本地待打印队列或默认绑定。现有文件已保留："));
}

TEST_F(Start, GoesOnWithoutPresets) {
    damage(presetName());
    start();
    expectLoaded({.presets = false});
    expectError(QStringLiteral("Could not load presets. Existing files are preserved: "));
    model->refresh();
    settle();
    model->savePreset(true);
    model->deletePreset();
    EXPECT_EQ(bytesOf(presetName()), damaged);
    EXPECT_EQ(model->presetForm().selectedPresetID, QString());
    EXPECT_TRUE(QFile::exists(stored(QStringLiteral("canvas-default.json"))));
    const test::InChinese chinese;
    start();
    expectError(QStringLiteral("无法载入预设。现有文件已保留："));
}

TEST_F(Start, GoesOnWithoutTheJournal) {
    damage(QStringLiteral("print-observations.json"));
    start();
    expectLoaded({.journal = false});
    expectError(QStringLiteral("Could not read physical observation records: "));
    model->recordObservation();
    EXPECT_EQ(model->errorMessage(),
              QStringLiteral("Observation storage is unavailable. Existing records were not overwritten."));
    EXPECT_EQ(bytesOf(QStringLiteral("print-observations.json")), damaged);
    const test::InChinese chinese;
    start();
    expectError(QStringLiteral("无法读取实物观察记录："));
}

TEST_F(Start, GoesOnWithoutTheBaselineAndWithoutAnAlert) {
    damage(QStringLiteral("settings-preservation-baseline.json"));
    start();
    expectLoaded({.baseline = false});
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("The settings baseline could not be read; the original file is preserved."));
    model->refresh();
    settle();
    EXPECT_EQ(bytesOf(QStringLiteral("settings-preservation-baseline.json")), damaged);
}

TEST_F(Start, GoesOnWithoutTheCanvas) {
    damage(QStringLiteral("roll-layout.json"));
    start();
    expectLoaded({.canvas = false});
    ASSERT_TRUE(model->errorMessage());
    place({artwork()});
    model->persistRollLayout();
    EXPECT_EQ(bytesOf(QStringLiteral("roll-layout.json")), damaged);
}

TEST_F(Start, ShowsTheLastOfSeveralFailures) {
    damage(QStringLiteral("queue.json"));
    damage(presetName());
    damage(QStringLiteral("print-observations.json"));
    start();
    expectLoaded({.jobs = false, .binding = false, .presets = false, .journal = false});
    expectError(QStringLiteral("Could not read physical observation records: "));
    QFile::remove(stored(QStringLiteral("print-observations.json")));
    start();
    expectError(QStringLiteral("Could not load presets. Existing files are preserved: "));
    QFile::remove(stored(presetName()));
    start();
    expectError(QStringLiteral("Could not load the local queue or default binding. Existing files are preserved: "));
}

TEST_F(Start, GoesOnWithoutAnything) {
    QDir(stored({})).removeRecursively();
    folder.write(QStringLiteral("data/ORVEX"), "no folder");
    start();
    expectLoaded({false, false, false, false, false, false});
    ASSERT_TRUE(model->errorMessage());
    place({artwork()});
    model->rotateSelectedArtwork();
    EXPECT_TRUE(model->rollUndoAvailable());
    EXPECT_EQ(test::TemporaryFolder::read(folder.path(QStringLiteral("data/ORVEX"))), "no folder");
}

TEST_F(Start, FindsNothingTheFirstTime) {
    QDir(stored({})).removeRecursively();
    start();
    EXPECT_TRUE(model->queueAvailable());
    EXPECT_TRUE(model->presetsAvailable());
    EXPECT_TRUE(SessionBackdoor(*model).defaultsURL());
    EXPECT_EQ(SessionBackdoor(*model).canvasPreference(), std::nullopt);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(model->jobs().isEmpty());
    EXPECT_TRUE(model->observations().isEmpty());
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("Reading existing settings fingerprints…"));
}

// The step to pages in inches

class Migration : public Start {
protected:
    Migration() { QFile::remove(stored(marker)); }

    const QString marker = QStringLiteral("inch-layout-policy-v1.json");
    const QString backup = QStringLiteral("layout-backup-before-inches");
};

TEST_F(Migration, IsMadeOnceAtTheStart) {
    start();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(QFile::exists(stored(marker)));
    EXPECT_EQ(QDir(stored(backup)).entryList(QDir::Files).size(), 1);
    ASSERT_EQ(model->presets().size(), 1);
    EXPECT_EQ(model->canvasDefaultName(), model->presets()[0].name);
}

TEST_F(Migration, ThatFailsLeavesThePresetsUsableAndIsTriedAgain) {
    folder.write(QStringLiteral("data/ORVEX/") + backup, "in the way");
    start();
    expectError(QStringLiteral("Could not load presets. Existing files are preserved: "));
    EXPECT_TRUE(model->presetsAvailable());
    EXPECT_EQ(model->presets().size(), 1);
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    EXPECT_FALSE(QFile::exists(stored(marker)));
    model->setPresetName(QStringLiteral("Another"));
    model->savePreset(true);
    EXPECT_EQ(model->presets().size(), 2);
    QFile::remove(stored(backup));
    start();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(QFile::exists(stored(marker)));
    EXPECT_TRUE(model->canvasDefaultName());
}

TEST_F(Migration, IsNotMadeWithoutABindingThatCanBeRead) {
    damage(QStringLiteral("canvas-default.json"));
    const QByteArray before = bytesOf(presetName());
    start();
    EXPECT_FALSE(QFile::exists(stored(marker)));
    EXPECT_FALSE(QFile::exists(stored(backup)));
    EXPECT_EQ(bytesOf(presetName()), before);
}

TEST_F(Migration, IsNotMadeByASessionThatMayNotWrite) {
    const QByteArray before = bytesOf(presetName());
    start(SessionAccess::readOnly);
    EXPECT_FALSE(QFile::exists(stored(marker)));
    EXPECT_FALSE(QFile::exists(stored(backup)));
    EXPECT_EQ(bytesOf(presetName()), before);
    EXPECT_TRUE(model->canvasDefaultName());
}

TEST_F(Migration, ThatOnlyLacksItsMarkerIsShown) {
    ASSERT_TRUE(QFile::link(stored(QStringLiteral("nowhere/marker")), stored(marker)));
    start();
    expectError(QStringLiteral("Could not load presets. Existing files are preserved: "));
    ASSERT_EQ(model->presets().size(), 1);
    EXPECT_EQ(model->presets(), PresetStore().load()) << "the session has what is stored";
    EXPECT_EQ(model->presets()[0].settings.marginMM, 63.5);
}

} // namespace
} // namespace orvex
