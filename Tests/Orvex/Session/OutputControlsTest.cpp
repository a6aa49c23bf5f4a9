#include "InChinese.h"
#include "PresetTest.h"

namespace orvex {
namespace {

using test::bytesOf;

class OutputControls : public test::PresetTest {};

TEST_F(OutputControls, TakeWhatIsTyped) {
    model->setMediaName(QStringLiteral("Canvas M"));
    model->setMediaNote(QStringLiteral("satin"));
    model->setQualityChoice(QStringLiteral("600dpi"));
    model->setPresetName(QStringLiteral("Mine"));
    PresetForm expected = PresetForm::initial();
    expected.mediaName = QStringLiteral("Canvas M");
    expected.settings.mediaNote = QStringLiteral("satin");
    expected.qualityChoice = QStringLiteral("600dpi");
    expected.presetName = QStringLiteral("Mine");
    EXPECT_EQ(form(), expected);
}

TEST_F(OutputControls, LoseTheConfirmationWithAnyChangeOfTheMode) {
    for (const auto mode : {ColorManagementMode::appManaged, ColorManagementMode::driverManaged}) {
        model->setDriverColorCorrectionDisabledConfirmed(true);
        ASSERT_TRUE(isConfirmed());
        model->setColorManagementMode(mode);
        EXPECT_EQ(form().colorWorkflow.mode, mode);
        EXPECT_FALSE(isConfirmed());
    }
}

TEST_F(OutputControls, KeepTheConfirmationWithTheSameModeOrAnotherIntent) {
    model->setDriverColorCorrectionDisabledConfirmed(true);
    model->setColorManagementMode(ColorManagementMode::driverManaged);
    model->setColorRenderingIntent(ColorRenderingIntent::perceptual);
    EXPECT_TRUE(isConfirmed());
    EXPECT_EQ(form().colorWorkflow.intent, ColorRenderingIntent::perceptual);
    model->setDriverColorCorrectionDisabledConfirmed(false);
    EXPECT_FALSE(isConfirmed());
}

// The output profile

class OutputProfile : public test::PresetTest {};

TEST_F(OutputProfile, IsAskedForInADialog) {
    model->inspectICC();
    ASSERT_EQ(services.openRequests.size(), 1);
    EXPECT_EQ(services.openRequests[0].title, QStringLiteral("Import an output ICC matching your canvas and quality"));
    EXPECT_EQ(services.openRequests[0].kind, FileKind::outputProfile);
    EXPECT_FALSE(services.openRequests[0].allowsMultiple);
    const test::InChinese chinese;
    model->inspectICC();
    EXPECT_EQ(services.openRequests[1].title, QStringLiteral("导入与画布和质量匹配的输出 ICC"));
}

TEST_F(OutputProfile, StaysIfTheDialogIsCancelled) {
    model->setDriverColorCorrectionDisabledConfirmed(true);
    const PresetForm before = form();
    const QString message = model->message();
    model->inspectICC();
    EXPECT_EQ(form(), before);
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(OutputProfile, IsInspectedAndCopied) {
    model->setDriverColorCorrectionDisabledConfirmed(true);
    const QUrl file = chooseProfile();
    model->inspectICC();
    ASSERT_TRUE(form().icc && form().iccAsset);
    EXPECT_EQ(*form().icc, OutputICCProfile::inspect(file));
    EXPECT_EQ(form().iccAsset->displayName, QStringLiteral("press.icc"));
    EXPECT_EQ(form().iccAsset->sha256, form().icc->sha256);
    EXPECT_EQ(test::TemporaryFolder::read(stored(QStringLiteral("presets/profiles/")) + form().iccAsset->filename),
              bytesOf(samples::pressProfile()));
    EXPECT_FALSE(isConfirmed());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(),
              QStringLiteral("A managed ICC copy has been saved. Confirm that it matches the iPF9400, "
                             "HP J3E87B and print quality."));
}

TEST_F(OutputProfile, IsConfirmedInChinese) {
    const test::InChinese chinese;
    chooseProfile();
    model->inspectICC();
    EXPECT_EQ(model->message(),
              QStringLiteral("已保存由应用管理的 ICC 副本。请确认它与 iPF9400、HP J3E87B 和打印质量匹配。"));
}

TEST_F(OutputProfile, ThatIsNoneChangesNothing) {
    chooseProfile();
    model->inspectICC();
    model->setDriverColorCorrectionDisabledConfirmed(true);
    const PresetForm before = form();
    const QString message = model->message();
    services.chosenFiles.push_back({QUrl::fromLocalFile(folder.write(QStringLiteral("bad.icc"), "no profile"))});
    model->inspectICC();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(form(), before);
    EXPECT_EQ(model->message(), message);
}

TEST_F(OutputProfile, ThatCannotBeStoredChangesNothing) {
    chooseProfile();
    const PresetForm before = form();
    QDir(stored(QStringLiteral("presets/profiles"))).removeRecursively();
    QFile file(stored(QStringLiteral("presets/profiles")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    model->inspectICC();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(form(), before);
}

TEST_F(OutputProfile, IsNotTakenWithoutAStore) {
    startWithoutPresets();
    const QString message = model->message();
    chooseProfile();
    model->inspectICC();
    EXPECT_EQ(services.openRequests.size(), 1);
    EXPECT_EQ(form(), PresetForm::initial());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), message);
}

TEST_F(OutputProfile, IsClearedWithoutAWord) {
    chooseProfile();
    model->inspectICC();
    model->setDriverColorCorrectionDisabledConfirmed(true);
    const QString message = model->message();
    model->clearICC();
    EXPECT_EQ(form(), PresetForm::initial());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(QDir(stored(QStringLiteral("presets/profiles"))).entryList(QDir::Files).size(), 1);
}

} // namespace
} // namespace orvex
