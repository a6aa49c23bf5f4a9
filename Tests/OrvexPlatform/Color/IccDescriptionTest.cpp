#include "Color/IccDescription.h"

#include "IccFixtures.h"

#include <gtest/gtest.h>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

QByteArray number(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// A profile of one tag and nothing else.
QByteArray profileOf(const QByteArray& tag, const QByteArray& value) {
    return QByteArray(128, '\0') + number(1) + tag + number(144) + number(static_cast<quint32>(value.size())) + value;
}

std::optional<QString> description(const std::vector<icc::Translation>& translations) {
    const icc::Profile profile = icc::rgb(1.8);
    icc::describe(profile, translations);
    return iccDescription(icc::saved(profile));
}

std::optional<QString> oldDescription(const QByteArray& text) {
    const auto length = static_cast<quint32>(text.size());
    return iccDescription(profileOf("desc", "desc" + number(0) + number(length) + text));
}

QByteArray utf16(const QString& text) {
    QByteArray bytes;
    for (const QChar each : text) {
        bytes.append(static_cast<char>(each.unicode() >> 8)).append(static_cast<char>(each.unicode() & 0xFF));
    }
    return bytes;
}

/// A text in one language, with the count of records, the length and the offset as given.
QByteArray localized(const QByteArray& utf16Text, quint32 count, quint32 length, quint32 offset) {
    return "mluc" + number(0) + number(count) + number(12) + "enUS" + number(length) + number(offset) + utf16Text;
}

} // namespace

TEST(IccDescription, IsTheEnglishOneWhereverItStands) {
    EXPECT_EQ(description({{"zh", "CN", L"测试"}, {"en", "US", L"Test"}, {"de", "DE", L"Prüfung"}}),
              QStringLiteral("Test"));
    EXPECT_EQ(description({{"en", "GB", L"Colour"}, {"de", "DE", L"Farbe"}}), QStringLiteral("Colour"));
}

TEST(IccDescription, IsTheFirstOneIfNoneIsEnglish) {
    EXPECT_EQ(description({{"zh", "CN", L"测试"}}), QStringLiteral("测试"));
    EXPECT_EQ(description({{"fr", "FR", L"Toile"}, {"de", "DE", L"Leinwand"}}), QStringLiteral("Toile"));
}

TEST(IccDescription, IsTrimmed) {
    EXPECT_EQ(description({{"en", "US", L" \t Canvas Matte \n"}}), QStringLiteral("Canvas Matte"));
}

TEST(IccDescription, IsAbsentIfEmptyOrMissing) {
    EXPECT_EQ(description({{"en", "US", L" \n "}}), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("cprt", localized(utf16(QStringLiteral("A")), 1, 2, 28))), std::nullopt);
    EXPECT_EQ(iccDescription({}), std::nullopt);
    EXPECT_EQ(oldDescription({}), std::nullopt);
}

TEST(IccDescription, KeepsCharactersOfMoreThan16BitsAndWhatFollowsThem) {
    const QString text = QStringLiteral("\U0001F5A8 Printer \U0001F5A8");
    const QByteArray bytes = utf16(text);
    const auto length = static_cast<quint32>(bytes.size());
    EXPECT_EQ(iccDescription(profileOf("desc", localized(bytes, 1, length, 28))), text);
}

TEST(IccDescription, EndsAtANul) {
    const QByteArray bytes = utf16(QStringLiteral("Name")) + QByteArray(2, '\0') + utf16(QStringLiteral("rest"));
    EXPECT_EQ(iccDescription(profileOf("desc", localized(bytes, 1, static_cast<quint32>(bytes.size()), 28))),
              QStringLiteral("Name"));
    EXPECT_EQ(oldDescription(QByteArray("Name\0rest", 9)), QStringLiteral("Name"));
    EXPECT_EQ(oldDescription(QByteArray("\0rest", 5)), std::nullopt);
}

TEST(IccDescription, ReadsAnOldTextWithAccents) {
    EXPECT_EQ(oldDescription("Caf\xE9 Canvas"), QStringLiteral("Café Canvas"));
}

TEST(IccDescription, IsAbsentIfItLeadsOutOfTheProfile) {
    const QByteArray text = utf16(QStringLiteral("Name"));
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 1, 8, 28))), QStringLiteral("Name"));
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 1, 9, 28))), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 1, 8, 29))), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 1, 0xFFFFFFFF, 28))), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 1, 8, 0xFFFFFFFF))), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", localized(text, 0, 8, 28))), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", "desc" + number(0) + number(5) + "Name")), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", "desc")), std::nullopt);
    EXPECT_EQ(iccDescription(profileOf("desc", "sig " + number(0) + number(4) + "Name")), std::nullopt);
}

TEST(IccDescription, IsFoundInTablesThatClaimTooMuch) {
    const QByteArray text = utf16(QStringLiteral("Name"));
    QByteArray profile = profileOf("desc", localized(text, 0xFFFFFFFF, 8, 28));
    EXPECT_EQ(iccDescription(profile), QStringLiteral("Name"));
    EXPECT_EQ(iccDescription(icc::patched(profile, 128, quint32{0xFFFFFFFF})), QStringLiteral("Name"));
    EXPECT_EQ(iccDescription(icc::patched(profile, 128, quint32{0})), std::nullopt);
    profile.replace(132, 4, "none");
    EXPECT_EQ(iccDescription(icc::patched(profile, 128, quint32{0xFFFFFFFF})), std::nullopt);
}

} // namespace orvex::platform
