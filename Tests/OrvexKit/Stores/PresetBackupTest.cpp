#include "Files/FileSystemError.h"
#include "PresetFixtures.h"
#include "StoreFixtures.h"
#include "Stores/PresetStore.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::failureOf;
using test::TemporaryFolder;

const QString fileName = QStringLiteral("9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4.json");

class PresetBackup : public ::testing::Test {
protected:
    [[nodiscard]] QString stored() const { return folder_.path(QStringLiteral("presets/") + fileName); }

    [[nodiscard]] QString folder() const { return folder_.path(QStringLiteral("a/backup")); }

    [[nodiscard]] QString copy() const { return folder() + u'/' + fileName; }

    void backUp() const { store_.backUp(test::preset().id, folder()); }

    TemporaryFolder folder_;
    PresetStore store_{QUrl::fromLocalFile(folder_.path(QStringLiteral("presets")))};
};

} // namespace

TEST_F(PresetBackup, CopiesTheFileAsItStands) {
    const QByteArray bytes = "not even a preset";
    folder_.write(QStringLiteral("presets/") + fileName, bytes);
    backUp();
    EXPECT_EQ(TemporaryFolder::read(copy()), bytes);
    EXPECT_EQ(TemporaryFolder::read(stored()), bytes);
}

TEST_F(PresetBackup, KeepsTheFirstCopy) {
    store_.save(test::preset());
    const QByteArray first = TemporaryFolder::read(stored());
    backUp();
    PrintPreset later = test::preset();
    later.name = QStringLiteral("Later");
    store_.save(later);
    backUp();
    EXPECT_EQ(TemporaryFolder::read(copy()), first);
}

TEST_F(PresetBackup, OfAPresetThatIsNotThereFails) {
    EXPECT_EQ(failureOf([&] { backUp(); }), stored().toStdString() + ": No such file or directory");
    EXPECT_FALSE(QFile::exists(copy()));
}

TEST_F(PresetBackup, FollowsNoLink) {
    ASSERT_TRUE(QFile::link(folder_.write(QStringLiteral("elsewhere"), "secret"), stored()));
    EXPECT_EQ(failureOf([&] { backUp(); }),
              "The file is missing, is not a regular file, or is a link: " + fileName.toStdString() + ".");
    EXPECT_FALSE(QFile::exists(copy()));
}

TEST_F(PresetBackup, CopiesNothingThatIsFarTooLarge) {
    folder_.write(QStringLiteral("presets/") + fileName, QByteArray((1 << 22) + 1, ' '));
    EXPECT_EQ(failureOf([&] { backUp(); }), stored().toStdString() + ": File too large");
    EXPECT_FALSE(QFile::exists(copy()));
}

} // namespace orvex
