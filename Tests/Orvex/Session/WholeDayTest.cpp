#include "InChinese.h"
#include "Layout/InchLayout.h"
#include "Output/NativePrintDocument.h"
#include "Profiles.h"
#include "SessionFixture.h"

#include <QFile>

#include <algorithm>

namespace orvex {
namespace {

using Dimension = QuarterInchArtworkSizing::Dimension;

/// The operator's day, in one language or the other.
class WholeDay : public test::SessionTest, public ::testing::WithParamInterface<bool> {
protected:
    WholeDay() {
        if (GetParam()) {
            chinese.emplace();
        }
        makePictures();
        start();
    }

    std::optional<test::InChinese> chinese;
    QList<QUrl> pictures;

    static samples::Picture scene(int width, int height, int number) {
        return samples::pictureOf(width, height, [=](int x, int y) {
            const float across = static_cast<float>(x) / static_cast<float>(width);
            const float down = static_cast<float>(y) / static_cast<float>(height);
            return samples::Pixel{across, down, static_cast<float>(number) / 20.0F, 1.0F};
        });
    }

    [[nodiscard]] std::string pictureFile(const QString& name) {
        const QString path = folder.path(QStringLiteral("pictures/") + name);
        pictures.append(QUrl::fromLocalFile(path));
        return path.toStdString();
    }

    /// Five pictures of each container, in many of their forms.
    void makePictures() {
        const samples::Bytes rgb = samples::displayP3Profile();
        constexpr int ppi = 40;
        for (int number = 0; number < 5; ++number) {
            const samples::Picture wide = scene(480, 320, number);
            const samples::Picture tall = scene(240, 360, number + 5);
            const QString suffix = QString::number(number);
            samples::writeJpeg(wide,
                               {.isGray = number == 1,
                                .isProgressive = number == 2,
                                .pixelsPerInch = ppi,
                                .orientation = number == 3 ? std::optional(6) : std::nullopt,
                                .profile = number == 4 ? rgb : samples::Bytes()},
                               pictureFile(QStringLiteral("海 %1.jpg").arg(suffix)));
            samples::writePng(tall,
                              {.hasAlpha = number == 1,
                               .declaresSRgb = number == 2,
                               .pixelsPerInch = ppi,
                               .profile = number == 3 ? rgb : samples::Bytes()},
                              pictureFile(QStringLiteral("tree %1.png").arg(suffix)));
            samples::writeTiff(wide,
                               {.bitsPerSample = number % 2 == 0 ? 8 : 16,
                                .isBigEndian = number == 1,
                                .isBig = number == 2,
                                .pixelsPerInch = ppi,
                                .profile = number == 3 ? rgb : samples::Bytes()},
                               pictureFile(QStringLiteral("stone\n%1.tif").arg(suffix)));
            samples::writeHeif(tall, {.pixelsPerInch = ppi, .profile = rgb},
                               pictureFile(QStringLiteral("cloud %1.heic").arg(suffix)));
        }
    }

    [[nodiscard]] const QList<RollArtwork>& items() const { return model->rollLayout().items; }

    void expectNothingWrong() { EXPECT_EQ(model->errorMessage(), std::nullopt); }

    void startAnew() {
        start();
        model->startRefreshing();
        settle();
    }

    void importAll() {
        services.chosenFiles.push_back(pictures);
        model->importRollArtworks();
        settle();
        ASSERT_EQ(items().size(), 20);
        EXPECT_EQ(model->artworkPreviews().size(), 20);
        EXPECT_EQ(model->message(),
                  spt("卷布现有 20 幅作品。可移动、旋转和等比缩放，PDF 会包含裁剪虚线。",
                      "The roll contains 20 artworks. You can move, rotate, and scale them proportionally. Trim dashes "
                      "will be included in the PDF."));
        expectNothingWrong();
    }

    void sizeAndPack() {
        model->resizeArtwork(items()[0].id, 24.1, Dimension::width);
        EXPECT_EQ(items()[0].widthInches, 24.0);
        EXPECT_EQ(items()[0].heightInches(), 16.0);
        model->resizeArtwork(items()[1].id, 12.0, Dimension::height);
        EXPECT_EQ(items()[1].widthInches, 8.0);
        model->scaleArtwork(items()[2].id, 150.0);
        EXPECT_EQ(items()[2].widthInches, 18.0);
        model->selectArtwork(items()[3].id);
        model->rotateSelectedArtwork();
        model->arrangeRoll(true);
        EXPECT_EQ(model->rollLayout().exportValidationError(), std::nullopt);
        expectNothingWrong();
    }

    void moveByHand() {
        const RollLayout packed = model->rollLayout();
        const QUuid id = items().last().id;
        model->beginArrangeGesture();
        model->dragArtwork(id, 3.13, 1.0);
        EXPECT_EQ(items().last().xInches, 3.25);
        model->endArrangeGesture();
        model->nudgeSelectedArtwork(RollNudgeDirection::right, true);
        model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
        model->endKeyboardNudge();
        EXPECT_NEAR(items().last().xInches, 3.36, 1e-12);
        model->undoRollEdit();
        model->undoRollEdit();
        EXPECT_EQ(model->rollLayout(), packed);
        settle();
    }

    void stage() {
        model->stageRollPDF();
        EXPECT_TRUE(model->busy());
        settle();
        expectNothingWrong();
        ASSERT_EQ(model->jobs().size(), 1);
        const StagedJob& job = model->jobs().first();
        EXPECT_EQ(job.title, spt("卷布排版 · 20 幅作品", "Roll Layout · 20 Artworks"));
        EXPECT_EQ(job.rollSourceAudits->size(), 20);
        expectRollPDF(stored(job.pdfFileName()));
        EXPECT_EQ(model->tab(), 1);
    }

    void expectRollPDF(const QString& path) {
        const RollLayout& layout = model->rollLayout();
        const NativePrintSource source =
            NativePrintFactory::openDocument(QUrl::fromLocalFile(path), layout.widthInches, layout.lengthInches());
        EXPECT_NEAR(source.geometry.widthInches(), layout.widthInches, 0.0002);
        EXPECT_NEAR(source.geometry.heightInches(), layout.lengthInches(), 0.0002);
    }

    /// A picture is moved while the program is closed; the rest is as it was left.
    void restartWithAMovedPicture(const QString& to) {
        const RollLayout left = model->rollLayout();
        const QList<StagedJob> jobs = model->jobs();
        model.reset();
        const QString from = items0Path(left);
        ASSERT_TRUE(QFile::rename(from, to));
        startAnew();
        EXPECT_EQ(model->rollLayout(), left);
        EXPECT_EQ(model->jobs(), jobs);
        EXPECT_EQ(model->artworkPreviews().size(), 19);
        ASSERT_EQ(model->rollLoadWarnings().size(), 1);
        EXPECT_TRUE(model->rollLoadWarnings().contains(left.items[0].id));
        EXPECT_EQ(model->rollExportIssue(),
                  spt("无法读取原图：%1。请重新关联文件。", "Cannot read the original: %1. Relink the file.")
                      .arg(left.items[0].title));
    }

    static QString items0Path(const RollLayout& layout) { return layout.items[0].sourceURL.toLocalFile(); }

    void relink(const QString& movedTo) {
        model->selectArtwork(items()[0].id);
        services.chosenFiles.push_back({QUrl::fromLocalFile(movedTo)});
        model->relinkSelectedArtwork();
        settle();
        EXPECT_EQ(items()[0].sourceURL, QUrl::fromLocalFile(movedTo));
        EXPECT_EQ(model->rollLoadWarnings().size(), 0);
        EXPECT_EQ(model->rollExportIssue(), std::nullopt);
        expectNothingWrong();
    }

    void changeWidth() {
        model->changeRollWidth(50.0);
        settle();
        expectNothingWrong();
        EXPECT_EQ(model->rollLayout().widthInches, 50.0);
        EXPECT_EQ(model->rollLayout().exportValidationError(), std::nullopt);
    }

    /// Everything since the start of the program is undone and done again.
    void undoToTheStartAndBack(const RollLayout& atStart) {
        const RollLayout now = model->rollLayout();
        while (model->rollUndoAvailable()) {
            model->undoRollEdit();
            settle();
        }
        EXPECT_EQ(model->rollLayout(), atStart);
        while (model->rollRedoAvailable()) {
            model->redoRollEdit();
            settle();
        }
        EXPECT_EQ(model->rollLayout(), now);
        EXPECT_EQ(model->rollExportIssue(), std::nullopt);
    }

    void exportRoll() {
        const QString path = folder.path(QStringLiteral("roll.pdf"));
        services.chosenPlaces.push_back(QUrl::fromLocalFile(path));
        model->exportRollPDF();
        settle();
        expectNothingWrong();
        EXPECT_EQ(services.saveRequests.last().proposedName,
                  spt("orvex-50英寸卷布排版.pdf", "orvex-50in-roll-layout.pdf"));
        EXPECT_EQ(services.revealed, QList{QUrl::fromLocalFile(path)});
        expectRollPDF(path);
        services.revealed.clear();
    }

    void removeJobs() {
        const StagedJob job = model->jobs().first();
        model->removeJob(job);
        EXPECT_EQ(model->jobs().size(), 0);
        EXPECT_FALSE(QFile::exists(stored(job.pdfFileName())));
        EXPECT_EQ(model->message(), spt("已移除本地作业。", "The local job was removed."));
    }

    /// The picture lies where it was, and the canvas is empty again.
    void tidyUp(const QString& movedTo, const QUrl& emptyLayout) {
        ASSERT_TRUE(QFile::rename(movedTo, pictures[0].toLocalFile()));
        services.chosenFiles.push_back({emptyLayout});
        model->openRollProject();
        settle();
        EXPECT_EQ(items().size(), 0);
        EXPECT_EQ(model->rollLayout().widthInches, 60.0);
    }

    void liveThrough(const QUrl& emptyLayout) {
        importAll();
        sizeAndPack();
        moveByHand();
        stage();
        const QString movedTo = folder.path(QStringLiteral("moved 海.jpg"));
        restartWithAMovedPicture(movedTo);
        const RollLayout atStart = model->rollLayout();
        relink(movedTo);
        changeWidth();
        undoToTheStartAndBack(atStart);
        exportRoll();
        removeJobs();
        tidyUp(movedTo, emptyLayout);
    }
};

TEST_P(WholeDay, CanBeLivedThroughTwice) {
    const QUrl emptyLayout = QUrl::fromLocalFile(folder.path(QStringLiteral("empty.json")));
    services.chosenPlaces.push_back(emptyLayout);
    model->saveRollProject();
    for (int day = 1; day <= 2; ++day) {
        SCOPED_TRACE(day);
        liveThrough(emptyLayout);
        startAnew();
        EXPECT_EQ(items().size(), 0);
        EXPECT_EQ(model->jobs().size(), 0);
    }
    model.reset();
    EXPECT_EQ(QDir(folder.path(QStringLiteral("tmp"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 0);
}

INSTANTIATE_TEST_SUITE_P(Language, WholeDay, ::testing::Bool(),
                         [](const auto& row) { return row.param ? "Chinese" : "English"; });

} // namespace
} // namespace orvex
