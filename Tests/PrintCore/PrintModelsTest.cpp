#include "PrintModels.h"

#include "Json/JsonError.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using test::compactJson;
using test::text;

DriverOption mediaSize() {
    return {.keyword = text("PageSize"),
            .label = text("Media \"纸\""),
            .choices = {text("A4"), text("Roll60")},
            .defaultChoice = text("A4")};
}

DriverOption option(const QByteArray& json) {
    return DriverOption::fromJson(platform::JsonReader::parse(json));
}

struct Refusal {
    const char* name;
    const char* json;
    const char* message;
};

void PrintTo(const Refusal& row, std::ostream* out) {
    *out << row.name;
}

class DriverOptionRefusal : public ::testing::TestWithParam<Refusal> {};

} // namespace

TEST(PrintModels, WriteADriverOption) {
    EXPECT_EQ(compactJson(mediaSize().toJson()),
              R"({"choices":["A4","Roll60"],"defaultChoice":"A4","keyword":"PageSize","label":"Media \"纸\""})");
}

TEST(PrintModels, LeaveAnAbsentDefaultOut) {
    DriverOption plain = mediaSize();
    plain.defaultChoice = std::nullopt;
    EXPECT_FALSE(plain.toJson().contains(text("defaultChoice")));
    EXPECT_EQ(option(compactJson(plain.toJson())), plain);
}

TEST(PrintModels, ReadADriverOptionThatTheyHaveWritten) {
    EXPECT_EQ(option(compactJson(mediaSize().toJson())), mediaSize());
    EXPECT_EQ(option(R"({"keyword":"A","label":"B","choices":[],"defaultChoice":null,"x":1})"),
              (DriverOption{.keyword = text("A"), .label = text("B"), .choices = {}, .defaultChoice = std::nullopt}));
}

TEST_P(DriverOptionRefusal, NamesTheKey) {
    try {
        (void)option(GetParam().json);
        ADD_FAILURE() << "it was read";
    } catch (const platform::JsonError& error) {
        EXPECT_EQ(error.message(), text(GetParam().message));
    }
}

INSTANTIATE_TEST_SUITE_P(
    PrintModels, DriverOptionRefusal,
    ::testing::Values(
        Refusal{"NoKeyword", R"({"label":"B","choices":[]})", "keyword: The required key is missing."},
        Refusal{"KeywordNumber", R"({"keyword":1,"label":"B","choices":[]})", "keyword: Expected text."},
        Refusal{"NoLabel", R"({"keyword":"A","choices":[]})", "label: The required key is missing."},
        Refusal{"LabelNull", R"({"keyword":"A","label":null,"choices":[]})", "label: Expected text."},
        Refusal{"NoChoices", R"({"keyword":"A","label":"B"})", "choices: The required key is missing."},
        Refusal{"ChoicesText", R"({"keyword":"A","label":"B","choices":"x"})", "choices: Expected an array."},
        Refusal{"ChoicesOfNumbers", R"({"keyword":"A","label":"B","choices":["x",1]})", "choices[1]: Expected text."},
        Refusal{"DefaultNumber", R"({"keyword":"A","label":"B","choices":["x"],"defaultChoice":1})",
                "defaultChoice: Expected text."}),
    test::RowName());

TEST(PrintModels, WriteASnapshotWithAllItHolds) {
    const PrinterSnapshot snapshot{.name = text("W9400"),
                                   .summary = text("is idle."),
                                   .deviceURI = text("usb:/x"),
                                   .options = {mediaSize()},
                                   .jobs = {{.id = text("W9400-7"), .rawLine = text("W9400-7 root")}},
                                   .capturedAt = {816936000.25},
                                   .diagnostic = text("one\ntwo")};
    const QByteArray expected = R"({"capturedAt":816936000.25,"deviceURI":"usb:/x","diagnostic":"one\ntwo",)"
                                R"("jobs":[{"id":"W9400-7","rawLine":"W9400-7 root"}],"name":"W9400","options":[)" +
                                compactJson(mediaSize().toJson()) + R"(],"summary":"is idle."})";
    EXPECT_EQ(compactJson(snapshot.toJson()), expected);
}

TEST(PrintModels, DoNotWriteAMomentThatIsNotFinite) {
    PrinterSnapshot snapshot;
    snapshot.capturedAt = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_THROW((void)snapshot.toJson(), platform::JsonInvalidNumber);
}

} // namespace orvex
