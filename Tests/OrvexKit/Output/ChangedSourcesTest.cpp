// Sources that change while a roll is rendered from them. The progress report is called amid the rendering, on its own
// thread, so what it does to a file happens at a known moment.

#include "ChildProcess.h"
#include "Color/IccProfile.h"
#include "Imaging/PngWriter.h"
#include "InChinese.h"
#include "OrvexError.h"
#include "Output/RollPDFRenderer.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <tuple>

namespace orvex {
namespace {

using RollPDFRenderer::ProgressReport;
using RollPDFRenderer::RenderProgress;
using RollPDFRenderer::RenderStage;
using test::TemporaryFolder;
using test::TiffFixture;

constexpr int pictureWidth = 4;
constexpr int pictureHeight = 2;

/// The samples of a small picture, other ones for each `first`.
QByteArray samples(char first, int perPixel = 3) {
    QByteArray bytes;
    for (int index = 0; index < pictureWidth * pictureHeight * perPixel; ++index) {
        bytes += static_cast<char>(first + index);
    }
    return bytes;
}

TiffFixture tiff(char first = 1) {
    return {.width = pictureWidth,
            .height = pictureHeight,
            .profile = platform::sRgbProfileData(),
            .pixels = samples(first)};
}

/// A file of a picture: other bytes for each number, but as many.
struct Kind {
    const char* name;
    QByteArray (*file)(char number);
    ColorManagementMode mode = ColorManagementMode::driverManaged;
};

const std::vector<Kind> kinds{
    {"embedded rows", [](char number) { return tiff(number).bytes(); }},
    {"converted rows", [](char number) { return tiff(number).bytes(); }, ColorManagementMode::appManaged},
    {"a copied stream",
     [](char number) {
         const QByteArray pixels = samples(1); // other pixels might be compressed to fewer bytes
         const double pixelsPerInch = 100.0 + number;
         return platform::encodePng(pictureWidth, pictureHeight, {}, std::as_bytes(std::span(pixels)), pixelsPerInch);
     }},
};

std::filesystem::path native(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

/// Moves a file's date, as a change a second later would. Two changes within a tick of the system's clock have one
/// date.
void postpone(const QString& path) {
    std::filesystem::last_write_time(native(path),
                                     std::filesystem::last_write_time(native(path)) + std::chrono::seconds(1));
}

/// Puts other bytes into a file without a trace in its size and date.
void replaceUnnoticed(const QString& path, const QByteArray& bytes) {
    ASSERT_EQ(QFileInfo(path).size(), bytes.size());
    const auto date = std::filesystem::last_write_time(native(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
    file.close();
    std::filesystem::last_write_time(native(path), date);
}

/// A point in a rendering of two artworks.
struct Moment {
    const char* name;
    RenderStage stage;
    qsizetype artwork; ///< the one at work
    bool isBehindItsRows;
    const char* chinese; ///< what is told if the first one's source is another file then
    const char* english;

    [[nodiscard]] bool isNow(const RenderProgress& progress) const {
        return progress.stage == stage && progress.artwork == artwork &&
               (progress.rowsDone == progress.rowCount) == isBehindItsRows;
    }
};

constexpr auto changedWhileReadChinese = "作品在读取期间发生了变化：Sea。请重新导入。";
constexpr auto changedWhileReadEnglish = "Artwork changed while being read: Sea. Import it again.";

constexpr Moment duringPreflight{"duringPreflight",
                                 RenderStage::preflight,
                                 1,
                                 true,
                                 "作品在导出前检查期间发生了变化：Sea。请重新导入。",
                                 "Artwork changed during preflight: Sea. Import it again."};
constexpr Moment afterPreflight{"afterPreflight",
                                RenderStage::preflight,
                                2,
                                false,
                                "作品在导出前检查之后发生了变化：Sea。请重新导入。",
                                "Artwork changed after preflight: Sea. Import it again."};
constexpr Moment beforeItsRows{"beforeItsRows", RenderStage::drawing,    1,
                               false,           changedWhileReadChinese, changedWhileReadEnglish};
constexpr Moment behindItsRows{"behindItsRows",         RenderStage::drawing,   1, true,
                               changedWhileReadChinese, changedWhileReadEnglish};
constexpr Moment afterDrawing{"afterDrawing",
                              RenderStage::drawing,
                              2,
                              false,
                              "作品在卷布导出期间发生了变化：Sea。原有导出文件未被替换。请重新导入该作品。",
                              "Artwork changed during roll export: Sea. The previous export was not replaced. Import "
                              "the artwork again."};

/// What happens to a source; `other` are bytes to put in the place of its own.
struct Change {
    enum class Leaves { aFile, anEmptyFile, nothing, aFolder, aFifo };

    const char* name;
    Leaves what;
    void (*apply)(const QString& path, const QByteArray& other);
};

const std::vector<Change> changes{
    {"touched", Change::Leaves::aFile, [](const QString& path, const QByteArray&) { postpone(path); }},
    {"rewritten", Change::Leaves::aFile,
     [](const QString& path, const QByteArray& other) {
         replaceUnnoticed(path, other);
         postpone(path);
     }},
    {"lengthened", Change::Leaves::aFile,
     [](const QString& path, const QByteArray&) {
         const auto date = std::filesystem::last_write_time(native(path));
         std::filesystem::resize_file(native(path), std::filesystem::file_size(native(path)) + 1);
         std::filesystem::last_write_time(native(path), date);
     }},
    {"linked", Change::Leaves::aFile,
     [](const QString& path, const QByteArray&) {
         const QString target = path + QStringLiteral(".target");
         std::filesystem::rename(native(path), native(target));
         postpone(target);
         std::filesystem::create_symlink(native(target), native(path));
     }},
    {"emptied", Change::Leaves::anEmptyFile,
     [](const QString& path, const QByteArray&) { std::filesystem::resize_file(native(path), 0); }},
    {"removed", Change::Leaves::nothing,
     [](const QString& path, const QByteArray&) { std::filesystem::remove(native(path)); }},
    {"folder", Change::Leaves::aFolder,
     [](const QString& path, const QByteArray&) {
         std::filesystem::remove(native(path));
         std::filesystem::create_directory(native(path));
     }},
    {"fifo", Change::Leaves::aFifo,
     [](const QString& path, const QByteArray&) {
         std::filesystem::remove(native(path));
         ASSERT_EQ(::mkfifo(native(path).c_str(), 0600), 0);
     }},
};

QString inLanguage(bool isChinese, const char* chinese, const char* english) {
    return QString::fromUtf8(isChinese ? chinese : english);
}

/// What the look for the profile tells, which opens the file once more before its state is compared at preflight.
std::optional<QString> profileRefusal(const Change& change, const Kind& kind, const QString& path, bool isChinese) {
    switch (change.what) {
    case Change::Leaves::aFolder:
        return path + QStringLiteral(": Is a directory");
    case Change::Leaves::aFifo:
        return path + QStringLiteral(": Invalid argument");
    case Change::Leaves::anEmptyFile:
        if (kind.mode == ColorManagementMode::appManaged) {
            return inLanguage(
                isChinese,
                "原图未报告内嵌 ICC 配置文件，无法猜测其色彩空间。请在创作软件中正确标记，或改由驱动管理颜色。",
                "The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it correctly in "
                "your creative software or use driver-managed color.");
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

QString expectedMessage(const Moment& moment, const Change& change, const Kind& kind, const QString& path,
                        bool isChinese) {
    if (change.what == Change::Leaves::nothing) {
        return path + QStringLiteral(": No such file or directory");
    }
    if (moment.name == duringPreflight.name) {
        if (const auto refusal = profileRefusal(change, kind, path, isChinese)) {
            return *refusal;
        }
    }
    if (change.what == Change::Leaves::aFolder || change.what == Change::Leaves::aFifo) {
        return inLanguage(isChinese, "原图无法读取，或尚未下载到本机：a。",
                          "The source artwork is unreadable or has not been downloaded locally: a");
    }
    return inLanguage(isChinese, moment.chinese, moment.english);
}

/// Two artworks one above the other, "Sea" of the file "a" and "Hill" of the file "b".
class TwoSources {
public:
    TwoSources(const QByteArray& first, const QByteArray& second) {
        sources_.write(QStringLiteral("a"), first);
        sources_.write(QStringLiteral("b"), second);
        folder_.write(QStringLiteral("out.pdf"), "old");
        add(QStringLiteral("a"), QStringLiteral("Sea"));
        add(QStringLiteral("b"), QStringLiteral("Hill"));
    }

    void add(const QString& file, const QString& title) {
        RollArtwork artwork = RollArtwork::make({.id = QUuid::createUuid(),
                                                 .sourceURL = QUrl::fromLocalFile(sources_.path(file)),
                                                 .pixelWidth = pictureWidth,
                                                 .pixelHeight = pictureHeight,
                                                 .widthInches = 10});
        artwork.title = title;
        layout_.append(artwork, 0);
    }

    [[nodiscard]] QString first() const { return sources_.path(QStringLiteral("a")); }

    [[nodiscard]] QString out() const { return folder_.path(QStringLiteral("out.pdf")); }

    [[nodiscard]] QStringList names() const { return folder_.names(); }

    void render(ColorManagementMode mode, const ProgressReport& report) const {
        (void)RollPDFRenderer::render(layout_, {}, QUrl::fromLocalFile(out()),
                                      {.mode = mode, .driverColorCorrectionDisabledConfirmed = true},
                                      platform::sRgbProfileData(), {}, report);
    }

    /// The message of a rendering that is refused after something happened at a moment, once, and that leaves the
    /// earlier file alone in its folder, as it was.
    [[nodiscard]] QString refusal(const Moment& moment, const std::function<void()>& happen,
                                  ColorManagementMode mode = ColorManagementMode::driverManaged) const {
        bool hasHappened = false;
        QString message = QStringLiteral("no refusal");
        try {
            render(mode, [&](const RenderProgress& progress) {
                if (!hasHappened && moment.isNow(progress)) {
                    hasHappened = true;
                    happen();
                }
            });
        } catch (const Failure& failure) {
            message = failure.message();
        }
        EXPECT_TRUE(hasHappened);
        EXPECT_EQ(TemporaryFolder::read(out()), "old");
        EXPECT_EQ(names(), QStringList{QStringLiteral("out.pdf")});
        return message;
    }

private:
    TemporaryFolder sources_;
    TemporaryFolder folder_;
    RollLayout layout_;
};

class ChangedSource : public ::testing::TestWithParam<std::tuple<Moment, Change>> {};

TEST_P(ChangedSource, isRefusedByTheMomentOfItsChange) {
    const auto& [moment, change] = GetParam();
    for (const Kind& kind : kinds) {
        for (const bool isChinese : {false, true}) {
            SCOPED_TRACE(testing::Message() << kind.name << (isChinese ? " in Chinese" : " in English"));
            const auto chinese = isChinese ? std::make_unique<test::InChinese>() : nullptr;
            const TwoSources roll(kind.file(1), kind.file(50));
            const QString message = roll.refusal(
                moment, [&] { change.apply(roll.first(), kind.file(100)); }, kind.mode);
            EXPECT_EQ(message, expectedMessage(moment, change, kind, roll.first(), isChinese));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Moments, ChangedSource,
                         ::testing::Combine(::testing::Values(duringPreflight, afterPreflight, beforeItsRows,
                                                              behindItsRows, afterDrawing),
                                            ::testing::ValuesIn(changes)),
                         [](const auto& each) {
                             return std::string(std::get<Moment>(each.param).name) + "_" +
                                    std::get<Change>(each.param).name;
                         });

// Further artworks of a source that changes

TEST(ChangedSources, areNotTakenForProvenByALaterArtworkOfTheSameFile) {
    TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
    roll.add(QStringLiteral("a"), QStringLiteral("Sea again"));
    const auto rewrite = [&] {
        replaceUnnoticed(roll.first(), tiff(100).bytes());
        postpone(roll.first());
    };
    // The third artwork's preflight finds a picture in order; the first one's is another by then.
    EXPECT_EQ(roll.refusal(afterPreflight, rewrite), QString::fromUtf8(afterPreflight.english));
    EXPECT_EQ(roll.refusal(afterDrawing, rewrite),
              QStringLiteral("Artwork changed after preflight: Sea again. Import it again."));
}

// Changes that a file's size and date do not tell of

TEST(UnnoticedChange, toNoPictureIsFoundAtTheSecondReading) {
    for (const bool isChinese : {false, true}) {
        const auto chinese = isChinese ? std::make_unique<test::InChinese>() : nullptr;
        const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
        const QByteArray garbage(tiff(1).bytes().size(), 'x');
        EXPECT_EQ(roll.refusal(afterPreflight, [&] { replaceUnnoticed(roll.first(), garbage); }),
                  inLanguage(isChinese, "无法再次读取作品：Sea。", "Cannot read the artwork again: Sea."));
    }
}

TEST(UnnoticedChange, ofThePermissionsIsFoundAtTheSecondReading) {
    const QByteArray message = test::inChildProcess([]() -> QByteArray {
        if (!test::becomeOrdinaryUser()) {
            return "still the superuser";
        }
        const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
        return roll.refusal(afterPreflight, [&] { QFile::setPermissions(roll.first(), {}); }).toUtf8();
    });
    EXPECT_EQ(message, "Cannot read the artwork again: Sea.");
}

TEST(UnnoticedChange, toAnotherSizeIsFoundBeforeTheDrawing) {
    for (const bool isChinese : {false, true}) {
        const auto chinese = isChinese ? std::make_unique<test::InChinese>() : nullptr;
        const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
        TiffFixture upright = tiff(1);
        std::swap(upright.width, upright.height);
        EXPECT_EQ(roll.refusal(afterPreflight, [&] { replaceUnnoticed(roll.first(), upright.bytes()); }),
                  inLanguage(isChinese, "“Sea”的像素尺寸在导入后发生了变化。导出已停止，请重新导入该作品。",
                             "Pixel dimensions of “Sea” changed after import. Export was stopped. Import the artwork "
                             "again."));
    }
}

TEST(UnnoticedChange, thatKeepsItFromBeingConvertedLeavesNothingBehind) {
    const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
    const QByteArray damaged = tiff(1).bytes().replace("acsp", "bcsp");
    EXPECT_EQ(roll.refusal(
                  afterPreflight, [&] { replaceUnnoticed(roll.first(), damaged); }, ColorManagementMode::appManaged),
              QStringLiteral("The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it "
                             "correctly in your creative software or use driver-managed color."));
}

TEST(UnnoticedChange, thatDamagesThePixelsIsFoundWhereTheyAreDecoded) {
    const auto transparent = [](char first) {
        const QByteArray pixels = samples(first, 4);
        return platform::encodePng(pictureWidth, pictureHeight, {.hasAlpha = true}, std::as_bytes(std::span(pixels)));
    };
    for (const bool isChinese : {false, true}) {
        const auto chinese = isChinese ? std::make_unique<test::InChinese>() : nullptr;
        const TwoSources roll(transparent(1), transparent(50));
        QByteArray damaged = transparent(1);
        const qsizetype amidThePixels = damaged.indexOf("IDAT") + 20;
        damaged[amidThePixels] = static_cast<char>(damaged[amidThePixels] ^ 1);
        EXPECT_EQ(
            roll.refusal(afterPreflight, [&] { replaceUnnoticed(roll.first(), damaged); }),
            inLanguage(isChinese,
                       "系统无法解码该图像。请检查文件是否完整以及可用内存。本应用不设固定的像素数或图像文件大小上限。",
                       "The system could not decode this image. Check file integrity and available memory. The "
                       "app has no fixed pixel-count or image-file-size cap."));
    }
}

TEST(CutOffSource, isAPictureThatCannotBeDecodedAtPreflight) {
    const Moment beforePreflight{"beforePreflight", RenderStage::preflight, 1, false, "", ""};
    const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
    EXPECT_EQ(roll.refusal(beforePreflight, [&] { std::filesystem::resize_file(native(roll.first()), 0); }),
              QStringLiteral("The system could not decode this image. Check file integrity and available memory. The "
                             "app has no fixed pixel-count or image-file-size cap."));
}

// The file that is being written

TEST(WrittenRoll, isVerifiedBeforeItReplacesAnother) {
    for (const bool isChinese : {false, true}) {
        const auto chinese = isChinese ? std::make_unique<test::InChinese>() : nullptr;
        const TwoSources roll(tiff(1).bytes(), tiff(50).bytes());
        const auto spoilTheHeader = [&roll] {
            const QStringList names = roll.names();
            ASSERT_EQ(names.size(), 2);
            ASSERT_TRUE(names.first().startsWith(QStringLiteral(".orvex-roll-")));
            QFile file(QFileInfo(roll.out()).path() + u'/' + names.first());
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            ASSERT_EQ(file.write("none"), 4);
        };
        EXPECT_EQ(roll.refusal(behindItsRows, spoilTheHeader),
                  inLanguage(isChinese, "卷布 PDF 的尺寸或完整性验证失败。原有导出文件未被替换。",
                             "Roll PDF size or integrity verification failed. The previous export was not replaced."));
    }
}

} // namespace
} // namespace orvex
