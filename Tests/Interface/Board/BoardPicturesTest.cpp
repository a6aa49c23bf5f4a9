#include "Board/BoardPictures.h"

#include "CountedPreview.h"
#include "SessionFixture.h"

#include <vector>

namespace orvex::test {

namespace {

const QColor topLeft(200, 0, 0);
const QColor topRight(0, 200, 0);
const QColor bottomLeft(0, 0, 200);
const QColor bottomRight(200, 200, 0);

CountedPreview quarters(const QSize& size) {
    return CountedPreview::make(size, [](double x, double y) {
        return y < 0.5 ? (x < 0.5 ? topLeft : topRight) : (x < 0.5 ? bottomLeft : bottomRight);
    });
}

class BoardPicturesTest : public SessionTest {
protected:
    std::unique_ptr<BoardPictures> pictures = std::make_unique<BoardPictures>();

    void settlePictures() const {
        waitFor([this] { return !pictures->isMaking(); });
    }

    /// Asks for a picture and waits until it is there.
    QImage made(const CountedPreview& preview, int longestSide) const {
        (void)pictures->picture(preview.metadata, longestSide);
        settlePictures();
        return pictures->picture(preview.metadata, longestSide);
    }

    QPixmap placedOnceMade(const RollArtwork& item, const CountedPreview& preview, const QSize& pixels) const {
        (void)pictures->placed(item, preview.metadata, pixels);
        settlePictures();
        return pictures->placed(item, preview.metadata, pixels);
    }

    static QColor colorAt(const QPixmap& pixmap, double x, double y) {
        return pixmap.toImage().pixelColor(static_cast<int>(x * pixmap.width()), static_cast<int>(y * pixmap.height()));
    }
};

} // namespace

TEST_F(BoardPicturesTest, APictureIsMadeOnceAndInTheBackground) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    EXPECT_TRUE(pictures->picture(preview.metadata, 200).isNull());
    EXPECT_TRUE(pictures->picture(preview.metadata, 256).isNull());
    settlePictures();
    EXPECT_EQ(pictures->picture(preview.metadata, 200).size(), QSize(256, 170));
    EXPECT_EQ(pictures->picture(preview.metadata, 10).pixelColor(0, 0), topLeft);
    EXPECT_EQ(preview.rows->reads, 1);
    EXPECT_EQ(preview.rows->readsOnMainThread, 0);
    EXPECT_FALSE(pictures->isMaking());
}

TEST_F(BoardPicturesTest, WhatIsReadyIsAnnouncedForItsPreview) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    std::vector<const ImageMetadata*> announced;
    QObject::connect(pictures.get(), &BoardPictures::pictureReady, pictures.get(),
                     [&](const ImageMetadata* metadata) { announced.push_back(metadata); });
    (void)made(preview, 256);
    (void)made(preview, 512);
    EXPECT_EQ(announced, std::vector<const ImageMetadata*>(2, preview.metadata.get()));
}

TEST_F(BoardPicturesTest, ASmallerPictureStandsInForALargerOne) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    (void)made(preview, 256);
    EXPECT_EQ(pictures->picture(preview.metadata, 500).size(), QSize(256, 170));
    settlePictures();
    EXPECT_EQ(pictures->picture(preview.metadata, 500).size(), QSize(512, 341));
    EXPECT_EQ(preview.rows->reads, 2);
}

TEST_F(BoardPicturesTest, WithoutAPreviewThereIsNoPicture) {
    EXPECT_TRUE(pictures->picture(nullptr, 256).isNull());
    EXPECT_TRUE(pictures->placed(artwork(), nullptr, {30, 20}).isNull());
    pictures->prepare(nullptr);
    EXPECT_FALSE(pictures->isMaking());
}

TEST_F(BoardPicturesTest, NoMoreIsKeptThanTheBudgetAllows) {
    std::vector<CountedPreview> previews;
    for (int number = 0; number < 5; ++number) {
        previews.push_back(CountedPreview::ofColor(topLeft, {2400, 1600}));
        (void)placedOnceMade(artwork(), previews.back(), {2400, 1600});
        EXPECT_LE(pictures->heldKiB(), BoardPictures::picturesBudgetKiB + BoardPictures::placedBudgetKiB);
    }
    EXPECT_GT(pictures->heldKiB(), BoardPictures::picturesBudgetKiB);
    EXPECT_EQ(previews.front().rows->reads, 1);
    EXPECT_EQ(made(previews.front(), 2400).size(), QSize(2400, 1600));
    EXPECT_EQ(previews.front().rows->reads, 2) << "the one used least recently had to go";
}

TEST_F(BoardPicturesTest, LargePicturesDoNotPushOutTheSmallOnesThatStandIn) {
    const CountedPreview small = CountedPreview::ofColor(topLeft);
    (void)made(small, 256);
    for (int number = 0; number < 4; ++number) {
        (void)made(CountedPreview::ofColor(topLeft, {2400, 1600}), 2400);
    }
    EXPECT_EQ(pictures->picture(small.metadata, 256).size(), QSize(256, 170));
    EXPECT_EQ(small.rows->reads, 1);
}

TEST_F(BoardPicturesTest, APlacedPictureIsTurnedAsTheArtworkLies) {
    const CountedPreview preview = quarters({600, 400});
    const std::vector<QList<QColor>> corners{{topLeft, topRight, bottomRight, bottomLeft},
                                             {bottomLeft, topLeft, topRight, bottomRight},
                                             {bottomRight, bottomLeft, topLeft, topRight},
                                             {topRight, bottomRight, bottomLeft, topLeft}};
    RollArtwork item = artwork();
    for (int turns = 0; turns < 4; ++turns) {
        item.rotationQuarterTurns = turns;
        const QSize size = turns % 2 == 0 ? QSize(90, 60) : QSize(60, 90);
        const QPixmap pixmap = placedOnceMade(item, preview, size);
        EXPECT_EQ(pixmap.size(), size);
        const QList<QColor> shown{colorAt(pixmap, 0.2, 0.2), colorAt(pixmap, 0.8, 0.2), colorAt(pixmap, 0.8, 0.8),
                                  colorAt(pixmap, 0.2, 0.8)};
        EXPECT_EQ(shown, corners[static_cast<std::size_t>(turns)]) << turns;
    }
    EXPECT_EQ(preview.rows->reads, 1) << "all of one picture";
}

TEST_F(BoardPicturesTest, ATurnedPictureKeepsItsSizeForAList) {
    const CountedPreview preview = quarters({600, 400});
    (void)made(preview, 256);
    RollArtwork item = artwork();
    item.rotationQuarterTurns = 1;
    const QImage turned = pictures->turnedPicture(item, preview.metadata, 40);
    EXPECT_EQ(turned.size(), QSize(170, 256));
    EXPECT_EQ(turned.pixelColor(20, 20), bottomLeft);
}

TEST_F(BoardPicturesTest, APlacedPictureHasNoMorePixelsThanThePreview) {
    const CountedPreview preview = quarters({600, 400});
    RollArtwork item = artwork();
    EXPECT_EQ(placedOnceMade(item, preview, {6000, 4000}).size(), QSize(600, 400));
    item.rotationQuarterTurns = 3;
    EXPECT_EQ(placedOnceMade(item, preview, {4000, 6000}).size(), QSize(400, 600));
}

TEST_F(BoardPicturesTest, WhileItsSizeChangesAPictureStaysAsItWasDrawnLast) {
    const CountedPreview preview = quarters({600, 400});
    RollArtwork item = artwork();
    (void)placedOnceMade(item, preview, {90, 60});
    const auto quick = BoardPictures::Sharpness::quick;
    EXPECT_EQ(pictures->placed(item, preview.metadata, {300, 200}, quick).size(), QSize(90, 60));
    EXPECT_FALSE(pictures->isMaking());
    EXPECT_EQ(placedOnceMade(item, preview, {300, 200}).size(), QSize(300, 200));
    item.rotationQuarterTurns = 1;
    EXPECT_EQ(pictures->placed(item, preview.metadata, {60, 90}, quick).size(), QSize(60, 90));
}

TEST_F(BoardPicturesTest, AReplacedPreviewHasAPictureOfItsOwn) {
    const CountedPreview before = CountedPreview::ofColor(topLeft);
    const CountedPreview after = CountedPreview::ofColor(topRight);
    const RollArtwork item = artwork();
    EXPECT_EQ(colorAt(placedOnceMade(item, before, {90, 60}), 0.5, 0.5), topLeft);
    EXPECT_TRUE(pictures->placed(item, after.metadata, {90, 60}).isNull()) << "nothing old stands in";
    settlePictures();
    EXPECT_EQ(colorAt(pictures->placed(item, after.metadata, {90, 60}), 0.5, 0.5), topRight);
}

TEST_F(BoardPicturesTest, APreviewAtTheAddressOfAnEarlierOneHasAPictureOfItsOwn) {
    // The same object stands for one that came to lie where another was.
    auto first = std::make_unique<CountedPreview>(CountedPreview::ofColor(topLeft));
    ImageMetadata place = *first->metadata;
    const auto lent = [&place] { return SharedImageMetadata(&place, [](const ImageMetadata*) {}); };
    SharedImageMetadata metadata = lent();
    (void)pictures->picture(metadata, 256);
    settlePictures();
    EXPECT_EQ(pictures->picture(metadata, 256).pixelColor(0, 0), topLeft);
    metadata.reset();
    place = *CountedPreview::ofColor(topRight).metadata;
    metadata = lent();
    EXPECT_TRUE(pictures->picture(metadata, 256).isNull());
    settlePictures();
    EXPECT_EQ(pictures->picture(metadata, 256).pixelColor(0, 0), topRight);
}

TEST_F(BoardPicturesTest, WhatCannotBeReadGivesNoPictureAndIsNotAskedAgain) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    preview.rows->isBroken = true;
    for (int times = 0; times < 3; ++times) {
        EXPECT_TRUE(made(preview, 256).isNull());
        pictures->prepare(preview.metadata);
        settlePictures();
    }
    EXPECT_EQ(preview.rows->reads, 1);
}

TEST_F(BoardPicturesTest, ASourceThatChangedOnTheDiskGivesNoPicture) {
    const QUrl file = picture(QStringLiteral("a.png"), 60, 40);
    const PreviewStore store(0); // keeps no pixels
    const auto metadata =
        std::make_shared<const ImageMetadata>(store.hold(ImageMetadata::load(file), FileStamp::read(file)));
    picture(QStringLiteral("a.png"), 60, 41);
    (void)pictures->picture(metadata, 256);
    settlePictures();
    EXPECT_TRUE(pictures->picture(metadata, 256).isNull());
    EXPECT_FALSE(pictures->isMaking());
}

TEST_F(BoardPicturesTest, APreparedPictureIsThereWhenItIsAskedFor) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    pictures->prepare(preview.metadata);
    settlePictures();
    pictures->prepare(preview.metadata);
    EXPECT_FALSE(pictures->isMaking());
    EXPECT_EQ(pictures->picture(preview.metadata, 256).size(), QSize(256, 170));
    EXPECT_EQ(preview.rows->reads, 1);
}

TEST_F(BoardPicturesTest, WhatIsNotLookedAtAnyMoreIsNotMade) {
    std::vector<CountedPreview> previews;
    Barrier barrier;
    for (int number = 0; number < 20; ++number) {
        previews.push_back(CountedPreview::ofColor(topLeft));
        (void)pictures->picture(previews.back().metadata, 1024);
    }
    const CountedPreview prepared = CountedPreview::ofColor(topLeft);
    pictures->prepare(prepared.metadata);
    pictures->giveUpLargerPictures();
    const CountedPreview shown = CountedPreview::ofColor(topLeft);
    (void)pictures->picture(shown.metadata, 1024);
    barrier.release();
    settlePictures();
    EXPECT_EQ(previews.front().rows->reads, 1) << "it was begun";
    EXPECT_EQ(previews.back().rows->reads, 0);
    EXPECT_EQ(prepared.rows->reads, 1);
    EXPECT_EQ(shown.rows->reads, 1);
}

TEST_F(BoardPicturesTest, WhatWasAskedForLastComesFirst) {
    std::vector<CountedPreview> previews;
    Barrier barrier;
    for (int number = 0; number < 20; ++number) {
        previews.push_back(CountedPreview::ofColor(topLeft));
        (void)pictures->picture(previews.back().metadata, 256);
    }
    barrier.release();
    waitFor([&] { return !pictures->picture(previews.back().metadata, 256).isNull(); });
    EXPECT_TRUE(pictures->isMaking());
    EXPECT_EQ(previews[1 + static_cast<std::size_t>(platform::userInitiatedPool().maxThreadCount())].rows->reads, 0);
    settlePictures();
    EXPECT_EQ(previews[1].rows->reads, 1);
}

TEST_F(BoardPicturesTest, APreviewThatIsGoneIsNotRead) {
    CountedPreview held = CountedPreview::ofColor(topLeft);
    Barrier barrier;
    std::vector<CountedPreview> begun;
    for (int number = 0; number < platform::userInitiatedPool().maxThreadCount(); ++number) {
        begun.push_back(CountedPreview::ofColor(topLeft));
        (void)pictures->picture(begun.back().metadata, 256);
    }
    (void)pictures->picture(held.metadata, 256);
    held.metadata.reset();
    barrier.release();
    settlePictures();
    EXPECT_EQ(held.rows->reads, 0);
}

TEST_F(BoardPicturesTest, ItCanGoWhilePicturesAreMade) {
    const CountedPreview preview = CountedPreview::ofColor(topLeft);
    Barrier barrier;
    for (const int side : {256, 512, 1024}) {
        (void)pictures->picture(preview.metadata, side);
    }
    pictures.reset();
    barrier.release();
    platform::userInitiatedPool().waitForDone();
    QCoreApplication::processEvents();
    EXPECT_LE(preview.rows->reads, 3);
    EXPECT_EQ(preview.metadata.use_count(), 1) << "nothing holds it any more";
}

} // namespace orvex::test
