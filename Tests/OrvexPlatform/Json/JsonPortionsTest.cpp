#include "Json/JsonPortions.h"

#include "Json/JsonError.h"

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

/// The texts of the portions, or the message of the refusal.
QByteArrayList portionsOf(const QByteArray& text) {
    try {
        static_cast<void>(JsonPortions(text));
    } catch (const JsonError& error) {
        return {error.message().toUtf8()};
    }
    QByteArrayList list;
    for (const JsonPortion& portion : jsonOutline(text).portions) {
        list.append(text.sliced(portion.begin, portion.end - portion.begin));
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

TEST(JsonPortions, AreCutAfterAMebibyte) {
    const QByteArray large = '"' + QByteArray(1 << 19, 'x') + '"';
    EXPECT_EQ(portionsOf("[" + large + "," + large + ",1,2]"), (QByteArrayList{large + "," + large, "1,2"}));
}

TEST(JsonPortions, KnowTheirPlaceInTheArray) {
    const auto portions = jsonOutline(" [" + numbers(0, 130) + " ]").portions;
    ASSERT_EQ(portions.size(), 3U);
    EXPECT_EQ(portions[0], (JsonPortion{.begin = 2, .end = 2 + 10 * 2 + 54 * 3 - 1, .firstIndex = 0, .count = 64}));
    EXPECT_EQ(portions[1].firstIndex, 64);
    EXPECT_EQ(portions[2].firstIndex, 128);
    EXPECT_EQ(portions[2].count, 2);
}

TEST(JsonPortions, AreThoseOfAnArrayAlone) {
    for (const char* other : {"{}", " {\"a\":[]}", "\xEF\xBB\xBF{\"a\":[1]}"}) {
        EXPECT_EQ(portionsOf(other), QByteArrayList{"Expected an array."}) << other;
    }
    EXPECT_EQ(portionsOf("7"), QByteArrayList{"Not valid JSON (at byte 1)."}) << "the byte behind it";
    EXPECT_EQ(portionsOf("\xEF\xBB\xBF\"[]\""), QByteArrayList{"Not valid JSON (at byte 4)."});
}

TEST(JsonPortions, TellWhatIsAmissInAnObject) {
    EXPECT_EQ(portionsOf("{\"a\":\"\xDC\"}"), QByteArrayList{"Not valid JSON (at byte 6)."});
    EXPECT_EQ(portionsOf("{\"a\":1e999}"), QByteArrayList{"Not valid JSON (at byte 10)."});
}

TEST(JsonPortions, AreThoseOfJsonAlone) {
    EXPECT_EQ(portionsOf(""), QByteArrayList{"Not valid JSON (at byte 0)."});
    EXPECT_EQ(portionsOf("[1"), QByteArrayList{"Not valid JSON (at byte 2)."});
    EXPECT_EQ(portionsOf("[1,]"), QByteArrayList{"Not valid JSON (at byte 3)."});
    EXPECT_EQ(portionsOf("\xEF\xBB\xBF[1,]"), QByteArrayList{"Not valid JSON (at byte 6)."});
    EXPECT_EQ(portionsOf("\v[]"), QByteArrayList{"Not valid JSON (at byte 0)."});
    EXPECT_EQ(portionsOf("[]\f"), QByteArrayList{"Not valid JSON (at byte 2)."});
    const QByteArray many = "[" + numbers(0, 64) + ",";
    EXPECT_EQ(portionsOf(many + "]"),
              QByteArrayList{"Not valid JSON (at byte " + QByteArray::number(many.size()) + ")."});
}

std::string readingFailure(const QByteArray& text) {
    try {
        JsonPortions(text).readEach([](std::size_t, const JsonReader& array) {
            for (qsizetype index = 0; index < array.count(); ++index) {
                static_cast<void>(array.element(index).integer());
            }
        });
    } catch (const JsonError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

TEST(JsonPortions, TellOfTheFirstThingThatIsNoJsonAndElseOfTheFirstOfAll) {
    const auto withTexts = [](const QList<int>& places, const QByteArray& text) {
        QByteArrayList elements = numbers(0, 300).split(',');
        for (const int place : places) {
            elements[place] = text;
        }
        return "[" + elements.join(',') + "]";
    };
    EXPECT_EQ(readingFailure(withTexts({}, {})), "(none)");
    EXPECT_EQ(readingFailure(withTexts({299, 70, 200}, "\"x\"")), "[70]: Expected an integer.");
    const QByteArray beyond = withTexts({70}, "\"x\"").replace(",299]", ",1e999]");
    EXPECT_EQ(readingFailure(beyond), "Not valid JSON (at byte " + std::to_string(beyond.size() - 1) + ").");
    const QByteArray badText = "\xEF\xBB\xBF" + withTexts({200, 250}, "\"\xEF\xBB\xBF\xC3\x28\"");
    EXPECT_EQ(readingFailure(badText), "Not valid JSON (at byte " + std::to_string(badText.indexOf('\xC3')) + ").");
}

TEST(JsonPortions, AreRefusedIfOneElementIsTooLarge) {
    const QByteArray large = '"' + QByteArray(JsonPortions::largestElementBytes, 'x') + '"';
    EXPECT_EQ(readingFailure("[1,2," + large + ",3]"), "[2]: It is too large.");
    EXPECT_EQ(readingFailure("{\"a\":" + large + "}"), "It is too large.");
}

} // namespace orvex::platform
