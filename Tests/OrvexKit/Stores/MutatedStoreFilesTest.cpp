#include "DamagedFile.h"
#include "IccFixtures.h"
#include "MutatedBytes.h"
#include "Stores/LocalQueue.h"
#include "Stores/PresetStore.h"
#include "Stores/PrintJournal.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::DamagedFile;
using test::Mutations;
using test::TemporaryFolder;

QString q(const char* text) {
    return QString::fromUtf8(text);
}

QUuid idOf(int number) {
    return QUuid(QStringLiteral("{00000000-0000-4000-8000-%1}").arg(number, 12, 10, QLatin1Char('0')));
}

QString digestOf(char digit) {
    return QString(64, QLatin1Char(digit));
}

StagedJob leastJob() {
    return {.id = idOf(1),
            .title = q("Roll"),
            .printerName = q("W9400"),
            .createdAt = {8e8},
            .settings = {},
            .sourceProfile = q("P3")};
}

/// A job of which nothing is absent.
StagedJob wholeJob() {
    StagedJob job = leastJob();
    job.id = idOf(2);
    job.inspectedICC = q("Canvas");
    job.colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged};
    job.outputICCSHA256 = digestOf('a');
    job.driverQuality = DriverOptionSelection{.keyword = q("Resolution"), .value = q("600x600dpi")};
    job.presetName = q("画布 \"1\"/2");
    job.canvasMediaName = q("Matte");
    const QUrl source(q("file:///artworks/a%20b.tif"));
    RollLayout layout({}, 44.0);
    layout.append(RollArtwork::make({.id = idOf(3), .sourceURL = source, .pixelWidth = 3000, .pixelHeight = 2000}),
                  0.25);
    job.rollLayout = layout;
    job.rollSourceAudits = {{.artworkID = idOf(3),
                             .sourceURL = source,
                             .sourceProfileName = q("P3"),
                             .sourceProfileSHA256 = digestOf('b'),
                             .pixelWidth = 3000,
                             .pixelHeight = 2000,
                             .renderedBitsPerComponent = 8,
                             .renderedColorModel = q("RGB")}};
    return job;
}

PrintObservation observation(int number) {
    PrintObservation observation;
    observation.id = idOf(number);
    observation.createdAt = {8e8};
    observation.sequenceNumber = number;
    return observation;
}

/// An observation of which nothing is absent.
PrintObservation wholeObservation() {
    PrintObservation whole = observation(2);
    whole.result = PrintObservationResult::purple;
    whole.note = q("left \"edge\"");
    whole.artwork = q("a/b");
    whole.iccSHA256 = digestOf('c');
    return whole;
}

PrintPreset preset(int number) {
    PrintPreset preset;
    preset.id = idOf(number);
    preset.name = q("画布");
    return preset;
}

/// A store with two presets, one of which refers to a profile.
class MutatedPresetFilesTest : public ::testing::Test {
protected:
    MutatedPresetFilesTest() {
        const TemporaryFolder elsewhere;
        asset_ = store_.importICC(QUrl::fromLocalFile(
            elsewhere.write(q("canvas.icc"), test::icc::saved(test::icc::rgb(2.2, cmsSigOutputClass)))));
        store_.save(preset(1));
        PrintPreset whole = preset(2);
        whole.driverQuality = DriverOptionSelection{.keyword = q("Resolution"), .value = q("600x600dpi")};
        whole.colorWorkflow.mode = ColorManagementMode::appManaged;
        whole.iccAsset = asset_;
        store_.save(whole);
    }

    void load() const { static_cast<void>(store_.load()); }

    /// What writes to the store or deletes from it.
    [[nodiscard]] std::vector<std::function<void()>> changes() const {
        return {[this] { store_.save(preset(1)); }, [this] { store_.save(preset(9)); },
                [this] { store_.remove(idOf(1)); }, [this] { store_.remove(idOf(2)); }};
    }

    TemporaryFolder folder_;
    PresetStore store_{QUrl::fromLocalFile(folder_.path())};
    ManagedICCAsset asset_;
    Mutations mutations_{20260102};
};

constexpr int some = 500; // of the damaged files, so that both outcomes are tried

} // namespace

TEST(MutatedQueueFile, IsRefusedOrReadAndStays) {
    const TemporaryFolder folder;
    const LocalQueueStore store(QUrl::fromLocalFile(folder.path()));
    store.save({wholeJob(), leastJob()});
    Mutations mutations(20260101);
    DamagedFile file(folder, q("queue.json"));
    file.expectRefusedOrRead([&](const QByteArray& good) { return mutations.ofJson(good); },
                             [&] { static_cast<void>(store.load()); }, {});
    EXPECT_GT(file.refusedCount(), some);
    EXPECT_GT(file.readCount(), some);
}

TEST(MutatedJournalFile, IsRefusedOrReadAndStays) {
    const TemporaryFolder folder;
    const PrintJournalStore store(QUrl::fromLocalFile(folder.path()));
    store.append(observation(1));
    store.append(wholeObservation());
    Mutations mutations(20260103);
    DamagedFile file(folder, q("print-observations.json"));
    file.expectRefusedOrRead([&](const QByteArray& good) { return mutations.ofJson(good); },
                             [&] { static_cast<void>(store.load()); }, {[&] { store.append(observation(3)); }});
    EXPECT_GT(file.refusedCount(), some);
    EXPECT_GT(file.readCount(), some);
}

TEST_F(MutatedPresetFilesTest, ThePresetIsRefusedOrReadAndStays) {
    DamagedFile file(folder_, idOf(2).toString(QUuid::WithoutBraces) + q(".json"));
    file.expectRefusedOrRead([&](const QByteArray& good) { return mutations_.ofJson(good); }, [&] { load(); },
                             changes());
    EXPECT_GT(file.refusedCount(), some);
    EXPECT_GT(file.readCount(), some);
}

TEST_F(MutatedPresetFilesTest, TheProfileIsRefusedAndStays) {
    DamagedFile file(folder_, q("profiles/") + asset_.filename);
    const auto damage = [&](const QByteArray& good) {
        QByteArray bad = good;
        while (bad == good) { // changes can undo each other
            bad = mutations_.ofBytes(good);
        }
        return bad;
    };
    std::vector<std::function<void()>> uses = changes();
    uses.emplace_back([&] { static_cast<void>(store_.resolveICC(asset_)); });
    uses.emplace_back([&] { static_cast<void>(store_.listICCAssets()); });
    file.expectRefusedOrRead(
        damage, [&] { load(); }, uses);
    EXPECT_EQ(file.readCount(), 0);
}

} // namespace orvex
