#include "Output/EmbeddedICC.h"

#include "Color/IccProfile.h"
#include "Files/RandomAccessFile.h"
#include "ProfileContainers.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex {

using namespace test;

namespace {

const QByteArray profile("the bytes of a profile, whatever they are");

std::optional<QByteArray> png(const QByteArray& file) {
    platform::ByteReader data(file);
    return EmbeddedICC::png(data);
}

std::optional<QByteArray> jpeg(const QByteArray& file) {
    platform::ByteReader data(file);
    return EmbeddedICC::jpeg(data);
}

std::optional<QByteArray> tiff(const QByteArray& file) {
    platform::ByteReader data(file);
    return EmbeddedICC::tiff(data);
}

const QByteArray ihdr = pngChunk("IHDR", QByteArray(13, '\1'));
const QByteArray idat = pngChunk("IDAT", "pixels");
const QByteArray iend = pngChunk("IEND", {});

QByteArray srgb(char intent) {
    return pngChunk("sRGB", QByteArray(1, intent));
}

const TiffField srgbSpace{40961, 3, 1, 1};

QByteArray srgbExif() {
    const TiffForm form;
    return form.exif(form.exifPointer(), srgbSpace);
}

std::vector<TiffForm> tiffForms() {
    return {{.isLittle = true, .isBig = false},
            {.isLittle = false, .isBig = false},
            {.isLittle = true, .isBig = true},
            {.isLittle = false, .isBig = true}};
}

const QByteArray tiffProfile(200, 'p');

} // namespace

// PNG

TEST(EmbeddedPng, GivesTheInflatedProfile) {
    EXPECT_EQ(png(pngFile({ihdr, pngChunk("iCCP", iccpData(profile)), idat, iend})), profile);
}

TEST(EmbeddedPng, GivesTheSystemsSRgbForItsChunk) {
    for (char intent = 0; intent < 4; ++intent) {
        EXPECT_EQ(png(pngFile({ihdr, srgb(intent), idat, iend})), platform::sRgbProfileData());
    }
}

TEST(EmbeddedPng, IgnoresAnSRgbChunkOfAnUnknownIntentOrLength) {
    const std::vector<QByteArray> unusable{srgb(4), srgb('\xFF'), pngChunk("sRGB", {}),
                                           pngChunk("sRGB", QByteArray(2, '\0'))};
    for (const QByteArray& chunk : unusable) {
        EXPECT_EQ(png(pngFile({ihdr, chunk, idat, iend})), std::nullopt);
        EXPECT_EQ(png(pngFile({ihdr, chunk, pngChunk("iCCP", iccpData(profile)), idat})), profile);
    }
}

TEST(EmbeddedPng, TakesTheFirstOfBothChunks) {
    const QByteArray iccp = pngChunk("iCCP", iccpData(profile));
    EXPECT_EQ(png(pngFile({ihdr, iccp, srgb(0), idat})), profile);
    EXPECT_EQ(png(pngFile({ihdr, srgb(0), iccp, idat})), platform::sRgbProfileData());
    EXPECT_EQ(png(pngFile({ihdr, pngChunk("iCCP", iccpData(profile, "")), srgb(0), idat})), std::nullopt);
}

TEST(EmbeddedPng, LooksForNothingBehindThePixels) {
    const QByteArray iccp = pngChunk("iCCP", iccpData(profile));
    EXPECT_EQ(png(pngFile({ihdr, idat, iccp, iend})), std::nullopt);
    EXPECT_EQ(png(pngFile({ihdr, idat, srgb(0), iend})), std::nullopt);
    EXPECT_EQ(png(pngFile({ihdr, iend, iccp})), std::nullopt);
}

TEST(EmbeddedPng, StepsOverChunksThatAreNotAscii) {
    EXPECT_EQ(png(pngFile({ihdr, pngChunk("\xFF\xFE\x80\x81", "strange"), pngChunk("iCCP", iccpData(profile))})),
              profile);
}

TEST(EmbeddedPng, GivesNothingIfThereIsNoProfile) {
    EXPECT_EQ(png(pngFile({ihdr, idat, iend})), std::nullopt);
    EXPECT_EQ(png(pngFile({ihdr})), std::nullopt);
    EXPECT_EQ(png(pngFile({})), std::nullopt);
    EXPECT_EQ(png({}), std::nullopt);
}

TEST(EmbeddedPng, NeverFollowsALengthOutOfTheData) {
    const QByteArray whole = pngFile({ihdr, pngChunk("iCCP", iccpData(profile))});
    EXPECT_EQ(png(whole), profile);
    for (qsizetype size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(png(whole.first(size)), std::nullopt);
    }
    for (const quint32 length : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(png(pngFile({ihdr, bigEndian(length) + "iCCP" + iccpData(profile)})), std::nullopt);
        EXPECT_EQ(png(pngFile({bigEndian(length) + "IHDR", ihdr, srgb(0)})), std::nullopt);
    }
}

TEST(EmbeddedPng, RefusesAnUnnamedOrOtherwiseCompressedProfile) {
    const auto read = [](const QByteArray& data) { return png(pngFile({ihdr, pngChunk("iCCP", data), idat})); };
    EXPECT_EQ(read(iccpData(profile, "n")), profile);
    EXPECT_EQ(read(iccpData(profile, QByteArray(200, 'n'))), profile);
    EXPECT_EQ(read(iccpData(profile, "")), std::nullopt);
    EXPECT_EQ(read(iccpData(profile, "name", 1)), std::nullopt);
    EXPECT_EQ(read("name without an end"), std::nullopt);
    EXPECT_EQ(read(QByteArray("name\0", 5)), std::nullopt);
    EXPECT_EQ(read(QByteArray("name\0\0", 6)), std::nullopt);
    EXPECT_EQ(read({}), std::nullopt);
    EXPECT_EQ(read(QByteArray("name\0\0no stream", 15)), std::nullopt);
}

TEST(EmbeddedPng, RefusesAChunkOfMoreThan64MiB) {
    QByteArray data = iccpData(profile);
    data.resize(67'108'864, '\0'); // what follows the stream does no harm
    EXPECT_EQ(png(pngFile({pngChunk("iCCP", data)})), profile);
    data.append('\0');
    EXPECT_EQ(png(pngFile({pngChunk("iCCP", data)})), std::nullopt);
}

TEST(EmbeddedPng, ReadsAFileWithoutLoadingIt) {
    const TemporaryFolder folder;
    const auto file = platform::RandomAccessFile::open(
        folder.write(QStringLiteral("a.png"), pngFile({ihdr, pngChunk("iCCP", iccpData(profile)), idat})));
    platform::ByteReader data(file);
    EXPECT_EQ(EmbeddedICC::png(data), profile);
}

// Inflate

TEST(EmbeddedInflate, GivesProfilesOfUpTo64MiB) {
    for (const qsizetype size : {65'535, 65'536, 65'537, 131'073, 67'108'863, 67'108'864}) {
        SCOPED_TRACE(size);
        const QByteArray content(size, 'x');
        EXPECT_TRUE(EmbeddedICC::inflate(qCompress(content, 1).sliced(4)) == content);
    }
}

TEST(EmbeddedInflate, RefusesProfilesOfMoreThan64MiB) {
    EXPECT_FALSE(EmbeddedICC::inflate(qCompress(QByteArray(67'108'865, 'x'), 1).sliced(4)));
}

TEST(EmbeddedInflate, RefusesWhatIsNoStream) {
    EXPECT_FALSE(EmbeddedICC::inflate({}));
    EXPECT_FALSE(EmbeddedICC::inflate("plain"));
}

// JPEG

TEST(EmbeddedJpeg, JoinsTheChunksInTheOrderOfTheirNumbers) {
    EXPECT_EQ(jpeg(jpegFile({iccSegment(1, 1, profile)})), profile);
    EXPECT_EQ(jpeg(jpegFile(
                  {iccSegment(3, 3, "c"), iccSegment(1, 3, "a"), jpegSegment(0xE0, "JFIF"), iccSegment(2, 3, "b")})),
              QByteArray("abc"));
}

TEST(EmbeddedJpeg, JoinsAsManyChunksAsTheNumbersReach) {
    std::vector<QByteArray> segments;
    QByteArray joined;
    for (int i = 1; i <= 255; ++i) {
        const QByteArray bytes(3, static_cast<char>(i));
        segments.push_back(iccSegment(static_cast<quint8>(i), 255, bytes));
        joined += bytes;
    }
    EXPECT_EQ(jpeg(jpegFile(segments)), joined);
    segments.pop_back();
    EXPECT_EQ(jpeg(jpegFile(segments)), std::nullopt);
}

TEST(EmbeddedJpeg, RefusesChunksThatDoNotMakeAWhole) {
    const std::vector<std::vector<QByteArray>> cases{
        {iccSegment(1, 2, "a")},                        // one is missing
        {iccSegment(2, 2, "b")},                        //
        {iccSegment(1, 2, "a"), iccSegment(1, 2, "b")}, // one comes twice
        {iccSegment(1, 1, "a"), iccSegment(1, 1, "a")}, //
        {iccSegment(0, 1, "a")},                        // numbers begin with 1
        {iccSegment(1, 0, "a")},                        //
        {iccSegment(2, 1, "a")},                        // beyond the total
        {iccSegment(1, 2, "a"), iccSegment(2, 3, "b")}, // two totals
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(jpeg(jpegFile(cases[i])), std::nullopt);
        std::vector<QByteArray> withExif = cases[i];
        withExif.insert(withExif.begin(), exifSegment(srgbExif()));
        EXPECT_EQ(jpeg(jpegFile(withExif)), std::nullopt) << "not even with EXIF sRGB";
    }
}

TEST(EmbeddedJpeg, KnowsAChunkByItsWholeName) {
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE2, QByteArray("ICC_PROFILE\0\1\1", 14))})), QByteArray(""));
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE2, QByteArray("ICC_PROFILE\0\1", 13)), iccSegment(1, 1, profile)})),
              profile);
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE2, QByteArray("ICC_PROFILE1\1\1bytes", 19))})), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE3, QByteArray("ICC_PROFILE\0\1\1bytes", 19))})), std::nullopt);
}

TEST(EmbeddedJpeg, GivesTheSystemsSRgbIfOnlyTheExifDataDeclaresIt) {
    EXPECT_EQ(jpeg(jpegFile({exifSegment(srgbExif())})), platform::sRgbProfileData());
    const TiffForm form;
    const QByteArray uncalibrated = form.exif(form.exifPointer(), {40961, 3, 1, 65535});
    EXPECT_EQ(jpeg(jpegFile({exifSegment(uncalibrated)})), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({exifSegment(srgbExif()), exifSegment(uncalibrated)})), platform::sRgbProfileData());
}

TEST(EmbeddedJpeg, PutsAProfileBeforeTheDeclaration) {
    EXPECT_EQ(jpeg(jpegFile({exifSegment(srgbExif()), iccSegment(1, 1, profile)})), profile);
    EXPECT_EQ(jpeg(jpegFile({iccSegment(1, 1, profile), exifSegment(srgbExif())})), profile);
}

TEST(EmbeddedJpeg, TakesExifDataByNameAndMarker) {
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE1, QByteArray("Exif\0", 5))})), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE1, QByteArray("Exif\0x", 6) + srgbExif())})), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({jpegSegment(0xE2, QByteArray("Exif\0\0", 6) + srgbExif())})), std::nullopt);
}

TEST(EmbeddedJpeg, StepsOverFillBytesAndMarkersWithoutALength) {
    const QByteArray file = jpegFile({"\xFF\x01", "\xFF\xD0\xFF\xD7", "\xFF\xFF\xFF", iccSegment(1, 1, profile)});
    EXPECT_EQ(jpeg(file), profile);
}

TEST(EmbeddedJpeg, NeverEntersTheScan) {
    const QByteArray sos = jpegSegment(0xDA, "scan");
    EXPECT_EQ(jpeg(jpegFile({iccSegment(1, 1, profile), sos, "anything at all"})), profile);
    EXPECT_EQ(jpeg(jpegFile({sos, iccSegment(1, 1, profile)})), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({"\xFF\xD9", iccSegment(1, 1, profile)})), std::nullopt);
}

TEST(EmbeddedJpeg, ReadsToTheEndOfTheData) {
    EXPECT_EQ(jpeg(jpegFile({iccSegment(1, 1, profile)}, {})), profile);
    EXPECT_EQ(jpeg(jpegFile({exifSegment(srgbExif())}, {})), platform::sRgbProfileData());
    EXPECT_EQ(jpeg("\xFF\xD8"), std::nullopt);
    EXPECT_EQ(jpeg({}), std::nullopt);
}

TEST(EmbeddedJpeg, RefusesAFileThatIsNoChainOfSegments) {
    const QByteArray icc = iccSegment(1, 1, profile);
    EXPECT_EQ(jpeg(jpegFile({icc, "x"})), std::nullopt);        // no marker
    EXPECT_EQ(jpeg(jpegFile({icc}, "\xFF")), std::nullopt);     // no end of the fill bytes
    EXPECT_EQ(jpeg(jpegFile({icc}, "\xFF\xE0")), std::nullopt); // no length
    EXPECT_EQ(jpeg(jpegFile({icc}, QByteArray("\xFF\xE0\0", 3))), std::nullopt);
    EXPECT_EQ(jpeg(jpegFile({icc}, QByteArray("\xFF\xE0\0\1", 4))), std::nullopt); // too short for itself
    EXPECT_EQ(jpeg(jpegFile({icc}, QByteArray("\xFF\xE0\0\2", 4))), profile);
    EXPECT_EQ(jpeg(jpegFile({icc}, QByteArray("\xFF\xE0\0\3", 4))), std::nullopt); // leads out of the data
    EXPECT_EQ(jpeg(jpegFile({icc}, QByteArray("\xFF\xE0\0\3x", 5))), profile);
}

// EXIF

TEST(ExifDeclaresSRgb, ReadsBothByteOrders) {
    for (const bool isLittle : {true, false}) {
        const TiffForm form{.isLittle = isLittle};
        EXPECT_TRUE(EmbeddedICC::exifDeclaresSRGB(form.exif(form.exifPointer(), srgbSpace)));
        EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(form.exif(form.exifPointer(), {40961, 3, 1, 2})));
        EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(form.exif(form.exifPointer(), {40961, 3, 1, 256})));
    }
}

TEST(ExifDeclaresSRgb, DemandsTheExactTypesAndCounts) {
    const TiffForm form;
    const quint64 at = form.exifPointer().value;
    const auto declares = [&form](const TiffField& pointer, const TiffField& space) {
        return EmbeddedICC::exifDeclaresSRGB(form.exif(pointer, space));
    };
    EXPECT_TRUE(declares({34665, 4, 1, at}, srgbSpace));
    EXPECT_FALSE(declares({34665, 13, 1, at}, srgbSpace));
    EXPECT_FALSE(declares({34665, 4, 2, at}, srgbSpace));
    EXPECT_FALSE(declares({34666, 4, 1, at}, srgbSpace));
    EXPECT_FALSE(declares({34665, 4, 1, at}, {40961, 4, 1, 1}));
    EXPECT_FALSE(declares({34665, 4, 1, at}, {40961, 3, 2, 1}));
    EXPECT_FALSE(declares({34665, 4, 1, at}, {40962, 3, 1, 1}));
}

TEST(ExifDeclaresSRgb, DemandsTheSignature) {
    QByteArray exif = srgbExif();
    exif[2] = 43;
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(exif));
    exif = srgbExif();
    exif[0] = 'M';
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(exif));
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB({}));
}

TEST(ExifDeclaresSRgb, StaysInsideTheData) {
    const TiffForm form;
    const QByteArray whole = srgbExif();
    const auto end = static_cast<quint64>(whole.size());
    for (qsizetype size = 0; size < whole.size() - 4; ++size) { // the offset of a next directory may be missing
        SCOPED_TRACE(size);
        EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(whole.first(size)));
    }
    EXPECT_TRUE(EmbeddedICC::exifDeclaresSRGB(whole.first(whole.size() - 4)));
    for (const quint64 offset : {end, end + 1, end - 1, quint64{0xFFFFFFFF}}) {
        EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(form.exif({34665, 4, 1, offset}, srgbSpace)));
        EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(form.header(offset) + whole.sliced(8)));
    }
}

TEST(ExifDeclaresSRgb, DemandsADirectoryThatFits) {
    const TiffForm form;
    QByteArray exif = srgbExif();
    const auto exifDirectory = static_cast<qsizetype>(form.exifPointer().value);
    const auto withCount = [&exif, exifDirectory](char count) {
        return QByteArray(exif).replace(exifDirectory, 1, {&count, 1});
    };
    EXPECT_TRUE(EmbeddedICC::exifDeclaresSRGB(withCount(2)));
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(withCount(0)));
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(withCount(1))); // the field is the second
    EXPECT_FALSE(EmbeddedICC::exifDeclaresSRGB(withCount(3))); // 28 bytes hold two
}

// TIFF

TEST(EmbeddedTiff, GivesTheProfileOfEveryFormOfFile) {
    for (const TiffForm& form : tiffForms()) {
        SCOPED_TRACE(testing::Message() << form.isLittle << form.isBig);
        const QByteArray file = form.file({34675, 7, 200, form.tailOffset()}, tiffProfile);
        EXPECT_EQ(tiff(file), tiffProfile);
        EXPECT_EQ(tiff(file + "more"), tiffProfile);
        EXPECT_EQ(tiff(file.chopped(1)), std::nullopt);
    }
}

TEST(EmbeddedTiff, DemandsTheTypeOfUndefinedBytes) {
    for (const TiffForm& form : tiffForms()) {
        for (const quint16 type : {quint16{1}, quint16{2}, quint16{4}, quint16{16}}) {
            EXPECT_EQ(tiff(form.file({34675, type, 200, form.tailOffset()}, tiffProfile)), std::nullopt);
        }
    }
}

TEST(EmbeddedTiff, TakesProfilesOf132BytesTo64MiB) {
    const QByteArray large(67'108'865, 'x');
    for (const TiffForm& form : {tiffForms().front(), tiffForms().back()}) {
        const auto read = [&](quint64 count) {
            return tiff(form.file({34675, 7, count, form.tailOffset()}, large)).value_or(QByteArray()).size();
        };
        EXPECT_EQ(read(131), 0);
        EXPECT_EQ(read(132), 132);
        EXPECT_EQ(read(67'108'864), 67'108'864);
        EXPECT_EQ(read(67'108'865), 0);
        EXPECT_EQ(read(0), 0);
        EXPECT_EQ(read(0xFFFFFFFF), 0);
    }
}

TEST(EmbeddedTiff, KeepsTheProfileInsideTheData) {
    for (const TiffForm& form : tiffForms()) {
        const quint64 at = form.tailOffset();
        const quint64 farthest = form.isBig ? ~quint64{0} : 0xFFFFFFFF;
        EXPECT_EQ(tiff(form.file({34675, 7, 200, at + 1}, tiffProfile)), std::nullopt);
        EXPECT_EQ(tiff(form.file({34675, 7, 201, at}, tiffProfile)), std::nullopt);
        EXPECT_EQ(tiff(form.file({34675, 7, 200, farthest}, tiffProfile)), std::nullopt);
        EXPECT_EQ(tiff(form.file({34675, 7, 200, farthest - 199}, tiffProfile)), std::nullopt);
        EXPECT_EQ(tiff(form.file({34675, 7, 150, 0}, tiffProfile)).value_or(QByteArray()).size(), 150);
    }
}

TEST(EmbeddedTiff, LooksIntoTheFirstDirectoryOnly) {
    for (const TiffForm& form : tiffForms()) {
        const quint64 second = form.headerBytes() + form.directoryBytes(1);
        const quint64 at = second + form.directoryBytes(1);
        const QByteArray file = form.header(form.headerBytes()) + form.directory({{256, 4, 1, 10}}, second) +
                                form.directory({{34675, 7, 200, at}}) + tiffProfile;
        EXPECT_EQ(tiff(file), std::nullopt);
        EXPECT_EQ(tiff(form.header(second) + file.sliced(static_cast<qsizetype>(form.headerBytes()))), tiffProfile);
    }
}

TEST(EmbeddedTiff, TakesTheFirstFieldOfThatTag) {
    for (const TiffForm& form : tiffForms()) {
        const quint64 at = form.headerBytes() + form.directoryBytes(2);
        const auto file = [&](quint16 type) {
            return form.header(form.headerBytes()) + form.directory({{34675, type, 132, at}, {34675, 7, 200, at}}) +
                   tiffProfile;
        };
        EXPECT_EQ(tiff(file(7)).value_or(QByteArray()).size(), 132);
        EXPECT_EQ(tiff(file(1)), std::nullopt);
    }
}

TEST(EmbeddedTiff, KnowsTheVersions) {
    const TiffForm classic;
    const TiffForm big{.isLittle = true, .isBig = true};
    const auto with = [](const TiffForm& form, qsizetype offset, char value) {
        return form.file({34675, 7, 200, form.tailOffset()}, tiffProfile).replace(offset, 1, {&value, 1});
    };
    EXPECT_EQ(tiff(with(classic, 2, 41)), std::nullopt);
    EXPECT_EQ(tiff(with(classic, 2, 43)), std::nullopt);
    EXPECT_EQ(tiff(with(big, 2, 43)), tiffProfile);
    EXPECT_EQ(tiff(with(big, 2, 44)), std::nullopt);
    EXPECT_EQ(tiff(with(big, 4, 4)), std::nullopt);
    EXPECT_EQ(tiff(with(big, 6, 1)), std::nullopt);
}

TEST(EmbeddedTiff, ReadsAnythingButIIAsBigEndian) {
    const TiffForm form{.isLittle = false};
    QByteArray file = form.file({34675, 7, 200, form.tailOffset()}, tiffProfile);
    EXPECT_EQ(tiff(file.replace(0, 2, "xx")), tiffProfile);
}

TEST(EmbeddedTiff, DemandsADirectoryInsideTheData) {
    for (const TiffForm& form : tiffForms()) {
        const QByteArray file = form.file({34675, 7, 200, form.tailOffset()}, tiffProfile);
        const auto body = file.sliced(static_cast<qsizetype>(form.headerBytes()));
        const auto size = static_cast<quint64>(file.size());
        for (const quint64 offset : {size, size - 1, quint64{0xFFFFFFFF}}) {
            EXPECT_EQ(tiff(form.header(offset) + body), std::nullopt);
        }
        for (qsizetype cut = 0; cut < file.size(); ++cut) {
            EXPECT_EQ(tiff(file.first(cut)), std::nullopt) << cut;
        }
        const auto countOffset = static_cast<qsizetype>(form.headerBytes());
        const auto count = [&](quint64 value) {
            const QByteArray bytes = form.isBig ? form.number(value) : form.number(static_cast<quint16>(value));
            return QByteArray(file).replace(countOffset, bytes.size(), bytes);
        };
        const quint64 fitting = static_cast<quint64>(body.size() - (form.isBig ? 8 : 2)) / (form.isBig ? 20U : 12U);
        EXPECT_EQ(tiff(count(2)), tiffProfile);
        EXPECT_EQ(tiff(count(0)), std::nullopt);
        EXPECT_EQ(tiff(count(1)), std::nullopt);
        EXPECT_EQ(tiff(count(fitting)), tiffProfile);
        EXPECT_EQ(tiff(count(fitting + 1)), std::nullopt);
        EXPECT_EQ(tiff(count(0xFFFF)), std::nullopt);
    }
    const TiffForm big{.isLittle = false, .isBig = true};
    const QByteArray file = big.header(16) + bigEndian(~quint64{0}) + QByteArray(400, '\0');
    EXPECT_EQ(tiff(file), std::nullopt);
}

} // namespace orvex
