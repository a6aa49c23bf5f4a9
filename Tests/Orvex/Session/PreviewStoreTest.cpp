#include "PreviewStore.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "RasterReading.h"
#include "Scenes.h"
#include "TemporaryFolder.h"
#include "Writers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

namespace orvex {

namespace {

using test::pixelsOf;

constexpr int width = 40;
constexpr int height = 30;
constexpr qint64 pictureBytes = qint64{width} * height * 3;

samples::Picture picture(int pictureWidth = width, int pictureHeight = height) {
    return samples::pictureOf(pictureWidth, pictureHeight, samples::mountainDawn(pictureWidth, pictureHeight));
}

void setModified(const QUrl& file, time_t seconds) {
    const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = seconds, .tv_nsec = 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.toLocalFile().toUtf8().constData(), times, 0), 0);
}

class PreviewStoreTest : public ::testing::Test {
protected:
    [[nodiscard]] QUrl fileURL(const QString& name) const { return QUrl::fromLocalFile(folder_.path(name)); }

    /// A file of a picture of which no two are alike.
    QUrl makeFile() {
        const int number = ++fileCount_;
        const QUrl file = fileURL(QStringLiteral("art%1.png").arg(number));
        const auto shade = [number](int x, int y) {
            return samples::Pixel{.red = static_cast<float>(x) / width,
                                  .green = static_cast<float>(y) / height,
                                  .blue = static_cast<float>(number % 16) / 16.0F};
        };
        samples::writePng(samples::pictureOf(width, height, shade), {.profile = {}}, file.toLocalFile().toStdString());
        return file;
    }

    static ImageMetadata hold(const PreviewStore& store, const QUrl& file) {
        return store.hold(ImageMetadata::load(file), FileStamp::read(file));
    }

    static void remove(const QUrl& file) { ASSERT_TRUE(QFile::remove(file.toLocalFile())); }

    /// Whether the pixels are in memory; the file is gone by now.
    static bool isInMemory(const ImageMetadata& metadata) {
        try {
            metadata.preview.rows([](const platform::RowStrip&) {});
            return true;
        } catch (const platform::FileSystemError& error) {
            EXPECT_TRUE(error.isMissing());
            return false;
        }
    }

    static std::string refusalOf(const ImageMetadata& metadata) {
        try {
            metadata.preview.rows([](const platform::RowStrip&) {});
        } catch (const OrvexError& error) {
            return error.message().toStdString();
        }
        return "(none)";
    }

    test::TemporaryFolder folder_;
    int fileCount_ = 0;
};

} // namespace

TEST_F(PreviewStoreTest, HandsOutTheSamePictureAndFacts) {
    const QUrl file = makeFile();
    const ImageMetadata loaded = ImageMetadata::load(file);
    const PreviewStore store;
    const ImageMetadata held = store.hold(loaded, FileStamp::read(file));
    EXPECT_EQ(held.preview.width(), width);
    EXPECT_EQ(held.preview.height(), height);
    EXPECT_EQ(held.preview.orientation(), 1);
    EXPECT_EQ(held.preview.format(), loaded.preview.format());
    EXPECT_EQ(held.preview.iccProfile(), loaded.preview.iccProfile());
    EXPECT_EQ(held.url, loaded.url);
    EXPECT_EQ(held.pixelWidth, loaded.pixelWidth);
    EXPECT_EQ(held.physicalSizeSource, loaded.physicalSizeSource);
    EXPECT_EQ(held.sourceColorProfile, loaded.sourceColorProfile);
    EXPECT_EQ(pixelsOf(held.preview), pixelsOf(loaded.preview));
    EXPECT_EQ(store.heldBytes(), pictureBytes);
}

TEST_F(PreviewStoreTest, KeepsWithinItsBudget) {
    const PreviewStore store(3 * pictureBytes + 1);
    QList<ImageMetadata> artworks;
    for (int count = 1; count <= 10; ++count) {
        artworks.append(hold(store, makeFile()));
        EXPECT_EQ(store.heldBytes(), std::min(count, 3) * pictureBytes);
    }
    for (const ImageMetadata& each : artworks) {
        EXPECT_EQ(pixelsOf(each.preview), pixelsOf(ImageMetadata::load(each.url).preview));
        EXPECT_EQ(store.heldBytes(), 3 * pictureBytes);
    }
}

TEST_F(PreviewStoreTest, UsesAllOfItsBudget) {
    const PreviewStore store(3 * pictureBytes);
    QList<ImageMetadata> artworks;
    for (int count = 0; count < 4; ++count) {
        artworks.append(hold(store, makeFile()));
    }
    EXPECT_EQ(store.heldBytes(), 3 * pictureBytes);
}

TEST_F(PreviewStoreTest, DropsWhatWasUsedLeastRecently) {
    const PreviewStore store(2 * pictureBytes);
    const ImageMetadata first = hold(store, makeFile());
    const ImageMetadata second = hold(store, makeFile());
    (void)pixelsOf(first.preview);
    const ImageMetadata third = hold(store, makeFile());
    for (const ImageMetadata* each : {&first, &second, &third}) {
        remove(each->url);
    }
    EXPECT_TRUE(isInMemory(first));
    EXPECT_FALSE(isInMemory(second));
    EXPECT_TRUE(isInMemory(third));
}

TEST_F(PreviewStoreTest, KeepsWhatIsReadAgain) {
    const PreviewStore store(pictureBytes);
    const ImageMetadata first = hold(store, makeFile());
    const ImageMetadata second = hold(store, makeFile());
    (void)pixelsOf(first.preview);
    remove(first.url);
    remove(second.url);
    EXPECT_TRUE(isInMemory(first));
    EXPECT_FALSE(isInMemory(second));
}

TEST_F(PreviewStoreTest, ReadsTheSameBytesAgainOfEveryKindOfFile) {
    const std::string folder = folder_.path().toStdString() + "/";
    samples::writeJpeg(picture(3000, 200), {.orientation = 6, .profile = samples::displayP3Profile()},
                       folder + "a.jpg");
    samples::writePng(samples::pictureOf(width, height, samples::dahlia(width, height)),
                      {.hasAlpha = true, .profile = {}}, folder + "b.png");
    samples::writeTiff(picture(), {.bitsPerSample = 16, .profile = samples::wideGamutProfile()}, folder + "c.tif");
    samples::writeTiff(picture(), {.isCmyk = true, .profile = samples::sRgbProfile()}, folder + "d.tif");
    samples::writeHeif(picture(64, 64), {.profile = samples::displayP3Profile()}, folder + "e.heic");
    const PreviewStore store(0);
    for (const char* name : {"a.jpg", "b.png", "c.tif", "d.tif", "e.heic"}) {
        SCOPED_TRACE(name);
        const QUrl file = fileURL(QString::fromUtf8(name));
        const ImageMetadata held = hold(store, file);
        EXPECT_EQ(pixelsOf(held.preview), pixelsOf(ImageMetadata::load(file).preview));
        EXPECT_EQ(store.heldBytes(), 0);
    }
}

TEST_F(PreviewStoreTest, DeliversButNeverKeepsWhatIsLargerThanItsBudget) {
    const PreviewStore store(pictureBytes - 1);
    const ImageMetadata held = hold(store, makeFile());
    EXPECT_EQ(store.heldBytes(), 0);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(pixelsOf(held.preview).size(), pictureBytes);
        EXPECT_EQ(store.heldBytes(), 0);
    }
    remove(held.url);
    EXPECT_FALSE(isInMemory(held));
}

TEST_F(PreviewStoreTest, DropsNothingForWhatIsLargerThanItsBudget) {
    const PreviewStore store(pictureBytes);
    const ImageMetadata small = hold(store, makeFile());
    const QUrl file = fileURL(QStringLiteral("large.png"));
    samples::writePng(picture(width + 1, height), {.profile = {}}, file.toLocalFile().toStdString());
    const ImageMetadata large = hold(store, file);
    EXPECT_EQ(store.heldBytes(), pictureBytes);
    remove(small.url);
    EXPECT_TRUE(isInMemory(small));
}

TEST_F(PreviewStoreTest, FreesThePixelsWithTheLastCopy) {
    const PreviewStore store;
    std::optional<ImageMetadata> first = hold(store, makeFile());
    std::optional<ImageMetadata> copy = first;
    const ImageMetadata second = hold(store, makeFile());
    EXPECT_EQ(store.heldBytes(), 2 * pictureBytes);
    first.reset();
    EXPECT_EQ(store.heldBytes(), 2 * pictureBytes);
    copy.reset();
    EXPECT_EQ(store.heldBytes(), pictureBytes);
}

TEST_F(PreviewStoreTest, IsOutlivedByWhatItHandedOut) {
    auto store = std::make_unique<PreviewStore>(0);
    const ImageMetadata held = hold(*store, makeFile());
    store.reset();
    EXPECT_EQ(pixelsOf(held.preview).size(), pictureBytes);
}

TEST_F(PreviewStoreTest, DoesNotLookAtTheFileWhileThePixelsAreInMemory) {
    const PreviewStore store;
    const ImageMetadata held = hold(store, makeFile());
    setModified(held.url, 1'700'000'000);
    EXPECT_EQ(refusalOf(held), "(none)");
}

TEST_F(PreviewStoreTest, RefusesAFileThatWasTouched) {
    const PreviewStore store(0);
    const ImageMetadata held = hold(store, makeFile());
    setModified(held.url, 1'700'000'000);
    EXPECT_EQ(refusalOf(held), "Artwork changed after it was inspected: art1.png. Import or relink it again.");
    const test::InChinese chinese;
    EXPECT_EQ(refusalOf(held), "原图在检查后已更改：art1.png。请重新导入或重新关联。");
}

TEST_F(PreviewStoreTest, RefusesAnotherPictureOfTheSameSizeAndTime) {
    const QUrl file = fileURL(QStringLiteral("art.tif"));
    const auto write = [&](int pictureWidth, int pictureHeight) {
        samples::writeTiff(picture(pictureWidth, pictureHeight),
                           {.compression = samples::TiffForm::Compression::none, .profile = {}},
                           file.toLocalFile().toStdString());
        setModified(file, 1'700'000'000);
    };
    write(width, height);
    const PreviewStore store(0);
    const ImageMetadata held = hold(store, file);
    EXPECT_EQ(refusalOf(held), "(none)");
    write(height, width);
    ASSERT_EQ(FileStamp::read(file).modified, 1'700'000'000'000'000'000);
    EXPECT_EQ(refusalOf(held), "Artwork changed after it was inspected: art.tif. Import or relink it again.");
}

TEST_F(PreviewStoreTest, TellsOfAFileThatIsGone) {
    const PreviewStore store(0);
    const ImageMetadata held = hold(store, makeFile());
    remove(held.url);
    EXPECT_FALSE(isInMemory(held));
}

TEST_F(PreviewStoreTest, ReadsAgainOnceTheFileIsBack) {
    const PreviewStore store;
    const PreviewStore forgetful(0);
    const ImageMetadata held = hold(forgetful, makeFile());
    const QString path = held.url.toLocalFile();
    const QByteArray before = pixelsOf(held.preview);
    ASSERT_TRUE(QFile::rename(path, path + QStringLiteral("-away")));
    EXPECT_FALSE(isInMemory(held));
    ASSERT_TRUE(QFile::rename(path + QStringLiteral("-away"), path));
    EXPECT_EQ(pixelsOf(held.preview), before);
}

TEST_F(PreviewStoreTest, ServesManyReadersAtOnce) {
    constexpr int count = 6;
    const PreviewStore store(2 * pictureBytes);
    QList<ImageMetadata> artworks;
    QByteArrayList expected;
    for (int number = 0; number < count; ++number) {
        artworks.append(hold(store, makeFile()));
        expected.append(pixelsOf(ImageMetadata::load(artworks.last().url).preview));
    }
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> readers;
        for (int reader = 0; reader < 8; ++reader) {
            readers.emplace_back([&, reader] {
                for (int turn = 0; turn < 60; ++turn) {
                    const int number = (turn * (1 + reader % 5) + reader) % count;
                    wrong += pixelsOf(artworks[number].preview) == expected[number] ? 0 : 1;
                    wrong += store.heldBytes() <= 2 * pictureBytes ? 0 : 1;
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
    artworks.clear();
    EXPECT_EQ(store.heldBytes(), 0);
}

TEST_F(PreviewStoreTest, KeepsOneOfEqualProfiles) {
    const PreviewStore store;
    QList<ImageMetadata> artworks;
    for (int number = 0; number < 3; ++number) {
        const QUrl file = fileURL(QStringLiteral("profile%1.jpg").arg(number));
        samples::writeJpeg(picture(), {.orientation = {}, .profile = samples::displayP3Profile()},
                           file.toLocalFile().toStdString());
        artworks.append(hold(store, file));
    }
    const auto& profiles = artworks[0].sourceColorProfile.embeddedICCData;
    ASSERT_TRUE(profiles);
    for (const ImageMetadata& each : artworks) {
        ASSERT_TRUE(each.preview.iccProfile() && each.sourceColorProfile.embeddedICCData);
        EXPECT_EQ(each.preview.iccProfile()->constData(), profiles->constData());
        EXPECT_EQ(each.sourceColorProfile.embeddedICCData->constData(), profiles->constData());
    }
}

TEST_F(PreviewStoreTest, KeepsDifferentProfilesApart) {
    const PreviewStore store;
    const QUrl first = fileURL(QStringLiteral("a.jpg"));
    const QUrl second = fileURL(QStringLiteral("b.jpg"));
    samples::writeJpeg(picture(), {.orientation = {}, .profile = samples::displayP3Profile()},
                       first.toLocalFile().toStdString());
    samples::writeJpeg(picture(), {.orientation = {}, .profile = samples::sRgbProfile()},
                       second.toLocalFile().toStdString());
    std::optional<ImageMetadata> held = hold(store, first);
    EXPECT_EQ(held->sourceColorProfile, ImageMetadata::load(first).sourceColorProfile);
    held = hold(store, second);
    EXPECT_EQ(held->sourceColorProfile, ImageMetadata::load(second).sourceColorProfile);
    held = hold(store, first); // whose profile nobody had in between
    EXPECT_EQ(held->sourceColorProfile, ImageMetadata::load(first).sourceColorProfile);
}

TEST_F(PreviewStoreTest, HoldsThirtyLargePreviewsByDefault) {
    constexpr qint64 largest = ImageMetadata::previewPixels * 1600 * 3; // of an artwork of three to two, 8 bits
    EXPECT_EQ(PreviewStore::defaultBudgetBytes, 352'321'536);
    EXPECT_GE(PreviewStore::defaultBudgetBytes / largest, 30);
}

} // namespace orvex
