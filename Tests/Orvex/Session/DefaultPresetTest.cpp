#include "InChinese.h"
#include "RefreshTest.h"

namespace orvex {
namespace {

using test::findingQueues;
using test::waitFor;

class DefaultPreset : public test::RefreshTest {
protected:
    /// Stores a preset of 40 inches and binds it to the wide printer; the next session finds both.
    void bind(const std::function<void()>& change = [] {}) {
        start();
        refresh();
        model->setPresetName(QStringLiteral("Matte"));
        PresetForm chosen = form();
        chosen.settings.widthMM = 1016.0;
        SessionBackdoor::set(model->presetForm, chosen);
        change();
        model->savePreset(true);
        model->bindCanvasDefault();
        ASSERT_EQ(model->errorMessage(), std::nullopt);
        start();
    }

    void importProfile() {
        const samples::Bytes& bytes = samples::pressProfile();
        services.chosenFiles = {{QUrl::fromLocalFile(
            folder.write(QStringLiteral("press.icc"), QByteArray(reinterpret_cast<const char*>(bytes.data()), // NOLINT
                                                                 static_cast<qsizetype>(bytes.size()))))}};
        model->inspectICC();
    }

    [[nodiscard]] bool isApplied() const { return SessionBackdoor(*model).isCanvasApplied(); }

    static inline const QString loaded =
        QStringLiteral("The local canvas preset was loaded automatically. Printer panel and Canon settings are "
                       "unchanged.");
};

TEST_F(DefaultPreset, LoadsWithItsPrinter) {
    bind();
    EXPECT_FALSE(isApplied());
    refresh();
    EXPECT_TRUE(isApplied());
    EXPECT_EQ(form().presetName, QStringLiteral("Matte"));
    EXPECT_EQ(form().settings.widthMM, 1016.0);
    EXPECT_EQ(model->message(), loaded);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(DefaultPreset, SaysSoInChinese) {
    bind();
    const test::InChinese chinese;
    refresh();
    EXPECT_EQ(model->message(), QStringLiteral("已自动载入本地画布预设。打印机面板和佳能设置保持不变。"));
}

TEST_F(DefaultPreset, ResizesNoArtwork) {
    bind();
    place({artwork()});
    const RollLayout layout = model->rollLayout();
    refresh();
    EXPECT_TRUE(isApplied());
    EXPECT_EQ(model->rollLayout(), layout);
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(form().settings.widthMM, 17.0 * 25.4); // the page of the selected artwork
}

TEST_F(DefaultPreset, LoadsOnlyOnceForASelection) {
    bind();
    refresh();
    model->setPresetName(QStringLiteral("typed"));
    refresh();
    EXPECT_EQ(form().presetName, QStringLiteral("typed"));
}

TEST_F(DefaultPreset, LoadsAgainForAnotherSelectionOfItsPrinter) {
    bind();
    refresh();
    model->setPresetName(QStringLiteral("typed"));
    model->selectPrinter(other);
    waitFor([this] { return printers().telemetry.has_value(); });
    settle();
    EXPECT_EQ(form().presetName, QStringLiteral("typed"));
    EXPECT_FALSE(isApplied());
    model->selectPrinter(queue);
    waitFor([this] { return printers().telemetry.has_value(); });
    settle();
    EXPECT_EQ(form().presetName, QStringLiteral("Matte"));
}

TEST_F(DefaultPreset, LoadsForNoOtherPrinter) {
    bind();
    readings.discoverQueues = findingQueues({other});
    start();
    refresh();
    EXPECT_FALSE(isApplied());
    EXPECT_EQ(form(), PresetForm::initial());
}

TEST_F(DefaultPreset, LoadsNothingWhereThePresetIsGone) {
    bind();
    QDir(stored(QStringLiteral("presets"))).removeRecursively();
    start();
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    refresh();
    EXPECT_FALSE(isApplied());
    EXPECT_EQ(form(), PresetForm::initial());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(DefaultPreset, IsTriedAtEachPassWhileItsProfileIsGone) {
    bind([this] { importProfile(); });
    const PresetForm before = form();
    const QString message = model->message();
    const QDir profiles(stored(QStringLiteral("presets/profiles")));
    ASSERT_EQ(profiles.entryList(QDir::Files).size(), 1);
    const QString file = profiles.filePath(profiles.entryList(QDir::Files).first());
    ASSERT_TRUE(QFile::rename(file, folder.path(QStringLiteral("away"))));
    for (int pass = 0; pass < 2; ++pass) {
        refresh();
        EXPECT_TRUE(model->errorMessage());
        EXPECT_FALSE(isApplied());
        EXPECT_EQ(form(), before);
        EXPECT_EQ(model->message(), message);
        EXPECT_EQ(printers().lastRefreshError, std::nullopt);
        model->dismissError();
    }
    ASSERT_TRUE(QFile::rename(folder.path(QStringLiteral("away")), file));
    refresh();
    EXPECT_TRUE(isApplied());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(form().icc);
}

} // namespace
} // namespace orvex
