#include "Json/JsonPortions.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

namespace orvex::platform {

namespace {

/// The numbers from `first` to before `end`, with commas between them.
QByteArray numbers(int first, int end) {
    QByteArrayList texts;
    for (int number = first; number < end; ++number) {
        texts.append(QByteArray::number(number));
    }
    return texts.join(',');
}

std::optional<QByteArrayList> portionsOf(const QByteArray& text) {
    const auto portions = jsonArrayPortions(text);
    if (!portions) {
        return std::nullopt;
    }
    QByteArrayList list;
    for (const QByteArrayView portion : *portions) {
        list.append(portion.toByteArray());
    }
    return list;
}

} // namespace

TEST(JsonPortions, AreCutAfterEverySixtyFourElements) {
    EXPECT_EQ(portionsOf("[1]"), QByteArrayList{"1"});
    EXPECT_EQ(portionsOf("[" + numbers(0, 64) + "]"), QByteArrayList{numbers(0, 64)});
    EXPECT_EQ(portionsOf("[" + numbers(0, 65) + "]"), (QByteArrayList{numbers(0, 64), "64"}));
    EXPECT_EQ(portionsOf("[" + numbers(0, 200) + "]"),
              (QByteArrayList{numbers(0, 64), numbers(64, 128), numbers(128, 192), numbers(192, 200)}));
}

TEST(JsonPortions, OfAnEmptyArrayAreOneWithoutElements) {
    EXPECT_EQ(portionsOf("[]"), QByteArrayList{""});
    EXPECT_EQ(portionsOf(" [\r\n] \n"), QByteArrayList{"\r\n"});
}

TEST(JsonPortions, KeepTheSpaceBetweenElementsButNotAroundTheArray) {
    EXPECT_EQ(portionsOf("\t\r\n [ 1 , 2 ] \n"), QByteArrayList{" 1 , 2 "});
}

TEST(JsonPortions, AreNotCutWithinElements) {
    const QByteArray list = QByteArray("[") + numbers(0, 100) + "]";
    const QByteArray object = QByteArray("{\"a\":") + list + ",\"b\":1}";
    EXPECT_EQ(portionsOf("[" + list + "," + object + "]"), (QByteArrayList{list + "," + object}));
}

TEST(JsonPortions, AreNotCutWithinTexts) {
    const QByteArray commas = "\"" + QByteArray(100, ',') + "\"";
    const QByteArray tricky = R"("]},\",[{\\","\\\"",{"\\":"}"})";
    EXPECT_EQ(portionsOf("[" + commas + "," + tricky + "]"), QByteArrayList{commas + "," + tricky});
    EXPECT_EQ(portionsOf("[" + tricky + "," + numbers(0, 62) + "]"),
              (QByteArrayList{tricky + "," + numbers(0, 61), "61"}));
}

TEST(JsonPortions, AreThoseOfAnArrayAlone) {
    for (const char* other : {"", " ", "[", "]", "{}", "{\"a\":[]}", "[1", "1]", "7", "\"[]\"", "\xEF\xBB\xBF[]"}) {
        EXPECT_EQ(portionsOf(other), std::nullopt) << other;
    }
}

TEST(JsonPortions, HideNoCommaAtTheEnd) {
    EXPECT_EQ(portionsOf("[" + numbers(0, 64) + ",]"), std::nullopt);
    EXPECT_EQ(portionsOf("[" + numbers(0, 128) + " , \n]"), std::nullopt);
    EXPECT_EQ(portionsOf("[" + numbers(0, 65) + ",]"), (QByteArrayList{numbers(0, 64), "64,"}))
        << "whoever reads the portion sees the comma";
}

TEST(JsonPortions, HideNothingAroundTheArrayThatIsNoSpaceOfJson) {
    for (const char* other : {"\v[]", "[]\f", "\f[1]\v", "[1]\v"}) {
        EXPECT_EQ(portionsOf(other), std::nullopt) << other;
    }
}

} // namespace orvex::platform
