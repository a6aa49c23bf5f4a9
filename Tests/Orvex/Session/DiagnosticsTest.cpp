#include "InChinese.h"
#include "SessionFixture.h"
#include "Stores/PrintJournal.h"

namespace orvex {
namespace {

class ExportedDiagnostics : public test::SessionTest {
protected:
    ExportedDiagnostics() { start(); }

    const QString place = folder.path(QStringLiteral("report.txt"));

    void chooseAndExport() {
        services.chosenPlaces.push_back(QUrl::fromLocalFile(place));
        model->exportDiagnostics();
    }
};

TEST_F(ExportedDiagnostics, AreWrittenToTheChosenPlace) {
    chooseAndExport();
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests[0].proposedName, QStringLiteral("orvex-diagnostics.txt"));
    EXPECT_EQ(services.saveRequests[0].kind, FileKind::plainText);
    EXPECT_EQ(test::TemporaryFolder::read(place), model->diagnosticText().toUtf8());
    EXPECT_TRUE(model->diagnosticText().contains(QStringLiteral("2026-05-09 06:13:20 +0000"))); // the desktop's clock
    EXPECT_EQ(model->message(),
              QStringLiteral("Diagnostics were saved. They contain device URIs and paths; review before sharing."));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(ExportedDiagnostics, AreWrittenInChinese) {
    const test::InChinese chinese;
    chooseAndExport();
    EXPECT_EQ(services.saveRequests[0].proposedName, QStringLiteral("orvex-diagnostics.txt"));
    EXPECT_TRUE(test::TemporaryFolder::read(place).contains("\n队列：未选择\n"));
    EXPECT_EQ(model->message(), QStringLiteral("诊断信息已保存，其中包含设备 URI 和路径，分享前请先检查。"));
}

TEST_F(ExportedDiagnostics, AreNotWrittenIfTheDialogIsCancelled) {
    const QString message = model->message();
    model->exportDiagnostics();
    EXPECT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(ExportedDiagnostics, TellWhyTheyCouldNotBeWritten) {
    QDir().mkpath(place);
    const QString message = model->message();
    chooseAndExport();
    ASSERT_TRUE(model->errorMessage());
    EXPECT_EQ(model->message(), message);
}

TEST_F(ExportedDiagnostics, ReplaceNoOriginal) {
    const QUrl original = picture(QStringLiteral("a.png"), 120, 80);
    import({original});
    const QByteArray before = test::TemporaryFolder::read(original.toLocalFile());
    services.chosenPlaces.push_back(original);
    model->exportDiagnostics();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(test::TemporaryFolder::read(original.toLocalFile()), before);
}

TEST_F(ExportedDiagnostics, AreWrittenWhileTheSessionIsBusy) {
    SessionBackdoor::set(model->busy, true);
    chooseAndExport();
    EXPECT_TRUE(QFile::exists(place));
    SessionBackdoor::set(model->busy, false);
}

// The journal

class Journal : public test::SessionTest {
protected:
    Journal() { start(); }

    void fillIn(PrintObservationResult result, qint64 sequence, const QString& note) {
        model->setObservationForm(
            {.observationResult = result, .observationSequence = sequence, .observationNote = note});
    }
};

TEST_F(Journal, RecordsTheFormAndTheConditions) {
    import({picture(QStringLiteral("a.png"), 120, 80)});
    model->setMediaName(QStringLiteral("Canvas M"));
    model->setPresetName(QStringLiteral("Matte"));
    PresetForm form = model->presetForm();
    SessionBackdoor::set(model->presetForm, form);
    model->savePreset(true);
    form = model->presetForm();
    form.colorWorkflow.mode = ColorManagementMode::appManaged;
    form.iccAsset = ManagedICCAsset{.filename = QStringLiteral("abc.icc"),
                                    .sha256 = QStringLiteral("abc"),
                                    .displayName = QStringLiteral("Matte.icc")};
    SessionBackdoor::set(model->presetForm, form);
    fillIn(PrintObservationResult::other, 7, QStringLiteral("streaks"));
    model->recordObservation();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    ASSERT_EQ(model->observations().size(), 1);
    PrintObservation expected{.id = model->observations()[0].id,
                              .createdAt = services.clock,
                              .sequenceNumber = 7,
                              .result = PrintObservationResult::other,
                              .note = QStringLiteral("streaks"),
                              .artwork = QStringLiteral("a.png"),
                              .media = QStringLiteral("Canvas M"),
                              .preset = QStringLiteral("Matte"),
                              .colorMode = QStringLiteral("Convert in the app to the selected ICC"),
                              .iccSHA256 = QStringLiteral("abc")};
    EXPECT_EQ(model->observations()[0], expected);
    EXPECT_EQ(PrintJournalStore().load(), QList{expected});
    EXPECT_EQ(model->message(), QStringLiteral("The physical observation was recorded. Local queuing or an idle status "
                                               "does not count as a successful print."));
}

TEST_F(Journal, StoresTheSameWordsForNothingInBothLanguages) {
    model->recordObservation();
    const test::InChinese chinese;
    model->recordObservation();
    ASSERT_EQ(model->observations().size(), 2);
    for (const PrintObservation& observation : model->observations()) {
        EXPECT_EQ(observation.artwork, QStringLiteral("未指定作品"));
        EXPECT_EQ(observation.preset, QStringLiteral("自定义"));
        EXPECT_EQ(observation.iccSHA256, std::nullopt);
    }
    EXPECT_EQ(model->observations()[1].colorMode, QStringLiteral("Let the Canon driver manage color"));
    EXPECT_EQ(model->observations()[0].colorMode, QStringLiteral("由佳能驱动管理颜色"));
    EXPECT_EQ(model->message(), QStringLiteral("已记录实物观察。本地排队或空闲状态不代表打印成功。"));
}

TEST_F(Journal, CountsOnForTheNextPrintAndKeepsTheRestOfTheForm) {
    fillIn(PrintObservationResult::normal, 3, QStringLiteral("fine"));
    model->recordObservation();
    model->recordObservation();
    ASSERT_EQ(model->observations().size(), 2);
    EXPECT_EQ(model->observations()[0].sequenceNumber, 4);
    EXPECT_EQ(model->observations()[1].sequenceNumber, 3);
    EXPECT_NE(model->observations()[0].id, model->observations()[1].id);
    EXPECT_EQ(model->observationForm(), (ObservationForm{.observationResult = PrintObservationResult::normal,
                                                         .observationSequence = 5,
                                                         .observationNote = QStringLiteral("fine")}));
}

TEST_F(Journal, DoesNotCountARecordThatCouldNotBeWritten) {
    fillIn(PrintObservationResult::normal, 0, QStringLiteral("fine"));
    const QString message = model->message();
    model->recordObservation();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("Enter the physical print sequence number."));
    EXPECT_TRUE(model->observations().isEmpty());
    EXPECT_EQ(model->observationForm().observationSequence, 0);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Journal, SaysThatItIsUnavailable) {
    folder.write(QStringLiteral("data/ORVEX/print-observations.json"), "{");
    start();
    const QString message = model->message();
    const ObservationForm form = model->observationForm();
    model->recordObservation();
    EXPECT_EQ(model->errorMessage(),
              QStringLiteral("Observation storage is unavailable. Existing records were not overwritten."));
    EXPECT_EQ(model->observationForm(), form);
    EXPECT_EQ(model->message(), message);
    const test::InChinese chinese;
    model->recordObservation();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("实物观察记录不可用，现有记录未被覆盖。"));
}

TEST_F(Journal, IsWrittenWhileTheSessionIsBusy) {
    SessionBackdoor::set(model->busy, true);
    model->recordObservation();
    EXPECT_EQ(model->observations().size(), 1);
    SessionBackdoor::set(model->busy, false);
}

} // namespace
} // namespace orvex
