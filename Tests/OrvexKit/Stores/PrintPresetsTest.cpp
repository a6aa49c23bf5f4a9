#include "Stores/PrintPresets.h"

#include "InChinese.h"
#include "Json/JsonError.h"
#include "PresetFixtures.h"
#include "StoreFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using test::failureOf;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto onlyResolution = "Presets may record only the Resolution quality option actually exposed by the driver, "
                                "not cutting or other driver controls.";
constexpr auto badQuality = "Invalid print quality option. Select one actually exposed by the current driver.";
constexpr auto badAsset =
    "Invalid ICC asset reference. Presets may reference only content-verified files managed by the app.";
constexpr auto noAssetName = "The ICC profile name cannot be empty.";
constexpr auto badVersion = "This preset version is unsupported. The original file was kept.";
constexpr auto badName = "Preset names must contain 1–200 characters.";
constexpr auto badDate = "The preset date is invalid.";
constexpr auto needsProfile = "An app-managed color preset must include an imported ICC profile.";

constexpr auto storedPreset = R"({
    "colorWorkflow": {
        "driverColorCorrectionDisabledConfirmed": false,
        "intent": "relativeColorimetric",
        "mode": "driverManaged"
    },
    "createdAt": 700000000.25,
    "driverQuality": {
        "keyword": "Resolution",
        "value": "600x600dpi"
    },
    "id": "9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4",
    "mediaName": "HP/Canvas \"matte\"",
    "name": "Canvas · 60 in",
    "schemaVersion": 1,
    "settings": {
        "driverPageSize": "",
        "heightMM": 1000.5,
        "marginMM": 63.5,
        "mediaNote": "matte/satin",
        "paperSource": "卷纸",
        "placement": "完整放入",
        "widthMM": 1524
    },
    "updatedAt": 700000001.5
}
)";

constexpr auto storedFullPreset = R"({
    "colorWorkflow": {
        "driverColorCorrectionDisabledConfirmed": true,
        "intent": "absoluteColorimetric",
        "mode": "appManaged"
    },
    "createdAt": 700000000.25,
    "driverQuality": {
        "keyword": "Resolution",
        "value": "600x600dpi"
    },
    "iccAsset": {
        "displayName": "Canvas/画.icc",
        "filename": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef.icc",
        "sha256": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef"
    },
    "id": "9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4",
    "mediaName": "HP/Canvas \"matte\"",
    "name": "Canvas · 60 in",
    "schemaVersion": 1,
    "settings": {
        "driverPageSize": "Custom",
        "heightMM": 1000.5,
        "marginMM": 63.5,
        "mediaNote": "matte/satin",
        "paperSource": "卷纸",
        "placement": "填满并裁边",
        "widthMM": 1524
    },
    "updatedAt": 700000001.5
}
)";

/// The message of the first rule that a value breaks, or "(none)".
template <typename Value>
std::string issueOf(const Value& value) {
    return value.validationError().value_or(QStringLiteral("(none)")).toStdString();
}

std::string issueOfQuality(const QString& value, const QString& keyword = QStringLiteral("Resolution")) {
    return issueOf(DriverOptionSelection{.keyword = keyword, .value = value});
}

std::string issueOfPreset(const std::function<void(PrintPreset&)>& change) {
    PrintPreset preset = test::preset();
    change(preset);
    return issueOf(preset);
}

std::string issueOfName(const QString& name) {
    return issueOfPreset([&](PrintPreset& preset) { preset.name = name; });
}

PrintPreset decoded(const QByteArray& json) {
    return PrintPreset::fromJson(platform::JsonReader::parse(json));
}

std::string decodingFailure(const QByteArray& json) {
    return failureOf([&] { static_cast<void>(decoded(json)); });
}

QByteArray written(const PrintPreset& preset) {
    return platform::writeJson(preset.toJson(), platform::JsonForm::pretty);
}

} // namespace

// The choice of a driver's option

TEST(DriverOptionSelection, MayBeTheResolutionAlone) {
    EXPECT_EQ(issueOfQuality(QStringLiteral("600dpi")), "(none)");
    for (const char* keyword : {"", "resolution", "RESOLUTION", "Resolution ", " Resolution", "CutMedia", "PageSize",
                                "cupsResolution", "Re\u0301solution"}) {
        EXPECT_EQ(issueOfQuality(QStringLiteral("600dpi"), QString::fromUtf8(keyword)), onlyResolution) << keyword;
        EXPECT_EQ(issueOfQuality({}, QString::fromUtf8(keyword)), onlyResolution) << "whatever its value";
    }
}

TEST(DriverOptionSelection, HasAValueOfOneTo256Characters) {
    EXPECT_EQ(issueOfQuality({}), badQuality);
    EXPECT_EQ(issueOfQuality(QStringLiteral("a")), "(none)");
    EXPECT_EQ(issueOfQuality(QStringLiteral(" ")), "(none)") << "the driver names its choices as it likes";
    EXPECT_EQ(issueOfQuality(QString(256, u'a')), "(none)");
    EXPECT_EQ(issueOfQuality(QString(257, u'a')), badQuality);
    const QString family = QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467");
    EXPECT_EQ(issueOfQuality(QStringLiteral("e\u0301").repeated(256)), "(none)");
    EXPECT_EQ(issueOfQuality(QStringLiteral("e\u0301").repeated(257)), badQuality);
    EXPECT_EQ(issueOfQuality(family.repeated(257)), badQuality);
}

TEST(DriverOptionSelection, HasNoControlCharacterInItsValue) {
    for (char16_t control = 0; control < 0xA0; ++control) {
        if (control < 0x20 || control >= 0x7F) {
            EXPECT_EQ(issueOfQuality(u'a' + QString(QChar(control)) + u'b'), badQuality) << int{control};
        }
    }
    EXPECT_EQ(issueOfQuality(QStringLiteral("a\n")), badQuality);
    for (const char* fine : {"600 dpi", "高质量", "a\u00A0b", "\U0001F600", "~", "a\"b\\c/d"}) {
        EXPECT_EQ(issueOfQuality(QString::fromUtf8(fine)), "(none)") << fine;
    }
}

// The reference to a profile

TEST(ManagedICCAsset, IsNamedAfterADigestInLowerCase) {
    EXPECT_EQ(issueOf(test::missingAsset()), "(none)");
    const QString digest = test::missingAsset().sha256;
    for (const QString& bad :
         {QString(), digest.chopped(1), digest + u'0', digest.toUpper(), QString(digest).replace(9, 1, u'g'),
          QString(digest).replace(9, 1, u'A'), QString(digest).replace(0, 1, u' '),
          QString(digest).replace(63, 1, u'\n'), QString(digest).replace(0, 1, QChar(0x0661)),
          QString(digest).replace(0, 3, QStringLiteral("../")), QString(64, QChar(0xFF10))}) {
        EXPECT_EQ(issueOf(test::assetOf(bad, QStringLiteral("name"))), badAsset) << bad.toStdString();
    }
}

TEST(ManagedICCAsset, HasTheFileNameOfItsDigest) {
    for (const char* bad :
         {"", ".icc", "a.icc", "../%1.icc", "%1", "%1.ICC", "%1.icc ", "%1.icm", "/%1.icc", "./%1.icc", "1%1.icc"}) {
        ManagedICCAsset asset = test::missingAsset();
        asset.filename = QString::fromUtf8(bad).replace(QStringLiteral("%1"), asset.sha256);
        EXPECT_EQ(issueOf(asset), badAsset) << bad;
    }
    ManagedICCAsset asset = test::missingAsset();
    asset.filename = asset.filename.toUpper();
    EXPECT_EQ(issueOf(asset), badAsset);
}

TEST(ManagedICCAsset, HasANameToShow) {
    for (const char* blank : {"", " ", "\t\n\r ", "\u00A0\u3000\u2028"}) {
        EXPECT_EQ(issueOf(test::assetOf(test::missingAsset().sha256, QString::fromUtf8(blank))), noAssetName);
    }
    EXPECT_EQ(issueOf(test::assetOf(test::missingAsset().sha256, QStringLiteral(" a "))), "(none)");
    EXPECT_EQ(issueOf(test::assetOf({}, {})), badAsset) << "the reference comes first";
}

// The preset

TEST(PrintPreset, IsValidAsTheTestsMakeIt) {
    EXPECT_EQ(issueOf(test::preset()), "(none)");
    EXPECT_EQ(issueOf(test::fullPreset()), "(none)");
}

TEST(PrintPreset, IsOfTheOneVersion) {
    EXPECT_EQ(PrintPreset::currentSchemaVersion, 1);
    for (const qint64 version : {qint64{0}, qint64{2}, qint64{-1}, std::numeric_limits<qint64>::max()}) {
        EXPECT_EQ(issueOfPreset([&](PrintPreset& p) { p.schemaVersion = version; }), badVersion) << version;
    }
}

TEST(PrintPreset, HasANameOfOneTo200Characters) {
    EXPECT_EQ(issueOfName(QString(200, u'n')), "(none)");
    EXPECT_EQ(issueOfName(QString(201, u'n')), badName);
    EXPECT_EQ(issueOfName(QString(200, u'画')), "(none)");
    EXPECT_EQ(issueOfName(QString(201, u'画')), badName);
    EXPECT_EQ(issueOfName(QStringLiteral("\U0001F1E8\U0001F1F3").repeated(200)), "(none)");
    EXPECT_EQ(issueOfName(QStringLiteral("\U0001F1E8\U0001F1F3").repeated(201)), badName);
    EXPECT_EQ(issueOfName(QStringLiteral("n")), "(none)");
    for (const char* blank : {"", " ", "\t\n\r\v\f ", "\u00A0\u3000\u2028\u2029\u0085"}) {
        EXPECT_EQ(issueOfName(QString::fromUtf8(blank)), badName);
    }
}

TEST(PrintPreset, CountsItsNameUntrimmed) {
    EXPECT_EQ(issueOfName(u' ' + QString(199, u'n')), "(none)");
    EXPECT_EQ(issueOfName(u' ' + QString(200, u'n')), badName);
    EXPECT_EQ(issueOfName(QString(200, u' ') + u'n'), badName);
}

TEST(PrintPreset, HasFiniteDates) {
    for (const double bad : {nan, infinity, -infinity}) {
        EXPECT_EQ(issueOfPreset([&](PrintPreset& p) { p.createdAt = {bad}; }), badDate);
        EXPECT_EQ(issueOfPreset([&](PrintPreset& p) { p.updatedAt = {bad}; }), badDate);
    }
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.createdAt = {std::numeric_limits<double>::max()}; }), "(none)");
}

TEST(PrintPreset, NeedsAProfileWhereTheProgramManagesTheColors) {
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.colorWorkflow.mode = ColorManagementMode::appManaged; }),
              needsProfile);
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) {
                  p.colorWorkflow.mode = ColorManagementMode::appManaged;
                  p.iccAsset = test::missingAsset();
              }),
              "(none)");
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.iccAsset = test::missingAsset(); }), "(none)");
}

TEST(PrintPreset, MayNameAnyMedia) {
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.mediaName.clear(); }), "(none)");
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.mediaName = QString(10'000, u'\n'); }), "(none)");
}

TEST(PrintPreset, IsCheckedInOrder) {
    PrintPreset preset = test::preset();
    preset.schemaVersion = 2;
    preset.name.clear();
    preset.updatedAt = {nan};
    preset.settings.widthMM = nan;
    preset.driverQuality = DriverOptionSelection{.keyword = QStringLiteral("CutMedia"), .value = {}};
    preset.colorWorkflow.mode = ColorManagementMode::appManaged;
    preset.iccAsset = test::assetOf({}, {});
    EXPECT_EQ(issueOf(preset), badVersion);
    preset.schemaVersion = 1;
    EXPECT_EQ(issueOf(preset), badName);
    preset.name = QStringLiteral("n");
    EXPECT_EQ(issueOf(preset), badDate);
    preset.updatedAt = {0.0};
    EXPECT_EQ(issueOf(preset), "Dimensions must be valid numbers.");
    preset.settings.widthMM = 49.0;
    EXPECT_EQ(issueOf(preset), preset.settings.validationError()->toStdString());
    preset.settings.widthMM = 1524.0;
    EXPECT_EQ(issueOf(preset), onlyResolution);
    preset.driverQuality->keyword = QStringLiteral("Resolution");
    EXPECT_EQ(issueOf(preset), badQuality);
    preset.driverQuality.reset();
    EXPECT_EQ(issueOf(preset), badAsset);
    preset.iccAsset = test::assetOf(test::missingAsset().sha256, {});
    EXPECT_EQ(issueOf(preset), noAssetName);
    preset.iccAsset.reset();
    EXPECT_EQ(issueOf(preset), needsProfile);
    preset.colorWorkflow.mode = ColorManagementMode::driverManaged;
    EXPECT_EQ(issueOf(preset), "(none)");
}

TEST(PrintPreset, IsRefusedInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(issueOfQuality({}, {}), "预设只能记录驱动实际提供的 Resolution 质量选项，不能记录裁切或其他驱动控制项。");
    EXPECT_EQ(issueOfQuality({}), "打印质量选项无效。请选择当前驱动实际提供的选项。");
    EXPECT_EQ(issueOf(test::assetOf({}, {})), "ICC 资源引用无效。预设只能引用由应用管理且内容已通过校验的文件。");
    EXPECT_EQ(issueOf(test::assetOf(test::missingAsset().sha256, {})), "ICC 配置文件名称不能为空。");
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.schemaVersion = 2; }), "不支持此预设版本。原文件已保留。");
    EXPECT_EQ(issueOfName({}), "预设名称须为 1–200 个字符。");
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.createdAt = {nan}; }), "预设日期无效。");
    EXPECT_EQ(issueOfPreset([](PrintPreset& p) { p.colorWorkflow.mode = ColorManagementMode::appManaged; }),
              "由应用管理颜色的预设必须包含已导入的 ICC 配置文件。");
}

// Its JSON

TEST(PrintPresetJson, IsWrittenSortedWithPlainSlashesAndWithoutWhatIsAbsent) {
    EXPECT_EQ(written(test::preset()).toStdString(), storedPreset);
    EXPECT_EQ(written(test::fullPreset()).toStdString(), storedFullPreset);
    PrintPreset bare = test::preset();
    bare.driverQuality.reset();
    EXPECT_FALSE(bare.toJson().contains(u"driverQuality"));
    EXPECT_FALSE(bare.toJson().contains(u"iccAsset"));
}

TEST(PrintPresetJson, IsReadAsWritten) {
    EXPECT_EQ(decoded(storedPreset), test::preset());
    EXPECT_EQ(decoded(storedFullPreset), test::fullPreset());
}

TEST(PrintPresetJson, IsReadInTheSpellingsOfOtherWriters) {
    for (const QByteArray& spelling : test::spellingsOf(storedFullPreset)) {
        EXPECT_EQ(decoded(spelling), test::fullPreset()) << spelling.constData();
    }
    EXPECT_EQ(decoded(QByteArray(storedFullPreset).replace("/", "\\/")), test::fullPreset());
    EXPECT_EQ(decoded(test::storedFixture("9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4.json")), test::preset());
}

TEST(PrintPresetJson, NeedsEveryKeyButTwo) {
    const QStringList optional{QStringLiteral("driverQuality"), QStringLiteral("iccAsset")};
    int keys = 0;
    test::withoutKeys(test::tree(storedFullPreset), [&](const QString& place, const QJsonValue& tree) {
        ++keys;
        EXPECT_EQ(decodingFailure(test::text(tree)),
                  optional.contains(place) ? "(none)" : place.toStdString() + ": The required key is missing.");
    });
    EXPECT_EQ(keys, 10 + 3 + 2 + 3 + 7);
}

TEST(PrintPresetJson, NeedsTheTypeOfEveryValue) {
    const QStringList optional{QStringLiteral("driverQuality"), QStringLiteral("iccAsset")};
    test::withOtherTypes(test::tree(storedFullPreset), [&](const QString& place, const QJsonValue& tree) {
        const std::string failure = decodingFailure(test::text(tree));
        const bool isAbsent = optional.contains(place) && test::valueAt(tree, place).isNull();
        EXPECT_EQ(isAbsent ? failure == "(none)" : failure.starts_with(place.toStdString() + ": Expected "), true)
            << place.toStdString() << ": " << failure;
    });
}

TEST(PrintPresetJson, ReadsNullAsAbsent) {
    PrintPreset expected = test::fullPreset();
    expected.driverQuality.reset();
    expected.iccAsset.reset();
    QJsonObject json = test::fullPreset().toJson();
    json[u"driverQuality"] = QJsonValue::Null;
    json[u"iccAsset"] = QJsonValue::Null;
    EXPECT_EQ(decoded(test::text(json)), expected);
    json.remove(u"driverQuality");
    json.remove(u"iccAsset");
    EXPECT_EQ(decoded(test::text(json)), expected);
}

TEST(PrintPresetJson, AppliesNoRule) {
    PrintPreset broken = test::fullPreset();
    broken.schemaVersion = 2;
    broken.name.clear();
    broken.settings.widthMM = -1.0;
    broken.driverQuality->keyword = QStringLiteral("CutMedia");
    broken.iccAsset->sha256.clear();
    EXPECT_EQ(decoded(written(broken)), broken);
}

TEST(PrintPresetJson, TakesEverySpellingOfNumbers) {
    const auto withVersion = [](const char* version) {
        return decoded(QByteArray(storedPreset).replace(R"(Version": 1)", QByteArray("Version\": ") + version));
    };
    for (const char* spelling : {"1", "1.0", "1e0", "10e-1", "0.1E+1"}) {
        EXPECT_EQ(withVersion(spelling), test::preset()) << spelling;
    }
    EXPECT_EQ(failureOf([&] { static_cast<void>(withVersion("1.5")); }), "schemaVersion: Expected an integer.");
    EXPECT_EQ(failureOf([&] { static_cast<void>(withVersion("1e99")); }), "schemaVersion: Expected an integer.");
    EXPECT_EQ(decoded(QByteArray(storedPreset).replace("700000000.25", "7.0000000025E+8")), test::preset());
    EXPECT_EQ(decoded(QByteArray(storedPreset).replace("700000000.25", "-0")).createdAt.secondsSince2001, 0.0);
    for (const char* spelling : {"NaN", "Infinity", "1e999", "-1e999"}) {
        EXPECT_TRUE(decodingFailure(QByteArray(storedPreset).replace("700000000.25", spelling))
                        .starts_with("Not valid JSON (at byte "))
            << spelling;
    }
}

TEST(PrintPresetJson, TakesTheLastOfKeysThatAreThereTwiceAndIgnoresUnknownOnes) {
    const QByteArray json = QByteArray(storedPreset)
                                .replace("\"name\"", R"("name": 7, "later": {"name": []}, "name")")
                                .replace("\"keyword\"", R"("later": null, "keyword": "CutMedia", "keyword")");
    EXPECT_EQ(decoded(json), test::preset());
}

TEST(PrintPresetJson, TakesIdsInEitherCase) {
    EXPECT_EQ(decoded(QByteArray(storedPreset)
                          .replace("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4", "9b2f4e1c-0D3a-4B5c-8d6E-7f8091A2b3c4")),
              test::preset());
    EXPECT_EQ(decodingFailure(QByteArray(storedPreset).replace("9B2F4E1C-", "9B2F4E1C")), "id: Expected a UUID.");
}

TEST(PrintPresetJson, IsNotWrittenWithNumbersThatJsonLacks) {
    PrintPreset preset = test::preset();
    preset.updatedAt = {nan};
    EXPECT_EQ(failureOf([&] { static_cast<void>(preset.toJson()); }), "updatedAt: JSON cannot hold this number.");
    preset = test::preset();
    preset.settings.marginMM = infinity;
    EXPECT_THROW(static_cast<void>(preset.toJson()), platform::JsonInvalidNumber);
}

} // namespace orvex
