#include "BackgroundSteps.h"
#include "InChinese.h"
#include "Json/JsonWriter.h"
#include "SessionFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace orvex {
namespace {

const QString unreadable =
    QStringLiteral("Cannot read the image or valid dimensions. Check file integrity and whether the system supports "
                   "this JPEG, PNG, TIFF or HEIC file.");

QString finished(int count) {
    return QStringLiteral("The roll contains %1 artworks. You can move, rotate, and scale them proportionally. Trim "
                          "dashes will be included in the PDF.")
        .arg(count);
}

class Import : public test::SessionTest {
protected:
    Import() { start(); }

    [[nodiscard]] const RollArtwork& item(qsizetype index) const { return model->rollLayout().items.at(index); }

    [[nodiscard]] QList<QUrl> savedSources() const {
        QList<QUrl> sources;
        const auto file =
            QJsonDocument::fromJson(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))));
        for (const auto& each : file[u"layout"][u"items"].toArray()) {
            sources.append(QUrl(each.toObject()[u"sourceURL"].toString()));
        }
        return sources;
    }
};

// The dialog

TEST_F(Import, AsksForAnyNumberOfPictures) {
    model->importRollArtworks();
    const test::InChinese chinese;
    model->importRollArtworks();
    ASSERT_EQ(services.openRequests.size(), 2);
    EXPECT_EQ(services.openRequests.first().title, u"Add More Artworks to This Roll");
    EXPECT_EQ(services.openRequests.last().title, u"向此卷布添加更多作品");
    for (const OpenFilesRequest& request : services.openRequests) {
        EXPECT_EQ(request.kind, FileKind::image);
        EXPECT_TRUE(request.allowsMultiple);
    }
}

TEST_F(Import, OfNoFileDoesNothing) {
    const QString message = model->message();
    model->importRollArtworks();
    model->importFiles({});
    settle();
    EXPECT_FALSE(model->busy());
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_FALSE(QFile::exists(stored(QStringLiteral("roll-layout.json"))));
}

TEST_F(Import, TakesTheFilesOfTheDialogInItsOrder) {
    services.chosenFiles = {{picture(QStringLiteral("b.png"), 120, 80), picture(QStringLiteral("a.png"), 60, 40)}};
    model->importRollArtworks();
    settle();
    ASSERT_EQ(model->rollLayout().items.size(), 2);
    EXPECT_EQ(item(0).title, u"b.png");
    EXPECT_EQ(item(1).title, u"a.png");
}

TEST_F(Import, EndsARunOfTheKeyboardBeforeTheDialog) {
    place({artwork()});
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    EXPECT_FALSE(model->rollUndoAvailable());
    model->importRollArtworks();
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Import, WaitsForOtherWork) {
    place({artwork(), artwork()});
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    const QString message = model->message();
    model->importRollArtworks();
    model->importFiles({file});
    EXPECT_TRUE(services.openRequests.isEmpty());
    EXPECT_EQ(model->message(), message);
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

// What comes onto the canvas

TEST_F(Import, GivesAPictureItsNaturalSize) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    import({file});
    ASSERT_EQ(model->rollLayout().items.size(), 1);
    const ImageMetadata metadata = ImageMetadata::load(file);
    EXPECT_EQ(item(0), RollArtwork::make({.id = item(0).id,
                                          .sourceURL = file,
                                          .pixelWidth = 120,
                                          .pixelHeight = 80,
                                          .originalWidthInches = metadata.originalWidthInches,
                                          .originalHeightInches = metadata.originalHeightInches,
                                          .widthInches = 12.0}));
    EXPECT_FALSE(item(0).id.isNull());
    EXPECT_EQ(item(0).title, u"a.png");
    EXPECT_EQ(item(0).rotationQuarterTurns, 0);
    EXPECT_EQ(model->sizingDescriptions(),
              (QMap<QString, QString>{{platform::uuidText(item(0).id), metadata.physicalSizeSource}}));
    ASSERT_TRUE(model->metadataFor(item(0)));
    EXPECT_EQ(model->metadataFor(item(0))->url, file);
    EXPECT_EQ(model->image(), model->metadataFor(item(0)));
    EXPECT_EQ(model->message(), finished(1));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Import, MakesAPictureNoWiderThanTheRollAllows) {
    import({picture(QStringLiteral("wide.png"), 700, 70)});
    EXPECT_EQ(item(0).widthInches, 55.0);
    EXPECT_EQ(item(0).xInches, 0.0);
}

TEST_F(Import, BringsBothSidesToQuarterInches) {
    import({picture(QStringLiteral("a.png"), 123, 82)});
    EXPECT_EQ(item(0).widthInches, 12.0);
    EXPECT_NEAR(item(0).heightInches(), 8.0, 1e-9);
}

TEST_F(Import, KeepsTheGapThatIsSet) {
    model->setRollGap(0.5);
    import({picture(QStringLiteral("a.png"), 120, 80), picture(QStringLiteral("b.png"), 120, 80)});
    EXPECT_EQ(item(0).xInches, 0.0);
    EXPECT_EQ(item(1).xInches, 17.5);
    EXPECT_EQ(item(1).yInches, 0.0);
}

TEST_F(Import, SelectsTheLastArtwork) {
    import({picture(QStringLiteral("a.png"), 120, 80), picture(QStringLiteral("b.png"), 60, 40)});
    EXPECT_EQ(model->selectedArtworkID(), item(1).id);
    EXPECT_EQ(model->image(), model->metadataFor(item(1)));
}

TEST_F(Import, MakesAnArtworkOfItsOwnEachTimeAFileComes) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    import({file, file});
    ASSERT_EQ(model->rollLayout().items.size(), 2);
    EXPECT_NE(item(0).id, item(1).id);
    EXPECT_EQ(model->rollLayout().exportValidationError(), std::nullopt);
}

TEST_F(Import, IsOneStepOfUndo) {
    import({picture(QStringLiteral("a.png"), 120, 80), picture(QStringLiteral("b.png"), 60, 40)});
    model->undoRollEdit();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_FALSE(model->rollUndoAvailable());
    model->redoRollEdit();
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

TEST_F(Import, TakesTheConfirmationThatTheDriverCorrectsNoColours) {
    model->setDriverColorCorrectionDisabledConfirmed(true);
    import({picture(QStringLiteral("a.png"), 120, 80)});
    EXPECT_FALSE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
}

// While it runs

TEST_F(Import, SavesEachFileWhenItIsDone) {
    const QUrl first = picture(QStringLiteral("a.png"), 120, 80);
    test::Barrier beforeFirst;
    model->importFiles({first, picture(QStringLiteral("b.png"), 60, 40)});
    EXPECT_TRUE(model->busy());
    EXPECT_TRUE(model->rollUndoAvailable()) << "the step is taken before any file is read";
    EXPECT_EQ(model->message(), u"Adding artwork 1/2: a.png");
    EXPECT_EQ(
        model->progress(),
        (SessionProgress{
            .done = 0, .total = 2, .what = QStringLiteral("Adding artworks"), .fraction = 0.0, .isCancellable = true}));
    test::Barrier beforeSecond;
    beforeFirst.release();
    test::waitFor([this] { return model->rollLayout().items.size() == 1; });
    EXPECT_EQ(model->message(), u"Adding artwork 2/2: b.png");
    EXPECT_EQ(
        model->progress(),
        (SessionProgress{
            .done = 1, .total = 2, .what = QStringLiteral("Adding artworks"), .fraction = 0.5, .isCancellable = true}));
    EXPECT_EQ(model->selectedArtworkID(), item(0).id);
    EXPECT_EQ(savedSources(), QList{first});
    beforeSecond.release();
    settle();
    EXPECT_EQ(savedSources().size(), 2);
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Import, SpeaksChinese) {
    const test::InChinese chinese;
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    {
        const test::Barrier barrier;
        model->importFiles({file});
        EXPECT_EQ(model->message(), u"正在添加作品 1/1：a.png");
        EXPECT_EQ(model->progress()->what, u"导入作品");
    }
    settle();
    EXPECT_EQ(model->message(), u"卷布现有 1 幅作品。可移动、旋转和等比缩放，PDF 会包含裁剪虚线。");
}

TEST_F(Import, TakesAFileAsItIsWhenItsTurnComes) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    {
        const test::Barrier barrier;
        model->importFiles({file});
        picture(QStringLiteral("a.png"), 90, 60);
    }
    settle();
    EXPECT_EQ(item(0).pixelWidth, 90);
    EXPECT_EQ(item(0).widthInches, 9.0);
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
}

TEST_F(Import, EndsWithTheSession) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    test::Barrier barrier;
    model->importFiles({file, file});
    test::closeWhileHeld(model, barrier);
    start();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

// Files that cannot be used

TEST_F(Import, GoesOnAfterAFileThatCannotBeRead) {
    const QUrl bad = QUrl::fromLocalFile(folder.write(QStringLiteral("bad.png"), "no picture"));
    import({picture(QStringLiteral("a.png"), 120, 80), bad, picture(QStringLiteral("b.png"), 60, 40)});
    ASSERT_EQ(model->rollLayout().items.size(), 2);
    EXPECT_EQ(item(1).title, u"b.png");
    EXPECT_EQ(model->message(), finished(2));
    EXPECT_EQ(model->errorMessage(), QStringLiteral("bad.png：") + unreadable);
    EXPECT_FALSE(model->busy());
}

TEST_F(Import, OfBadFilesOnlyTellsOfEachAndLeavesAStepOfUndo) {
    place({artwork()});
    const RollLayout before = model->rollLayout();
    QDir(folder.path()).mkdir(QStringLiteral("folder.png"));
    const QString file = folder.write(QStringLiteral("file"), "x");
    import({QUrl::fromLocalFile(folder.path(QStringLiteral("gone.png"))),
            QUrl::fromLocalFile(folder.write(QStringLiteral("empty.png"), {})),
            QUrl::fromLocalFile(folder.path(QStringLiteral("folder.png"))),
            QUrl::fromLocalFile(folder.path(QStringLiteral("folder.png/"))),
            QUrl::fromLocalFile(file + QStringLiteral("/below.png")),
            QUrl(QStringLiteral("https://127.0.0.1/remote.png"))});
    QStringList lines;
    for (const char* name : {"gone.png", "empty.png", "folder.png", "folder.png", "below.png", "remote.png"}) {
        lines.append(QString::fromLatin1(name) + u'：' + unreadable);
    }
    EXPECT_EQ(model->errorMessage(), lines.join(u'\n'));
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(model->message(), finished(1));
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(Import, RefusesAPictureWithoutASizeOfQuarterInches) {
    import({picture(QStringLiteral("primes.png"), 1009, 1013, 300)});
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_TRUE(model->sizingDescriptions().isEmpty());
    EXPECT_EQ(model->errorMessage(),
              u"primes.png：No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
              u"artwork was not changed, stretched or rounded at lower precision.");
}

TEST_F(Import, TellsOfBadFilesInChinese) {
    const test::InChinese chinese;
    import({QUrl::fromLocalFile(folder.path(QStringLiteral("gone.png")))});
    EXPECT_EQ(model->errorMessage(),
              u"gone.png：无法读取图像或有效尺寸。请检查文件是否完整，以及系统是否支持该 JPEG、PNG、TIFF 或 HEIC "
              u"文件。");
}

TEST_F(Import, KeepsUnusualNames) {
    const QStringList names{QStringLiteral("two\nlines.png"), QStringLiteral("\u202Egnp.png"),
                            QStringLiteral("🎨 画布.png"),     QStringLiteral("100%1 %25.png"),
                            QStringLiteral("a#b?c=d&e.png"),  QStringLiteral(" .png"),
                            QStringLiteral("back\\slash.png")};
    QList<QUrl> files;
    for (const QString& name : names) {
        files.append(picture(name, 60, 40));
    }
    import(files);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    ASSERT_EQ(model->rollLayout().items.size(), names.size());
    for (qsizetype index = 0; index < names.size(); ++index) {
        EXPECT_EQ(item(index).title, names[index]);
        EXPECT_TRUE(model->metadataFor(item(index)));
    }
    start();
    ASSERT_EQ(model->rollLayout().items.size(), names.size()) << "what was saved can be read again";
    EXPECT_EQ(item(1).title, names[1]);
    EXPECT_EQ(item(1).sourceURL, files[1]);
}

TEST_F(Import, NamesAFileWithAPercentSignWhileItIsRead) {
    const QUrl file = picture(QStringLiteral("100%1 %3.png"), 60, 40);
    const test::Barrier barrier;
    model->importFiles({file});
    EXPECT_EQ(model->message(), u"Adding artwork 1/1: 100%1 %3.png");
}

// Cancelling

TEST_F(Import, StopsWithinAFile) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    {
        const test::Barrier barrier;
        model->importFiles({file});
        model->cancelOperation();
        EXPECT_TRUE(model->busy()) << "until the file is let go";
        EXPECT_FALSE(model->progress()->isCancellable) << "it is cancelled already";
    }
    settle();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_EQ(model->progress(), std::nullopt);
    EXPECT_EQ(model->message(),
              u"The import was cancelled. Artworks added before that stay. The roll contains 0 artworks.");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Import, StopsBetweenTwoFilesAndKeepsTheFirst) {
    const test::OneWorker worker;
    const QUrl first = picture(QStringLiteral("a.png"), 120, 80);
    model->importFiles({first, picture(QStringLiteral("b.png"), 60, 40)});
    worker.finishWork();
    model->cancelOperation();
    settle();
    ASSERT_EQ(model->rollLayout().items.size(), 1);
    EXPECT_EQ(item(0).title, u"a.png");
    EXPECT_EQ(savedSources(), QList{first});
    EXPECT_EQ(model->message(),
              u"The import was cancelled. Artworks added before that stay. The roll contains 1 artworks.");
    model->undoRollEdit();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
}

TEST_F(Import, TellsOfFilesThatFailedBeforeItWasCancelled) {
    const test::InChinese chinese;
    test::Barrier beforeFirst;
    model->importFiles(
        {QUrl::fromLocalFile(folder.path(QStringLiteral("gone.png"))), picture(QStringLiteral("b.png"), 60, 40)});
    test::Barrier beforeSecond;
    beforeFirst.release();
    test::waitFor([this] { return model->message() == u"正在添加作品 2/2：b.png"; });
    model->cancelOperation();
    beforeSecond.release();
    settle();
    EXPECT_EQ(model->message(), u"已取消导入，此前添加的作品保留在画布上。卷布现有 0 幅作品。");
    EXPECT_TRUE(model->errorMessage()->startsWith(u"gone.png：")) << model->errorMessage()->toStdString();
    EXPECT_EQ(model->errorMessage()->count(u'\n'), 0);
}

TEST_F(Import, CanBeginAnewAfterItWasCancelled) {
    const QUrl file = picture(QStringLiteral("a.png"), 120, 80);
    {
        const test::Barrier barrier;
        model->importFiles({file});
        model->cancelOperation();
    }
    settle();
    import({file});
    EXPECT_EQ(model->rollLayout().items.size(), 1);
    EXPECT_EQ(model->message(), finished(1));
}

TEST_F(Import, IsNotCancelledByWhatCameBefore) {
    model->cancelOperation();
    import({picture(QStringLiteral("a.png"), 120, 80)});
    EXPECT_EQ(model->message(), finished(1));
}

} // namespace
} // namespace orvex
