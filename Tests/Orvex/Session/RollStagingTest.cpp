#include "BackgroundSteps.h"
#include "InChinese.h"
#include "Output/NativePrintDocument.h"
#include "PDF/PdfText.h"
#include "RollTest.h"
#include "Sha256.h"

namespace orvex {
namespace {

// Into the local queue

class Staging : public test::RollTest {
protected:
    void stage() {
        model->stageRollPDF();
        settle();
    }

    [[nodiscard]] QString pdfPath() const { return stored(model->jobs().first().pdfFileName()); }

    void expectNothingStaged() const {
        EXPECT_TRUE(model->jobs().isEmpty());
        EXPECT_EQ(pdfNames(), QStringList());
        EXPECT_EQ(model->tab(), 0);
        EXPECT_FALSE(model->busy());
    }
};

TEST_F(Staging, MakesAPdfOfTheRollsSizeAndItsRecord) {
    importTwo();
    PrinterReadings printers = model->printerReadings();
    printers.selectedPrinterName = QStringLiteral("canvas");
    SessionBackdoor::set(model->printerReadings, printers);
    model->setMediaName(QStringLiteral("Matte canvas"));
    model->setPresetName(QStringLiteral("Gallery"));
    model->savePreset(true);
    model->setQualityChoice(QStringLiteral("600dpi"));
    const RollLayout layout = model->rollLayout();
    stage();
    ASSERT_EQ(model->errorMessage(), std::nullopt);
    ASSERT_EQ(model->jobs().size(), 1);
    const StagedJob job = model->jobs().first();
    EXPECT_FALSE(job.id.isNull());
    EXPECT_EQ(job.title, u"Roll Layout · 2 Artworks");
    EXPECT_EQ(job.printerName, u"canvas");
    EXPECT_EQ(job.createdAt, services.clock);
    EXPECT_EQ(job.settings, (DocumentSettings{.widthMM = 60.0 * 25.4,
                                              .heightMM = 13.0 * 25.4,
                                              .marginMM = 63.5,
                                              .placement = Placement::fit,
                                              .paperSource = QStringLiteral("卷纸"),
                                              .mediaNote = {},
                                              .driverPageSize = {}}));
    EXPECT_EQ(job.inspectedICC, std::nullopt);
    EXPECT_EQ(job.colorWorkflow, ColorWorkflow());
    EXPECT_EQ(job.outputICCSHA256, std::nullopt);
    EXPECT_EQ(job.driverQuality,
              (DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("600dpi")}));
    EXPECT_EQ(job.presetName, u"Gallery");
    EXPECT_EQ(job.canvasMediaName, u"Matte canvas");
    EXPECT_EQ(job.rollLayout, layout);
    EXPECT_EQ(LocalQueueStore(QUrl::fromLocalFile(stored({}))).load(), QList{job});
    EXPECT_EQ(pdfNames(), QStringList{job.pdfFileName()});
    const auto pdf = NativePrintFactory::openDocument(QUrl::fromLocalFile(pdfPath()), 60.0, 13.0);
    EXPECT_EQ(pdf.geometry.widthInches(), 60.0);
    EXPECT_EQ(pdf.geometry.heightInches(), 13.0);
    EXPECT_TRUE(test::TemporaryFolder::read(pdfPath()).contains(
        "/Title " + platform::pdfTextString(QStringLiteral("orvex · Roll Layout"))));
}

TEST_F(Staging, KeepsWhatWasDrawnOfEachArtwork) {
    importTwo();
    stage();
    const QList<RollSourceAudit> audits = model->jobs().first().rollSourceAudits.value();
    ASSERT_EQ(audits.size(), 2);
    const QString sha = platform::sha256Hex(test::bytesOf(samples::sRgbProfile()));
    for (qsizetype index = 0; index < 2; ++index) {
        EXPECT_EQ(audits[index], (RollSourceAudit{.artworkID = item(index).id,
                                                  .sourceURL = item(index).sourceURL,
                                                  .sourceProfileName = model->metadataFor(item(index))->profileName,
                                                  .sourceProfileSHA256 = sha,
                                                  .pixelWidth = item(index).pixelWidth,
                                                  .pixelHeight = item(index).pixelHeight,
                                                  .renderedBitsPerComponent = 8,
                                                  .renderedColorModel = QStringLiteral("RGB")}));
    }
    EXPECT_EQ(model->jobs().first().sourceProfile, model->metadataFor(item(0))->profileName);
}

TEST_F(Staging, NamesEachSourceProfileOnce) {
    import({picture(QStringLiteral("a.png"), 60, 40, 10, samples::wideGamutProfile()),
            picture(QStringLiteral("b.png"), 60, 40, 10, samples::sRgbProfile()),
            picture(QStringLiteral("c.png"), 60, 40, 10, samples::wideGamutProfile()),
            picture(QStringLiteral("d.png"), 60, 40)});
    stage();
    QStringList names{model->metadataFor(item(0))->profileName, model->metadataFor(item(1))->profileName,
                      QStringLiteral("未报告嵌入配置；不推定为 sRGB")};
    names.sort();
    EXPECT_EQ(model->jobs().first().sourceProfile, names.join(QStringLiteral(" / ")));
}

TEST_F(Staging, ShowsTheQueueAndSaysThatNothingWasSent) {
    importTwo();
    const QString before = model->message();
    {
        const test::Barrier barrier;
        model->stageRollPDF();
        EXPECT_TRUE(model->busy());
        EXPECT_EQ(model->message(), before) << "no text for the duration";
        EXPECT_EQ(model->tab(), 0);
        EXPECT_EQ(model->progress(), (SessionProgress{.done = 0,
                                                      .total = 2,
                                                      .what = QStringLiteral("Checking originals"),
                                                      .fraction = 0.0,
                                                      .isCancellable = true}));
    }
    settle();
    EXPECT_EQ(model->tab(), 1);
    EXPECT_EQ(model->message(),
              u"Roll PDF prepared with 2 artworks and trim dashes. It has not been sent to the printer.");
    EXPECT_EQ(model->progress(), std::nullopt);
    EXPECT_TRUE(services.prints.isEmpty());
}

TEST_F(Staging, SpeaksChinese) {
    const test::InChinese chinese;
    importTwo();
    stage();
    EXPECT_EQ(model->message(), u"已生成包含 2 幅作品和裁剪虚线的卷布 PDF，尚未发送到打印机。");
    EXPECT_EQ(model->jobs().first().title, u"卷布排版 · 2 幅作品");
    EXPECT_EQ(model->jobs().first().settings.paperSource, u"卷纸");
    EXPECT_TRUE(test::TemporaryFolder::read(pdfPath()).contains(
        "/Title " + platform::pdfTextString(QStringLiteral("orvex · 卷布排版"))));
}

TEST_F(Staging, PutsTheNewestJobFirst) {
    importTwo();
    stage();
    const StagedJob first = model->jobs().first();
    model->removeArtwork(item(0).id);
    settle();
    stage();
    ASSERT_EQ(model->jobs().size(), 2);
    EXPECT_EQ(model->jobs().first().title, u"Roll Layout · 1 Artworks");
    EXPECT_EQ(model->jobs().last(), first);
    EXPECT_EQ(LocalQueueStore(QUrl::fromLocalFile(stored({}))).load(), model->jobs());
    EXPECT_EQ(pdfNames().size(), 2);
}

TEST_F(Staging, ConvertsToTheOutputProfile) {
    importTwo();
    manageColours();
    stage();
    ASSERT_EQ(model->errorMessage(), std::nullopt);
    const StagedJob job = model->jobs().first();
    const ManagedICCAsset asset = *model->presetForm().iccAsset;
    EXPECT_EQ(job.inspectedICC, asset.displayName);
    EXPECT_EQ(job.outputICCSHA256, asset.sha256);
    EXPECT_EQ(job.colorWorkflow, model->presetForm().colorWorkflow);
    EXPECT_TRUE(job.colorWorkflow->driverColorCorrectionDisabledConfirmed);
    EXPECT_EQ(job.presetName, std::nullopt);
    EXPECT_EQ(job.driverQuality, std::nullopt);
    for (const RollSourceAudit& audit : *job.rollSourceAudits) {
        EXPECT_EQ(audit.renderedColorModel, u"CMYK");
    }
}

TEST_F(Staging, NamesAProfileThatTheDriverDoesNotGet) {
    importTwo();
    manageColours();
    model->setColorManagementMode(ColorManagementMode::driverManaged);
    stage();
    EXPECT_EQ(model->jobs().first().inspectedICC, model->presetForm().iccAsset->displayName);
    EXPECT_EQ(model->jobs().first().outputICCSHA256, std::nullopt);
    EXPECT_EQ(model->jobs().first().rollSourceAudits->first().renderedColorModel, u"RGB");
}

TEST_F(Staging, KeepsTheChoicesOfTheMomentItBegan) {
    importTwo();
    model->setMediaName(QStringLiteral("before"));
    const RollLayout layout = model->rollLayout();
    {
        const test::Barrier barrier;
        model->stageRollPDF();
        model->setMediaName(QStringLiteral("after"));
        model->setQualityChoice(QStringLiteral("after"));
        SessionBackdoor::set(model->rollLayout, RollLayout());
    }
    services.clock = platform::Timestamp{800'000'100.0};
    settle();
    ASSERT_EQ(model->errorMessage(), std::nullopt);
    const StagedJob job = model->jobs().first();
    EXPECT_EQ(job.canvasMediaName, u"before");
    EXPECT_EQ(job.driverQuality, std::nullopt);
    EXPECT_EQ(job.rollLayout, layout);
    EXPECT_EQ(job.createdAt, services.clock) << "but the date is that of its end";
}

TEST_F(Staging, IsOfferedForARollThatCanGoIntoTheQueue) {
    EXPECT_FALSE(model->canStageRoll()); // the roll is empty
    EXPECT_FALSE(model->canExportRoll());
    importTwo();
    EXPECT_TRUE(model->canStageRoll());
    EXPECT_TRUE(model->canExportRoll());
    SessionBackdoor::set(model->busy, true);
    EXPECT_FALSE(model->canStageRoll());
    EXPECT_FALSE(model->canExportRoll());
    SessionBackdoor::set(model->busy, false);
    SessionBackdoor::set(model->queueAvailable, false);
    EXPECT_FALSE(model->canStageRoll());
    EXPECT_TRUE(model->canExportRoll());
}

TEST_F(Staging, TellsTheIssueAndDoesNothing) {
    model->stageRollPDF();
    EXPECT_EQ(model->errorMessage(), u"Add artwork to the roll canvas first.");
    expectNothingStaged();
}

TEST_F(Staging, NeedsTheQueueAndNoOtherWork) {
    folder.write(QStringLiteral("data/ORVEX/queue.json"), "damaged");
    start();
    importTwo();
    model->dismissError();
    const QString message = model->message();
    EXPECT_FALSE(model->queueAvailable());
    stage();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(test::TemporaryFolder::read(stored(QStringLiteral("queue.json"))), "damaged");
    ASSERT_TRUE(QFile::remove(stored(QStringLiteral("queue.json"))));
    start();
    {
        const test::Barrier barrier;
        model->restoreRollPreviews(false);
        model->stageRollPDF();
        EXPECT_EQ(model->errorMessage(), std::nullopt) << "although nothing is known of the sources yet";
    }
    settle();
    expectNothingStaged();
}

TEST_F(Staging, WithoutTheProfilesFileLeavesNothing) {
    importTwo();
    manageColours();
    ASSERT_TRUE(QFile::remove(profileFile()));
    stage();
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(model->presetForm().iccAsset->filename))
        << model->errorMessage()->toStdString();
    expectNothingStaged();
}

TEST_F(Staging, OfASourceThatChangedItsSizeLeavesNothing) {
    importTwo();
    {
        const test::Barrier barrier;
        model->stageRollPDF();
        picture(QStringLiteral("b.png"), 40, 60);
    }
    settle();
    EXPECT_EQ(model->errorMessage(),
              u"Pixel dimensions of “b.png” changed after import. Export was stopped. Import the "
              u"artwork again.");
    expectNothingStaged();
    EXPECT_FALSE(QFile::exists(stored(QStringLiteral("queue.json"))));
}

TEST_F(Staging, OfASourceThatVanishedOrCannotBeReadLeavesNothing) {
    importTwo();
    const QString file = item(1).sourceURL.toLocalFile();
    ASSERT_TRUE(QFile::remove(file));
    stage();
    EXPECT_TRUE(model->errorMessage());
    expectNothingStaged();
    model->dismissError();
    folder.write(QStringLiteral("pictures/b.png"), {});
    stage();
    EXPECT_TRUE(model->errorMessage());
    expectNothingStaged();
    model->dismissError();
    ASSERT_TRUE(QFile::remove(file));
    ASSERT_TRUE(QDir().mkdir(file));
    stage();
    EXPECT_TRUE(model->errorMessage());
    expectNothingStaged();
}

TEST_F(Staging, WhoseListCannotBeWrittenLeavesNoPdf) {
    importTwo();
    ASSERT_TRUE(QDir().mkpath(stored(QStringLiteral("queue.json/full"))));
    const QString message = model->message();
    stage();
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(stored(QStringLiteral("queue.json"))))
        << model->errorMessage()->toStdString();
    EXPECT_EQ(model->message(), message);
    expectNothingStaged();
}

TEST_F(Staging, IntoAFolderThatIsGoneIsTold) {
    importTwo();
    ASSERT_TRUE(QDir(stored({})).removeRecursively());
    folder.write(QStringLiteral("data/ORVEX"), "a file");
    stage();
    EXPECT_EQ(model->errorMessage(), u"Cannot create the roll PDF. Check permissions at the save location.");
    EXPECT_TRUE(model->jobs().isEmpty());
    EXPECT_EQ(test::TemporaryFolder::read(folder.path(QStringLiteral("data/ORVEX"))), "a file");
}

TEST_F(Staging, CanBeCancelledUntilItsRecordIsWritten) {
    importTwo();
    const test::OneWorker worker;
    model->stageRollPDF();
    worker.finishWork();
    EXPECT_EQ(pdfNames().size(), 1) << "which nobody has heard of yet";
    model->cancelOperation();
    settle();
    EXPECT_EQ(model->message(), u"Adding the roll to the queue was cancelled. No file was kept.");
    expectNothingStaged();
}

TEST_F(Staging, CanBeCancelledAndThenLeavesNothing) {
    importTwo();
    {
        const test::Barrier barrier;
        model->stageRollPDF();
        model->cancelOperation();
        EXPECT_FALSE(model->progress()->isCancellable);
    }
    settle();
    EXPECT_EQ(model->message(), u"Adding the roll to the queue was cancelled. No file was kept.");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    expectNothingStaged();
    const test::InChinese chinese;
    {
        const test::Barrier barrier;
        model->stageRollPDF();
        model->cancelOperation();
    }
    settle();
    EXPECT_EQ(model->message(), u"已取消加入待打印队列，未保留任何文件。");
    expectNothingStaged();
}

TEST_F(Staging, EndsWithTheSessionAndLeavesNothing) {
    importTwo();
    test::Barrier barrier;
    model->stageRollPDF();
    test::closeWhileHeld(model, barrier);
    EXPECT_EQ(pdfNames(), QStringList());
    EXPECT_FALSE(QFile::exists(stored(QStringLiteral("queue.json"))));
}

} // namespace
} // namespace orvex
