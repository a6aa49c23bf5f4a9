#include "Imaging/JpegDecoder.h"

#include "Files/FileSystemError.h"
#include "Imaging/ImageError.h"
#include "Interrupted.h"
#include "JpegFiles.h"

#include <gmock/gmock.h>

#include <random>
#include <thread>

namespace orvex::platform {

namespace {

using test::JpegFixture;

constexpr quint8 startOfFrame = 0xC0;
constexpr quint8 startOfScan = 0xDA;

struct Kind {
    const char* name;
    JpegFixture fixture;
    ColorModel model;
    J_COLOR_SPACE plainSpace;
    bool isInverted = false;
};

std::vector<Kind> kinds() {
    using Coding = JpegFixture::Coding;
    const auto make = [](J_COLOR_SPACE pixels, J_COLOR_SPACE stored, Coding coding, int sampling = 1,
                         unsigned restart = 0) {
        JpegFixture fixture;
        fixture.width = 83;
        fixture.height = 61;
        fixture.pixelSpace = pixels;
        fixture.storedSpace = stored;
        fixture.coding = coding;
        fixture.lumaSampling = sampling;
        fixture.restartInterval = restart;
        fixture.quality = 90;
        return fixture;
    };
    JpegFixture plainCmyk = make(JCS_CMYK, JCS_CMYK, Coding::baseline);
    plainCmyk.hasAdobe = false;
    return {
        {"gray", make(JCS_GRAYSCALE, JCS_GRAYSCALE, Coding::baseline), ColorModel::gray, JCS_GRAYSCALE},
        {"gray, progressive", make(JCS_GRAYSCALE, JCS_GRAYSCALE, Coding::progressive), ColorModel::gray, JCS_GRAYSCALE},
        {"YCbCr", make(JCS_RGB, JCS_YCbCr, Coding::baseline), ColorModel::rgb, JCS_RGB},
        {"YCbCr, halved colours", make(JCS_RGB, JCS_YCbCr, Coding::baseline, 2), ColorModel::rgb, JCS_RGB},
        {"YCbCr, restarts", make(JCS_RGB, JCS_YCbCr, Coding::baseline, 2, 3), ColorModel::rgb, JCS_RGB},
        {"YCbCr, progressive", make(JCS_RGB, JCS_YCbCr, Coding::progressive, 2), ColorModel::rgb, JCS_RGB},
        {"YCbCr, a scan each", make(JCS_RGB, JCS_YCbCr, Coding::separateScans, 2), ColorModel::rgb, JCS_RGB},
        {"YCbCr, arithmetic", make(JCS_RGB, JCS_YCbCr, Coding::arithmetic), ColorModel::rgb, JCS_RGB},
        {"RGB", make(JCS_RGB, JCS_RGB, Coding::baseline), ColorModel::rgb, JCS_RGB},
        {"RGB, progressive", make(JCS_RGB, JCS_RGB, Coding::progressive), ColorModel::rgb, JCS_RGB},
        {"CMYK", plainCmyk, ColorModel::cmyk, JCS_CMYK},
        {"Adobe's CMYK", make(JCS_CMYK, JCS_CMYK, Coding::baseline), ColorModel::cmyk, JCS_CMYK, true},
        {"Adobe's YCCK", make(JCS_CMYK, JCS_YCCK, Coding::baseline, 2), ColorModel::cmyk, JCS_CMYK, true},
        {"Adobe's YCCK, progressive", make(JCS_CMYK, JCS_YCCK, Coding::progressive), ColorModel::cmyk, JCS_CMYK, true},
    };
}

QByteArray inverted(QByteArray bytes) {
    for (char& byte : bytes) {
        byte = static_cast<char>(~byte);
    }
    return bytes;
}

/// A gray file of `scanCount` scans, each of which has all of the picture.
QByteArray withScans(int scanCount) {
    JpegFixture fixture{.width = 16, .height = 16, .coding = JpegFixture::Coding::separateScans};
    const QByteArray file = fixture.bytes();
    const qsizetype last = file.lastIndexOf("\xFF\xDA");
    const QByteArray scan = file.sliced(last).chopped(2);
    return file.chopped(2) + scan.repeated(scanCount - 3) + "\xFF\xD9";
}

} // namespace

class JpegDecoding : public JpegFiles {
protected:
    /// Whether the file is refused, at its opening or by the end of its rows.
    [[nodiscard]] bool isRefused(const QByteArray& bytes) const {
        try {
            (void)decoded(bytes);
        } catch (const ImageError& error) {
            EXPECT_FALSE(error.message().isEmpty());
            return true;
        }
        return false;
    }
};

TEST_F(JpegDecoding, DeliversTheSamplesOfEveryKind) {
    for (const Kind& kind : kinds()) {
        SCOPED_TRACE(kind.name);
        const QByteArray file = kind.fixture.bytes();
        const Raster raster = open(file)->full();
        EXPECT_EQ(raster.format(), (PixelFormat{kind.model, 8, false, false}));
        EXPECT_EQ(raster.storedWidth(), 83);
        EXPECT_EQ(raster.storedHeight(), 61);
        const QByteArray plain = JpegFixture::decoded(file, kind.plainSpace);
        EXPECT_EQ(test::pixelsOf(raster), kind.isInverted ? inverted(plain) : plain);
    }
}

TEST_F(JpegDecoding, DeliversKnownColours) {
    struct Row {
        const char* name;
        J_COLOR_SPACE pixelSpace;
        J_COLOR_SPACE storedSpace;
        bool hasAdobe;
        std::vector<int> stored;
        std::vector<int> delivered;
    };

    const std::vector<Row> rows{
        {"gray", JCS_GRAYSCALE, JCS_GRAYSCALE, false, {200}, {200}},
        {"RGB", JCS_RGB, JCS_RGB, true, {10, 128, 250}, {10, 128, 250}},
        {"YCbCr", JCS_RGB, JCS_YCbCr, false, {128, 128, 128}, {128, 128, 128}},
        {"CMYK", JCS_CMYK, JCS_CMYK, false, {0, 40, 255, 7}, {0, 40, 255, 7}},
        {"Adobe's CMYK: 255 is no ink", JCS_CMYK, JCS_CMYK, true, {255, 215, 0, 248}, {0, 40, 255, 7}},
        {"Adobe's YCCK", JCS_CMYK, JCS_YCCK, true, {100, 100, 100, 30}, {155, 155, 155, 225}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        JpegFixture fixture{.width = 20, .height = 12, .pixelSpace = row.pixelSpace, .storedSpace = row.storedSpace};
        fixture.hasAdobe = row.hasAdobe;
        fixture.pixels = JpegFixture::flat(20, 12, row.stored);
        EXPECT_EQ(decoded(fixture.bytes()), JpegFixture::flat(20, 12, row.delivered));
    }
}

TEST_F(JpegDecoding, DeliversALargePictureInSeveralStrips) {
    for (const auto coding : {Coding::baseline, Coding::progressive}) {
        JpegFixture fixture{.width = 3000, .height = 700, .coding = coding, .quality = 60, .lumaSampling = 2};
        const QByteArray file = fixture.bytes();
        int strips = 0;
        open(file)->full().rows([&](const RowStrip&) { ++strips; });
        EXPECT_EQ(strips, 3); // of 256 rows at most, though 466 would be as long as a strip should be
        EXPECT_EQ(decoded(file), JpegFixture::decoded(file, JCS_RGB));
    }
}

TEST_F(JpegDecoding, CanBeRepeatedInSeveralThreadsAtOnce) {
    const QByteArray file = kinds()[3].fixture.bytes();
    const QByteArray expected = JpegFixture::decoded(file, JCS_RGB);
    const Raster raster = open(file)->full();
    std::array<QByteArray, 4> results;
    {
        std::vector<std::jthread> threads;
        for (QByteArray& result : results) {
            threads.emplace_back([&] {
                for (int pass = 0; pass < 5; ++pass) {
                    result = test::pixelsOf(raster);
                }
            });
        }
    }
    EXPECT_THAT(results, ::testing::Each(expected));
}

TEST_F(JpegDecoding, PassesOnWhatTheSinkRaises) {
    const Raster raster = open(kinds()[3].fixture.bytes())->full();
    EXPECT_THROW(raster.rows([](const RowStrip&) { throw std::runtime_error("full"); }), std::runtime_error);
    EXPECT_EQ(test::pixelsOf(raster).size(), 83 * 61 * 3);
}

TEST_F(JpegDecoding, RefusesAFileThatIsCutOffAnywhere) {
    for (const Kind& kind : kinds()) {
        const QByteArray file = kind.fixture.bytes();
        for (int place = 0; place < 64; ++place) {
            SCOPED_TRACE(QStringLiteral("%1 at %2 of 64").arg(QString::fromUtf8(kind.name)).arg(place).toStdString());
            EXPECT_TRUE(isRefused(file.first(file.size() * place / 64)));
        }
        EXPECT_TRUE(isRefused(file.chopped(1))) << kind.name;
        EXPECT_TRUE(isRefused(file.chopped(2))) << kind.name;
    }
}

TEST_F(JpegDecoding, RefusesAPictureThatEndsBeforeItsLastRow) {
    for (const Kind& kind : kinds()) {
        if (kind.fixture.coding == Coding::arithmetic) {
            continue; // an arithmetic coder's data goes on with zeros for ever, by its standard
        }
        const QByteArray file = kind.fixture.bytes();
        const qsizetype scan = file.indexOf("\xFF\xDA");
        QByteArray cut = file.first(scan + (file.size() - scan) / 2);
        while (cut.endsWith('\xFF')) {
            cut.chop(1);
        }
        EXPECT_TRUE(isRefused(cut + "\xFF\xD9")) << kind.name;
    }
}

TEST_F(JpegDecoding, RefusesAPictureWithoutTheScanOfAComponent) {
    JpegFixture fixture{.width = 40, .height = 40, .coding = Coding::separateScans};
    const QByteArray file = fixture.bytes();
    const qsizetype lastScan = file.lastIndexOf("\xFF\xDA");
    EXPECT_FALSE(isRefused(file));
    EXPECT_TRUE(isRefused(file.first(lastScan) + "\xFF\xD9"));
}

TEST_F(JpegDecoding, RefusesBytesThatBelongToNothing) {
    const QByteArray file = kinds()[2].fixture.bytes();
    EXPECT_TRUE(isRefused(file.chopped(2) + "stray" + file.last(2)));
    const qsizetype scan = segmentOffset(file, startOfScan);
    EXPECT_TRUE(isRefused(file.first(scan) + "stray" + file.sliced(scan)));
}

TEST_F(JpegDecoding, RefusesAMissingRestart) {
    const QByteArray file = kinds()[4].fixture.bytes();
    const qsizetype second = file.indexOf("\xFF\xD1");
    ASSERT_GT(second, 0);
    EXPECT_TRUE(isRefused(QByteArray(file).replace(second + 1, 1, "\xD5")));
}

TEST_F(JpegDecoding, PassesBytesBehindTheEnd) {
    const QByteArray file = kinds()[2].fixture.bytes();
    EXPECT_EQ(decoded(file + "a film, or another picture"), JpegFixture::decoded(file, JCS_RGB));
}

TEST_F(JpegDecoding, PassesOddHeadersThatSayNothingAgainstThePicture) {
    const QByteArray file = kinds()[2].fixture.bytes();
    const QByteArray pixels = JpegFixture::decoded(file, JCS_RGB);
    const auto with = [&](const QByteArray& bytes) { return QByteArray(file).insert(2, bytes); };
    const QByteArray adobe = QByteArray("Adobe\0d\0\0\0\0", 11);
    EXPECT_EQ(decoded(with(segment(0xEE, adobe + '\x07'))), pixels) << "an unknown colour transform";
    EXPECT_EQ(decoded(with(segment(0xE0, QByteArray("JFIF\0\x03\x00\0\0\1\0\1\0\0", 14)))), pixels) << "JFIF 3";
    EXPECT_EQ(decoded(with(segment(0xE2, QByteArray("ICC_PROFILE\0\x02\x01nonsense", 22)))), pixels) << "profile";
    EXPECT_EQ(decoded(with(segment(0xEF, "anything"))), pixels) << "an unknown segment";
    EXPECT_EQ(decoded(with(segment(0xE1, QByteArray("Exif\0\0nothing", 13)))), pixels) << "empty EXIF";
    EXPECT_EQ(decoded(with(segment(0xE1, ""))), pixels) << "empty segment";
}

TEST_F(JpegDecoding, ReadsPastManyMegabytesOfSegments) {
    const QByteArray file = kinds()[2].fixture.bytes();
    const QByteArray padding = segment(0xE1, QByteArray(65500, 'x')).repeated(1200);
    EXPECT_EQ(decoded(QByteArray(file).insert(2, padding)), JpegFixture::decoded(file, JCS_RGB));
}

TEST_F(JpegDecoding, RefusesToKeepMoreProfilesThanAPictureCanHave) {
    const QByteArray profiles = segment(0xE2, QByteArray(65500, 'x')).repeated(1200);
    EXPECT_TRUE(isRefused(QByteArray(kinds()[2].fixture.bytes()).insert(2, profiles)));
}

TEST_F(JpegDecoding, RefusesASizeThatTheFileCannotHold) {
    for (const Kind& kind : kinds()) {
        SCOPED_TRACE(kind.name);
        QByteArray file = kind.fixture.bytes();
        qsizetype frame = -1;
        for (quint8 marker = startOfFrame; marker < startOfFrame + 16 && frame < 0; ++marker) {
            const bool isFrame = marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
            frame = isFrame ? segmentOffset(file, marker) : -1;
        }
        ASSERT_GT(frame, 0);
        file.replace(frame + 5, 4, QByteArray::fromHex("FFDCFFDC")); // 65500 x 65500
        EXPECT_THROW((void)open(file), ImageError);
    }
}

TEST_F(JpegDecoding, TakesTheSizeThatAFileCanJustHold) {
    // Flat blocks cost two bits each: far more than the one that the limit asks for.
    JpegFixture fixture{.width = 4000, .height = 4000, .pixelSpace = JCS_GRAYSCALE, .storedSpace = JCS_GRAYSCALE};
    fixture.pixels = JpegFixture::flat(4000, 4000, {128});
    EXPECT_EQ(decoded(fixture.bytes()), fixture.pixels);
}

TEST_F(JpegDecoding, RefusesMoreScansThanAnyPictureNeeds) {
    EXPECT_FALSE(isRefused(withScans(100)));
    EXPECT_TRUE(isRefused(withScans(101)));
}

TEST_F(JpegDecoding, RefusesKindsThatItDoesNotKnow) {
    const QByteArray file = kinds()[2].fixture.bytes();
    const qsizetype frame = segmentOffset(file, startOfFrame);
    EXPECT_TRUE(isRefused(QByteArray(file).replace(frame + 4, 1, "\x0C"))) << "12 bits";
    EXPECT_TRUE(isRefused(QByteArray(file).replace(frame + 1, 1, "\xC3"))) << "lossless";
    EXPECT_TRUE(isRefused(QByteArray(file).replace(frame + 1, 1, "\xC5"))) << "hierarchical";
    EXPECT_TRUE(isRefused(QByteArray(file).replace(frame + 5, 2, QByteArray(2, '\0')))) << "no height";
    JpegFixture two{.width = 8, .height = 8, .pixelSpace = JCS_UNKNOWN, .storedSpace = JCS_UNKNOWN};
    EXPECT_TRUE(isRefused(two.bytes())) << "two components";
    EXPECT_TRUE(isRefused("\xFF\xD8\xFF\xD9")) << "no picture";
}

TEST_F(JpegDecoding, SurvivesAnyFlippedByte) {
    std::mt19937 random(7);
    for (const Kind& kind : kinds()) {
        const QByteArray file = kind.fixture.bytes();
        int refusals = 0;
        for (int trial = 0; trial < 150; ++trial) {
            QByteArray damaged = file;
            const auto place = static_cast<qsizetype>(random() % static_cast<quint64>(file.size()));
            damaged[place] = static_cast<char>(damaged[place] ^ static_cast<char>(1U << (random() % 8)));
            refusals += isRefused(damaged) ? 1 : 0;
        }
        EXPECT_GT(refusals, 0) << kind.name;
    }
}

TEST_F(JpegDecoding, PassesOnAFailureOfTheFileSystem) {
    // The memory of a process is a file that opens and whose first page cannot be read.
    const auto file =
        std::make_shared<const RandomAccessFile>(RandomAccessFile::open(QStringLiteral("/proc/self/mem")));
    EXPECT_THROW((void)openJpeg(file), FileSystemError);
}

TEST_F(JpegDecoding, StopsWithinAFileThatItHasReadAlready) {
    const JpegFixture fixture{.width = 40, .height = 40, .coding = JpegFixture::Coding::progressive};
    std::stop_source stop;
    const RandomAccessFile file = RandomAccessFile::open(folder_.write(fileName, fixture.bytes()), stop.get_token());
    JpegDecoder decoder(file);
    (void)decoder.readHeader(false);
    stop.request_stop();
    EXPECT_THROW(decoder.start(1), Interrupted);
}

TEST_F(JpegDecoding, RefusesAFileThatChangedSinceItWasOpened) {
    const auto source = open(JpegFixture{.width = 40, .height = 40}.bytes());
    // The same path, with as many bytes in a row of another picture.
    const JpegFixture other{.width = 120, .height = 40, .pixelSpace = JCS_GRAYSCALE, .storedSpace = JCS_GRAYSCALE};
    (void)folder_.write(fileName, other.bytes());
    EXPECT_THROW(source->full().rows([](const RowStrip&) {}), ImageError);
}

} // namespace orvex::platform
