#include "StagedJobRecord.h"

#include "InChinese.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

RollLayout roll() {
    RollLayout layout({}, 44.0);
    layout.append(RollArtwork::make({.id = QUuid::createUuid(),
                                     .sourceURL = QUrl(QStringLiteral("file:///a.png")),
                                     .pixelWidth = 1200,
                                     .pixelHeight = 600,
                                     .originalWidthInches = 12.0,
                                     .originalHeightInches = 6.0}),
                  0.0);
    return layout;
}

StagedJob recordOf(const PresetForm& form) {
    return stagedJob(roll(), form, std::nullopt, QStringLiteral("canvas"));
}

RollSourceAudit auditOf(const QString& profile) {
    return {.artworkID = QUuid::createUuid(),
            .sourceURL = QUrl(QStringLiteral("file:///a.png")),
            .sourceProfileName = profile,
            .sourceProfileSHA256 = std::nullopt,
            .pixelWidth = 1,
            .pixelHeight = 1,
            .renderedBitsPerComponent = 8,
            .renderedColorModel = QStringLiteral("RGB")};
}

QString profilesOf(const QStringList& names) {
    StagedJob job = recordOf(PresetForm::initial());
    QList<RollSourceAudit> audits;
    for (const QString& name : names) {
        audits.append(auditOf(name));
    }
    finishStagedJob(job, audits, platform::Timestamp{5.0});
    EXPECT_EQ(job.rollSourceAudits, audits);
    EXPECT_EQ(job.createdAt, platform::Timestamp{5.0});
    return job.sourceProfile;
}

TEST(StagedJobRecord, HasThePageOfTheRoll) {
    const StagedJob job = recordOf(PresetForm::initial());
    EXPECT_EQ(job.settings.widthMM, 44.0 * 25.4);
    EXPECT_EQ(job.settings.heightMM, 11.0 * 25.4);
    EXPECT_EQ(job.settings.marginMM, 63.5);
    EXPECT_EQ(job.settings.placement, Placement::fit);
    EXPECT_EQ(job.settings.paperSource, u"卷纸");
    EXPECT_EQ(job.settings.mediaNote, QString());
    EXPECT_EQ(job.settings.driverPageSize, QString());
    EXPECT_EQ(job.printerName, u"canvas");
}

TEST(StagedJobRecord, LeavesOutWhatWasNotChosen) {
    const StagedJob job = recordOf(PresetForm::initial());
    EXPECT_EQ(job.inspectedICC, std::nullopt);
    EXPECT_EQ(job.outputICCSHA256, std::nullopt);
    EXPECT_EQ(job.driverQuality, std::nullopt);
    EXPECT_EQ(job.presetName, std::nullopt);
    EXPECT_EQ(job.canvasMediaName, PresetForm::initial().mediaName);
}

TEST(StagedJobRecord, HasTheDigestOnlyOfAProfileThatIsConvertedTo) {
    PresetForm form = PresetForm::initial();
    form.iccAsset = ManagedICCAsset{.filename = QStringLiteral("x.icc"),
                                    .sha256 = QStringLiteral("digest"),
                                    .displayName = QStringLiteral("Canvas.icc")};
    EXPECT_EQ(recordOf(form).inspectedICC, u"Canvas.icc");
    EXPECT_EQ(recordOf(form).outputICCSHA256, std::nullopt);
    form.colorWorkflow.mode = ColorManagementMode::appManaged;
    EXPECT_EQ(recordOf(form).inspectedICC, u"Canvas.icc");
    EXPECT_EQ(recordOf(form).outputICCSHA256, u"digest");
    form.iccAsset.reset();
    EXPECT_EQ(recordOf(form).outputICCSHA256, std::nullopt);
}

TEST(StagedJobRecord, NamesTheRollInTheLanguageOfTheMoment) {
    EXPECT_EQ(recordOf(PresetForm::initial()).title, u"Roll Layout · 1 Artworks");
    const test::InChinese chinese;
    EXPECT_EQ(recordOf(PresetForm::initial()).title, u"卷布排版 · 1 幅作品");
}

TEST(StagedJobRecord, IsNewEachTime) {
    EXPECT_NE(recordOf(PresetForm::initial()).id, recordOf(PresetForm::initial()).id);
}

TEST(StagedJobRecord, NamesTheSourceProfilesOnceAndInOrder) {
    EXPECT_EQ(profilesOf({}), QString());
    EXPECT_EQ(profilesOf({QStringLiteral("sRGB")}), u"sRGB");
    EXPECT_EQ(profilesOf({QStringLiteral("sRGB"), QStringLiteral("Adobe"), QStringLiteral("sRGB")}), u"Adobe / sRGB");
    EXPECT_EQ(profilesOf({QStringLiteral("🎨"), QStringLiteral("～")}), u"～ / 🎨") << "by scalar";
}

} // namespace
} // namespace orvex
