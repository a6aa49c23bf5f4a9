#include "Color/IccProfile.h"
#include "ExifFixture.h"
#include "IccFixtures.h"
#include "Imaging/PngHeader.h"
#include "Imaging/PngImageData.h"
#include "Interrupted.h"
#include "PngFiles.h"

#include <QtEndian>

#include <thread>

namespace orvex::platform {

namespace {

namespace icc = test::icc;
using test::ExifFixture;

QByteArray bigEndian16(const std::vector<quint16>& numbers) {
    QByteArray bytes;
    for (const quint16 number : numbers) {
        bytes += static_cast<char>(number >> 8);
        bytes += static_cast<char>(number & 0xFF);
    }
    return bytes;
}

QByteArray copied(const EncodedStream& stream) {
    QByteArray bytes;
    stream.copy([&](std::span<const std::byte> piece) {
        bytes.append(reinterpret_cast<const char*>(piece.data()), static_cast<qsizetype>(piece.size()));
    });
    return bytes;
}

test::PngChunk iccp(const QByteArray& profile, char method = 0) {
    return {"iCCP", QByteArray("Profile\0", 8) + QByteArray(1, method) + test::deflated(profile)};
}

test::PngChunk srgb(char intent = 0) {
    return {"sRGB", QByteArray(1, intent)};
}

QByteArray rgbProfile(double gamma = 2.2) {
    return icc::saved(icc::rgb(gamma));
}

QByteArray exifOf(std::vector<ExifFixture::Entry> entries) {
    ExifFixture exif;
    exif.main = std::move(entries);
    return exif.bytes();
}

QByteArray exifOrientation(quint32 orientation) {
    return exifOf({ExifFixture::number(ExifFixture::orientation, orientation)});
}

/// A key that the first pixel of the fixture has, whose rows must not be filtered.
QByteArray keyOfFirstPixel(const test::PngFixture& fixture) {
    const QByteArray rows = fixture.filteredRows();
    const auto sample = [&](int index) {
        if (fixture.bitDepth == 16) {
            return qFromBigEndian<quint16>(rows.constData() + 1 + 2 * index);
        }
        const auto byte = static_cast<quint8>(rows[1 + (fixture.bitDepth == 8 ? index : 0)]);
        return static_cast<quint16>(byte >> (8 - fixture.bitDepth));
    };
    return fixture.colorType == 0 ? bigEndian16({sample(0)}) : bigEndian16({sample(0), sample(1), sample(2)});
}

struct Kind {
    quint8 colorType;
    quint8 bitDepth;
    PixelFormat format;
};

constexpr PixelFormat formatOf(ColorModel model, int bits, bool hasAlpha = false) {
    return {model, bits, false, hasAlpha};
}

constexpr std::array kinds{
    Kind{0, 1, formatOf(ColorModel::gray, 8)},         Kind{0, 2, formatOf(ColorModel::gray, 8)},
    Kind{0, 4, formatOf(ColorModel::gray, 8)},         Kind{0, 8, formatOf(ColorModel::gray, 8)},
    Kind{0, 16, formatOf(ColorModel::gray, 16)},       Kind{2, 8, formatOf(ColorModel::rgb, 8)},
    Kind{2, 16, formatOf(ColorModel::rgb, 16)},        Kind{3, 1, formatOf(ColorModel::rgb, 8)},
    Kind{3, 2, formatOf(ColorModel::rgb, 8)},          Kind{3, 4, formatOf(ColorModel::rgb, 8)},
    Kind{3, 8, formatOf(ColorModel::rgb, 8)},          Kind{4, 8, formatOf(ColorModel::gray, 8, true)},
    Kind{4, 16, formatOf(ColorModel::gray, 16, true)}, Kind{6, 8, formatOf(ColorModel::rgb, 8, true)},
    Kind{6, 16, formatOf(ColorModel::rgb, 16, true)}};

test::PngFixture fixtureOf(const Kind& kind, quint32 width, quint32 height) {
    test::PngFixture fixture;
    fixture.width = width;
    fixture.height = height;
    fixture.bitDepth = kind.bitDepth;
    fixture.colorType = kind.colorType;
    fixture.paletteSize = kind.colorType == 3 ? 1 << kind.bitDepth : 0;
    fixture.seed = width * 131 + height * 17 + kind.colorType * 3U + kind.bitDepth;
    return fixture;
}

QString nameOf(const test::PngFixture& fixture) {
    return QStringLiteral("type %1, %2 bits, %3 x %4%5")
        .arg(fixture.colorType)
        .arg(fixture.bitDepth)
        .arg(fixture.width)
        .arg(fixture.height)
        .arg(fixture.isInterlaced ? QStringLiteral(", interlaced") : QString());
}

/// Raises the error of a file that cannot be opened and decoded to its end.
void expectRefused(const std::function<void()>& decode, const std::string& what) {
    EXPECT_THROW(decode(), ImageError) << what;
}

} // namespace

class PngImages : public PngFiles {
protected:
    void expectLibpngsPixels(const PngFixture& fixture, const PixelFormat& format) const {
        const QByteArray file = fixture.bytes();
        const QByteArray expected = test::decodedByLibpng(file);
        ASSERT_FALSE(expected.isEmpty());
        const auto source = open(file);
        EXPECT_EQ(source->properties().pixelWidth, fixture.width);
        EXPECT_EQ(source->properties().pixelHeight, fixture.height);
        EXPECT_EQ(source->full().format(), format);
        EXPECT_EQ(test::pixelsOf(source->full()), expected);
    }

    void expectRefusal(const QByteArray& file, const std::string& what) const {
        expectRefused([&] { (void)decoded(file); }, what);
    }
};

TEST_F(PngImages, AreDecodedAsLibpngDoes) {
    constexpr std::array<std::pair<quint32, quint32>, 9> sizes{
        {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {4, 5}, {5, 4}, {8, 8}, {33, 17}, {71, 300}}};
    for (const Kind& kind : kinds) {
        for (const auto& [width, height] : sizes) {
            for (const bool isInterlaced : {false, true}) {
                PngFixture fixture = fixtureOf(kind, width, height);
                fixture.isInterlaced = isInterlaced;
                SCOPED_TRACE(nameOf(fixture).toStdString());
                expectLibpngsPixels(fixture, kind.format);
            }
        }
    }
}

TEST_F(PngImages, UndoEveryFilterAloneAndMixed) {
    for (const Kind& kind : kinds) {
        for (quint8 filter = 0; filter <= 4; ++filter) {
            for (const quint32 width : {1U, 2U, 3U, 50U}) {
                PngFixture fixture = fixtureOf(kind, width, 7);
                fixture.filter = filter;
                SCOPED_TRACE(nameOf(fixture).toStdString() + ", filter " + std::to_string(filter));
                expectLibpngsPixels(fixture, kind.format);
            }
        }
    }
}

TEST_F(PngImages, ContinueTheirFiltersFromStripToStrip) {
    PngFixture tall = fixtureOf({2, 8, {}}, 3, 1000); // in strips of 256 rows
    tall.filter = 4;
    expectLibpngsPixels(tall, formatOf(ColorModel::rgb, 8));
    PngFixture wide = fixtureOf({6, 16, {}}, 70000, 25); // in strips of some megabytes
    EXPECT_EQ(open(wide.bytes())->full().stripRows(), 7);
    expectLibpngsPixels(wide, formatOf(ColorModel::rgb, 16, true));
    PngFixture small = fixtureOf({3, 1, {}}, 300000, 9); // each row of which is 24 times as long decoded
    expectLibpngsPixels(small, formatOf(ColorModel::rgb, 8));
}

TEST_F(PngImages, GiveATransparentColorNoOpacity) {
    for (const Kind& kind : kinds) {
        if (kind.colorType != 0 && kind.colorType != 2) {
            continue;
        }
        for (const bool isInterlaced : {false, true}) {
            PngFixture fixture = fixtureOf(kind, 21, 10);
            fixture.filter = 0;
            fixture.isInterlaced = isInterlaced;
            fixture.transparency = keyOfFirstPixel(fixture);
            SCOPED_TRACE(nameOf(fixture).toStdString());
            PixelFormat format = kind.format;
            format.hasAlpha = true;
            expectLibpngsPixels(fixture, format);
            const QByteArray first = decoded(fixture.bytes()).first(format.bytesPerPixel());
            EXPECT_EQ(first.last(format.bitsPerComponent / 8), QByteArray(format.bitsPerComponent / 8, '\0'));
            EXPECT_FALSE(open(fixture.bytes())->encodedStream());
        }
    }
}

TEST_F(PngImages, TakeOnlyTheBitsOfTheDepthFromATransparentColor) {
    PngFixture fixture = fixtureOf({0, 4, {}}, 40, 40);
    fixture.filter = 0;
    fixture.transparency = bigEndian16({0xFF03});
    const QByteArray pixels = decoded(fixture.bytes());
    qsizetype transparent = 0;
    for (qsizetype at = 0; at < pixels.size(); at += 2) {
        const bool isKey = pixels[at] == '\x33';
        EXPECT_EQ(pixels[at + 1], isKey ? '\0' : '\xFF');
        transparent += isKey ? 1 : 0;
    }
    EXPECT_GT(transparent, 0);
}

TEST_F(PngImages, GiveThePaletteItsAlphaAndTheEntriesWithoutOneAll) {
    for (const quint8 depth : std::initializer_list<quint8>{1, 2, 4, 8}) {
        for (const bool isInterlaced : {false, true}) {
            PngFixture fixture = fixtureOf({3, depth, {}}, 37, 11);
            fixture.isInterlaced = isInterlaced;
            fixture.transparency = QByteArray("\0\x80\xFF\x01", 4).first(depth == 1 ? 1 : 3);
            SCOPED_TRACE(nameOf(fixture).toStdString());
            expectLibpngsPixels(fixture, formatOf(ColorModel::rgb, 8, true));
        }
    }
}

TEST_F(PngImages, SpreadSmallDepthsOverTheWholeRange) {
    struct Row {
        quint8 depth;
        QByteArray bytes;
        QByteArray expected;
    };

    const std::vector<Row> rows{{1, QByteArray("\xA0"), QByteArray("\xFF\x00\xFF", 3)},
                                {2, QByteArray("\x1B"), QByteArray("\x00\x55\xAA\xFF", 4)},
                                {4, QByteArray("\x0F\x1E"), QByteArray("\x00\xFF\x11\xEE", 4)}};
    for (const Row& row : rows) {
        PngFixture fixture;
        fixture.width = static_cast<quint32>(row.expected.size());
        fixture.bitDepth = row.depth;
        fixture.colorType = 0;
        const QByteArray file = test::withImageData(fixture.bytes(), test::deflated(QByteArray(1, '\0') + row.bytes));
        EXPECT_EQ(decoded(file), row.expected) << int{row.depth};
    }
}

TEST_F(PngImages, MayHaveTheirDataInChunksOfAnySize) {
    const PngFixture fixture = fixtureOf({2, 8, {}}, 200, 200);
    const QByteArray file = fixture.bytes();
    const QByteArray data = test::imageData(file);
    const QByteArray expected = decoded(file);
    const std::vector<std::vector<qsizetype>> splits{{0},
                                                     {1},
                                                     {0, 0, 1, 0, 2, 0},
                                                     {1, 1, 1, 1, 1, 1, 1},
                                                     {5, 8192, 0, 8192},
                                                     {data.size()},
                                                     {data.size() - 1},
                                                     {data.size() - 4, 0, 1, 1, 1},
                                                     {data.size(), 0, 0},
                                                     std::vector<qsizetype>(3000, 1)};
    for (const auto& split : splits) {
        const QByteArray divided = test::withImageData(file, data, split);
        EXPECT_EQ(decoded(divided), expected) << split.size();
        EXPECT_EQ(copied(*open(divided)->encodedStream()), data) << split.size();
    }
}

TEST_F(PngImages, MayHaveMoreDataThanABufferHolds) {
    const PngFixture fixture = fixtureOf({6, 16, {}}, 400, 400); // 1.3 MB that do not compress
    const QByteArray file = fixture.bytes();
    const QByteArray expected = test::decodedByLibpng(file);
    EXPECT_EQ(decoded(file), expected);
    for (const qsizetype size : {262144, 262143, 262136, 131072, 65521, 8192, 999}) {
        const std::vector<qsizetype> sizes(static_cast<std::size_t>(test::imageData(file).size() / size), size);
        EXPECT_EQ(decoded(test::withImageData(file, test::imageData(file), sizes)), expected) << size;
    }
}

TEST_F(PngImages, MayBeReadAgainAndInSeveralThreads) {
    const PngFixture fixture = fixtureOf({2, 8, {}}, 300, 700);
    const auto source = open(fixture.bytes());
    const QByteArray expected = test::pixelsOf(source->full());
    std::array<QByteArray, 4> results;
    {
        std::vector<std::jthread> threads;
        for (QByteArray& result : results) {
            threads.emplace_back([&] { result = test::pixelsOf(source->full()); });
        }
    }
    for (const QByteArray& result : results) {
        EXPECT_EQ(result, expected);
    }
}

TEST_F(PngImages, PassOnWhatTheSinkRaises) {
    struct Stop {};

    for (const bool isInterlaced : {false, true}) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 30, 2000);
        fixture.isInterlaced = isInterlaced;
        const auto source = open(fixture.bytes());
        EXPECT_THROW(source->full().rows([](const RowStrip&) { throw Stop(); }), Stop);
    }
}

TEST_F(PngImages, RefuseAPixelOutsideThePalette) {
    for (const quint8 depth : std::initializer_list<quint8>{1, 2, 4, 8}) {
        for (const bool isInterlaced : {false, true}) {
            const int largest = (1 << depth) - 1;
            PngFixture fixture;
            fixture.width = static_cast<quint32>(8 / depth);
            fixture.bitDepth = depth;
            fixture.colorType = 3;
            fixture.isInterlaced = isInterlaced;
            fixture.paletteSize = largest;
            fixture.filter = 0;
            // Each row is one byte, and all pixels of it are the largest index that the depth has.
            QByteArray rows = fixture.filteredRows();
            for (qsizetype at = 1; at < rows.size(); at += 2) {
                rows[at] = '\xFF';
            }
            const QByteArray outside = test::withImageData(fixture.bytes(), test::deflated(rows));
            SCOPED_TRACE(nameOf(fixture).toStdString());
            expectRefusal(outside, "one entry too few");
            fixture.paletteSize = largest + 1;
            EXPECT_NO_THROW((void)decoded(test::withImageData(fixture.bytes(), test::deflated(rows))));
        }
    }
}

TEST_F(PngImages, PassOverTheBitsBehindARowsLastPixel) {
    PngFixture fixture;
    fixture.width = 3;
    fixture.bitDepth = 2;
    fixture.colorType = 3;
    fixture.paletteSize = 3;
    const QByteArray inside = test::deflated(QByteArray("\0\x1B", 2)); // 0, 1, 2, and then 3
    EXPECT_EQ(decoded(test::withImageData(fixture.bytes(), inside)), fixture.palette());
}

TEST_F(PngImages, RefuseAFileThatIsCutOffAnywhere) {
    PngFixture fixture = fixtureOf({3, 8, {}}, 60, 50);
    fixture.headerChunks = {test::pngDensity(1000, 1000, 1)};
    fixture.transparency = "\x10";
    for (const bool isInterlaced : {false, true}) {
        fixture.isInterlaced = isInterlaced;
        const QByteArray whole = fixture.bytes();
        const QByteArray file = test::withImageData(whole, test::imageData(whole), {100, 200, 300});
        ASSERT_NO_THROW((void)decoded(file));
        std::vector<qsizetype> places;
        qsizetype boundary = 8;
        for (const PngChunk& chunk : test::pngChunks(file)) {
            places.push_back(boundary);
            boundary += chunk.bytes().size();
        }
        for (qsizetype part = 0; part < 64; ++part) {
            places.push_back(8 + (file.size() - 8) * part / 64);
        }
        places.push_back(file.size() - 1);
        for (const qsizetype place : places) {
            expectRefusal(file.first(place), "cut at " + std::to_string(place));
        }
    }
}

TEST_F(PngImages, RefuseAWrongChecksumOfACriticalChunk) {
    PngFixture fixture = fixtureOf({3, 4, {}}, 60, 50);
    fixture.headerChunks = {test::pngDensity(1000, 1000, 1)};
    const QByteArray whole = fixture.bytes();
    const QByteArray file = test::withImageData(whole, test::imageData(whole), {100, 0, 200});
    qsizetype offset = 8;
    for (const PngChunk& chunk : test::pngChunks(file)) {
        const qsizetype end = offset + chunk.bytes().size();
        for (qsizetype place = end - 4; place < end; ++place) {
            QByteArray damaged = file;
            damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
            SCOPED_TRACE(chunk.type.toStdString() + " at " + std::to_string(place));
            if (chunk.type == "pHYs") {
                EXPECT_EQ(open(damaged)->properties().dpiWidth, std::nullopt);
                EXPECT_EQ(decoded(damaged), decoded(file));
            } else {
                expectRefusal(damaged, "");
            }
        }
        offset = end;
    }
}

TEST_F(PngImages, NeverGiveOtherPixelsForAWrongBitInTheStream) {
    for (const bool isInterlaced : {false, true}) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 9, 9);
        fixture.isInterlaced = isInterlaced;
        fixture.filter = 0;
        QByteArray rows = fixture.filteredRows();
        std::ranges::transform(rows, rows.begin(), [](char byte) { return static_cast<char>(byte & 3); });
        const QByteArray file = fixture.bytes();
        const QByteArray data = test::deflated(rows);
        ASSERT_LT(data.size(), rows.size() / 2); // so it is coded, not stored
        const QByteArray expected = decoded(test::withImageData(file, data));
        int harmless = 0;
        for (qsizetype bit = 0; bit < 8 * data.size(); ++bit) {
            QByteArray damaged = data;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            try {
                EXPECT_EQ(decoded(test::withImageData(file, damaged)), expected) << bit;
                ++harmless; // some bits mean nothing, or say the same in another way
            } catch (const ImageError&) {
            }
        }
        EXPECT_LT(harmless, 20);
    }
}

TEST_F(PngImages, RefuseImageDataOfTheWrongLength) {
    for (const bool isInterlaced : {false, true}) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 30, 600);
        fixture.isInterlaced = isInterlaced;
        const QByteArray file = fixture.bytes();
        const QByteArray rows = fixture.filteredRows();
        const QByteArray stream = test::deflated(rows);
        const auto with = [&](const QByteArray& data) { return test::withImageData(file, data); };
        ASSERT_EQ(decoded(with(stream)), test::decodedByLibpng(file));
        expectRefusal(with(test::deflated(rows + '\0')), "a byte more than the rows");
        expectRefusal(with(test::deflated(rows + rows)), "twice the rows");
        expectRefusal(with(test::deflated(rows.chopped(1))), "a byte too little");
        expectRefusal(with(test::deflated(rows.first(rows.size() / 2))), "half of the rows");
        expectRefusal(with(test::deflated({})), "no rows");
        expectRefusal(with({}), "no stream");
        expectRefusal(with(stream + 'x'), "a byte behind the stream");
        expectRefusal(with(stream + stream), "two streams");
        for (qsizetype missing = 1; missing <= 8; ++missing) {
            expectRefusal(with(stream.chopped(missing)), "the stream's end");
        }
        expectRefusal(with(QByteArray("\x78\xBB", 2) + QByteArray(4, '\1') + stream.sliced(2)), "a dictionary");
    }
}

TEST_F(PngImages, RefuseAnUnknownFilter) {
    for (const bool isInterlaced : {false, true}) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 8, 8);
        fixture.isInterlaced = isInterlaced;
        for (const quint8 filter : std::initializer_list<quint8>{5, 64, 255}) {
            fixture.filter = filter;
            expectRefusal(fixture.bytes(), "filter " + std::to_string(filter));
        }
    }
}

TEST_F(PngImages, RefuseChunksThatAreMissingOrOutOfOrder) {
    const PngFixture fixture = fixtureOf({3, 8, {}}, 8, 8);
    const PngChunk header{"IHDR", fixture.header()};
    const PngChunk palette{"PLTE", fixture.palette()};
    const PngChunk data{"IDAT", test::deflated(fixture.filteredRows())};
    const PngChunk first{"IDAT", data.data.first(20)};
    const PngChunk second{"IDAT", data.data.sliced(20)};
    const PngChunk none{"IDAT", {}};
    const PngChunk text{"tEXt", QByteArray("a\0b", 3)};
    const PngChunk end{"IEND", {}};
    ASSERT_NO_THROW((void)decoded(test::pngFile({header, palette, text, first, second, none, text, end})));
    const std::vector<std::pair<const char*, std::vector<PngChunk>>> files{
        {"nothing", {}},
        {"only the header", {header}},
        {"no header", {palette, data, end}},
        {"a header that is not the first", {text, header, palette, data, end}},
        {"two headers", {header, header, palette, data, end}},
        {"no palette", {header, data, end}},
        {"two palettes", {header, palette, palette, data, end}},
        {"the palette behind the data", {header, data, palette, end}},
        {"a palette between the data", {header, palette, first, palette, second, end}},
        {"no data", {header, palette, end}},
        {"something between the data", {header, palette, first, text, second, end}},
        {"empty data behind something", {header, palette, first, second, text, none, end}},
        {"no end", {header, palette, data}},
        {"an end with content", {header, palette, data, {"IEND", "x"}}},
        {"an unknown critical chunk", {header, {"ABcD", "x"}, palette, data, end}},
        {"an unknown critical chunk behind the data", {header, palette, data, {"ABcD", "x"}, end}},
        {"a type that is none", {header, palette, {"a\1cd", "x"}, data, end}},
        {"a type that is none behind the data", {header, palette, data, {"a\1cd", "x"}, end}},
        {"a palette that is no triples", {header, {"PLTE", palette.data.chopped(1)}, data, end}},
        {"an empty palette", {header, {"PLTE", {}}, data, end}},
        {"a palette of 257", {header, {"PLTE", palette.data + "abc"}, data, end}},
    };
    for (const auto& [what, chunks] : files) {
        expectRefusal(test::pngFile(chunks), what);
    }
}

TEST_F(PngImages, RefuseAChunkThatIsLongerThanTheFile) {
    const QByteArray file = fixtureOf({2, 8, {}}, 8, 8).bytes();
    qsizetype offset = 8;
    for (const PngChunk& chunk : test::pngChunks(file)) {
        for (const quint32 length : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU, static_cast<quint32>(file.size())}) {
            QByteArray damaged = file;
            qToBigEndian(length, damaged.data() + offset);
            expectRefusal(damaged, chunk.type.toStdString() + " of " + std::to_string(length));
        }
        offset += chunk.bytes().size();
    }
}

TEST_F(PngImages, RefuseAHeaderThatIsNone) {
    const PngFixture good = fixtureOf({2, 8, {}}, 8, 8);
    const auto refuses = [&](qsizetype offset, const QByteArray& bytes, const char* what) {
        QByteArray header = good.header();
        header.replace(offset, bytes.size(), bytes);
        std::vector<PngChunk> chunks = test::pngChunks(good.bytes());
        chunks.front().data = header;
        expectRefusal(test::pngFile(chunks), what);
    };
    refuses(0, QByteArray(4, '\0'), "no width");
    refuses(4, QByteArray(4, '\0'), "no height");
    refuses(0, QByteArray("\x80\0\0\0", 4), "a width beyond 31 bits");
    refuses(0, QByteArray("\0\0\0\x09", 4), "a column more than the data has");
    refuses(4, QByteArray("\0\0\0\x09", 4), "a row more than the data has");
    refuses(8, QByteArray("\x04", 1), "RGB of 4 bits");
    refuses(8, QByteArray("\x03", 1), "3 bits");
    refuses(9, QByteArray("\x01", 1), "colour type 1");
    refuses(9, QByteArray("\x07", 1), "colour type 7");
    refuses(10, QByteArray("\x01", 1), "an unknown compression");
    refuses(11, QByteArray("\x01", 1), "an unknown filter method");
    refuses(12, QByteArray("\x02", 1), "an unknown interlacing");
}

TEST_F(PngImages, RefuseASizeThatTheirDataCannotHave) {
    struct Row {
        const char* name;
        quint32 width;
        quint32 height;
        quint8 bitDepth;
        quint8 colorType;
    };

    const QByteArray zeros = test::deflated(QByteArray(1 << 20, '\0'));
    for (const Row& row :
         {Row{"a bomb of 450 MB", 60000, 60000, 1, 0}, Row{"the largest of all", 0x7FFFFFFF, 0x7FFFFFFF, 16, 6},
          Row{"one row of 16 GB", 0x7FFFFFFF, 1, 16, 6}, Row{"empty rows", 1, 0x7FFFFFFF, 1, 0}}) {
        for (const bool isInterlaced : {false, true}) {
            PngFixture fixture;
            fixture.bitDepth = row.bitDepth;
            fixture.colorType = row.colorType;
            fixture.isInterlaced = isInterlaced;
            const QByteArray file = test::withImageData(fixture.bytes(), zeros);
            std::vector<PngChunk> chunks = test::pngChunks(file);
            fixture.width = row.width;
            fixture.height = row.height;
            chunks.front().data = fixture.header();
            EXPECT_THROW((void)open(test::pngFile(chunks)), ImageError) << row.name;
        }
    }
}

TEST_F(PngImages, AcceptTheMostThatDeflateCanHold) {
    PngFixture fixture;
    fixture.width = 8000;
    fixture.height = 4000;
    fixture.bitDepth = 1;
    fixture.colorType = 0;
    const QByteArray rows(4000 * 1001, '\0');
    const QByteArray file =
        test::withImageData(PngFixture{.bitDepth = 1, .colorType = 0}.bytes(), test::deflated(rows));
    std::vector<PngChunk> chunks = test::pngChunks(file);
    chunks.front().data = fixture.header();
    qint64 black = 0;
    open(test::pngFile(chunks))->full().rows([&](const RowStrip& strip) {
        black += std::ranges::count(strip.bytes, std::byte{0});
    });
    EXPECT_EQ(black, 8000 * 4000);
}

TEST_F(PngImages, RefuseARowOfMoreThan64Megabytes) {
    PngFixture fixture;
    fixture.bitDepth = 8;
    fixture.colorType = 0;
    const auto file = [&](quint32 width) {
        const QByteArray rows(qsizetype{width} + 1, '\0');
        std::vector<PngChunk> chunks =
            test::pngChunks(test::withImageData(PngFixture{.colorType = 0}.bytes(), test::deflated(rows)));
        fixture.width = width;
        chunks.front().data = fixture.header();
        return test::pngFile(chunks);
    };
    EXPECT_EQ(open(file(64 << 20))->properties().pixelWidth, 64 << 20);
    EXPECT_THROW((void)open(file((64 << 20) + 1)), ImageError);
}

TEST_F(PngImages, DoNotInflateTexts) {
    // Each would be 20 MB, and all together 12 GB.
    const QByteArray bomb = test::deflated(QByteArray(20 << 20, 'a'));
    PngFixture fixture = fixtureOf({2, 8, {}}, 8, 8);
    for (int count = 0; count < 300; ++count) {
        fixture.headerChunks.push_back({"zTXt", QByteArray("a\0\0", 3) + bomb});
        fixture.headerChunks.push_back({"iTXt", QByteArray("a\0\1\0\0\0", 6) + bomb});
    }
    EXPECT_EQ(decoded(fixture.bytes()), test::decodedByLibpng(fixtureOf({2, 8, {}}, 8, 8).bytes()));
}

TEST_F(PngImages, HaveTheColorSpaceThatTheLibraryAccepts) {
    const QByteArray rgb = rgbProfile();
    const QByteArray other = rgbProfile(1.8);
    const QByteArray gray = icc::saved(icc::gray(2.2));
    const PngChunk gamma{"gAMA", QByteArray("\0\0\xB1\x8F", 4)};
    const PngChunk primaries{"cHRM", QByteArray(32, '\1')};

    struct Row {
        const char* name;
        quint8 colorType;
        std::vector<PngChunk> chunks;
        std::optional<QByteArray> expected;
    };

    const std::vector<Row> rows{
        {"nothing", 2, {}, std::nullopt},
        {"a profile", 2, {iccp(rgb)}, rgb},
        {"a profile for RGBA", 6, {iccp(rgb)}, rgb},
        {"a profile for a palette", 3, {iccp(rgb)}, rgb},
        {"a gray profile", 0, {iccp(gray)}, gray},
        {"a gray profile for gray and alpha", 4, {iccp(gray)}, gray},
        {"a gray profile for RGB", 2, {iccp(gray)}, std::nullopt},
        {"an RGB profile for gray", 0, {iccp(rgb)}, std::nullopt},
        {"sRGB", 2, {srgb()}, sRgbProfileData()},
        {"sRGB of another intent", 2, {srgb(3)}, sRgbProfileData()},
        {"sRGB for a palette", 3, {srgb()}, sRgbProfileData()},
        {"sRGB for RGBA", 6, {srgb()}, sRgbProfileData()},
        {"sRGB for gray", 0, {srgb()}, std::nullopt},
        {"sRGB for gray and alpha", 4, {srgb()}, std::nullopt},
        {"sRGB of an unknown intent", 2, {srgb(4)}, std::nullopt},
        {"sRGB of two bytes", 2, {{"sRGB", QByteArray(2, '\0')}}, std::nullopt},
        {"gamma and primaries alone", 2, {gamma, primaries}, std::nullopt},
        {"gamma before a profile", 2, {gamma, primaries, iccp(rgb)}, rgb},
        {"two profiles", 2, {iccp(rgb), iccp(other)}, other},
        {"two sRGB", 2, {srgb(), srgb()}, std::nullopt},
        {"sRGB before a profile", 2, {srgb(), iccp(rgb)}, std::nullopt},
        {"a profile before sRGB", 2, {iccp(rgb), srgb()}, rgb},
        {"an unknown compression", 2, {iccp(rgb, 1)}, std::nullopt},
        {"no profile in the chunk", 2, {iccp({})}, std::nullopt},
        {"a profile that is cut off", 2, {iccp(rgb.chopped(40))}, std::nullopt},
        {"a profile without its signature", 2, {iccp(icc::patched(rgb, 36, quint32{0}))}, std::nullopt},
        {"a profile without a name", 2, {{"iCCP", QByteArray(2, '\0') + test::deflated(rgb)}}, std::nullopt},
    };
    for (const Row& row : rows) {
        PngFixture fixture = fixtureOf({row.colorType, 8, {}}, 4, 4);
        fixture.headerChunks = row.chunks;
        const Raster raster = open(fixture.bytes())->full();
        EXPECT_EQ(raster.iccProfile(), row.expected) << row.name;
        fixture.headerChunks.clear();
        EXPECT_EQ(test::pixelsOf(raster).size(), decoded(fixture.bytes()).size()) << row.name;
    }
}

TEST_F(PngImages, MayHaveAProfileOfManyMegabytes) {
    QByteArray profile = rgbProfile();
    std::string noise(9 << 20, '\0');
    std::ranges::generate(
        noise, [state = 1U]() mutable { return static_cast<char>((state = state * 1664525 + 1013904223) >> 24); });
    profile += QByteArray::fromStdString(noise);
    profile = icc::patched(profile, 0, static_cast<quint32>(profile.size()));
    PngFixture fixture = fixtureOf({2, 8, {}}, 4, 4);
    fixture.headerChunks = {iccp(profile)};
    ASSERT_GT(fixture.headerChunks.front().data.size(), 8000000);
    const QByteArray file = fixture.bytes();
    EXPECT_EQ(open(file)->full().iccProfile(), profile);
    EXPECT_NO_THROW((void)decoded(file));
}

TEST_F(PngImages, StateTheirDensity) {
    const auto exifDensity = [](quint32 x, std::optional<quint32> y, quint32 unit) {
        std::vector<ExifFixture::Entry> entries{ExifFixture::rational(ExifFixture::xResolution, x)};
        if (y) {
            entries.push_back(ExifFixture::rational(ExifFixture::yResolution, *y));
        }
        entries.push_back(ExifFixture::number(ExifFixture::resolutionUnit, unit));
        return PngChunk{"eXIf", exifOf(entries)};
    };

    struct Row {
        const char* name;
        std::vector<PngChunk> chunks;
        std::optional<double> width;
        std::optional<double> height;
    };

    const std::vector<Row> rows{
        {"nothing", {}, std::nullopt, std::nullopt},
        {"metres", {test::pngDensity(11811, 11811, 1)}, 11811 * 0.0254, 11811 * 0.0254},
        {"different axes", {test::pngDensity(10000, 20000, 1)}, 10000 * 0.0254, 20000 * 0.0254},
        {"the largest", {test::pngDensity(0x7FFFFFFF, 1, 1)}, 2147483647.0 * 0.0254, 0.0254},
        {"zero", {test::pngDensity(0, 0, 1)}, 0.0, 0.0},
        {"no unit", {test::pngDensity(300, 300, 0)}, std::nullopt, std::nullopt},
        {"an unknown unit", {test::pngDensity(300, 300, 2)}, std::nullopt, std::nullopt},
        {"cut off", {{"pHYs", QByteArray(8, '\1')}}, std::nullopt, std::nullopt},
        {"EXIF alone", {exifDensity(240, 250, 2)}, 240.0, 250.0},
        {"EXIF in centimetres", {exifDensity(100, 100, 3)}, 254.0, 254.0},
        {"EXIF before metres", {exifDensity(240, 240, 2), test::pngDensity(11811, 11811, 1)}, 240.0, 240.0},
        {"EXIF behind metres", {test::pngDensity(11811, 11811, 1), exifDensity(240, 240, 2)}, 240.0, 240.0},
        {"half of EXIF", {exifDensity(240, std::nullopt, 2)}, 240.0, std::nullopt},
        {"half of EXIF and metres",
         {exifDensity(240, std::nullopt, 2), test::pngDensity(10000, 10000, 1)},
         254.0,
         254.0},
        {"EXIF without a unit and metres", {exifDensity(240, 240, 1), test::pngDensity(10000, 10000, 1)}, 254.0, 254.0},
    };
    for (const Row& row : rows) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 4, 4);
        fixture.headerChunks = row.chunks;
        const ImageProperties properties = open(fixture.bytes())->properties();
        EXPECT_EQ(properties.dpiWidth, row.width) << row.name;
        EXPECT_EQ(properties.dpiHeight, row.height) << row.name;
    }
}

TEST_F(PngImages, StateTheirOrientation) {
    for (quint32 orientation = 0; orientation <= 9; ++orientation) {
        PngFixture fixture = fixtureOf({2, 8, {}}, 6, 4);
        fixture.headerChunks = {{"eXIf", exifOrientation(orientation)}};
        const auto source = open(fixture.bytes());
        const int expected = orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
        EXPECT_EQ(source->properties().orientation, expected);
        EXPECT_EQ(source->properties().pixelWidth, 6);
        EXPECT_EQ(source->full().orientation(), expected);
        EXPECT_EQ(source->full().width(), expected >= 5 ? 4 : 6);
    }
}

TEST_F(PngImages, TakeTheFirstWholeExifChunkOnEitherSideOfTheData) {
    const PngChunk six{"eXIf", exifOrientation(6)};
    const PngChunk three{"eXIf", exifOrientation(3)};
    const QByteArray file = fixtureOf({2, 8, {}}, 6, 4).bytes();
    const auto orientationOf = [&](const QByteArray& bytes) { return open(bytes)->properties().orientation; };
    const QByteArray behind = test::withChunksBefore(file, "IEND", {six, three});
    EXPECT_EQ(orientationOf(behind), 6);
    EXPECT_EQ(orientationOf(test::withChunksBefore(behind, "IDAT", {three})), 3);
    QByteArray damaged = test::withChunksBefore(file, "IDAT", {six, three});
    const qsizetype place = damaged.indexOf("eXIf") + 20;
    damaged[place] = static_cast<char>(damaged[place] ^ 1);
    EXPECT_EQ(orientationOf(damaged), 3);
    EXPECT_EQ(orientationOf(test::withChunksBefore(file, "IDAT", {{"eXIf", "no EXIF at all"}})), 1);
    EXPECT_EQ(orientationOf(test::withChunksBefore(file, "IDAT", {{"eXIf", {}}, six})), 6);
}

TEST_F(PngImages, GiveTheirStreamToADocumentThatCanShowIt) {
    for (const Kind& kind : kinds) {
        PngFixture fixture = fixtureOf(kind, 30, 20);
        SCOPED_TRACE(nameOf(fixture).toStdString());
        const QByteArray data = test::deflated(fixture.filteredRows());
        const auto stream = open(fixture.bytes())->encodedStream();
        if (kind.format.hasAlpha) {
            EXPECT_FALSE(stream);
            continue;
        }
        ASSERT_TRUE(stream);
        EXPECT_EQ(stream->filter, EncodedStream::Filter::flatePng);
        EXPECT_EQ(stream->width, 30);
        EXPECT_EQ(stream->height, 20);
        EXPECT_EQ(stream->model, kind.format.model);
        EXPECT_EQ(stream->bitsPerComponent, kind.bitDepth);
        EXPECT_FALSE(stream->isInverted);
        EXPECT_EQ(stream->palette, fixture.palette());
        EXPECT_EQ(copied(*stream), data);
        EXPECT_EQ(test::inflated(copied(*stream)), fixture.filteredRows());
    }
}

TEST_F(PngImages, KeepTheirStreamIfItIsInterlacedOrHasTransparency) {
    PngFixture fixture = fixtureOf({2, 8, {}}, 30, 20);
    fixture.isInterlaced = true;
    EXPECT_FALSE(open(fixture.bytes())->encodedStream());
    PngFixture palette = fixtureOf({3, 8, {}}, 30, 20);
    palette.transparency = "\xFF";
    EXPECT_FALSE(open(palette.bytes())->encodedStream());
}

TEST_F(PngImages, HaveNoPaletteInTheStreamOfARealPicture) {
    PngFixture fixture = fixtureOf({2, 8, {}}, 30, 20);
    fixture.paletteSize = 5; // only a suggestion
    const auto source = open(fixture.bytes());
    EXPECT_TRUE(source->encodedStream()->palette.isEmpty());
    EXPECT_EQ(source->full().format(), formatOf(ColorModel::rgb, 8));
}

TEST_F(PngImages, ProveTheStreamAgainWhenItIsCopied) {
    const QByteArray file = fixtureOf({2, 8, {}}, 100, 100).bytes();
    const auto damaged = [&](const std::function<void(QFile&)>& damage) {
        const auto source = open(file);
        const auto stream = source->encodedStream();
        QFile written(folder_.path(fileName));
        EXPECT_TRUE(written.open(QIODevice::ReadWrite));
        damage(written);
        written.close();
        EXPECT_THROW((void)copied(*stream), ImageError);
        EXPECT_THROW((void)test::pixelsOf(source->full()), ImageError);
    };
    damaged([](QFile& written) { written.resize(3000); });
    damaged([](QFile& written) {
        written.seek(3000);
        written.write("other bytes");
    });
    damaged([&](QFile& written) {
        const QByteArray data = test::imageData(file);
        written.write(test::withImageData(file, data.first(500)));
    });
}

TEST_F(PngImages, StopWithinTheRowsOfAFewBytesOfTheFile) {
    const test::PngFixture fixture{.width = 8, .height = 8, .filter = 0};
    std::stop_source stop;
    const RandomAccessFile file = RandomAccessFile::open(write(fixture.bytes()), stop.get_token());
    PngInflater inflater(file, readPngHeader(file).imageDataOffset);
    std::array<std::byte, 25> row{};
    inflater.read(row);
    stop.request_stop();
    EXPECT_THROW(inflater.read(row), Interrupted);
}

} // namespace orvex::platform
