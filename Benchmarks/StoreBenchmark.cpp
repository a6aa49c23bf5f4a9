// store-benchmark STEP FOLDER: does one step with the stores in a folder and prints the seconds that it took.
//   save-queue, save-audited-queue    10,000 jobs with layouts of 20 artworks each, the latter with audits as well
//   load-queue
//   make-presets                      200 presets, each with an output profile of 2 MiB of its own
//   load-presets
//   append-journal                    one observation before 10,000 others

#include "IccFixtures.h"
#include "Json/JsonWriter.h"
#include "Stores/LocalQueue.h"
#include "Stores/PresetStore.h"
#include "Stores/PrintJournal.h"
#include "Stores/StoreFiles.h"

#include <QDir>
#include <QUrl>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

using namespace orvex;

namespace {

constexpr int jobCount = 10'000;
constexpr int artworkCount = 20;
constexpr int presetCount = 200;
constexpr int observationCount = 10'000;

double secondsOf(const std::function<void()>& step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

QUuid idOf(int number) {
    return QUuid::createUuidV5(QUuid(), QByteArray::number(number));
}

QString digestOf(int number) {
    return QStringLiteral("%1").arg(number, 64, 16, QLatin1Char('0'));
}

void require(bool holds, const char* otherwise) {
    if (!holds) {
        throw std::runtime_error(otherwise);
    }
}

// The queue

QUrl sourceOf(int number) {
    return QUrl::fromLocalFile(QStringLiteral("/home/shop/画布 Orders/2026/客户 %1/final artwork %1.tif").arg(number));
}

RollLayout layoutOf(int first) {
    RollLayout layout;
    for (int index = 0; index < artworkCount; ++index) {
        RollArtwork artwork = RollArtwork::make({.id = idOf(first + index),
                                                 .sourceURL = sourceOf(first + index),
                                                 .pixelWidth = 4000 + 37 * index,
                                                 .pixelHeight = 3000 + 53 * index,
                                                 .rotationQuarterTurns = index % 4});
        artwork.yInches = (artwork.heightInches() + 5.0) * index;
        layout.items.append(artwork);
    }
    return layout;
}

QList<RollSourceAudit> auditsOf(const RollLayout& layout) {
    QList<RollSourceAudit> audits;
    for (const RollArtwork& artwork : layout.items) {
        audits.append({.artworkID = artwork.id,
                       .sourceURL = artwork.sourceURL,
                       .sourceProfileName = QStringLiteral("Adobe RGB (1998)"),
                       .sourceProfileSHA256 = digestOf(static_cast<int>(audits.size())),
                       .pixelWidth = artwork.pixelWidth,
                       .pixelHeight = artwork.pixelHeight,
                       .renderedBitsPerComponent = 16,
                       .renderedColorModel = QStringLiteral("RGB")});
    }
    return audits;
}

StagedJob jobOf(int number, bool isAudited) {
    StagedJob job{.id = idOf(number),
                  .title = QStringLiteral("画布 Roll %1").arg(number),
                  .printerName = QStringLiteral("Canon_iPF9400"),
                  .createdAt = {8e8 + 0.125 * number},
                  .settings = {},
                  .sourceProfile = QStringLiteral("Adobe RGB (1998)")};
    job.colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged};
    job.outputICCSHA256 = digestOf(number);
    job.driverQuality = {.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("1200x600dpi")};
    job.rollLayout = layoutOf(number * artworkCount);
    if (isAudited) {
        job.rollSourceAudits = auditsOf(*job.rollLayout);
    }
    return job;
}

double saveQueue(const QUrl& folder, bool isAudited) {
    QList<StagedJob> jobs;
    for (int number = 0; number < jobCount; ++number) {
        jobs.append(jobOf(number, isAudited));
    }
    const LocalQueueStore store(folder);
    return secondsOf([&] { store.save(jobs); });
}

double loadQueue(const QUrl& folder) {
    const LocalQueueStore store(folder);
    QList<StagedJob> jobs;
    const double seconds = secondsOf([&] { jobs = store.load(); });
    require(jobs.size() == jobCount && jobs.last() == jobOf(jobCount - 1, jobs.last().rollSourceAudits.has_value()),
            "The queue is not what was saved.");
    return seconds;
}

// Presets

/// An output profile with tables of 24 points on each side: two MiB of them.
test::icc::Profile pressProfile() {
    constexpr cmsUInt32Number gridPoints = 24;
    constexpr cmsUInt32Number inks = 4;
    constexpr cmsUInt32Number coordinates = 3;
    test::icc::Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 2.4);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    test::icc::writeTable(profile, cmsSigAToB0Tag, inks, coordinates, gridPoints, [](const auto& ink, auto& color) {
        color = {(1.0 - ink[3]) * (1.0 - 0.3 * ink[0] - 0.4 * ink[1] - 0.1 * ink[2]),
                 0.5 + 0.2 * std::sin(ink[1] - ink[0]), 0.5 + 0.2 * std::sin(ink[2] - ink[0]), 0.0};
    });
    test::icc::writeTable(profile, cmsSigBToA0Tag, coordinates, inks, gridPoints, [](const auto& color, auto& ink) {
        ink = {1.0 - color[1], color[1], color[2], 1.0 - color[0]};
    });
    return profile;
}

void writePreset(const QUrl& folder, const PrintPreset& preset) {
    const QString name = preset.id.toString(QUuid::WithoutBraces) + QStringLiteral(".json");
    platform::FileReplacer::replace(StoreFiles::path(folder, name),
                                    platform::writeJson(preset.toJson(), platform::JsonForm::pretty));
}

/// The preset files are written one by one: the store looks at all of them at each save.
double makePresets(const QUrl& folder) {
    const PresetStore store(folder);
    const test::icc::Profile profile = pressProfile();
    const QString path = StoreFiles::path(folder, QStringLiteral("imported.icc"));
    for (int number = 0; number < presetCount; ++number) {
        const QString name = QStringLiteral("Canvas %1").arg(number);
        test::icc::describe(profile, {{"en", "US", name.toStdWString()}});
        platform::FileReplacer::replace(path, test::icc::saved(profile));
        PrintPreset preset;
        preset.id = idOf(number);
        preset.name = name;
        preset.iccAsset = store.importICC(QUrl::fromLocalFile(path));
        writePreset(folder, preset);
    }
    require(QFile::remove(path), "The last profile cannot be removed.");
    require(store.listICCAssets().size() == presetCount, "The profiles are not all different.");
    return 0;
}

double loadPresets(const QUrl& folder) {
    const PresetStore store(folder);
    qsizetype count = 0;
    const double seconds = secondsOf([&] { count = store.load().size(); });
    require(count == presetCount, "There are not 200 presets.");
    return seconds;
}

// The journal

PrintObservation observationOf(int number) {
    PrintObservation observation;
    observation.id = idOf(number);
    observation.createdAt = {8e8 + 0.125 * number};
    observation.sequenceNumber = number + 1;
    observation.note = QStringLiteral("左边 a little warm, %1 cm from the edge").arg(number % 150);
    observation.artwork = sourceOf(number).fileName();
    observation.media = QStringLiteral("Matte canvas");
    observation.preset = QStringLiteral("画布");
    observation.colorMode = QStringLiteral("appManaged / perceptual");
    observation.iccSHA256 = digestOf(number);
    return observation;
}

double appendToJournal(const QUrl& folder) {
    QList<PrintObservation> observations;
    for (int number = 0; number < observationCount; ++number) {
        observations.append(observationOf(number));
    }
    const PrintJournalStore store(folder);
    StoreFiles::writeList(StoreFiles::path(folder, QStringLiteral("print-observations.json")), observations);
    qsizetype count = 0;
    const double seconds = secondsOf([&] { count = store.append(observationOf(observationCount)).size(); });
    require(count == observationCount + 1, "The journal is not what was written.");
    return seconds;
}

const std::map<std::string, std::function<double(const QUrl&)>>& steps() {
    static const std::map<std::string, std::function<double(const QUrl&)>> steps{
        {"save-queue", [](const QUrl& folder) { return saveQueue(folder, false); }},
        {"save-audited-queue", [](const QUrl& folder) { return saveQueue(folder, true); }},
        {"load-queue", loadQueue},
        {"make-presets", makePresets},
        {"load-presets", loadPresets},
        {"append-journal", appendToJournal}};
    return steps;
}

} // namespace

int main(int argc, char** argv) {
    const auto step = argc == 3 ? steps().find(argv[1]) : steps().end();
    if (step == steps().end()) {
        std::fputs("usage: store-benchmark STEP FOLDER\n", stderr);
        return 2;
    }
    try {
        const QString folder = QDir(QString::fromLocal8Bit(argv[2])).absolutePath();
        std::printf("%.3f\n", step->second(QUrl::fromLocalFile(folder)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
