// Damaged and hostile TIFF files: every one is refused, or read exactly as if it were whole.

#include "Imaging/ImageError.h"
#include "Imaging/ImageSource.h"
#include "TemporaryFolder.h"
#include "TiffFixtures.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tiffio.h>

#include <future>

namespace orvex::platform {

namespace {

using test::allRows;
using test::SampleValues;
using test::scattered;
using test::smooth;
using test::TemporaryFolder;
using test::TiffBytes;
using test::TiffForm;
using test::writeTiff;

constexpr quint64 giant = 0x7FFFFFFF;

class TiffDamage : public ::testing::Test {
protected:
    /// A new file each time: one that is truncated instead is written to the disk at once.
    QString write(const QByteArray& bytes) {
        QFile::remove(folder_.path(QStringLiteral("damaged.tif")));
        return folder_.write(QStringLiteral("damaged.tif"), bytes);
    }

    /// The rows of the file of these bytes, or nothing if it is refused, at once or while it is read.
    std::optional<QByteArray> rowsOf(const QByteArray& bytes) {
        try {
            return allRows(ImageSource::open(write(bytes))->full());
        } catch (const ImageError& error) {
            EXPECT_FALSE(error.message().isEmpty());
            return std::nullopt;
        }
    }

    bool isRefusedAtOnce(const QByteArray& bytes) {
        try {
            (void)ImageSource::open(write(bytes));
            return false;
        } catch (const ImageError&) {
            return true;
        }
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

constexpr quint32 width = 32;
constexpr quint32 height = 24;

/// RGB in three strips, or in six tiles of 16 x 16, or in separate planes.
enum class Shape { strips, tiles, planes };

TiffBytes picture(Shape shape, bool isBigEndian = false, bool isBig = false) {
    QByteArray pixels;
    const std::size_t tileCount = 4;
    const std::size_t bytes = shape == Shape::tiles ? tileCount * 16 * 16 * 3 : std::size_t{width} * height * 3;
    for (const quint64 value : scattered(bytes, 8)) {
        pixels.append(static_cast<char>(value));
    }
    TiffBytes tiff = TiffBytes::plain(width, height, 3, pixels, isBigEndian, isBig);
    if (shape == Shape::tiles) {
        tiff.remove(273).remove(278).remove(279).longs(322, {16}).longs(323, {16});
        return tiff.longs(324, {0, 768, 1536, 2304}).longs(325, {768, 768, 768, 768});
    }
    if (shape == Shape::planes) {
        tiff.shorts(284, {2});
        return tiff.longs(273, {0, 768, 1536}).longs(279, {768, 768, 768});
    }
    return tiff.longs(278, {8}).longs(273, {0, 768, 1536}).longs(279, {768, 768, 768});
}

const std::vector<std::pair<const char*, Shape>>& shapes() {
    static const std::vector<std::pair<const char*, Shape>> all = {
        {"strips", Shape::strips}, {"tiles", Shape::tiles}, {"planes", Shape::planes}};
    return all;
}

/// Sixty-four places in a file, and all those where one of its parts begins, with those beside them.
std::vector<qsizetype> cuts(const TiffBytes& tiff, bool isBig) {
    const qsizetype size = tiff.bytes().size();
    std::vector<qsizetype> places;
    for (qsizetype index = 0; index < 64; ++index) {
        places.push_back(size * index / 64);
    }
    std::vector<qsizetype> starts = {0, 2, 4, 8, 16, size};
    const auto directory = static_cast<qsizetype>(tiff.directoryOffset());
    for (qsizetype entry = 0; entry < 14; ++entry) {
        starts.push_back(directory + (isBig ? 8 + 20 * entry : 2 + 12 * entry));
    }
    for (qsizetype part = 0; part < 4; ++part) {
        starts.push_back(static_cast<qsizetype>(tiff.pixelOffset()) + 768 * part);
    }
    for (const qsizetype start : starts) {
        for (const qsizetype place : {start - 1, start, start + 1}) {
            if (place >= 0 && place < size) {
                places.push_back(place);
            }
        }
    }
    return places;
}

} // namespace

TEST_F(TiffDamage, ACutFileIsRefusedWhereverItIsCut) {
    for (const auto& [name, shape] : shapes()) {
        for (int kind = 0; kind < 8; ++kind) {
            TiffBytes tiff = picture(shape, kind % 2 == 1, kind / 2 % 2 == 1);
            if (kind / 4 == 1) {
                tiff.pixelsFirst();
            }
            const QByteArray whole = tiff.bytes();
            ASSERT_TRUE(rowsOf(whole));
            for (const qsizetype cut : cuts(tiff, kind / 2 % 2 == 1)) {
                // The last four or eight bytes are the offset of the next directory, which nobody needs.
                const bool isNeeded = kind / 4 == 0 || cut < whole.size() - 200;
                if (isNeeded) {
                    EXPECT_FALSE(rowsOf(whole.first(cut))) << name << ", kind " << kind << ", cut at " << cut;
                }
            }
        }
    }
}

TEST_F(TiffDamage, ACutBehindThePixelsAndTheirTagsDoesNoHarm) {
    TiffBytes tiff = picture(Shape::strips).pixelsFirst();
    const QByteArray expected = *rowsOf(tiff.bytes());
    tiff.setRaw(33432, 2, 500, QByteArray(500, 'c'));
    const QByteArray whole = tiff.bytes();
    for (const qsizetype missing : {1, 100, 499, 500}) {
        EXPECT_EQ(rowsOf(whole.chopped(missing)), expected) << missing;
    }
}

TEST_F(TiffDamage, ACutThroughTheProfileIsRefused) {
    TiffBytes tiff = picture(Shape::strips).pixelsFirst();
    tiff.setRaw(34675, 7, 600, QByteArray(600, 'p'));
    const QByteArray whole = tiff.bytes();
    for (const qsizetype missing : {1, 100, 599, 600}) {
        EXPECT_EQ(rowsOf(whole.chopped(missing)), std::nullopt) << missing;
    }
}

namespace {

struct CodedCase {
    const char* name;
    quint16 compression;
    quint16 bits;
    quint16 samples;
};

void PrintTo(const CodedCase& row, std::ostream* out) {
    *out << row.name;
}

class CodedTiffDamage : public TiffDamage, public ::testing::WithParamInterface<CodedCase> {
protected:
    /// A picture of one compressed strip, at the end of the file.
    TiffBytes coded() {
        const CodedCase& row = GetParam();
        TiffForm form;
        form.compression = row.compression;
        form.bits = row.bits;
        form.samples = row.samples;
        form.photometric = row.samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        form.rowsPerStrip = form.height;
        const QString path = folder().path(QStringLiteral("whole.tif"));
        writeTiff(path, form, row.bits == 1 ? scattered(form.sampleCount(), 1) : smooth(form));
        const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.toUtf8().constData(), "r"), TIFFClose);
        strip_.resize(static_cast<qsizetype>(TIFFGetStrileByteCount(tiff.get(), 0)));
        EXPECT_EQ(TIFFReadRawStrip(tiff.get(), 0, strip_.data(), strip_.size()), strip_.size());
        TiffBytes bytes = TiffBytes::plain(form.width, form.height, form.samples, strip_);
        bytes.shorts(258, std::vector<quint64>(row.samples, row.bits)).shorts(259, {row.compression});
        quint32 tableBytes = 0;
        const char* tables = nullptr;
        if (TIFFGetField(tiff.get(), TIFFTAG_JPEGTABLES, &tableBytes, &tables) == 1) {
            bytes.setRaw(TIFFTAG_JPEGTABLES, 7, tableBytes, QByteArray(tables, tableBytes));
        }
        return bytes;
    }

    [[nodiscard]] const QByteArray& strip() const { return strip_; }

private:
    QByteArray strip_;
};

} // namespace

TEST_P(CodedTiffDamage, ACutStripIsRefused) {
    const TiffBytes tiff = coded();
    const QByteArray whole = tiff.bytes();
    ASSERT_TRUE(rowsOf(whole));
    for (qsizetype kept = 0; kept < strip().size(); kept += 1 + strip().size() / 64) {
        EXPECT_FALSE(rowsOf(whole.first(whole.size() - strip().size() + kept))) << kept;
    }
}

TEST_P(CodedTiffDamage, AStripWhoseByteCountIsTooSmallIsRefusedOrWholeAllTheSame) {
    TiffBytes tiff = coded();
    const QByteArray expected = *rowsOf(tiff.bytes());
    int refused = 0;
    for (qsizetype kept = 0; kept < strip().size(); kept += 1 + strip().size() / 64) {
        tiff.longs(279, {static_cast<quint64>(kept)}).pixels(strip().first(kept));
        const std::optional<QByteArray> rows = rowsOf(tiff.bytes());
        EXPECT_TRUE(!rows || *rows == expected) << kept;
        refused += rows ? 0 : 1;
    }
    EXPECT_GT(refused, 30);
}

TEST_P(CodedTiffDamage, AStripOfTooFewRowsIsRefused) {
    TiffBytes tiff = coded();
    tiff.longs(257, {64}).longs(278, {64});
    EXPECT_FALSE(rowsOf(tiff.bytes()));
}

TEST_P(CodedTiffDamage, ChangedBytesAreRefusedOrReadToTheEnd) {
    const TiffBytes tiff = coded();
    for (qsizetype index = 0; index < strip().size(); index += 1 + strip().size() / 200) {
        QByteArray bytes = tiff.bytes();
        const qsizetype at = bytes.size() - strip().size() + index;
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << index % 8));
        const std::optional<QByteArray> rows = rowsOf(bytes);
        EXPECT_TRUE(!rows || rows->size() == rowsOf(tiff.bytes())->size());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, CodedTiffDamage,
    ::testing::Values(CodedCase{"PackBits", COMPRESSION_PACKBITS, 8, 3}, CodedCase{"Lzw", COMPRESSION_LZW, 8, 3},
                      CodedCase{"Deflate", COMPRESSION_ADOBE_DEFLATE, 8, 3}, CodedCase{"Lzma", COMPRESSION_LZMA, 8, 3},
                      CodedCase{"Zstd", COMPRESSION_ZSTD, 8, 3}, CodedCase{"WebP", COMPRESSION_WEBP, 8, 3},
                      CodedCase{"Jpeg", COMPRESSION_JPEG, 8, 3}, CodedCase{"CcittRle", COMPRESSION_CCITTRLE, 1, 1},
                      CodedCase{"CcittGroup3", COMPRESSION_CCITTFAX3, 1, 1},
                      CodedCase{"CcittGroup4", COMPRESSION_CCITTFAX4, 1, 1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(TiffDamage, MissingAndMisplacedStripsAndTilesAreRefused) {
    for (const quint64 compression : {quint64{COMPRESSION_NONE}, quint64{COMPRESSION_PACKBITS}}) {
        for (const auto& [name, shape] : shapes()) {
            TiffBytes whole = picture(shape, false, true).shorts(259, {compression});
            const quint16 offsets = shape == Shape::tiles ? 324 : 273;
            const quint16 counts = shape == Shape::tiles ? 325 : 279;
            const std::size_t segments = shape == Shape::tiles ? 4 : 3;
            std::vector<quint64> places = {0, 768, 1536, 2304};
            places.resize(segments);
            whole.set(offsets, 16, places);
            const quint64 start = whole.pixelOffset(); // from which the offsets count
            for (std::size_t segment = 0; segment < segments; ++segment) {
                for (const quint64 offset : {quint64{0}, giant, quint64{1} << 62, ~quint64{0}}) {
                    std::vector<quint64> values = places;
                    values[segment] = offset - start;
                    TiffBytes tiff = whole;
                    EXPECT_FALSE(rowsOf(tiff.set(offsets, 16, values).bytes())) << name << segment << ' ' << offset;
                }
                for (const quint64 count : {quint64{0}, quint64{1}}) {
                    std::vector<quint64> values(segments, 768);
                    values[segment] = count;
                    TiffBytes tiff = whole;
                    EXPECT_FALSE(rowsOf(tiff.longs(counts, values).bytes())) << name << segment << ' ' << count;
                }
            }
            EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).longs(offsets, {0, 768}).bytes())) << name;
            EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).longs(counts, {768, 768}).bytes())) << name;
            EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).remove(offsets).bytes())) << name;
            // One strip for each plane needs no byte counts.
            EXPECT_EQ(isRefusedAtOnce(TiffBytes(whole).remove(counts).bytes()), shape != Shape::planes) << name;
        }
    }
}

TEST_F(TiffDamage, AShortByteCountOfASingleStripIsRefused) {
    const TiffBytes whole = TiffBytes::plain(4, 4, 1, QByteArray(16, 'x'));
    EXPECT_EQ(rowsOf(whole.bytes()), QByteArray(16, 'x'));
    for (const quint64 count : {0U, 1U, 15U}) {
        EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).longs(279, {count}).bytes()));
    }
}

TEST_F(TiffDamage, BombsAreRefusedAtOnceAndWithoutMemory) {
    const TiffBytes small = TiffBytes::plain(1, 1, 1, "x");
    std::vector<std::pair<std::string, QByteArray>> bombs;
    const auto add = [&](const char* name, const TiffBytes& tiff) { bombs.emplace_back(name, tiff.bytes()); };
    const auto pointer = QByteArray("\x08\0\0\0", 4);
    add("2^31 strips that are not there", TiffBytes(small).longs(257, {giant}).longs(278, {1}));
    add("2^31 strips that are claimed", TiffBytes(small)
                                            .longs(257, {giant})
                                            .longs(278, {1})
                                            .setRaw(273, 4, giant, pointer)
                                            .setRaw(279, 4, giant, pointer));
    add("a giant tile", TiffBytes(small)
                            .remove(273)
                            .remove(278)
                            .remove(279)
                            .longs(322, {0x7FFFFFF0})
                            .longs(323, {0x7FFFFFF0})
                            .longs(324, {0})
                            .longs(325, {1}));
    for (const quint64 compression : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 32773U, 32946U, 34925U, 50000U, 50001U}) {
        const std::string name = "compression " + std::to_string(compression);
        const bool isFax = compression >= 2 && compression <= 4;
        const TiffBytes base = TiffBytes(small).shorts(259, {compression}).shorts(258, {isFax ? 1U : 8U});
        bombs.emplace_back(name + ", 2^31 x 2^31", TiffBytes(base).longs(256, {giant}).longs(257, {giant}).bytes());
        bombs.emplace_back(name + ", a long row", TiffBytes(base).longs(256, {giant}).bytes());
        bombs.emplace_back(name + ", many rows", TiffBytes(base).longs(257, {giant}).bytes());
        bombs.emplace_back(name + ", large tiles", TiffBytes(base)
                                                       .longs(256, {1 << 20})
                                                       .longs(257, {1 << 20})
                                                       .remove(273)
                                                       .remove(279)
                                                       .longs(322, {1 << 20})
                                                       .longs(323, {1 << 20})
                                                       .longs(324, {0})
                                                       .longs(325, {1})
                                                       .bytes());
    }
    add("65535 samples", TiffBytes::plain(100000, 1000, 1, "x").shorts(277, {65535}));
    add("samples of 65535 bits", TiffBytes(small).shorts(258, {65535}));
    add("all strips the same bytes", TiffBytes::plain(1000, 100, 1, QByteArray(1000, 'x'))
                                         .longs(278, {1})
                                         .longs(273, std::vector<quint64>(100, 0))
                                         .longs(279, std::vector<quint64>(100, 1000)));
    TiffBytes crowd = TiffBytes::plain(1, 1, 1, QByteArray(1 << 20, 'x'));
    for (quint16 tag = 40000; tag < 43000; ++tag) {
        crowd.setRaw(tag, 7, 1 << 20, pointer);
    }
    add("3000 tags of the same megabyte", crowd);
    TiffBytes crowded = small;
    for (quint16 tag = 40000; tag < 45000; ++tag) {
        crowded.shorts(tag, {1});
    }
    add("5000 tags", crowded);

    struct rusage before {};

    struct rusage after {};

    ASSERT_EQ(getrusage(RUSAGE_SELF, &before), 0);
    for (const auto& [name, bytes] : bombs) {
        EXPECT_TRUE(isRefusedAtOnce(bytes)) << name;
    }
    ASSERT_EQ(getrusage(RUSAGE_SELF, &after), 0);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 * 1024); // KiB
}

TEST_F(TiffDamage, AGigabyteThatIsNoPixelTakesNoMemory) {
    constexpr quint64 layerBytes = 1 << 30; // what editors keep of a layered picture, in a tag of their own
    constexpr quint16 layerTag = 37724;
    for (const bool isBig : {false, true}) {
        for (const bool isBigEndian : {false, true}) {
            SCOPED_TRACE(std::to_string(isBig) + std::to_string(isBigEndian));
            TiffBytes tiff = picture(Shape::strips, isBigEndian, isBig);
            const std::optional<QByteArray> expected = rowsOf(tiff.bytes());
            const QByteArray pointer = isBig ? QByteArray(8, '\0') : QByteArray(4, '\0');
            const QString path = write(tiff.setRaw(layerTag, 7, layerBytes, pointer).bytes());
            ASSERT_TRUE(QFile::resize(path, qint64{layerBytes} + (1 << 20))); // the values are all of it

            struct rusage before {};

            struct rusage after {};

            ASSERT_EQ(getrusage(RUSAGE_SELF, &before), 0);
            EXPECT_EQ(allRows(ImageSource::open(path)->full()), expected);
            ASSERT_EQ(getrusage(RUSAGE_SELF, &after), 0);
            EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 * 1024); // KiB
        }
    }
}

TEST_F(TiffDamage, ALoopOfDirectoriesIsNeverWalked) {
    TiffBytes tiff = TiffBytes::plain(2, 1, 1, "ab");
    tiff.next(tiff.directoryOffset());
    EXPECT_EQ(rowsOf(tiff.bytes()), QByteArray("ab"));
    tiff.next(giant);
    EXPECT_EQ(rowsOf(tiff.bytes()), QByteArray("ab"));
}

TEST_F(TiffDamage, HeadersWithoutASoundDirectoryAreRefused) {
    const QByteArray whole = TiffBytes::plain(1, 1, 1, "x").bytes();
    for (const quint32 offset : {0U, 1U, 4U, 9U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        QByteArray bytes = whole;
        bytes.replace(4, 4, QByteArray(reinterpret_cast<const char*>(&offset), 4));
        EXPECT_TRUE(isRefusedAtOnce(bytes)) << offset;
    }
    QByteArray big = TiffBytes::plain(1, 1, 1, "x", false, true).bytes();
    ASSERT_TRUE(rowsOf(big));
    big[4] = 4; // the size of an offset
    EXPECT_TRUE(isRefusedAtOnce(big));
    for (const QByteArray& header : {QByteArray("II*\0\0\0\0\0", 8), QByteArray("MM\0*\0\0\0\0", 8),
                                     QByteArray("II+\0\0\0\0\0", 8), QByteArray("MM\0+\0\10\0\0", 8)}) {
        EXPECT_TRUE(isRefusedAtOnce(header)) << header.toHex().toStdString();
    }
}

TEST_F(TiffDamage, NoTypeAndNoCountOfAnyTagDoesHarm) {
    const std::vector<quint16> tags = {254, 256, 257, 258, 259, 262, 266, 273, 274, 277,   278,   279,  282,
                                       283, 284, 296, 301, 317, 320, 322, 323, 324, 325,   330,   332,  334,
                                       338, 339, 340, 347, 512, 513, 529, 530, 532, 32997, 34675, 34665};
    const std::vector<quint64> counts = {0, 1, 2, 3, 100, 65536, giant, 0xFFFFFFFF};
    int read = 0;
    int refused = 0;
    for (const auto& [name, shape] : shapes()) {
        for (const quint16 tag : tags) {
            for (quint16 type = 0; type < 20; ++type) {
                for (const quint64 count : counts) {
                    TiffBytes tiff = picture(shape);
                    tiff.setRaw(tag, type, count, QByteArray("\x03\0\0\0", 4));
                    const std::optional<QByteArray> rows = rowsOf(tiff.bytes());
                    (rows ? read : refused) += 1;
                }
            }
        }
    }
    EXPECT_GT(read, 1000);
    EXPECT_GT(refused, 1000);
}

TEST_F(TiffDamage, TagsThatDecideWhatThePixelsAreMustBeReadable) {
    // The decoder would go on with its own idea of each.
    const QByteArray four("\x01\0\0\0", 4);
    for (const int number : {256, 257, 258, 262, 266, 277, 278, 284, 338, 339}) {
        const auto tag = static_cast<quint16>(number);
        const TiffBytes whole = picture(Shape::strips);
        EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).setRaw(tag, 2, 3, four).bytes())) << tag;     // a text
        EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).setRaw(tag, 5, 1000, four).bytes())) << tag;  // far too many
        EXPECT_TRUE(isRefusedAtOnce(TiffBytes(whole).setRaw(tag, 3, giant, four).bytes())) << tag; // outside
    }
    TiffBytes lzw = picture(Shape::strips).shorts(259, {COMPRESSION_LZW});
    EXPECT_FALSE(isRefusedAtOnce(lzw.bytes()));
    EXPECT_TRUE(isRefusedAtOnce(lzw.setRaw(317, 2, 3, four).bytes())); // the predictor
}

TEST_F(TiffDamage, AFileThatChangesWhileItIsOpenIsRefused) {
    const QByteArray whole = picture(Shape::strips).bytes();
    const auto rewrite = [&](const QByteArray& bytes) { return folder().write(QStringLiteral("open.tif"), bytes); };
    const Raster raster = ImageSource::open(rewrite(whole))->full();
    const QByteArray expected = allRows(raster);
    (void)rewrite(picture(Shape::strips).longs(256, {48}).bytes());
    EXPECT_THROW((void)allRows(raster), ImageError);
    (void)rewrite(whole.chopped(1));
    EXPECT_THROW((void)allRows(raster), ImageError);
    (void)rewrite(QByteArray());
    EXPECT_THROW((void)allRows(raster), ImageError);
    (void)rewrite(whole);
    EXPECT_EQ(allRows(raster), expected);
}

TEST_F(TiffDamage, NothingIsSaidOnTheErrorOutput) {
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(rowsOf(picture(Shape::strips).shorts(259, {COMPRESSION_LZW}).bytes()));
    EXPECT_FALSE(rowsOf(picture(Shape::strips).shorts(259, {COMPRESSION_JPEG}).bytes()));
    EXPECT_FALSE(rowsOf(picture(Shape::strips).remove(256).bytes()));
    EXPECT_TRUE(rowsOf(picture(Shape::strips).shorts(65000, {1}).shorts(274, {77}).bytes()));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(TiffDamage, SeveralThreadsReadTheSamePicture) {
    TiffForm form;
    form.compression = COMPRESSION_LZW;
    form.width = 600;
    form.height = 400;
    const QString path = folder().path(QStringLiteral("shared.tif"));
    writeTiff(path, form, scattered(form.sampleCount(), 8));
    const Raster raster = ImageSource::open(path)->full();
    const QByteArray expected = allRows(raster);
    std::vector<std::future<QByteArray>> results;
    for (int index = 0; index < 6; ++index) {
        results.push_back(std::async(std::launch::async, [&raster] { return allRows(raster); }));
    }
    for (std::future<QByteArray>& result : results) {
        EXPECT_TRUE(result.get() == expected);
    }
}

TEST_F(TiffDamage, WhatTheSinkRaisesPassesThrough) {
    const Raster raster = ImageSource::open(write(picture(Shape::tiles).bytes()))->full();
    EXPECT_THROW(raster.rows([](const RowStrip&) { throw std::out_of_range("enough"); }), std::out_of_range);
    EXPECT_EQ(allRows(raster).size(), width * height * 3);
}

} // namespace orvex::platform
