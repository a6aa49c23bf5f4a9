#include "PresetDeletion.h"

#include "Failure.h"
#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace orvex {

namespace {

const QUuid boundID(QStringLiteral("11111111-AAAA-4111-8111-111111111111"));
const QUuid otherID(QStringLiteral("22222222-BBBB-4222-8222-222222222222"));

/// Two presets, of which one is bound to a printer.
class PresetDeletionTest : public ::testing::Test {
protected:
    PresetDeletionTest() {
        for (const QUuid& id : {boundID, otherID}) {
            PrintPreset preset;
            preset.id = id;
            preset.name = QStringLiteral("Canvas");
            store_.save(preset);
        }
        preference_->save(defaultsURL_);
    }

    [[nodiscard]] QList<QUuid> storedIDs() const {
        QList<QUuid> ids;
        for (const PrintPreset& preset : store_.load()) {
            ids.append(preset.id);
        }
        return ids;
    }

    [[nodiscard]] bool isBindingStored() const { return QFileInfo::exists(defaultsURL_.toLocalFile()); }

    test::TemporaryFolder folder_;
    PresetStore store_{PresetStore::folderIn(QUrl::fromLocalFile(folder_.path()))};
    QUrl defaultsURL_ = CanvasPreference::url(QUrl::fromLocalFile(folder_.path()));
    std::optional<CanvasPreference> preference_ =
        CanvasPreference{.printerName = QStringLiteral("W9400"), .presetID = boundID};
};

} // namespace

TEST_F(PresetDeletionTest, TakesTheBindingOfThePresetAlong) {
    deletePreset(boundID, store_, defaultsURL_, preference_);
    EXPECT_EQ(storedIDs(), QList{otherID});
    EXPECT_FALSE(isBindingStored());
    EXPECT_EQ(preference_, std::nullopt);
}

TEST_F(PresetDeletionTest, KeepsTheBindingOfAnotherPreset) {
    const auto before = preference_;
    deletePreset(otherID, store_, defaultsURL_, preference_);
    EXPECT_EQ(storedIDs(), QList{boundID});
    EXPECT_EQ(preference_, before);
    EXPECT_EQ(CanvasPreference::load(defaultsURL_), before);
}

TEST_F(PresetDeletionTest, TouchesNoBindingThatCouldNotBeRead) {
    std::optional<CanvasPreference> none;
    deletePreset(boundID, store_, std::nullopt, none);
    EXPECT_EQ(storedIDs(), QList{otherID});
    EXPECT_TRUE(isBindingStored());
}

TEST_F(PresetDeletionTest, HasNothingAgainstABindingThatIsGone) {
    ASSERT_TRUE(QFile::remove(defaultsURL_.toLocalFile()));
    deletePreset(boundID, store_, defaultsURL_, preference_);
    EXPECT_EQ(storedIDs(), QList{otherID});
    EXPECT_EQ(preference_, std::nullopt);
}

TEST_F(PresetDeletionTest, KeepsThePresetIfItsBindingCannotBeDeleted) {
    ASSERT_TRUE(QFile::remove(defaultsURL_.toLocalFile()));
    ASSERT_TRUE(QDir().mkpath(defaultsURL_.toLocalFile())); // which is deleted by nobody as a file
    EXPECT_THROW(deletePreset(boundID, store_, defaultsURL_, preference_), platform::FileSystemError);
    EXPECT_EQ(storedIDs().size(), 2);
    EXPECT_TRUE(preference_.has_value());
}

TEST_F(PresetDeletionTest, DeletesTheBindingBeforeThePreset) {
    folder_.write(QStringLiteral("presets/bad.json"), "{}"); // refuses every deletion
    EXPECT_THROW(deletePreset(boundID, store_, defaultsURL_, preference_), Failure);
    EXPECT_FALSE(isBindingStored());
    EXPECT_EQ(preference_, std::nullopt);
}

} // namespace orvex
