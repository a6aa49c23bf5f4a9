// make-seeds FOLDER: writes the files that fuzzing starts from, in a folder for each kind. Small, whole and the same at
// every call.

#include "CanvasPreference.h"
#include "Exif.h"
#include "Json/JsonRecords.h"
#include "Layout/RollLayout.h"
#include "Layout/RollWorkspaceFile.h"
#include "Output/ArtworkImport.h"
#include "Output/RollPDFRenderer.h"
#include "ProtectedSettingsBaseline.h"
#include "Scenes.h"
#include "Stores/LocalQueue.h"
#include "Stores/PrintJournal.h"
#include "Stores/PrintPresets.h"
#include "Writers.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QUrl>
#include <QUuid>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

using namespace orvex;
using namespace orvex::samples;
namespace fs = std::filesystem;

namespace {

/// A JPEG says its density in 16 bits, so this gives the small pictures a size that fits a roll.
constexpr int pixelsPerInch = 8;
constexpr int width = 24;
constexpr int height = 16;

Picture picture() {
    return pictureOf(width, height, mountainDawn(width, height));
}

fs::path folderFor(const fs::path& root, const char* kind) {
    fs::create_directories(root / kind);
    return root / kind;
}

void writeBytes(const fs::path& file, const void* bytes, std::size_t size) {
    std::FILE* output = std::fopen(file.c_str(), "wb");
    const bool isWritten = output != nullptr && std::fwrite(bytes, 1, size, output) == size;
    if (output == nullptr || std::fclose(output) != 0 || !isWritten) {
        throw std::runtime_error("Cannot write " + file.string());
    }
}

void writeBytes(const fs::path& file, const QByteArray& bytes) {
    writeBytes(file, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void makeJpegs(const fs::path& folder) {
    const auto write = [&](const char* name, JpegForm form) {
        form.pixelsPerInch = pixelsPerInch;
        writeJpeg(picture(), form, folder / name);
    };
    write("plain.jpg", {.orientation = {}, .profile = {}});
    write("profile.jpg", {.hasFullChroma = true, .orientation = {}, .profile = sRgbProfile()});
    // Longer than a segment can be, so in two of them.
    write("two-segments.jpg", {.orientation = 1, .profile = pressProfile()});
    write("progressive.jpg", {.isProgressive = true, .orientation = 8, .profile = displayP3Profile()});
    write("gray-turned.jpg", {.isGray = true, .orientation = 6, .profile = grayProfile()});
    write("exif-srgb.jpg", {.orientation = 3, .declaresSRgb = true, .profile = {}});
}

void makePngs(const fs::path& folder) {
    writePng(picture(), {.pixelsPerInch = pixelsPerInch, .profile = {}}, folder / "plain.png");
    writePng(picture(), {.pixelsPerInch = pixelsPerInch, .profile = wideGamutProfile()}, folder / "profile.png");
    writePng(picture(), {.declaresSRgb = true, .pixelsPerInch = pixelsPerInch, .profile = {}}, folder / "srgb.png");
    const Picture flower = pictureOf(width, width, dahlia(width, width));
    writePng(flower, {.hasAlpha = true, .pixelsPerInch = pixelsPerInch, .profile = sRgbProfile()},
             folder / "alpha.png");
}

void makeTiffs(const fs::path& folder) {
    using enum TiffForm::Compression;
    const auto write = [&](const char* name, TiffForm form) {
        form.pixelsPerInch = pixelsPerInch;
        writeTiff(picture(), form, folder / name);
    };
    write("plain.tif", {.compression = none, .profile = {}});
    write("sixteen.tif", {.bitsPerSample = 16, .compression = lzw, .profile = wideGamutProfile()});
    write("big-endian.tif", {.isBigEndian = true, .compression = lzw, .profile = sRgbProfile()});
    write("bigtiff.tif", {.isBig = true, .compression = none, .profile = sRgbProfile()});
    write("bigtiff-big-endian.tif", {.isBigEndian = true, .isBig = true, .compression = lzw, .profile = sRgbProfile()});
    write("ink.tif", {.isCmyk = true, .compression = lzw, .profile = sRgbProfile()});
}

void makeHeifs(const fs::path& folder) {
    const Picture night = pictureOf(64, 64, harbourLights(64, 64));
    writeHeif(night, {.pixelsPerInch = pixelsPerInch, .profile = displayP3Profile()}, folder / "profile.heic");
    writeHeif(night, {.pixelsPerInch = pixelsPerInch, .profile = {}}, folder / "plain.heic");
}

void makeProfiles(const fs::path& folder) {
    for (const auto& [name, profile] :
         {std::pair("rgb.icc", &sRgbProfile()), std::pair("gray.icc", &grayProfile()),
          std::pair("wide.icc", &wideGamutProfile()), std::pair("press.icc", &pressProfile())}) {
        writeBytes(folder / name, profile->data(), profile->size());
    }
}

/// zlib streams as an iCCP chunk holds them: shorter and longer than the first room of their reader.
void makeDeflated(const fs::path& folder) {
    for (const auto& [name, profile] : {std::pair("rgb.z", &sRgbProfile()), std::pair("press.z", &pressProfile())}) {
        const QByteArray plain(reinterpret_cast<const char*>(profile->data()), static_cast<qsizetype>(profile->size()));
        writeBytes(folder / name, qCompress(plain).mid(4));
    }
}

/// EXIF as PNG and TIFF hold it, and with the name before it that JPEG and HEIF have.
void makeExifBlocks(const fs::path& folder) {
    for (const int orientation : {1, 6}) {
        const Bytes block = exifBlock(orientation, 300, orientation == 6);
        Bytes named{'E', 'x', 'i', 'f', 0, 0};
        named.insert(named.end(), block.begin(), block.end());
        const std::string number = std::to_string(orientation);
        writeBytes(folder / ("bare-" + number), block.data(), block.size());
        writeBytes(folder / ("named-" + number), named.data(), named.size());
    }
}

QUuid idOf(int number) {
    return QUuid(QStringLiteral("{00000000-0000-4000-8000-%1}").arg(number, 12, 10, QLatin1Char('0')));
}

/// Some artworks on a roll; their files need not be there.
RollLayout layoutOf(int count, double rollWidthInches) {
    RollLayout layout({}, rollWidthInches);
    for (int number = 1; number <= count; ++number) {
        layout.append(RollArtwork::make({.id = idOf(number),
                                         .sourceURL = QUrl(QStringLiteral("file:///artworks/%1.tif").arg(number)),
                                         .pixelWidth = 2400,
                                         .pixelHeight = 1600,
                                         .widthInches = 6.0 + 1.5 * number,
                                         .rotationQuarterTurns = number % 4}),
                      0.25);
    }
    return layout;
}

void makeLayouts(const fs::path& folder) {
    for (const int count : {0, 1, 5}) {
        RollWorkspaceFile file;
        file.layout = layoutOf(count, 44.0);
        file.gapInches = 0.25;
        if (count > 0) {
            file.selection = idOf(1);
            file.sizingDescriptions.insert(idOf(1).toString(QUuid::WithoutBraces).toUpper(), QStringLiteral("300 ppi"));
        }
        const std::string number = std::to_string(count);
        writeBytes(folder / ("workspace-" + number + ".json"), file.encode());
        writeBytes(folder / ("layout-" + number + ".json"),
                   platform::writeJson(file.layout.toJson(), platform::JsonForm::pretty));
    }
}

void makeNumbers(const fs::path& folder) {
    int count = 0;
    for (const char* text :
         {"24", "-0.25", "16.125", "1e3", " 7.5 ", "1,234.5", "1.234,5", "12,5", "+3", "1e999", "nan"}) {
        writeBytes(folder / ("number-" + std::to_string(count++)), QByteArray(text));
    }
}

void makeSizes(const fs::path& folder) {
    int count = 0;
    for (const char* text : {"24 x 16", "24 × 16\n\n9X13.5\r\n", "24\t16\u2028 8.5 11 \n1e1x2", "24,5 x 16", "0x5"}) {
        writeBytes(folder / ("sizes-" + std::to_string(count++)), QByteArray(text));
    }
}

/// One-page roll documents: with a soft mask, and one beyond 200 inches, which needs a user unit.
void makeDocuments(const fs::path& folder, const fs::path& pictures) {
    const auto artwork = [&](const char* file, int number) {
        const QString path = QString::fromStdString(fs::absolute(pictures / file).string());
        RollArtwork result = importedArtwork(ImageMetadata::load(QUrl::fromLocalFile(path)), 60.0);
        result.id = idOf(number);
        return result;
    };
    const auto render = [&](const RollLayout& layout, const char* name) {
        const QUrl file = QUrl::fromLocalFile(QString::fromStdString(fs::absolute(folder / name).string()));
        (void)RollPDFRenderer::render(layout, QStringLiteral("Seed"), file, ColorWorkflow{}, std::nullopt);
    };
    RollLayout layout;
    layout.append(artwork("png/alpha.png", 1), 0.0);
    layout.append(artwork("jpeg/profile.jpg", 2), 0.0);
    render(layout, "two-artworks.pdf");
    layout.items[1].yInches = 250.0;
    render(layout, "long.pdf");
}

/// What a tool of the print system once printed.
QByteArray fixture(const QString& name) {
    QFile file(QStringLiteral(ORVEX_FIXTURES "/Cups/") + name);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("Cannot read " + file.fileName().toStdString());
    }
    return file.readAll();
}

void copyFixtures(const QString& names, const fs::path& folder) {
    for (const QString& name : QDir(QStringLiteral(ORVEX_FIXTURES "/Cups")).entryList({names}, QDir::Files)) {
        writeBytes(folder / name.toStdString(), fixture(name));
    }
}

/// What the tools print of queues, with several answers in one, so that the jobs belong to the queues; names.
void makeQueueTexts(const fs::path& folder) {
    copyFixtures(QStringLiteral("*.txt"), folder);
    writeBytes(folder / "all-answers",
               fixture(QStringLiteral("lpstat_p_paused.txt")) + fixture(QStringLiteral("lpstat_v.txt")) +
                   fixture(QStringLiteral("lpstat_jobs_waiting.txt")) + fixture(QStringLiteral("lpoptions_W9400.txt")));
    writeBytes(
        folder / "look-alikes",
        "printer A-B is idle.\n\treason\nprinter A now printing A-7.\nprinter A again\nprinter B\nprinter  is idle.\n"
        "device for A : x\ndevice for A: usb://y:1\nA-7 root 1\nA-B-7 root 1\nA-x root\n A-8\n"
        "PageSize/: *A4 A4 * **A4\nPageSize/Media: Letter\nlpoptions: no\nInk/a/b: *x:y *z\nNone:\nStar: *\n");
    const QByteArray script = fixture(QStringLiteral("get-printer-attributes.test.txt"));
    writeBytes(folder / "commented-script",
               QByteArray(script).replace("EXPECT ", "\tEXPECT  ").replace("\n", " # }\n\n"));
    writeBytes(folder / "other-script", QByteArray(script).replace("OPERATION get-printer", "OPERATION set-printer"));
    int count = 0;
    for (const char* name : {"W9400", "Canon_iPF-9400.a", "长卷", "..", "a b", "a/b"}) {
        writeBytes(folder / ("name-" + std::to_string(count++)), QByteArray(name));
    }
}

/// Descriptions of drivers, and lines that differ by little from those that count.
void makeDescriptions(const fs::path& folder) {
    copyFixtures(QStringLiteral("*.ppd"), folder);
    writeBytes(folder / "look-alikes",
               "*PaperDimension A: \"1 2\"\n*PaperDimension A/x: \"1e1 .5\"\r\n*PaperDimension : \"1 2\"\n"
               "*PaperDimension /A: \"1 2\"\n*PaperDimension B/a:b: \"1 2\"\n*PaperDimension C \"1 2\"\n"
               "*PaperDimension D: \"1\"\" 2\"\n*PaperDimension E: \"1 2 3\"\n*PaperDimension F: 0x1 inf nan 1 2\n"
               "*PaperDimension 长卷: \"1 1e999\"\n*PaperDimension G: \"-1 2\"\n *PaperDimension H: \"1 2\"\n");
}

/// An answer of ipptool with these attributes of the queue, as XML.
QByteArray answer(const QByteArray& attributes, const QByteArray& declarations = {}) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
)" + declarations +
           R"(<plist version="1.0"><dict><key>Tests</key><array><dict><key>Operation</key>
<string>Get-Printer-Attributes</string><key>StatusCode</key><string>successful-ok</string><key>Successful</key><true/>
<key>ResponseAttributes</key><array><dict><key>attributes-charset</key><string>utf-8</string></dict><dict>)" +
           attributes + "</dict></array></dict></array><key>Successful</key><true/></dict></plist>\n";
}

void makePropertyLists(const fs::path& folder) {
    copyFixtures(QStringLiteral("*.plist"), folder);
    writeBytes(folder / "least", answer({}));
    writeBytes(
        folder / "out-of-band",
        answer("<key>printer-name</key>\n<string>&lt;&lt;no-value&gt;&gt;</string><key>printer-state-reasons</key>"
               "<array><string>&lt;&lt;unknown&gt;&gt;</string><string>none</string><true/></array>"
               "<key>marker-names</key><string>&lt;&lt;no-value&gt;&gt;</string>"
               "<key>marker-levels</key><array><integer>-3</integer><real>7.0</real><real>0.5</real></array>"));
    writeBytes(folder / "numbers",
               answer("<key>printer-name</key>\n<string>长卷</string><key>printer-state</key><real>3e0</real>"
                      "<key>queued-job-count</key><integer>0x7fffffffffffffff</integer>"
                      "<key>marker-change-time</key><integer>-9223372036854775809</integer>"
                      "<key>printer-is-accepting-jobs</key><true/><key>marker-levels</key><array><real>nan</real>"
                      "<real>1e999</real><integer>-9223372036854775808</integer></array>"));
    writeBytes(folder / "long-message",
               answer("<key>printer-state</key><integer>5</integer><key>printer-state-reasons</key>"
                      "<string>media-jam-error</string><key>printer-state-message</key><string>e&#x301;&#10;&#x1F5A8;" +
                      QByteArray("long ").repeated(150) + "</string>"));
    writeBytes(folder / "too-many-markers",
               answer("<key>marker-names</key><array>" + QByteArray("<string/>").repeated(1025) + "</array>"));
    writeBytes(folder / "twice", answer("<key>attributes-charset</key><string>utf-8</string>"));
    writeBytes(folder / "nested", answer("<key>marker-names</key>" + QByteArray("<array>").repeated(130) +
                                         QByteArray("</array>").repeated(130)));
    writeBytes(folder / "entity", answer("<key>printer-name</key>\n<string>&a;</string>",
                                         "<!DOCTYPE plist [<!ENTITY a \"W9400\"><!ENTITY b \"&a;&a;\">]>\n"));
}

constexpr double someMoment = 800'000'000.125;

QString fingerprintOf(const char* text) {
    return QString::fromLatin1(QCryptographicHash::hash(QByteArray(text), QCryptographicHash::Sha256).toHex());
}

void makeBaselines(const fs::path& folder) {
    using enum ProtectedSettingsFileStatus;
    const auto write = [&](const char* name, const QStringList& roots, const QList<ProtectedSettingsFile>& files) {
        const ProtectedSettingsSnapshot snapshot{.timestamp = {someMoment}, .rootPaths = roots, .files = files};
        ProtectedSettingsBaseline::validate(snapshot);
        writeBytes(folder / name, platform::writeJson(snapshot.toJson(), platform::JsonForm::pretty));
    };
    write("empty.json", {}, {});
    write("missing.json", {QStringLiteral("/home/a/.cups")}, {{.path = QStringLiteral("/home/a/.cups")}});
    const QString sentence = QStringLiteral("Permission denied");
    write("all-kinds.json", {QStringLiteral("/etc/a"), QStringLiteral("/etc/长卷")},
          {{.path = QStringLiteral("/etc/a"), .status = directory},
           {.path = QStringLiteral("/etc/a/b"), .status = regularFile, .sha256 = fingerprintOf("b")},
           {.path = QStringLiteral("/etc/a/c"), .status = symbolicLink, .sha256 = fingerprintOf("c")},
           {.path = QStringLiteral("/etc/a/c/d"), .status = unreadable, .diagnostic = sentence},
           {.path = QStringLiteral("/etc/长卷"), .status = unsupported, .diagnostic = sentence}});
    write("whole-system.json", {QStringLiteral("/")},
          {{.path = QStringLiteral("/"), .status = directory},
           {.path = QStringLiteral("/x"), .status = unreadable, .diagnostic = QStringLiteral("\uFEFFx")}});
}

/// JSON of every kind of value, and what differs from JSON by little.
void makeValues(const fs::path& folder) {
    int count = 0;
    for (
        const QByteArray& text : QByteArrayList{
            R"({"a": [true, false, null, -0, 0.5, -12.25e-3, 1E+2], "é😀\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00": {}, "a": ""})",
            "\xEF\xBB\xBF[ \"\xEF\xBB\xBFx\", \"\\ud800\", \"\\ufeff\" ]\r\n",
            "\"text\"",
            "1.5",
            " \tnull\n",
            "[9007199254740993, "
            "9223372036854775807, 9223372036854775808, 1e308, 1e309, 5e-324, 1e-999]",
            "[\"\xC3\"]",
            "[1.]",
            "[.5]",
            "[01]",
            "[+1]",
            "[1,]",
            "[,1]",
            "{\"a\":1,}",
            "{1:2}",
            "[\"\t\"]",
            "[\"\\x\"]",
            "['a']",
            "[1]]",
            "\v[1]",
            "[1]\f",
            QByteArray("[") + QByteArray(R"({"a,[":[1,2]},"],",)").repeated(70) + "0]",
            QByteArray("[") + QByteArray("1,").repeated(64) + "]",
            QByteArray("[") + QByteArray("1,").repeated(200) + "2",
            QByteArray(1024, '[') + QByteArray(1024, ']'),
            QByteArray(1025, '[') + QByteArray(1025, ']')}) {
        writeBytes(folder / ("value-" + std::to_string(count++)), text);
    }
}

RollSourceAudit auditOf(int number) {
    return {.artworkID = idOf(number),
            .sourceURL = QUrl(QStringLiteral("file:///artworks/%1 长卷.tif").arg(number)),
            .sourceProfileName = QStringLiteral("Display P3"),
            .sourceProfileSHA256 = number % 2 == 0 ? std::optional(fingerprintOf("p3")) : std::nullopt,
            .pixelWidth = 2400,
            .pixelHeight = 1600,
            .renderedBitsPerComponent = 16,
            .renderedColorModel = QStringLiteral("RGB")};
}

DriverOptionSelection quality() {
    return {.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("1200x600dpi")};
}

/// A job that holds only what every job must hold.
StagedJob leastJob(int number) {
    return {.id = idOf(number),
            .title = QStringLiteral("Roll %1").arg(number),
            .printerName = QStringLiteral("W9400"),
            .createdAt = {someMoment},
            .settings = {},
            .sourceProfile = QStringLiteral("sRGB")};
}

StagedJob wholeJob(int number) {
    StagedJob job = leastJob(number);
    job.settings.placement = Placement::fill;
    job.inspectedICC = QStringLiteral("Canvas Matte");
    job.colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged,
                                      .intent = ColorRenderingIntent::perceptual,
                                      .driverColorCorrectionDisabledConfirmed = true};
    job.outputICCSHA256 = fingerprintOf("canvas");
    job.driverQuality = quality();
    job.presetName = QStringLiteral("画布/Canvas");
    job.canvasMediaName = QStringLiteral("Matte");
    job.rollLayout = layoutOf(2, 44.0);
    job.rollSourceAudits = {auditOf(1), auditOf(2)};
    return job;
}

template <typename Record>
void writeList(const fs::path& file, const QList<Record>& records) {
    writeBytes(file, platform::writeManyRecords(records, platform::JsonForm::prettyEscapedSlashes).join());
}

void makeQueues(const fs::path& folder) {
    writeList<StagedJob>(folder / "empty.json", {});
    writeList<StagedJob>(folder / "least.json", {leastJob(1)});
    writeList<StagedJob>(folder / "whole.json", {wholeJob(1)});
    writeList<StagedJob>(folder / "mixed.json", {wholeJob(1), leastJob(2), leastJob(3)});
}

void makePresets(const fs::path& folder) {
    const auto write = [&](const char* name, const PrintPreset& preset) {
        writeBytes(folder / name, platform::writeJson(preset.toJson(), platform::JsonForm::pretty));
    };
    PrintPreset preset;
    preset.id = idOf(1);
    preset.name = QStringLiteral("画布 Canvas");
    preset.createdAt = {someMoment};
    preset.updatedAt = {someMoment + 60.0};
    preset.mediaName = QStringLiteral("Matte");
    write("least.json", preset);
    preset.driverQuality = quality();
    const QString digest = fingerprintOf("canvas");
    preset.iccAsset = ManagedICCAsset{
        .filename = digest + QStringLiteral(".icc"), .sha256 = digest, .displayName = QStringLiteral("Canvas")};
    preset.colorWorkflow.mode = ColorManagementMode::appManaged;
    write("whole.json", preset);
    preset.name = QString(PrintPreset::longestName + 1, u'x');
    write("long-name.json", preset);
}

PrintObservation observationOf(int number) {
    PrintObservation observation;
    observation.id = idOf(number);
    observation.createdAt = {someMoment};
    observation.sequenceNumber = number;
    observation.result =
        allPrintObservationResults[static_cast<std::size_t>(number) % allPrintObservationResults.size()];
    observation.note = QStringLiteral("a/b \"左\"");
    return observation;
}

void makeJournals(const fs::path& folder) {
    writeList<PrintObservation>(folder / "empty.json", {});
    QList<PrintObservation> observations{observationOf(1), observationOf(2), observationOf(3)};
    observations[1].iccSHA256 = fingerprintOf("canvas");
    writeList(folder / "three.json", observations);
    while (observations.size() < 70) { // more than are read at once
        observations.append(observationOf(static_cast<int>(observations.size()) + 1));
    }
    writeList(folder / "seventy.json", observations);
}

void makePreferences(const fs::path& folder) {
    const auto write = [&](const char* name, const QString& printerName) {
        const CanvasPreference preference{.printerName = printerName, .presetID = idOf(1)};
        writeBytes(folder / name, platform::writeJson(preference.toJson(), platform::JsonForm::compactEscapedSlashes));
    };
    write("plain.json", QStringLiteral("W9400"));
    write("empty-name.json", {});
    write("odd-name.json", QStringLiteral("长卷/\"9400\"\n"));
}

void makeAll(const fs::path& root) {
    makeJpegs(folderFor(root, "jpeg"));
    makePngs(folderFor(root, "png"));
    makeTiffs(folderFor(root, "tiff"));
    makeHeifs(folderFor(root, "heif"));
    makeProfiles(folderFor(root, "icc"));
    makeDeflated(folderFor(root, "deflate"));
    makeExifBlocks(folderFor(root, "exif"));
    makeLayouts(folderFor(root, "json"));
    makeNumbers(folderFor(root, "number"));
    makeSizes(folderFor(root, "sizes"));
    makeDocuments(folderFor(root, "pdf"), root);
    makeQueueTexts(folderFor(root, "cups"));
    makePropertyLists(folderFor(root, "plist"));
    makeDescriptions(folderFor(root, "ppd"));
    makeBaselines(folderFor(root, "baseline"));
    makeValues(folderFor(root, "values"));
    makeQueues(folderFor(root, "queue"));
    makePresets(folderFor(root, "preset"));
    makeJournals(folderFor(root, "journal"));
    makePreferences(folderFor(root, "preference"));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make-seeds FOLDER\n", stderr);
        return 2;
    }
    try {
        makeAll(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
