#include "InchLayoutMigration.h"

#include "ChildProcess.h"
#include "Failure.h"
#include "Layout/InchLayout.h"
#include "TemporaryFolder.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvex {

namespace {

const QUuid boundID(QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"));
const QUuid otherID(QStringLiteral("22222222-BBBB-4222-8222-222222222222"));

const QString fileName = QStringLiteral("9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4.json");
const QString presetFile = QStringLiteral("presets/") + fileName;
const QString backupFolder = QStringLiteral("layout-backup-before-inches");
const QString backupFile = backupFolder + u'/' + fileName;
const QString markerFile = QStringLiteral("inch-layout-policy-v1.json");

constexpr auto marker = R"({
    "preserveWholeArtwork": true,
    "units": "inches",
    "version": 1,
    "whiteBorderInches": 2.5
}
)";

DocumentSettings formerSettings() {
    return {.widthMM = 1524.0,
            .heightMM = 1016.0,
            .marginMM = 10.0,
            .placement = Placement::fill,
            .paperSource = QStringLiteral("卷纸"),
            .mediaNote = QStringLiteral("matte"),
            .driverPageSize = QStringLiteral("Custom")};
}

class InchLayoutMigrationTest : public ::testing::Test {
protected:
    InchLayoutMigrationTest() {
        for (const QUuid& id : {boundID, otherID}) {
            PrintPreset preset;
            preset.id = id;
            preset.name = QStringLiteral("Canvas");
            preset.settings = formerSettings();
            preset.mediaName = QStringLiteral("M");
            store_.save(preset);
        }
        presets_ = store_.load();
    }

    void migrate() { migrateDefaultCanvasToInches(store_, defaultsURL_, preference_, presets_); }

    std::string migrationFailure() {
        try {
            migrate();
        } catch (const Failure& failure) {
            return failure.message().toStdString();
        }
        return "(none)";
    }

    /// Changes the bound preset in the store.
    void store(const std::function<void(PrintPreset&)>& change) {
        PrintPreset preset = find(presets_, boundID);
        change(preset);
        store_.save(preset);
        presets_ = store_.load();
    }

    static PrintPreset find(const QList<PrintPreset>& presets, const QUuid& id) {
        const auto found = std::ranges::find(presets, id, &PrintPreset::id);
        EXPECT_NE(found, presets.end());
        return found == presets.end() ? PrintPreset() : *found;
    }

    [[nodiscard]] QByteArray read(const QString& name) const { return test::TemporaryFolder::read(path(name)); }

    [[nodiscard]] QString path(const QString& name) const { return folder_.path(name); }

    [[nodiscard]] bool isThere(const QString& name) const { return QFileInfo::exists(path(name)); }

    /// Nothing has come of an attempt, not even in memory, but for what has been backed up.
    void expectUnchanged(const QByteArray& formerFile) const {
        EXPECT_EQ(read(presetFile), formerFile);
        EXPECT_EQ(find(presets_, boundID).settings, formerSettings());
        EXPECT_FALSE(isThere(markerFile));
    }

    test::TemporaryFolder folder_;
    PresetStore store_{PresetStore::folderIn(QUrl::fromLocalFile(folder_.path()))};
    QUrl defaultsURL_ = CanvasPreference::url(QUrl::fromLocalFile(folder_.path()));
    std::optional<CanvasPreference> preference_ =
        CanvasPreference{.printerName = QStringLiteral("W9400"), .presetID = boundID};
    QList<PrintPreset> presets_;
};

} // namespace

TEST_F(InchLayoutMigrationTest, GivesTheBoundPresetAPageWithWhiteBorders) {
    migrate();
    const PrintPreset migrated = find(presets_, boundID);
    EXPECT_EQ(migrated.settings.widthMM, 1524.0);
    EXPECT_EQ(migrated.settings.heightMM, ((60.0 - 5.0) * 12000.0 / 18000.0 + 5.0) * 25.4);
    EXPECT_EQ(migrated.settings.marginMM, 63.5);
    EXPECT_EQ(migrated.settings.placement, Placement::fit);
    EXPECT_EQ(migrated.settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(migrated.settings.mediaNote, QStringLiteral("matte"));
    EXPECT_EQ(migrated.settings.driverPageSize, QString());
    EXPECT_EQ(migrated.name, QStringLiteral("Canvas"));
    EXPECT_EQ(migrated.mediaName, QStringLiteral("M"));
    EXPECT_EQ(presets_, store_.load());
}

TEST_F(InchLayoutMigrationTest, KeepsTheWidthOfThePage) {
    store([](PrintPreset& preset) { preset.settings.widthMM = 1000.0; });
    const DocumentSettings former = find(presets_, boundID).settings;
    migrate();
    EXPECT_EQ(find(presets_, boundID).settings,
              BorderedArtworkLayout::settings(PageWidthInches{1000.0 / 25.4}, 18000, 12000, former));
    EXPECT_NEAR(find(presets_, boundID).settings.widthMM, 1000.0, 1e-9);
}

TEST_F(InchLayoutMigrationTest, KeepsTheFormerFile) {
    const QByteArray former = read(presetFile);
    migrate();
    EXPECT_EQ(read(backupFile), former);
    EXPECT_NE(read(presetFile), former);
    EXPECT_EQ(QDir(path(backupFolder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{fileName});
}

TEST_F(InchLayoutMigrationTest, LeavesItsMarker) {
    migrate();
    EXPECT_EQ(read(markerFile), marker);
    EXPECT_EQ(folder_.names(), (QStringList{markerFile, backupFolder, QStringLiteral("presets")}));
}

TEST_F(InchLayoutMigrationTest, TouchesNoOtherPreset) {
    const PrintPreset other = find(presets_, otherID);
    migrate();
    EXPECT_EQ(find(presets_, otherID), other);
}

TEST_F(InchLayoutMigrationTest, RenamesThePresetOfTheFormerPageOnly) {
    store([](PrintPreset& preset) { preset.name = QStringLiteral("HP J3E87B · ORVEX 60 × 40"); });
    migrate();
    EXPECT_EQ(find(presets_, boundID).name, QStringLiteral("HP J3E87B · 60 英寸 · 白边 2.5 英寸"));
}

TEST_F(InchLayoutMigrationTest, KeepsANameThatIsNearlyThatOfTheFormerPage) {
    const QString name = QStringLiteral("HP J3E87B · ORVEX 60 × 40 ✓");
    store([&](PrintPreset& preset) { preset.name = name; });
    migrate();
    EXPECT_EQ(find(presets_, boundID).name, name);
}

TEST_F(InchLayoutMigrationTest, IsDoneOnce) {
    migrate();
    const QList<PrintPreset> before = presets_;
    preference_->presetID = otherID;
    migrate();
    EXPECT_EQ(presets_, before);
    EXPECT_EQ(store_.load(), before);
    EXPECT_EQ(QDir(path(backupFolder)).entryList(QDir::Files), QStringList{fileName});
}

TEST_F(InchLayoutMigrationTest, IsDoneWhateverTheMarkerHolds) {
    folder_.write(markerFile, {});
    const QList<PrintPreset> before = presets_;
    migrate();
    EXPECT_EQ(store_.load(), before);
    EXPECT_EQ(read(markerFile), QByteArray());
    EXPECT_FALSE(isThere(backupFolder));
}

TEST_F(InchLayoutMigrationTest, OnlyLeavesItsMarkerWithoutABoundPreset) {
    const QList<PrintPreset> before = presets_;
    preference_->presetID = QUuid::createUuid();
    migrate();
    EXPECT_EQ(read(markerFile), marker);
    ASSERT_TRUE(QFile::remove(path(markerFile)));
    preference_.reset();
    migrate();
    EXPECT_EQ(read(markerFile), marker);
    EXPECT_EQ(store_.load(), before);
    EXPECT_FALSE(isThere(backupFolder));
}

// What goes wrong on the way

TEST_F(InchLayoutMigrationTest, IsRefusedIfThePresetsFileIsGone) {
    ASSERT_TRUE(QFile::remove(path(presetFile)));
    EXPECT_EQ(migrationFailure(), path(presetFile).toStdString() + ": No such file or directory");
    EXPECT_FALSE(isThere(markerFile));
    EXPECT_FALSE(isThere(backupFile));
}

TEST_F(InchLayoutMigrationTest, IsRefusedIfThePresetsFileIsALink) {
    const QByteArray former = read(presetFile);
    ASSERT_TRUE(QFile::rename(path(presetFile), path(QStringLiteral("elsewhere"))));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("elsewhere")), path(presetFile)));
    EXPECT_EQ(migrationFailure(),
              "The file is missing, is not a regular file, or is a link: " + fileName.toStdString() + ".");
    expectUnchanged(former);
    EXPECT_FALSE(isThere(backupFile));
}

TEST_F(InchLayoutMigrationTest, IsRefusedIfThereCanBeNoBackup) {
    const QByteArray former = read(presetFile);
    const QString inTheWay = folder_.write(backupFolder, "kept");
    EXPECT_EQ(migrationFailure(), inTheWay.toStdString() + ": Not a directory");
    expectUnchanged(former);
    EXPECT_EQ(read(backupFolder), "kept");
}

TEST_F(InchLayoutMigrationTest, IsRefusedIfThePageIsTooNarrowForItsBorders) {
    store([](PrintPreset& preset) { preset.settings.widthMM = 127.0; });
    const QByteArray former = read(presetFile);
    EXPECT_EQ(migrationFailure(), "Page dimensions must be valid numbers greater than the combined 5 inches of white "
                                  "borders.");
    EXPECT_EQ(read(presetFile), former);
    EXPECT_EQ(read(backupFile), former);
    EXPECT_FALSE(isThere(markerFile));
}

TEST_F(InchLayoutMigrationTest, IsRefusedIfThePresetCannotBeSaved) {
    const QByteArray former = read(presetFile);
    folder_.write(QStringLiteral("presets/bad.json"), "{}");
    EXPECT_EQ(migrationFailure(),
              "Cannot read preset bad.json: schemaVersion: The required key is missing. The original file was kept. "
              "Repair or move it before continuing.");
    expectUnchanged(former);
    EXPECT_EQ(read(backupFile), former);
}

TEST_F(InchLayoutMigrationTest, IsTriedAgainAndKeepsTheFirstBackup) {
    const QByteArray former = read(presetFile);
    ASSERT_TRUE(QFile::link(path(QStringLiteral("nowhere/marker")), path(markerFile))); // which nothing can replace
    EXPECT_NE(migrationFailure(), "(none)");
    EXPECT_FALSE(isThere(markerFile));
    EXPECT_EQ(find(presets_, boundID).settings.marginMM, 63.5);
    ASSERT_NE(read(presetFile), former);
    ASSERT_TRUE(QFile::remove(path(markerFile)));
    migrate();
    EXPECT_EQ(read(backupFile), former);
    EXPECT_EQ(read(markerFile), marker);
    EXPECT_EQ(find(presets_, boundID).settings.marginMM, 63.5);
}

TEST_F(InchLayoutMigrationTest, ChangesNothingInFoldersThatMayOnlyBeRead) {
    const QByteArray former = read(presetFile);
    for (const char* folder : {"", "presets", "presets/profiles"}) {
        ASSERT_EQ(::chmod(path(QString::fromUtf8(folder)).toUtf8().constData(), 0555), 0);
    }
    EXPECT_EQ(test::inChildProcess([&] {
                  return test::becomeOrdinaryUser() ? QByteArray::fromStdString(migrationFailure())
                                                    : QByteArray("still the superuser");
              }),
              path(backupFolder).toUtf8() + ": Permission denied");
    for (const char* folder : {"", "presets", "presets/profiles"}) {
        ASSERT_EQ(::chmod(path(QString::fromUtf8(folder)).toUtf8().constData(), 0755), 0);
    }
    expectUnchanged(former);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("presets")});
}

TEST_F(InchLayoutMigrationTest, IsNotTakenForDoneIfTheMarkerCannotBeLookedFor) {
    ASSERT_EQ(::chmod(path({}).toUtf8().constData(), 0600), 0);
    EXPECT_EQ(test::inChildProcess([&] {
                  preference_.reset();
                  return test::becomeOrdinaryUser() ? QByteArray::fromStdString(migrationFailure())
                                                    : QByteArray("still the superuser");
              }),
              path(markerFile).toUtf8() + ": Permission denied");
    ASSERT_EQ(::chmod(path({}).toUtf8().constData(), 0755), 0);
}

} // namespace orvex
