#include "BackgroundSteps.h"
#include "InChinese.h"
#include "Output/NativePrintDocument.h"
#include "RollTest.h"

#include <QLocale>

namespace orvex {
namespace {

// What speaks against it

class ExportIssue : public test::RollTest {};

TEST_F(ExportIssue, IsFirstOneOfTheLayout) {
    manageColours();
    EXPECT_EQ(model->rollExportIssue(), u"Add artwork to the roll canvas first.");
    importTwo();
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    RollLayout overlapping = model->rollLayout();
    overlapping.items[1].xInches = 0.0;
    SessionBackdoor::set(model->rollLayout, overlapping);
    EXPECT_EQ(model->rollExportIssue(), overlapping.exportValidationError());
    ASSERT_TRUE(model->rollExportIssue());
}

TEST_F(ExportIssue, IsThenTheFirstSourceThatIsNotKnown) {
    importTwo();
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    model->setColorManagementMode(ColorManagementMode::appManaged);
    EXPECT_EQ(model->rollExportIssue(), u"Cannot read the original: a.png. Relink the file.");
}

TEST_F(ExportIssue, IsThenOneOfColour) {
    importTwo();
    model->setColorManagementMode(ColorManagementMode::appManaged);
    EXPECT_EQ(model->rollExportIssue(), u"Choose an ICC that matches the printer, canvas and quality.");
    EXPECT_EQ(model->rollExportIssue(), model->colorPreflight());
    const test::InChinese chinese;
    EXPECT_EQ(model->rollExportIssue(), u"请选择与打印机、画布和质量匹配的 ICC。");
}

TEST_F(ExportIssue, OfColourIsNoneIfTheDriverManagesColours) {
    import({picture(QStringLiteral("untagged.png"), 120, 80)});
    EXPECT_EQ(model->colorPreflight(), std::nullopt);
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    EXPECT_EQ(model->colorPreflight(), std::nullopt);
}

TEST_F(ExportIssue, OfColourIsASourceWithoutAProfileThenTheConfirmation) {
    importTwo();
    manageColours();
    EXPECT_EQ(model->colorPreflight(), std::nullopt);
    model->setDriverColorCorrectionDisabledConfirmed(false);
    EXPECT_EQ(model->colorPreflight(),
              u"Confirm that Canon colour correction is off to avoid double colour management. "
              u"The app does not change that setting.");
    import({picture(QStringLiteral("untagged.png"), 60, 40)});
    EXPECT_EQ(model->colorPreflight(), u"Some artworks have no confirmed embedded source ICC. The colour space cannot "
                                       u"be guessed. Add the source profile or let Canon manage colour.");
    const test::InChinese chinese;
    EXPECT_EQ(model->colorPreflight(), u"部分作品没有已确认的嵌入源 "
                                       u"ICC，无法猜测其色彩空间。请添加源 ICC 配置文件，或由佳能管理颜色。");
    model->undoRollEdit();
    EXPECT_EQ(model->colorPreflight(), u"请确认佳能颜色校正已关闭，以免重复进行颜色管理。应用不会更改该设置。");
}

TEST_F(ExportIssue, OfColourDoesNotTrustWhatIsKnownOfAnotherFile) {
    importTwo();
    manageColours();
    RollLayout layout = model->rollLayout();
    layout.items.first().sourceURL = QUrl(QStringLiteral("file:///pictures/another.png"));
    SessionBackdoor::set(model->rollLayout, layout);
    EXPECT_EQ(model->colorPreflight(), u"Some artworks have no confirmed embedded source ICC. The colour space cannot "
                                       u"be guessed. Add the source profile or let Canon manage colour.");
}

TEST_F(ExportIssue, IsNoneForALongRollOfWhichIsOnlyWarned) {
    EXPECT_EQ(model->rollAdvisory(), std::nullopt);
    importTwo();
    RollLayout layout = model->rollLayout();
    layout.items.last().yInches = 708.6614173228347 - layout.items.last().trimRectInches().height;
    SessionBackdoor::set(model->rollLayout, layout);
    EXPECT_EQ(model->rollAdvisory(), std::nullopt);
    layout.items.last().yInches += 0.001;
    SessionBackdoor::set(model->rollLayout, layout);
    EXPECT_EQ(model->rollAdvisory(),
              u"The layout exceeds the current driver’s known single-page length of about 708.661 inches. The canvas "
              u"can extend further, but actual printing requires checking device limits and segmentation.");
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
}

// To a place of the user's choice

class Export : public test::RollTest {
protected:
    const QString place = folder.path(QStringLiteral("roll.pdf"));

    void exportRoll() {
        services.chosenPlaces = {QUrl::fromLocalFile(place)};
        model->exportRollPDF();
        settle();
    }
};

TEST_F(Export, ProposesANameWithTheRollsWidth) {
    importTwo();
    model->exportRollPDF();
    RollLayout narrow = model->rollLayout();
    narrow.widthInches = 44.5;
    SessionBackdoor::set(model->rollLayout, narrow);
    model->exportRollPDF();
    const test::InChinese chinese;
    model->exportRollPDF();
    ASSERT_EQ(services.saveRequests.size(), 3);
    EXPECT_EQ(services.saveRequests[0].proposedName, u"orvex-60in-roll-layout.pdf");
    EXPECT_EQ(services.saveRequests[1].proposedName, u"orvex-44.5in-roll-layout.pdf");
    EXPECT_EQ(services.saveRequests[2].proposedName, u"orvex-44.5英寸卷布排版.pdf");
    EXPECT_EQ(services.saveRequests[0].kind, FileKind::pdf);
    EXPECT_FALSE(model->busy()) << "all were cancelled";
}

TEST_F(Export, WritesAPdfOfTheRollsSizeAndShowsIt) {
    importTwo();
    exportRoll();
    ASSERT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), u"Roll PDF exported: 60 × 13 in, including manual trim dashes.");
    EXPECT_EQ(services.revealed, QList{QUrl::fromLocalFile(place)});
    const auto pdf = NativePrintFactory::openDocument(QUrl::fromLocalFile(place), 60.0, 13.0);
    EXPECT_EQ(pdf.geometry.heightInches(), 13.0);
    EXPECT_TRUE(model->jobs().isEmpty());
    EXPECT_EQ(pdfNames(), QStringList());
    EXPECT_EQ(model->tab(), 0);
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Export, TellsTheSizeInTheLanguageAndLocaleOfTheUser) {
    importTwo();
    const test::InChinese chinese;
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    RollLayout layout = model->rollLayout();
    layout.items.last().yInches = 13.125;
    SessionBackdoor::set(model->rollLayout, layout);
    exportRoll();
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(model->message(), u"已导出卷布 PDF：60 × 22,125 英寸，包含手裁虚线。");
}

TEST_F(Export, IsOfTheRollAsItWasWhenItBegan) {
    importTwo();
    services.chosenPlaces = {QUrl::fromLocalFile(place)};
    {
        const test::Barrier barrier;
        model->exportRollPDF();
        EXPECT_TRUE(model->busy());
        EXPECT_EQ(model->progress()->what, u"Checking originals");
        SessionBackdoor::set(model->rollLayout, RollLayout({}, 44.0));
    }
    settle();
    EXPECT_EQ(model->message(), u"Roll PDF exported: 60 × 13 in, including manual trim dashes.");
    EXPECT_NO_THROW(static_cast<void>(NativePrintFactory::openDocument(QUrl::fromLocalFile(place), 60.0, 13.0)));
}

TEST_F(Export, ThatIsDoneIsNotCancelledAnyMore) {
    importTwo();
    services.chosenPlaces = {QUrl::fromLocalFile(place)};
    const test::OneWorker worker;
    model->exportRollPDF();
    worker.finishWork();
    model->cancelOperation();
    settle();
    EXPECT_EQ(model->message(), u"Roll PDF exported: 60 × 13 in, including manual trim dashes.");
    EXPECT_TRUE(QFile::exists(place));
}

TEST_F(Export, ShowsHowFarItHasCome) {
    struct Recorder : test::FakeServices {
        std::function<void()> onReveal;

        void revealFile(const QUrl&) override { onReveal(); }
    };

    Recorder recorder;
    model = std::make_unique<OrvexModel>(recorder, SessionAccess::full, readings);
    importTwo();
    std::optional<SessionProgress> last;
    recorder.onReveal = [&] { last = model->progress(); };
    recorder.chosenPlaces = {QUrl::fromLocalFile(place)};
    const test::OneWorker worker;
    model->exportRollPDF();
    worker.finishWork(); // what it reported is told in one turn with its end
    settle();
    EXPECT_EQ(
        last,
        (SessionProgress{
            .done = 1, .total = 2, .what = QStringLiteral("Writing the PDF"), .fraction = 1.0, .isCancellable = true}));
    model.reset();
}

TEST_F(Export, DoesNotNeedTheQueue) {
    folder.write(QStringLiteral("data/ORVEX/queue.json"), "damaged");
    start();
    model->dismissError();
    importTwo();
    exportRoll();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(QFile::exists(place));
}

TEST_F(Export, TellsTheIssueBeforeAnyDialog) {
    exportRoll();
    EXPECT_EQ(model->errorMessage(), u"Add artwork to the roll canvas first.");
    importTwo();
    model->setColorManagementMode(ColorManagementMode::appManaged);
    exportRoll();
    EXPECT_EQ(model->errorMessage(), u"Choose an ICC that matches the printer, canvas and quality.");
    EXPECT_TRUE(services.saveRequests.isEmpty());
    EXPECT_FALSE(QFile::exists(place));
}

TEST_F(Export, WaitsForOtherWork) {
    importTwo();
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    model->exportRollPDF();
    EXPECT_TRUE(services.saveRequests.isEmpty());
}

TEST_F(Export, WithoutTheProfilesFileKeepsWhatIsThere) {
    importTwo();
    manageColours();
    folder.write(QStringLiteral("roll.pdf"), "old");
    folder.write(profileFile().mid(folder.path().size() + 1), test::bytesOf(samples::sRgbProfile()));
    exportRoll();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(test::TemporaryFolder::read(place), "old");
    EXPECT_FALSE(model->busy());
    EXPECT_TRUE(services.revealed.isEmpty());
}

TEST_F(Export, WithoutAProfileIsRefusedBeforeItIsAskedWhere) {
    importTwo();
    manageColours();
    PresetForm form = model->presetForm();
    form.iccAsset.reset();
    services.chosenPlaces = {QUrl::fromLocalFile(place)};
    SessionBackdoor::set(model->presetForm, form);
    model->exportRollPDF();
    EXPECT_EQ(model->errorMessage(), u"Choose an ICC that matches the printer, canvas and quality.");
    EXPECT_TRUE(services.saveRequests.isEmpty());
}

TEST_F(Export, OverASourceIsRefused) {
    importTwo();
    const QByteArray before = test::TemporaryFolder::read(item(0).sourceURL.toLocalFile());
    services.chosenPlaces = {item(0).sourceURL};
    model->exportRollPDF();
    settle();
    EXPECT_EQ(model->errorMessage(),
              u"The export location cannot overwrite any source artwork. Choose a separate PDF file.");
    EXPECT_EQ(test::TemporaryFolder::read(item(0).sourceURL.toLocalFile()), before);
}

TEST_F(Export, ToAPlaceThatCannotBeWrittenIsTold) {
    importTwo();
    const QString message = model->message();
    const QString file = folder.write(QStringLiteral("file"), "x");
    services.chosenPlaces = {QUrl::fromLocalFile(file + QStringLiteral("/roll.pdf"))};
    model->exportRollPDF();
    settle();
    EXPECT_EQ(model->errorMessage(), u"Cannot create the roll PDF. Check permissions at the save location.");
    ASSERT_TRUE(QDir().mkpath(place + QStringLiteral("/full")));
    model->dismissError();
    exportRoll();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(model->message(), message);
    EXPECT_TRUE(services.revealed.isEmpty());
    EXPECT_EQ(QDir(folder.path()).entryList({QStringLiteral(".orvex*")}, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(Export, CanBeCancelledAndThenKeepsWhatIsThere) {
    importTwo();
    expectCancelled(QStringLiteral("roll.pdf"), [this] { model->exportRollPDF(); });
    exportRoll();
    EXPECT_NO_THROW(static_cast<void>(NativePrintFactory::openDocument(QUrl::fromLocalFile(place), 60.0, 13.0)));
}

TEST_F(Export, OverTheProgramsOwnDataIsRefused) {
    importTwo();
    const QString queue = folder.write(QStringLiteral("data/ORVEX/queue.json"), "[]");
    services.chosenPlaces = {QUrl::fromLocalFile(queue)};
    model->exportRollPDF();
    settle();
    EXPECT_EQ(model->errorMessage(),
              u"The chosen location cannot overwrite the program's own data. Choose another file.");
    EXPECT_EQ(test::TemporaryFolder::read(queue), "[]");
}

} // namespace
} // namespace orvex
