#include "PropertyList/PropertyList.h"

#include "InChinese.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace orvex::platform {

namespace {

constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

PropertyList parse(const QByteArray& xml) {
    return PropertyList::parse(xml);
}

/// The value of a list that holds only this one.
PropertyList value(const QByteArray& xml) {
    return parse("<plist version=\"1.0\">" + xml + "</plist>");
}

bool isRefused(const QByteArray& xml) {
    try {
        (void)parse(xml);
    } catch (const PropertyListError&) {
        return true;
    }
    return false;
}

/// The text of a value, or "(none)".
std::string textOf(const PropertyList& list) {
    return list.text() == nullptr ? "(none)" : list.text()->toStdString();
}

std::string textOf(const QByteArray& xml) {
    return textOf(value(xml));
}

/// How many kinds a value is of.
int kindsOf(const PropertyList& list) {
    return (list.dictionary() != nullptr) + (list.array() != nullptr) + (list.text() != nullptr) +
           (list.number() != nullptr) + (list.boolean() != nullptr);
}

/// Arrays within each other, with the list's own element so many.
QByteArray nested(qsizetype levels) {
    return "<plist>" + QByteArray("<array>").repeated(levels - 1) + QByteArray("</array>").repeated(levels - 1) +
           "</plist>";
}

QByteArray utf16(const char* utf8, bool isBigEndian) {
    QByteArray bytes;
    for (const QChar unit : QChar(0xFEFF) + QString::fromUtf8(utf8)) {
        const char high = static_cast<char>(unit.row());
        const char low = static_cast<char>(unit.cell());
        bytes.append(isBigEndian ? high : low).append(isBigEndian ? low : high);
    }
    return bytes;
}

struct Number {
    const char* name;
    QByteArray xml;
    std::variant<qint64, double> held;
    std::optional<qint64> integer;
};

void PrintTo(const Number& row, std::ostream* out) {
    *out << row.name;
}

class PropertyNumberTest : public ::testing::TestWithParam<Number> {};

struct Refused {
    const char* name;
    QByteArray xml;
};

void PrintTo(const Refused& row, std::ostream* out) {
    *out << row.name;
}

/// Values that stand within a list.
class RefusedValue : public ::testing::TestWithParam<Refused> {};

/// Whole documents.
class RefusedDocument : public ::testing::TestWithParam<Refused> {};

struct RowName {
    template <typename Row>
    std::string operator()(const ::testing::TestParamInfo<Row>& row) const {
        return row.param.name;
    }
};

} // namespace

// Kinds of values

TEST(PropertyList, HoldsEachValueAsOneKindAlone) {
    for (const char* xml :
         {"<dict/>", "<array/>", "<string/>", "<integer>1</integer>", "<real>1</real>", "<true/>", "<false/>"}) {
        SCOPED_TRACE(xml);
        EXPECT_EQ(kindsOf(value(xml)), 1);
    }
}

TEST(PropertyList, HoldsDatesAndDataAsNoKind) {
    for (const char* xml : {"<date>2026-11-21T06:40:16Z</date>", "<date/>", "<data>AAEC</data>", "<data/>"}) {
        SCOPED_TRACE(xml);
        EXPECT_EQ(kindsOf(value(xml)), 0);
    }
    EXPECT_EQ(kindsOf(PropertyList()), 0);
}

TEST(PropertyList, HoldsTextsAsTheyStand) {
    EXPECT_EQ(textOf("<string> a\n\tb </string>"), " a\n\tb ");
    EXPECT_EQ(textOf("<string></string>"), "");
    EXPECT_EQ(textOf("<string />"), "");
    EXPECT_EQ(textOf("<string>&lt;&lt;no-value&gt;&gt; &amp; &quot;&apos;</string>"), "<<no-value>> & \"'");
    EXPECT_EQ(textOf("<string>\xE7\xBA\xB8 &#32440; &#x1F600;</string>"), "纸 纸 \U0001F600");
}

TEST(PropertyList, JoinsCharacterDataAndTextAroundCommentsAndInstructions) {
    EXPECT_EQ(textOf("<string>a<![CDATA[<b> &amp; ]]>c<!-- d -->e<?f g?>h</string>"), "a<b> &amp; ceh");
    EXPECT_EQ(textOf("<string><![CDATA[a]]><![CDATA[b]]></string>"), "ab");
}

TEST(PropertyList, HoldsBooleans) {
    ASSERT_NE(value("<true/>").boolean(), nullptr);
    EXPECT_TRUE(*value("<true />").boolean());
    EXPECT_TRUE(*value("<true></true>").boolean());
    EXPECT_FALSE(*value("<false/>").boolean());
}

TEST(PropertyList, HoldsArraysInTheirOrder) {
    const PropertyList list = value("<array><string>b</string><string>a</string><array/><true/></array>");
    ASSERT_NE(list.array(), nullptr);
    ASSERT_EQ(list.array()->size(), 4U);
    EXPECT_EQ(textOf(list.array()->at(0)), "b");
    EXPECT_EQ(textOf(list.array()->at(1)), "a");
    EXPECT_NE(list.array()->at(2).array(), nullptr);
    EXPECT_NE(list.array()->at(3).boolean(), nullptr);
}

TEST(PropertyList, HoldsTheMembersOfDictionaries) {
    const PropertyList list = value("<dict><key>a</key><string>1</string>\n<!-- c --><key>b</key>\n<dict><key>a</key>"
                                    "<string>2</string></dict></dict>");
    ASSERT_NE(list.dictionary(), nullptr);
    EXPECT_EQ(list.dictionary()->size(), 2U);
    ASSERT_NE(list.find("a"), nullptr);
    EXPECT_EQ(textOf(*list.find("a")), "1");
    ASSERT_NE(list.find("b"), nullptr);
    EXPECT_EQ(textOf(*list.find("b")->find("a")), "2");
}

TEST(PropertyList, TakesKeysAsTheyStand) {
    const PropertyList list =
        value("<dict><key></key><true/><key> a </key><true/><key>纸&amp;<![CDATA[<]]></key><true/>"
              "</dict>");
    EXPECT_NE(list.find(""), nullptr);
    EXPECT_NE(list.find(" a "), nullptr);
    EXPECT_NE(list.find("纸&<"), nullptr);
    EXPECT_EQ(list.dictionary()->size(), 3U);
}

TEST(PropertyList, KeepsAByteOrderMarkInFrontOfAText) {
    const PropertyList list = value("<dict><key>\uFEFFa</key><string>\uFEFFx</string></dict>");
    ASSERT_NE(list.dictionary(), nullptr);
    ASSERT_EQ(list.dictionary()->size(), 1U);
    const auto& [key, text] = *list.dictionary()->begin();
    EXPECT_EQ(key, QStringLiteral("\uFEFFa"));
    EXPECT_EQ(textOf(text), "\uFEFFx");
}

TEST(PropertyList, HoldsNumbersBeyondTheRangeOfADoubleAsNoIntegers) {
    const QByteArray digits(400, '9');
    for (const QByteArray& number : {QByteArray("<real>1e400</real>"), QByteArray("<real>-1e400</real>"),
                                     "<integer>" + digits + "</integer>", "<real>" + digits + "</real>"}) {
        const PropertyList list = value(number);
        ASSERT_NE(list.number(), nullptr) << number.constData();
        EXPECT_EQ(list.number()->integer(), std::nullopt) << number.constData();
    }
}

TEST(PropertyList, FindsNothingWithoutTheKeyOrOutsideOfDictionaries) {
    EXPECT_EQ(value("<dict><key>a</key><true/></dict>").find("A"), nullptr);
    EXPECT_EQ(value("<dict/>").find("a"), nullptr);
    EXPECT_EQ(value("<array><string>a</string></array>").find("a"), nullptr);
    EXPECT_EQ(value("<string>a</string>").find("a"), nullptr);
    EXPECT_EQ(PropertyList().find("a"), nullptr);
}

// Numbers

TEST_P(PropertyNumberTest, IsHeldAndToldExactly) {
    const PropertyList list = value(GetParam().xml);
    ASSERT_NE(list.number(), nullptr);
    EXPECT_EQ(list.number()->value, GetParam().held);
    EXPECT_EQ(list.number()->integer(), GetParam().integer);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyList, PropertyNumberTest,
    ::testing::Values(
        Number{"Integer", "<integer>42</integer>", 42, 42}, Number{"Zero", "<integer>0</integer>", 0, 0},
        Number{"Negative", "<integer>-1</integer>", -1, -1}, Number{"WithPlus", "<integer>+7</integer>", 7, 7},
        Number{"WithZeros", "<integer>007</integer>", 7, 7},
        Number{"WithWhiteSpace", "<integer>\n 7\t</integer>", 7, 7},
        Number{"WithAComment", "<integer>1<!-- x -->2</integer>", 12, 12},
        Number{"Hexadecimal", "<integer>0x1F</integer>", 31, 31},
        Number{"LargestHexadecimal", "<integer>0x7fffffffffffffff</integer>", largest, largest},
        Number{"Largest", "<integer>9223372036854775807</integer>", largest, largest},
        Number{"Smallest", "<integer>-9223372036854775808</integer>", smallest, smallest},
        Number{"NoDouble", "<integer>9007199254740993</integer>", 9007199254740993, 9007199254740993},
        Number{"TwoToThe63rd", "<integer>9223372036854775808</integer>", 9223372036854775808.0, std::nullopt},
        Number{"LargestUnsigned", "<integer>18446744073709551615</integer>", 18446744073709551616.0, std::nullopt},
        Number{"FarBelow", "<integer>-99999999999999999999</integer>", -1e20, std::nullopt},
        Number{"Real", "<real>1.5</real>", 1.5, std::nullopt}, Number{"WholeReal", "<real>3.0</real>", 3.0, 3},
        Number{"RealWithoutAPoint", "<real>3</real>", 3.0, 3},
        Number{"RealWithExponent", "<real>-2.5E+1</real>", -25.0, -25},
        Number{"RealWithWhiteSpace", "<real> 3\n</real>", 3.0, 3}, Number{"NegativeZero", "<real>-0.0</real>", 0.0, 0},
        Number{"RealTwoToThe63rd", "<real>9223372036854775808</real>", 9223372036854775808.0, std::nullopt},
        Number{"RealMinusTwoToThe63rd", "<real>-9223372036854775808</real>", -9223372036854775808.0, smallest},
        Number{"RealBelowMinusTwoToThe63rd", "<real>-9223372036854777856</real>", -9223372036854777856.0, std::nullopt},
        Number{"LargestReal", "<real>1.7976931348623157e308</real>", std::numeric_limits<double>::max(), std::nullopt},
        Number{"SmallestReal", "<real>5e-324</real>", std::numeric_limits<double>::denorm_min(), std::nullopt},
        Number{"Infinity", "<real>inf</real>", std::numeric_limits<double>::infinity(), std::nullopt}),
    RowName());

TEST(PropertyList, HoldsARealThatIsNoNumber) {
    const PropertyList list = value("<real>nan</real>");
    ASSERT_NE(list.number(), nullptr);
    EXPECT_TRUE(std::isnan(std::get<double>(list.number()->value)));
    EXPECT_EQ(list.number()->integer(), std::nullopt);
}

// What is refused

TEST_P(RefusedValue, IsNoPropertyList) {
    ASSERT_FALSE(isRefused("<plist><true/></plist>"));
    EXPECT_TRUE(isRefused("<plist>" + GetParam().xml + "</plist>"));
}

INSTANTIATE_TEST_SUITE_P(
    PropertyList, RefusedValue,
    ::testing::Values(
        Refused{"None", ""}, Refused{"OnlyAComment", "<!-- x -->"}, Refused{"Text", "x"},
        Refused{"Two", "<true/><false/>"}, Refused{"TextBefore", "x<true/>"}, Refused{"TextBehind", "<true/>x"},
        Refused{"CharacterDataBehind", "<true/><![CDATA[x]]>"}, Refused{"NoBreakSpace", "<true/>\xC2\xA0"},
        Refused{"Unknown", "<set/>"}, Refused{"UnknownInside", "<array><null/></array>"},
        Refused{"UpperCase", "<TRUE/>"}, Refused{"ListInside", "<plist><true/></plist>"},
        Refused{"ListInAnArray", "<array><plist/></array>"}, Refused{"BareKey", "<key>a</key>"},
        Refused{"KeyInAnArray", "<array><key>a</key></array>"}, Refused{"KeyWithoutValue", "<dict><key>a</key></dict>"},
        Refused{"SecondKeyWithoutValue", "<dict><key>a</key><true/><key>b</key></dict>"},
        Refused{"TwoKeys", "<dict><key>a</key><key>b</key><true/></dict>"},
        Refused{"ValueWithoutKey", "<dict><true/></dict>"},
        Refused{"SecondValueWithoutKey", "<dict><key>a</key><true/><true/></dict>"},
        Refused{"ListInADictionary", "<dict><key>a</key><plist><true/></plist></dict>"},
        Refused{"TextInADictionary", "<dict>x<key>a</key><true/></dict>"},
        Refused{"TextBehindAKey", "<dict><key>a</key>x<true/></dict>"}, Refused{"TextInAnArray", "<array>x</array>"},
        Refused{"ElementInAText", "<string>a<true/></string>"},
        Refused{"ElementInAKey", "<dict><key><string>a</string></key><true/></dict>"},
        Refused{"ElementInANumber", "<integer><integer>1</integer></integer>"},
        Refused{"ElementInData", "<data><string>a</string></data>"}, Refused{"TrueWithText", "<true>1</true>"},
        Refused{"FalseWithText", "<false>0</false>"}, Refused{"TrueWithElement", "<true><true/></true>"},
        Refused{"IntegerEmpty", "<integer/>"}, Refused{"IntegerOfWhiteSpace", "<integer> </integer>"},
        Refused{"IntegerOfLetters", "<integer>three</integer>"}, Refused{"IntegerOnlySign", "<integer>-</integer>"},
        Refused{"IntegerTwoSigns", "<integer>--1</integer>"}, Refused{"IntegerFraction", "<integer>3.0</integer>"},
        Refused{"IntegerExponent", "<integer>1e3</integer>"}, Refused{"IntegerWithABlank", "<integer>1 2</integer>"},
        Refused{"IntegerGrouped", "<integer>1,000</integer>"}, Refused{"IntegerNaN", "<integer>nan</integer>"},
        Refused{"IntegerOfAnotherScript", "<integer>٣</integer>"}, Refused{"HexadecimalEmpty", "<integer>0x</integer>"},
        Refused{"HexadecimalSign", "<integer>0x-1</integer>"},
        Refused{"HexadecimalOfOtherLetters", "<integer>0x1G</integer>"},
        Refused{"HexadecimalTooLarge", "<integer>0x8000000000000000</integer>"}, Refused{"RealEmpty", "<real/>"},
        Refused{"RealOfLetters", "<real>three</real>"}, Refused{"RealWithAComma", "<real>1,5</real>"},
        Refused{"RealWithABlank", "<real>1 5</real>"}, Refused{"RealWithMore", "<real>1.5x</real>"},
        Refused{"RealHexadecimal", "<real>0x10</real>"}, Refused{"EndOfAnother", "<true></false>"},
        Refused{"NotEnded", "<array>"}, Refused{"EndedTwice", "<array/></array>"},
        Refused{"UnknownEntity", "<string>&x;</string>"}, Refused{"EntityCut", "<string>&amp</string>"},
        Refused{"CharacterNUL", "<string>&#0;</string>"}, Refused{"CharacterOutOfRange", "<string>&#x110000;</string>"},
        Refused{"ControlCharacter", "<string>\x01</string>"}, Refused{"NUL", QByteArray("<string>\0</string>", 18)},
        Refused{"NoUTF8", "<string>\xC3\x28</string>"}, Refused{"OverlongUTF8", "<string>\xC0\xAF</string>"},
        Refused{"SurrogateInUTF8", "<string>\xED\xA0\x80</string>"}, Refused{"BareLess", "<string>a < b</string>"},
        Refused{"CommentCut", "<true/><!-- x"}),
    RowName());

TEST_P(RefusedDocument, IsNoPropertyList) {
    EXPECT_TRUE(isRefused(GetParam().xml));
}

INSTANTIATE_TEST_SUITE_P(
    PropertyList, RefusedDocument,
    ::testing::Values(
        Refused{"Empty", ""}, Refused{"WhiteSpace", " \n"}, Refused{"Words", "no xml"},
        Refused{"NUL", QByteArray(9, '\0')}, Refused{"OnlyADeclaration", "<?xml version=\"1.0\"?>"},
        Refused{"BareDictionary", "<dict/>"}, Refused{"BareText", "<string>a</string>"},
        Refused{"AnotherRoot", "<html><true/></html>"}, Refused{"RootInUpperCase", "<PLIST><true/></PLIST>"},
        Refused{"TwoRoots", "<plist><true/></plist><plist/>"}, Refused{"WordsBehind", "<plist><true/></plist>x"},
        Refused{"NULBehind", QByteArray("<plist><true/></plist>\0", 23)},
        Refused{"WordsBefore", "x<plist><true/></plist>"},
        Refused{"DeclarationBehindABlank", " <?xml version=\"1.0\"?><plist><true/></plist>"},
        Refused{"UnknownEncoding", "<?xml version=\"1.0\" encoding=\"x-none\"?><plist><true/></plist>"},
        Refused{"Binary",
                QByteArray("bplist00\x08\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                           "\0\x09",
                           42)},
        Refused{"EntityUnused", "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><true/></plist>"},
        Refused{"EntityUsed", "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>"},
        Refused{"EntityOfElements", "<!DOCTYPE plist [<!ENTITY a \"<true/>\">]><plist>&a;</plist>"},
        Refused{"EntityOfAFile",
                "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><plist><string>&a;</string></plist>"},
        Refused{"EntityOfData", "<!DOCTYPE plist [<!NOTATION n SYSTEM \"n\"><!ENTITY a SYSTEM \"x\" NDATA n>]><plist>"
                                "<true/></plist>"},
        Refused{"EntityDeclaredNowhere", "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
                                         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\"><plist><string>a&foo;b"
                                         "</string></plist>"},
        Refused{"DeclarationsOfAnotherPlace", "<!DOCTYPE plist [ %foo; <!ENTITY b \"x\"> ]><plist><true/></plist>"},
        Refused{"EqualKeys", "<plist><dict><key>a</key><true/><key>b</key><true/><key>a</key><true/></dict></plist>"},
        Refused{"EntityOfParameters", "<!DOCTYPE plist [<!ENTITY % a \"<!ENTITY b 'c'>\">%a;]><plist><true/></plist>"},
        Refused{"EntitiesThatGrow",
                "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
                "\"&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;\">]><plist><string>&d;</string>"
                "</plist>"}),
    RowName());

TEST(PropertyList, AllowsNestingUpToALimit) {
    EXPECT_FALSE(isRefused(nested(128)));
    EXPECT_TRUE(isRefused(nested(129)));
    EXPECT_TRUE(isRefused(nested(100000)));
    EXPECT_TRUE(isRefused("<plist>" + QByteArray("<array>").repeated(1000000)));
    EXPECT_TRUE(isRefused("<plist>" + QByteArray("<dict><key>a</key>").repeated(1000000)));
}

TEST(PropertyList, CountsLevelsAndNotElements) {
    EXPECT_FALSE(
        isRefused("<plist><array>" + QByteArray("<array><array/></array>").repeated(1000) + "</array></plist>"));
}

TEST(PropertyList, GivesNothingOfATruncatedList) {
    const QByteArray whole =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict><key>a</key><array>"
        "<integer>1</integer><real>2.5</real><true/></array><key>b</key><string>\xE7\xBA\xB8&amp;"
        "</string></dict></plist>";
    ASSERT_FALSE(isRefused(whole));
    for (qsizetype size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        EXPECT_TRUE(isRefused(whole.first(size)));
    }
}

// Documents

TEST(PropertyList, TakesADocumentWithOrWithoutItsHead) {
    const QByteArray list = "<plist version=\"1.0\"><true/></plist>";
    const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const QByteArray type = "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
                            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";
    EXPECT_FALSE(isRefused(list));
    EXPECT_FALSE(isRefused(declaration + list));
    EXPECT_FALSE(isRefused(type + list));
    EXPECT_FALSE(isRefused(declaration + type + "<!-- a -->" + list + "\n<!-- b -->\n"));
    EXPECT_FALSE(isRefused("\xEF\xBB\xBF" + declaration + list));
    EXPECT_FALSE(isRefused("<!DOCTYPE plist SYSTEM \"file:///no/such/file.dtd\">" + list));
}

TEST(PropertyList, ReadsBytesThatAreNoTerminatedText) {
    const QByteArray bytes = "<plist><true/></plist>garbage";
    EXPECT_NE(PropertyList::parse(QByteArrayView(bytes).first(22)).boolean(), nullptr);
}

TEST(PropertyList, ReadsTheEncodingsOfXml) {
    EXPECT_EQ(textOf(parse(utf16("<plist><string>纸</string></plist>", false))), "纸");
    EXPECT_EQ(textOf(parse(utf16("<plist><string>纸</string></plist>", true))), "纸");
    EXPECT_EQ(textOf(parse("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><string>\xE9</string></plist>")),
              "é");
}

TEST(PropertyList, SaysWhatIsWrong) {
    EXPECT_EQ(PropertyListError().message().toStdString(), "The content is not a valid property list.");
    const test::InChinese chinese;
    EXPECT_EQ(PropertyListError().message().toStdString(), "内容不是有效的属性列表。");
}

} // namespace orvex::platform
