#include "WindowWorkspace.h"

#include "Layout/RollWorkspaceFile.h"
#include "Scenes.h"
#include "Writers.h"

#include <QDir>
#include <QFile>

#include <filesystem>
#include <random>
#include <stdexcept>

namespace orvex::benchmarks {

namespace {

constexpr int width = 2400;
constexpr int height = 1600;
constexpr int pictureCount = 500;
constexpr int largeCount = 10;

QString pictureIn(const QString& folder, int number) {
    return QStringLiteral("%1/pictures/客户 %2 final artwork.jpg").arg(folder).arg(number, 3, 10, QLatin1Char('0'));
}

QString largeIn(const QString& folder, int number) {
    return QStringLiteral("%1/large/%2.%3").arg(folder).arg(number).arg(QLatin1String(number % 2 == 0 ? "jpg" : "tif"));
}

std::filesystem::path pathOf(const QString& file) {
    return file.toStdString();
}

/// Another file of the same content, which takes no room on the disk.
void repeat(const QString& first, const QString& file) {
    std::filesystem::remove(pathOf(file));
    std::filesystem::create_hard_link(pathOf(first), pathOf(file));
}

void writeScenes(const QString& folder) {
    const std::vector<samples::Scene> scenes{samples::mountainDawn(width, height), samples::marbledTide(width, height),
                                             samples::stillLife(width, height), samples::birches(width, height),
                                             samples::harbourLights(width, height)};
    const auto count = static_cast<int>(scenes.size());
    for (int number = 0; number < count; ++number) {
        samples::JpegForm form;
        form.profile = number % 2 == 0 ? samples::sRgbProfile() : samples::wideGamutProfile();
        samples::writeJpeg(samples::pictureOf(width, height, scenes[static_cast<std::size_t>(number)]), form,
                           pathOf(pictureIn(folder, number)));
    }
    for (int number = count; number < pictureCount; ++number) {
        repeat(pictureIn(folder, number % count), pictureIn(folder, number));
    }
}

void writeLarge(const QString& folder) {
    constexpr int largeWidth = 9000;
    constexpr int largeHeight = 6000;
    const samples::Picture picture =
        samples::pictureOf(largeWidth, largeHeight, samples::marbledTide(largeWidth, largeHeight));
    samples::JpegForm jpeg;
    jpeg.profile = samples::wideGamutProfile();
    samples::writeJpeg(picture, jpeg, pathOf(largeIn(folder, 0)));
    samples::TiffForm tiff;
    tiff.bitsPerSample = 16;
    tiff.profile = samples::wideGamutProfile();
    samples::writeTiff(picture, tiff, pathOf(largeIn(folder, 1)));
    for (int number = 2; number < largeCount; ++number) {
        repeat(largeIn(folder, number % 2), largeIn(folder, number));
    }
}

/// Sizes of quarter inches, packed in rows.
RollLayout packedLayout(const QString& folder, int count) {
    std::mt19937 random(7);
    RollLayout layout;
    for (int number = 0; number < count; ++number) {
        const double inches = 4.0 + 0.25 * static_cast<double>(random() % 20);
        layout.append(RollArtwork::make({.id = QUuid::createUuidV5(QUuid(), QByteArray::number(number)),
                                         .sourceURL = QUrl::fromLocalFile(pictureIn(folder, number)),
                                         .pixelWidth = width,
                                         .pixelHeight = height,
                                         .originalWidthInches = 8.0,
                                         .originalHeightInches = 8.0 * height / width,
                                         .widthInches = inches,
                                         .rotationQuarterTurns = number % 4 == 3 ? 1 : 0}),
                      0.0);
    }
    return layout;
}

} // namespace

void makePictures(const QString& folder) {
    if (QFile::exists(folder + QStringLiteral("/complete"))) {
        return;
    }
    QDir().mkpath(folder + QStringLiteral("/pictures"));
    QDir().mkpath(folder + QStringLiteral("/large"));
    writeScenes(folder);
    writeLarge(folder);
    QFile complete(folder + QStringLiteral("/complete"));
    if (!complete.open(QIODevice::WriteOnly)) {
        throw std::runtime_error("the pictures cannot be written");
    }
}

QString writeAutosave(const QString& folder, int count) {
    const QString data = folder + QStringLiteral("/data");
    QDir(data).removeRecursively();
    QDir().mkpath(data + QStringLiteral("/ORVEX"));
    if (count == 0) {
        return data;
    }
    RollWorkspaceFile file{
        .layout = packedLayout(folder, count), .selection = {}, .sizingDescriptions = {}, .gapInches = 0.0};
    file.selection = file.layout.items.first().id;
    QFile target(data + QStringLiteral("/ORVEX/roll-layout.json"));
    const QByteArray bytes = file.encode();
    if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size() || !target.flush()) {
        throw std::runtime_error("the canvas cannot be saved");
    }
    return data;
}

QList<QUrl> largePictures(const QString& folder) {
    QList<QUrl> files;
    for (int number = 0; number < largeCount; ++number) {
        files.append(QUrl::fromLocalFile(largeIn(folder, number)));
    }
    return files;
}

} // namespace orvex::benchmarks
