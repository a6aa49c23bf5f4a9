#include "BackgroundSteps.h"
#include "InChinese.h"
#include "Json/JsonWriter.h"
#include "SessionFixture.h"

namespace orvex {
namespace {

const QString unreadable =
    QStringLiteral("Cannot read the image or valid dimensions. Check file integrity and whether the system supports "
                   "this JPEG, PNG, TIFF or HEIC file.");

class Sources : public test::SessionTest {
protected:
    Sources() { start(); }

    QUrl a = picture(QStringLiteral("a.png"), 120, 80);
    QUrl b = picture(QStringLiteral("b.png"), 60, 40);

    [[nodiscard]] const RollArtwork& item(qsizetype index) const { return model->rollLayout().items.at(index); }

    void restore(bool force) {
        model->restoreRollPreviews(force);
        settle();
    }

    static void remove(const QUrl& file) { ASSERT_TRUE(QFile::remove(file.toLocalFile())); }

    /// Both files on the canvas of a session that has just been started.
    void startWithBoth() {
        import({a, b});
        start();
    }
};

// What is known of an artwork's source

TEST_F(Sources, AreKnownOnlyIfTheFileAndItsSizeAreTheArtworks) {
    import({a});
    RollArtwork other = item(0);
    EXPECT_TRUE(model->metadataFor(other));
    other.sourceURL = b;
    EXPECT_FALSE(model->metadataFor(other));
    other = item(0);
    other.pixelWidth += 1;
    EXPECT_FALSE(model->metadataFor(other));
    other = item(0);
    other.pixelHeight += 1;
    EXPECT_FALSE(model->metadataFor(other));
    other = item(0);
    other.id = QUuid::createUuid();
    EXPECT_FALSE(model->metadataFor(other));
}

// Restoring

TEST_F(Sources, AreUnknownAfterAStartUntilTheyAreRestored) {
    startWithBoth();
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_EQ(model->image(), nullptr);
    restore(false);
    EXPECT_EQ(model->metadataFor(item(0))->url, a);
    EXPECT_EQ(model->metadataFor(item(1))->url, b);
    EXPECT_EQ(model->sizingDescriptions().size(), 2);
    EXPECT_EQ(model->image(), model->metadataFor(item(1))) << "the selected artwork's";
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
}

TEST_F(Sources, AreRestoredOnceUnlessForced) {
    startWithBoth();
    restore(false);
    remove(a);
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    restore(false);
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    restore(true);
    EXPECT_EQ(model->artworkPreviews().keys(), QList{item(1).id});
    EXPECT_EQ(model->rollLoadWarnings().keys(), QList{item(0).id});
}

TEST_F(Sources, CountAsRestoredOnAnEmptyCanvas) {
    restore(false);
    EXPECT_FALSE(model->busy());
    EXPECT_EQ(model->progress(), std::nullopt);
    RollArtwork lost = artwork();
    place({lost});
    restore(false);
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty()) << "it was not looked at";
}

TEST_F(Sources, ThatAreKnownAreNotReadAgain) {
    import({a, b});
    const SharedImageMetadata known = model->metadataFor(item(0));
    auto previews = model->artworkPreviews();
    previews.remove(item(1).id);
    SessionBackdoor::set(model->artworkPreviews, previews);
    remove(a);
    restore(true);
    EXPECT_EQ(model->metadataFor(item(0)), known);
    EXPECT_TRUE(model->metadataFor(item(1)));
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
}

TEST_F(Sources, ThatVanishedAreToldOnTheArtworkAndStopTheExport) {
    startWithBoth();
    const RollLayout before = model->rollLayout();
    remove(a);
    restore(false);
    EXPECT_EQ(model->rollLoadWarnings(), (QHash<QUuid, QString>{{item(0).id, unreadable}}));
    EXPECT_EQ(model->errorMessage(), std::nullopt) << "no alert";
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_TRUE(model->metadataFor(item(1)));
    EXPECT_EQ(model->rollExportIssue(), u"Cannot read the original: a.png. Relink the file.");
    const test::InChinese chinese;
    EXPECT_EQ(model->rollExportIssue(), u"无法读取原图：a.png。请重新关联文件。");
}

TEST_F(Sources, ThatCannotBeReadAreTold) {
    import({picture(QStringLiteral("1.png"), 60, 40), picture(QStringLiteral("2.png"), 60, 40),
            picture(QStringLiteral("3.png"), 60, 40)});
    start();
    remove(item(0).sourceURL);
    ASSERT_TRUE(QDir().mkdir(item(0).sourceURL.toLocalFile()));
    folder.write(QStringLiteral("pictures/2.png"), {});
    folder.write(QStringLiteral("pictures/3.png"),
                 test::TemporaryFolder::read(folder.path(QStringLiteral("pictures/b.png"))).first(60));
    restore(false);
    EXPECT_EQ(model->rollLoadWarnings().size(), 3);
    EXPECT_EQ(model->rollLoadWarnings().value(item(0).id), unreadable);
    EXPECT_EQ(model->rollLoadWarnings().value(item(1).id), unreadable);
    EXPECT_FALSE(model->rollLoadWarnings().value(item(2).id).isEmpty());
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Sources, OfAnotherSizeAreTold) {
    startWithBoth();
    picture(QStringLiteral("a.png"), 80, 120);
    restore(false);
    EXPECT_EQ(model->rollLoadWarnings().value(item(0).id),
              u"The original image dimensions have changed. Relink: a.png");
    EXPECT_FALSE(model->metadataFor(item(0)));
    EXPECT_EQ(item(0).pixelWidth, 120);
    const test::InChinese chinese;
    restore(true);
    EXPECT_EQ(model->rollLoadWarnings().value(item(0).id), u"原图的像素尺寸已改变，请重新关联：a.png");
}

TEST_F(Sources, ThatFailLoseWhatWasKnownOfThem) {
    import({a});
    RollLayout layout = model->rollLayout();
    layout.items.first().pixelWidth = 240;
    SessionBackdoor::set(model->rollLayout, layout);
    restore(true);
    EXPECT_TRUE(model->artworkPreviews().isEmpty());
    EXPECT_EQ(model->rollLoadWarnings().keys(), QList{item(0).id});
}

TEST_F(Sources, ThatAreFineAgainAreNoLongerWarnedOf) {
    startWithBoth();
    remove(a);
    restore(false);
    EXPECT_EQ(model->rollLoadWarnings().size(), 1);
    picture(QStringLiteral("a.png"), 120, 80);
    restore(true);
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    EXPECT_EQ(model->rollExportIssue(), std::nullopt);
}

TEST_F(Sources, HoldTheSessionWhileTheyAreRestored) {
    startWithBoth();
    SessionBackdoor::set(model->rollLoadWarnings,
                         QHash<QUuid, QString>{{item(0).id, QStringLiteral("of another time")}});
    const RollLayout before = model->rollLayout();
    {
        const test::Barrier barrier;
        model->restoreRollPreviews(false);
        EXPECT_TRUE(model->busy());
        EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
        EXPECT_EQ(model->progress(), (SessionProgress{.done = 0,
                                                      .total = 2,
                                                      .what = QStringLiteral("Reading originals"),
                                                      .fraction = 0.0,
                                                      .isCancellable = false}));
        model->rotateSelectedArtwork();
        EXPECT_EQ(model->rollLayout(), before);
        model->cancelOperation(); // which is not for this
    }
    settle();
    EXPECT_EQ(model->artworkPreviews().size(), 2);
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Sources, AreCountedWithThoseThatAreKnown) {
    import({a, b});
    auto previews = model->artworkPreviews();
    previews.remove(item(1).id);
    SessionBackdoor::set(model->artworkPreviews, previews);
    const test::InChinese chinese;
    const test::Barrier barrier;
    model->restoreRollPreviews(true);
    EXPECT_EQ(model->progress(),
              (SessionProgress{.done = 1, .total = 2, .what = QStringLiteral("读取原图"), .fraction = 0.5}));
}

TEST_F(Sources, AreRestoredWithoutAnAutosaveOrAStepOfUndo) {
    startWithBoth();
    const QString saved = stored(QStringLiteral("roll-layout.json"));
    ASSERT_TRUE(QFile::remove(saved));
    const QString message = model->message();
    restore(false);
    EXPECT_FALSE(QFile::exists(saved));
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->message(), message);
}

TEST_F(Sources, AreRestoredAfterAnUndoThatBringsUnknownOnesBack) {
    startWithBoth();
    restore(false);
    const QUuid id = item(0).id;
    model->removeArtwork(id);
    settle();
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    model->undoRollEdit();
    test::waitFor([&] { return model->artworkPreviews().contains(id); });
    settle();
    EXPECT_EQ(model->artworkPreviews().size(), 2);
}

TEST_F(Sources, AreLeftWhenTheSessionCloses) {
    startWithBoth();
    const QByteArray saved = test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json")));
    test::Barrier barrier;
    model->restoreRollPreviews(false);
    test::closeWhileHeld(model, barrier);
    EXPECT_EQ(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))), saved);
}

// Giving up what nothing holds

TEST_F(Sources, StayKnownAsLongAsAStepOfUndoHoldsTheArtwork) {
    import({a, b});
    const RollArtwork removed = item(0);
    model->removeArtwork(removed.id);
    settle();
    model->rotateSelectedArtwork();
    EXPECT_TRUE(model->metadataFor(removed));
    EXPECT_TRUE(model->sizingDescriptions().contains(platform::uuidText(removed.id)));
    for (int step = 0; step < RollHistory::mostSteps; ++step) {
        model->recordRollUndo();
    }
    model->persistRollLayout();
    EXPECT_EQ(model->artworkPreviews().keys(), QList{item(0).id});
    EXPECT_EQ(model->sizingDescriptions().keys(), QList{platform::uuidText(item(0).id)});
}

TEST_F(Sources, StayKnownAsLongAsAStepOfRedoHoldsTheArtwork) {
    import({a});
    const RollArtwork imported = item(0);
    model->undoRollEdit();
    settle();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_TRUE(model->metadataFor(imported));
    EXPECT_EQ(model->sizingDescriptions().size(), 1);
}

TEST_F(Sources, AreWarnedOfOnlyIfTheyAreOnTheCanvas) {
    import({a, b});
    const QUuid removed = item(0).id;
    SessionBackdoor::set(model->rollLoadWarnings,
                         QHash<QUuid, QString>{{removed, QStringLiteral("x")}, {item(1).id, QStringLiteral("y")}});
    model->removeArtwork(removed);
    settle();
    EXPECT_EQ(model->rollLoadWarnings().keys(), QList{item(0).id});
    EXPECT_TRUE(model->artworkPreviews().contains(removed)) << "which undo can bring back";
}

TEST_F(Sources, HaveNoDescriptionUnderAnotherFormOfTheId) {
    import({a});
    const QString key = platform::uuidText(item(0).id);
    auto descriptions = model->sizingDescriptions();
    descriptions.insert(key.toLower(), QStringLiteral("x"));
    descriptions.insert(QStringLiteral("no id"), QStringLiteral("y"));
    SessionBackdoor::set(model->sizingDescriptions, descriptions);
    model->persistRollLayout();
    EXPECT_EQ(model->sizingDescriptions().keys(), QList{key});
}

TEST_F(Sources, AreNotTakenForThoseOfAnArtworkThatHasAnotherFileMeanwhile) {
    import({a});
    const SharedImageMetadata known = model->metadataFor(item(0));
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>());
    test::Barrier barrier;
    model->restoreRollPreviews(true);
    RollLayout relinked = model->rollLayout();
    relinked.items[0].sourceURL = b;
    SessionBackdoor::set(model->rollLayout, relinked);
    SessionBackdoor::set(model->artworkPreviews, QHash<QUuid, SharedImageMetadata>{{item(0).id, known}});
    barrier.release();
    settle();
    EXPECT_EQ(model->artworkPreviews().value(item(0).id), known);
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
}

} // namespace
} // namespace orvex
