#include "OrvexLanguage.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(OrvexLanguage, listsItsCasesChineseFirst) {
    ASSERT_EQ(OrvexLanguage::allCases.size(), 2U);
    EXPECT_EQ(OrvexLanguage(OrvexLanguage::allCases[0]).rawValue(), u"zh-Hans");
    EXPECT_EQ(OrvexLanguage(OrvexLanguage::allCases[1]).rawValue(), u"en");
}

TEST(OrvexLanguage, namesItsLocales) {
    EXPECT_EQ(OrvexLanguage(OrvexLanguage::simplifiedChinese).localeIdentifier(), u"zh-Hans");
    EXPECT_EQ(OrvexLanguage(OrvexLanguage::english).localeIdentifier(), u"en_US");
}

struct Resolution {
    const char* name;
    std::optional<QString> configured;
    QStringList preferredLanguages;
    OrvexLanguage::Case expected;
};

class OrvexLanguageResolve : public ::testing::TestWithParam<Resolution> {};

TEST_P(OrvexLanguageResolve, followsTheConfiguredTagThenTheFirstPreference) {
    EXPECT_EQ(OrvexLanguage::resolve(GetParam().configured, GetParam().preferredLanguages), GetParam().expected);
}

constexpr auto chinese = OrvexLanguage::simplifiedChinese;
constexpr auto english = OrvexLanguage::english;

QString q(const char* text) {
    return QString::fromUtf8(text);
}

INSTANTIATE_TEST_SUITE_P(
    Tags, OrvexLanguageResolve,
    ::testing::Values(Resolution{"underscore", q("zh_CN"), {}, chinese},
                      Resolution{"anyCase", q("Zh-hANS"), {}, chinese},
                      Resolution{"bareChinese", q("zh"), {q("en")}, chinese},
                      Resolution{"traditional", q("zh-Hant-TW"), {}, chinese},
                      Resolution{"britishEnglish", q("en-GB"), {q("zh-Hans")}, english},
                      Resolution{"bareEnglish", q("EN"), {q("zh-Hans")}, english},
                      Resolution{"neitherFollowsTheUser", q("fr"), {q("zh-Hans-CN"), q("en")}, chinese},
                      Resolution{"onlyTheFirstPreferenceCounts", q("fr"), {q("fr-FR"), q("zh-Hans")}, english},
                      Resolution{"noPreferences", q("fr"), {}, english},
                      Resolution{"similarTagFallsThrough", q("zhx"), {q("de")}, english},
                      Resolution{"similarTagFallsThroughToChinese", q("enx"), {q("zh_TW")}, chinese},
                      Resolution{"absentIsNoDefault", std::nullopt, {q("en-US")}, english},
                      Resolution{"absentFollowsTheUser", std::nullopt, {q("zh-Hans-CN")}, chinese}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(OrvexLanguage, picksTheFormOfATextChineseFirst) {
    EXPECT_EQ(OrvexLanguage(chinese).text("卷布", "roll"), QStringLiteral("卷布"));
    EXPECT_EQ(OrvexLanguage(english).text("卷布", "roll"), u"roll");
}

TEST(OrvexLanguage, followsAConfiguredTagAtOnce) {
    OrvexLanguage::setConfigured(q("zh-Hans"));
    EXPECT_EQ(spt("卷布", "roll"), QStringLiteral("卷布"));
    OrvexLanguage::setConfigured(q("en"));
    EXPECT_EQ(spt("卷布", "roll"), u"roll");
}

} // namespace
} // namespace orvex
