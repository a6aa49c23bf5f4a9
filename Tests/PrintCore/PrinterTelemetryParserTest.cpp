#include "PrinterTelemetryParser.h"

#include "PrintFixtures.h"
#include "PrinterTelemetryError.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using test::text;
using test::toolBytes;
using Case = PrinterTelemetryError::Case;

constexpr qint64 mostBytes = 1048576;
const platform::Timestamp sampledAt{816936000.25};

PrinterTelemetrySnapshot parsed(const QByteArray& answer, const char* queueName = "A") {
    return PrinterTelemetryParser::parse(answer, text(queueName), sampledAt);
}

/// Which error a reading fails with; absent if it does not fail.
std::optional<Case> failureOf(const QByteArray& answer, const QString& queueName = text("A")) {
    try {
        (void)PrinterTelemetryParser::parse(answer, queueName, sampledAt);
    } catch (const PrinterTelemetryError& error) {
        return error.errorCase();
    }
    return std::nullopt;
}

// Answers made here

QByteArray member(const char* key, const QByteArray& value) {
    return QByteArray("<key>") + key + "</key>" + value;
}

QByteArray string(const char* value) {
    return QByteArray("<string>") + value + "</string>";
}

QByteArray integer(const char* value) {
    return QByteArray("<integer>") + value + "</integer>";
}

QByteArray array(const QByteArrayList& values) {
    return "<array>" + values.join() + "</array>";
}

QByteArray dictionary(const QByteArrayList& members) {
    return "<dict>" + members.join() + "</dict>";
}

/// A small answer of the tool, piece by piece; a piece may be replaced or removed.
struct Answer {
    QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD "
                      "PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";
    QByteArray rootSuccessful = member("Successful", "<true />");
    QByteArray testSuccessful = member("Successful", "<true />");
    QByteArray operation = member("Operation", string("Get-Printer-Attributes"));
    QByteArray statusCode = member("StatusCode", string("successful-ok"));
    QByteArray groups = dictionary({member("printer-state", integer("3"))}); ///< one after the other
    QByteArray responseAttributes{};                                         ///< in place of the groups, if not empty
    QByteArray tests{};                                                      ///< in place of the one test, if not empty
    QByteArray root{};                                                       ///< in place of the root, if not empty

    [[nodiscard]] QByteArray test() const {
        const QByteArray attributes =
            responseAttributes.isEmpty() ? member("ResponseAttributes", array({groups})) : responseAttributes;
        return dictionary({testSuccessful, operation, statusCode, attributes});
    }

    [[nodiscard]] QByteArray xml() const {
        const QByteArray whole =
            dictionary({tests.isEmpty() ? member("Tests", array({test()})) : tests, rootSuccessful});
        return head + "<plist version=\"1.0\">" + (root.isEmpty() ? whole : root) + "</plist>\n";
    }
};

/// An answer with these attributes in one group.
QByteArray answer(const QByteArrayList& attributes) {
    return Answer{.groups = dictionary(attributes)}.xml();
}

PrinterTelemetrySnapshot snapshot(const QByteArrayList& attributes) {
    return parsed(answer(attributes));
}

PrinterMarkerTelemetry named(qint64 index, const char* name) {
    return {.index = index, .name = text(name)};
}

/// The names of such a list of markers, an absent one as "-".
QStringList namesOf(const QList<PrinterMarkerTelemetry>& markers) {
    QStringList names;
    for (const PrinterMarkerTelemetry& marker : markers) {
        names.append(marker.name.value_or(text("-")));
    }
    return names;
}

// Tables

struct RealAnswer {
    const char* name;
    const char* file;
    PrinterTelemetrySnapshot expected;
};

void PrintTo(const RealAnswer& row, std::ostream* out) {
    *out << row.name;
}

class RealTelemetry : public ::testing::TestWithParam<RealAnswer> {};

QList<PrinterMarkerTelemetry> realMarkers() {
    return {{.index = 0,
             .name = text("Black Ink"),
             .type = text("ink-cartridge"),
             .color = text("#000000"),
             .level = 42,
             .lowLevel = 10,
             .highLevel = 100},
            {.index = 1,
             .name = text("Cyan Ink"),
             .type = text("ink-cartridge"),
             .color = text("#00FFFF"),
             .level = -1,
             .lowLevel = 10,
             .highLevel = 100},
            {.index = 2,
             .name = text("Maintenance"),
             .type = text("waste-ink"),
             .color = text("none"),
             .level = 7,
             .lowLevel = 0,
             .highLevel = 90}};
}

PrinterTelemetrySnapshot real(const char* queueName, qint64 state, const char* message, const QStringList& reasons,
                              qint64 jobs, bool isAccepting = true) {
    return {.queueName = text(queueName),
            .sampledAt = sampledAt,
            .queueState = state,
            .queueMessage = text(message),
            .queueReasons = reasons,
            .queuedJobCount = jobs,
            .isAcceptingJobs = isAccepting,
            .markerChangeTime = 0,
            .markers = {}};
}

PrinterTelemetrySnapshot withMarkers(PrinterTelemetrySnapshot snapshot, qint64 changeTime) {
    snapshot.markerChangeTime = changeTime;
    snapshot.markers = realMarkers();
    return snapshot;
}

struct RefusedFile {
    const char* name;
    const char* file;
    const char* queueName;
};

void PrintTo(const RefusedFile& row, std::ostream* out) {
    *out << row.name;
}

class RefusedTelemetry : public ::testing::TestWithParam<RefusedFile> {};

struct Damage {
    const char* name;
    QByteArray Answer::*piece;
    QByteArray replacement;
};

void PrintTo(const Damage& row, std::ostream* out) {
    *out << row.name;
}

class DamagedAnswer : public ::testing::TestWithParam<Damage> {};

class ToleratedAnswer : public ::testing::TestWithParam<Damage> {};

struct Value {
    const char* name;
    QByteArray xml;
    std::optional<qint64> expected;
};

void PrintTo(const Value& row, std::ostream* out) {
    *out << row.name;
}

class IntegerValue : public ::testing::TestWithParam<Value> {};

struct Broken {
    const char* name;
    QByteArray bytes;
};

void PrintTo(const Broken& row, std::ostream* out) {
    *out << row.name;
}

class BrokenAnswer : public ::testing::TestWithParam<Broken> {};

constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

} // namespace

// Real answers

TEST_P(RealTelemetry, IsReadExactly) {
    const RealAnswer& row = GetParam();
    EXPECT_EQ(PrinterTelemetryParser::parse(toolBytes(row.file), row.expected.queueName, sampledAt), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryParser, RealTelemetry,
    ::testing::Values(
        RealAnswer{"Idle", "telemetry_W9400_idle.plist", real("W9400", 3, "", {text("none")}, 0)},
        RealAnswer{"Paused", "telemetry_W9400_paused.plist",
                   real("W9400", 5, "Out of canvas; load roll", {text("paused")}, 2)},
        RealAnswer{"Rejecting", "telemetry_W9400_rejecting.plist",
                   real("W9400", 3, "Rejecting for maintenance", {text("none")}, 0, false)},
        RealAnswer{"HeldJob", "telemetry_W9400F_held_job.plist", real("W9400F", 3, "", {text("none")}, 1)},
        RealAnswer{"Driverless", "telemetry_WEVE2_driverless_idle.plist", real("WEVE2", 3, "", {text("none")}, 0)},
        RealAnswer{"MissingFilter", "telemetry_WMISS_missing_filter.plist",
                   real("WMISS", 3,
                        "File \"/usr/lib/cups/filter/rastertonosuch\" not available: No such file or directory",
                        {text("cups-missing-filter-warning")}, 0)},
        RealAnswer{"ProcessingWithMarkers", "telemetry_WSLOW_processing_markers.plist",
                   withMarkers(real("WSLOW", 4, "Printing page 1, 37% complete",
                                    {text("media-low-warning"), text("marker-supply-low-warning")}, 1),
                               1795243216)},
        RealAnswer{"IdleWithMarkers", "telemetry_WSLOW_idle_markers.plist",
                   withMarkers(real("WSLOW", 3, "", {text("media-low-warning"), text("marker-supply-low-warning")}, 0),
                               1795243216)},
        RealAnswer{"StoppedWithMarkers", "telemetry_WSLOW_stopped.plist",
                   withMarkers(real("WSLOW", 5, "",
                                    {text("media-low-warning"), text("marker-supply-low-warning"), text("paused")}, 1),
                               1795243223)}),
    test::RowName());

TEST_P(RefusedTelemetry, IsNoValidResponse) {
    EXPECT_EQ(failureOf(toolBytes(GetParam().file), text(GetParam().queueName)), Case::invalidResponse);
}

INSTANTIATE_TEST_SUITE_P(PrinterTelemetryParser, RefusedTelemetry,
                         ::testing::Values(RefusedFile{"ExpectationFailed", "telemetry_WEVE_idle.plist", "WEVE"},
                                           RefusedFile{"RawQueue", "telemetry_WRAW_idle.plist", "WRAW"},
                                           RefusedFile{"MissingQueue", "telemetry_NOSUCH_idle.plist", "NOSUCH"},
                                           RefusedFile{"SchedulerDown", "down_telemetry_W9400.plist", "W9400"},
                                           RefusedFile{"AnotherQueue", "telemetry_W9400_idle.plist", "W9400F"},
                                           RefusedFile{"TextOfAnotherTool", "lpoptions_W9400.txt", "W9400"}),
                         test::RowName());

// What is asked for

TEST(PrinterTelemetryParser, RefusesAnInvalidQueueNameBeforeAnythingElse) {
    for (const QString& name : {QString(), text("a b"), text(".."), QString(128, u'a')}) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(failureOf(answer({}), name), Case::invalidQueueName);
        EXPECT_EQ(failureOf(QByteArray(), name), Case::invalidQueueName);
        EXPECT_EQ(failureOf(QByteArray(mostBytes + 1, ' '), name), Case::invalidQueueName);
    }
}

TEST(PrinterTelemetryParser, KeepsQueueNameAndMoment) {
    EXPECT_EQ(parsed(answer({}), "卷纸_1"),
              (PrinterTelemetrySnapshot{.queueName = text("卷纸_1"), .sampledAt = sampledAt}));
}

TEST(PrinterTelemetryParser, HasALimitOfBytes) {
    const QByteArray small = answer({});
    const QByteArray most = small + QByteArray(mostBytes - small.size(), '\n');
    EXPECT_EQ(failureOf(most), std::nullopt);
    EXPECT_EQ(failureOf(most + '\n'), Case::outputTooLarge);
    EXPECT_EQ(failureOf(QByteArray(mostBytes, 'x')), Case::invalidResponse);
    EXPECT_EQ(failureOf(QByteArray(mostBytes + 1, 'x')), Case::outputTooLarge);
}

// The structure

TEST_P(DamagedAnswer, IsNoValidResponse) {
    Answer damaged;
    ASSERT_EQ(failureOf(damaged.xml()), std::nullopt);
    damaged.*GetParam().piece = GetParam().replacement;
    EXPECT_EQ(failureOf(damaged.xml()), Case::invalidResponse);
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryParser, DamagedAnswer,
    ::testing::Values(
        Damage{"RootArray", &Answer::root, array({Answer().test()})},
        Damage{"RootString", &Answer::root, string("Successful")}, Damage{"RootTrue", &Answer::root, "<true/>"},
        Damage{"RootEmpty", &Answer::root, "<dict/>"},

        Damage{"RootSuccessfulMissing", &Answer::rootSuccessful, ""},
        Damage{"RootSuccessfulFalse", &Answer::rootSuccessful, member("Successful", "<false />")},
        Damage{"RootSuccessfulOne", &Answer::rootSuccessful, member("Successful", integer("1"))},
        Damage{"RootSuccessfulText", &Answer::rootSuccessful, member("Successful", string("true"))},
        Damage{"RootSuccessfulArray", &Answer::rootSuccessful, member("Successful", "<array><true/></array>")},
        Damage{"RootSuccessfulInLowerCase", &Answer::rootSuccessful, member("successful", "<true/>")},

        Damage{"TestsMissing", &Answer::tests, member("tests", array({Answer().test()}))},
        Damage{"TestsDictionary", &Answer::tests, member("Tests", Answer().test())},
        Damage{"TestsText", &Answer::tests, member("Tests", string("x"))},
        Damage{"TestsEmpty", &Answer::tests, member("Tests", "<array/>")},
        Damage{"TestsTwo", &Answer::tests, member("Tests", array({Answer().test(), Answer().test()}))},
        Damage{"TestsOneAndMore", &Answer::tests, member("Tests", array({Answer().test(), "<true/>"}))},
        Damage{"TestsOfTexts", &Answer::tests, member("Tests", array({string("x")}))},
        Damage{"TestsOfArrays", &Answer::tests, member("Tests", array({array({Answer().test()})}))},
        Damage{"TestsOfAnEmptyDictionary", &Answer::tests, member("Tests", array({"<dict/>"}))},

        Damage{"TestSuccessfulMissing", &Answer::testSuccessful, ""},
        Damage{"TestSuccessfulFalse", &Answer::testSuccessful, member("Successful", "<false/>")},
        Damage{"TestSuccessfulOne", &Answer::testSuccessful, member("Successful", integer("1"))},
        Damage{"TestSuccessfulText", &Answer::testSuccessful, member("Successful", string("true"))},

        Damage{"OperationMissing", &Answer::operation, ""},
        Damage{"OperationAnother", &Answer::operation, member("Operation", string("Print-Job"))},
        Damage{"OperationInAnotherCase", &Answer::operation, member("Operation", string("get-printer-attributes"))},
        Damage{"OperationLonger", &Answer::operation, member("Operation", string("Get-Printer-Attributes "))},
        Damage{"OperationArray", &Answer::operation, member("Operation", array({string("Get-Printer-Attributes")}))},
        Damage{"OperationNumber", &Answer::operation, member("Operation", integer("11"))},

        Damage{"StatusCodeMissing", &Answer::statusCode, ""},
        Damage{"StatusCodeAnother", &Answer::statusCode, member("StatusCode", string("client-error-not-found"))},
        Damage{"StatusCodeIgnoring", &Answer::statusCode,
               member("StatusCode", string("successful-ok-ignored-or-substituted-attributes"))},
        Damage{"StatusCodeInUpperCase", &Answer::statusCode, member("StatusCode", string("SUCCESSFUL-OK"))},
        Damage{"StatusCodeZero", &Answer::statusCode, member("StatusCode", integer("0"))},

        Damage{"AttributesMissing", &Answer::responseAttributes, member("Attributes", "<array><dict/></array>")},
        Damage{"AttributesEmpty", &Answer::responseAttributes, member("ResponseAttributes", "<array/>")},
        Damage{"AttributesDictionary", &Answer::responseAttributes,
               member("ResponseAttributes", dictionary({member("printer-state", integer("3"))}))},
        Damage{"AttributesText", &Answer::responseAttributes, member("ResponseAttributes", string("x"))},
        Damage{"GroupText", &Answer::groups, string("x")}, Damage{"GroupArray", &Answer::groups, "<array/>"},
        Damage{"SecondGroupText", &Answer::groups, "<dict/>" + string("x")},

        Damage{"AttributeInTwoGroups", &Answer::groups,
               dictionary({member("printer-state", integer("3"))}) +
                   dictionary({member("printer-state", integer("5"))})},
        Damage{"AttributeInTwoGroupsAlike", &Answer::groups,
               dictionary({member("printer-state", integer("3"))}) +
                   dictionary({member("printer-state", integer("3"))})},
        Damage{"UnusedAttributeInTwoGroups", &Answer::groups,
               dictionary({member("x", string("1"))}) + dictionary({member("x", integer("2"))})},
        Damage{"AttributeInTheFirstAndThirdGroup", &Answer::groups,
               dictionary({member("x", string("1"))}) + "<dict/>" + dictionary({member("x", string("1"))})},

        Damage{"NameOfAnotherQueue", &Answer::groups, dictionary({member("printer-name", string("B"))})},
        Damage{"NameInAnotherCase", &Answer::groups, dictionary({member("printer-name", string("a"))})},
        Damage{"NameEmpty", &Answer::groups, dictionary({member("printer-name", string(""))})},
        Damage{"NameInTheLastGroup", &Answer::groups, "<dict/>" + dictionary({member("printer-name", string("A "))})}),
    test::RowName());

TEST_P(ToleratedAnswer, IsRead) {
    Answer tolerated;
    tolerated.*GetParam().piece = GetParam().replacement;
    EXPECT_EQ(failureOf(tolerated.xml()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryParser, ToleratedAnswer,
    ::testing::Values(Damage{"NoHead", &Answer::head, ""},
                      Damage{"MoreInTheRoot", &Answer::rootSuccessful,
                             member("Successful", "<true/>") + member("ErrorMessage", string("x"))},
                      Damage{"MoreInTheTest", &Answer::operation,
                             member("Operation", string("Get-Printer-Attributes")) +
                                 member("Errors", array({string("x")}))},
                      Damage{"EmptyGroup", &Answer::groups, "<dict/>"},
                      Damage{"ManyGroups", &Answer::groups, "<dict/><dict/><dict/>"},
                      Damage{"AttributesInTwoGroups", &Answer::groups,
                             dictionary({member("printer-state", integer("3"))}) +
                                 dictionary({member("Printer-State", integer("3"))})},
                      Damage{"NameOfTheQueue", &Answer::groups, dictionary({member("printer-name", string("A"))})},
                      Damage{"NameOutOfBand", &Answer::groups,
                             dictionary({member("printer-name", string("&lt;&lt;no-value&gt;&gt;"))})},
                      Damage{"NameNumber", &Answer::groups, dictionary({member("printer-name", integer("1"))})},
                      Damage{"NameArray", &Answer::groups, dictionary({member("printer-name", array({string("B")}))})},
                      Damage{"UnusedAttributesOfAnyKind", &Answer::groups,
                             dictionary({member("a", "<date>2026-11-21T06:40:16Z</date>"),
                                         member("b", "<data>AAEC</data>"), member("c", "<real>1.5</real>"),
                                         member("d", "<dict><key>x</key><array/></dict>"), member("", "<false/>")})}),
    test::RowName());

TEST(PrinterTelemetryParser, MergesTheGroups) {
    const QByteArray groups = dictionary({member("printer-state", integer("4"))}) +
                              dictionary({member("queued-job-count", integer("2"))}) +
                              dictionary({member("marker-names", string("Ink"))});
    EXPECT_EQ(parsed(Answer{.groups = groups}.xml()), (PrinterTelemetrySnapshot{.queueName = text("A"),
                                                                                .sampledAt = sampledAt,
                                                                                .queueState = 4,
                                                                                .queuedJobCount = 2,
                                                                                .markers = {named(0, "Ink")}}));
}

// Single values

TEST_P(IntegerValue, CountsIfItIsAWholeNumberOf64Bits) {
    for (const char* key : {"printer-state", "queued-job-count", "marker-change-time", "marker-levels"}) {
        SCOPED_TRACE(key);
        const PrinterTelemetrySnapshot read = snapshot({member(key, GetParam().xml)});
        const QByteArray name(key);
        EXPECT_EQ(read.queueState, name == "printer-state" ? GetParam().expected : std::nullopt);
        EXPECT_EQ(read.queuedJobCount, name == "queued-job-count" ? GetParam().expected : std::nullopt);
        EXPECT_EQ(read.markerChangeTime, name == "marker-change-time" ? GetParam().expected : std::nullopt);
    }
    const auto markers = snapshot({member("marker-levels", array({GetParam().xml, integer("5")}))}).markers;
    EXPECT_EQ(markers,
              (QList<PrinterMarkerTelemetry>{{.index = 0, .level = GetParam().expected}, {.index = 1, .level = 5}}));
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryParser, IntegerValue,
    ::testing::Values(
        Value{"Three", integer("3"), 3}, Value{"Zero", integer("0"), 0}, Value{"MinusOne", integer("-1"), -1},
        Value{"Largest", integer("9223372036854775807"), largest},
        Value{"Smallest", integer("-9223372036854775808"), smallest},
        Value{"BeyondTheLargest", integer("9223372036854775808"), std::nullopt},
        Value{"LargestUnsigned", integer("18446744073709551615"), std::nullopt},
        Value{"BelowTheSmallest", integer("-9223372036854777856"), std::nullopt},
        Value{"FarBeyond", integer("99999999999999999999999999"), std::nullopt},
        Value{"WholeReal", "<real>3.0</real>", 3}, Value{"NegativeWholeReal", "<real>-7.0</real>", -7},
        Value{"NegativeZeroReal", "<real>-0.0</real>", 0}, Value{"RealWithExponent", "<real>1e3</real>", 1000},
        Value{"HalfReal", "<real>3.5</real>", std::nullopt}, Value{"SmallReal", "<real>1e-300</real>", std::nullopt},
        Value{"LargeReal", "<real>1e19</real>", std::nullopt},
        Value{"RealTwoToThe63rd", "<real>9223372036854775808</real>", std::nullopt},
        Value{"RealBelowTwoToThe63rd", "<real>9223372036854774784</real>", 9223372036854774784},
        Value{"RealMinusTwoToThe63rd", "<real>-9223372036854775808</real>", smallest},
        Value{"RealBelowMinusTwoToThe63rd", "<real>-9223372036854777856</real>", std::nullopt},
        Value{"NoNumber", "<real>nan</real>", std::nullopt}, Value{"Infinity", "<real>inf</real>", std::nullopt},
        Value{"NegativeInfinity", "<real>-inf</real>", std::nullopt}, Value{"True", "<true/>", std::nullopt},
        Value{"False", "<false/>", std::nullopt}, Value{"Text", string("3"), std::nullopt},
        Value{"OutOfBand", string("&lt;&lt;unknown&gt;&gt;"), std::nullopt},
        Value{"Dictionary", "<dict/>", std::nullopt}, Value{"Data", "<data>Aw==</data>", std::nullopt},
        Value{"Date", "<date>2026-11-21T06:40:16Z</date>", std::nullopt}),
    test::RowName());

TEST(PrinterTelemetryParser, TakesNoArrayForASingleNumber) {
    const PrinterTelemetrySnapshot read =
        snapshot({member("printer-state", array({integer("3")})), member("queued-job-count", array({integer("1")})),
                  member("marker-change-time", "<array/>")});
    EXPECT_EQ(read, (PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = sampledAt}));
}

TEST(PrinterTelemetryParser, TakesOnlyABooleanForWhetherJobsAreAccepted) {
    const auto accepting = [](const QByteArray& value) {
        return snapshot({member("printer-is-accepting-jobs", value)}).isAcceptingJobs;
    };
    EXPECT_EQ(accepting("<true />"), true);
    EXPECT_EQ(accepting("<false />"), false);
    EXPECT_EQ(accepting("<true></true>"), true);
    EXPECT_EQ(accepting(integer("1")), std::nullopt);
    EXPECT_EQ(accepting(integer("0")), std::nullopt);
    EXPECT_EQ(accepting("<real>1.0</real>"), std::nullopt);
    EXPECT_EQ(accepting(string("true")), std::nullopt);
    EXPECT_EQ(accepting(array({"<true/>"})), std::nullopt);
}

TEST(PrinterTelemetryParser, TakesAMessageThatIsText) {
    const auto message = [](const QByteArray& value) {
        return snapshot({member("printer-state-message", value)}).queueMessage;
    };
    EXPECT_EQ(message(string("Out of canvas\n\t&amp; ink &#x7eb8;")), text("Out of canvas\n\t& ink 纸"));
    EXPECT_EQ(message(string(" x ")), text(" x "));
    EXPECT_EQ(message(string("")), QString());
    EXPECT_EQ(message("<string/>"), QString());
    EXPECT_EQ(message(string("&lt;one")), text("<one"));
    EXPECT_EQ(message(string(" &lt;&lt;two")), text(" <<two"));
    EXPECT_EQ(message(string("x&lt;&lt;")), text("x<<"));
    EXPECT_EQ(message(string("&lt;&lt;no-value&gt;&gt;")), QString());
    EXPECT_EQ(message(string("&lt;&lt;")), QString());
    EXPECT_EQ(message(string("&lt;&lt;anything")), QString());
    EXPECT_EQ(message(integer("3")), QString());
    EXPECT_EQ(message("<true/>"), QString());
    EXPECT_EQ(message(array({string("x")})), QString());
}

TEST(PrinterTelemetryParser, KeepsTheReasonsThatAreUsableTexts) {
    const auto reasons = [](const QByteArray& value) {
        return snapshot({member("printer-state-reasons", value)}).queueReasons;
    };
    EXPECT_EQ(reasons(string("none")), QStringList{text("none")});
    EXPECT_EQ(reasons(array({string("none")})), QStringList{text("none")});
    EXPECT_EQ(reasons(array({string("b"), string("a"), string("b"), string("")})),
              (QStringList{text("b"), text("a"), text("b"), QString()}));
    EXPECT_EQ(reasons(array({string("a"), integer("1"), "<true/>", string("&lt;&lt;unknown&gt;&gt;"), "<dict/>",
                             array({string("c")}), string("b")})),
              (QStringList{text("a"), text("b")}));
    EXPECT_EQ(reasons(string("&lt;&lt;no-value&gt;&gt;")), QStringList());
    EXPECT_EQ(reasons(integer("1")), QStringList());
    EXPECT_EQ(reasons("<dict><key>a</key><string>b</string></dict>"), QStringList());
    EXPECT_EQ(reasons("<array/>"), QStringList());
}

TEST(PrinterTelemetryParser, LeavesAbsentWhatTheAnswerDoesNotHold) {
    EXPECT_EQ(snapshot({}), (PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = sampledAt}));
}

TEST(PrinterTelemetryParser, KnowsAttributesByTheirExactNames) {
    EXPECT_EQ(snapshot({member("Printer-State", integer("3")), member("printer-state ", integer("4")),
                        member("printer-state-reason", string("x")), member("marker-name", string("x")),
                        member("PRINTER-IS-ACCEPTING-JOBS", "<true/>")}),
              (PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = sampledAt}));
}

// Markers

TEST(PrinterTelemetryParser, PairsTheMarkerArraysByTheirIndex) {
    const auto markers = snapshot({member("marker-high-levels", array({integer("100"), integer("90")})),
                                   member("marker-low-levels", array({integer("10"), integer("20")})),
                                   member("marker-levels", array({integer("42"), integer("-1")})),
                                   member("marker-colors", array({string("#000000"), string("none")})),
                                   member("marker-types", array({string("ink"), string("waste-ink")})),
                                   member("marker-names", array({string("Black"), string("Waste")}))})
                             .markers;
    EXPECT_EQ(markers, (QList<PrinterMarkerTelemetry>{{.index = 0,
                                                       .name = text("Black"),
                                                       .type = text("ink"),
                                                       .color = text("#000000"),
                                                       .level = 42,
                                                       .lowLevel = 10,
                                                       .highLevel = 100},
                                                      {.index = 1,
                                                       .name = text("Waste"),
                                                       .type = text("waste-ink"),
                                                       .color = text("none"),
                                                       .level = -1,
                                                       .lowLevel = 20,
                                                       .highLevel = 90}}));
}

TEST(PrinterTelemetryParser, LeavesTheLastMarkerWithoutALevelThatIsMissing) {
    const auto markers = snapshot({member("marker-names", array({string("a"), string("b"), string("c")})),
                                   member("marker-levels", array({integer("1"), integer("2")}))})
                             .markers;
    EXPECT_EQ(markers, (QList<PrinterMarkerTelemetry>{{.index = 0, .name = text("a"), .level = 1},
                                                      {.index = 1, .name = text("b"), .level = 2},
                                                      {.index = 2, .name = text("c")}}));
}

struct MarkerArray {
    const char* name;
    const char* attribute;
    QByteArray value;
    PrinterMarkerTelemetry expected; ///< the marker of that value
};

void PrintTo(const MarkerArray& row, std::ostream* out) {
    *out << row.name;
}

class SingleMarkerArray : public ::testing::TestWithParam<MarkerArray> {};

TEST_P(SingleMarkerArray, MakesMarkersAlone) {
    EXPECT_EQ(snapshot({member(GetParam().attribute, array({GetParam().value}))}).markers,
              QList<PrinterMarkerTelemetry>{GetParam().expected});
}

TEST_P(SingleMarkerArray, MayBeASingleValue) {
    EXPECT_EQ(snapshot({member(GetParam().attribute, GetParam().value)}).markers,
              QList<PrinterMarkerTelemetry>{GetParam().expected});
}

TEST_P(SingleMarkerArray, HasALimitOfItsOwn) {
    const auto answerOf = [](qsizetype count) {
        return answer({member(GetParam().attribute, array(QByteArrayList(count, GetParam().value)))});
    };
    const QList<PrinterMarkerTelemetry> markers = parsed(answerOf(1024)).markers;
    ASSERT_EQ(markers.size(), 1024);
    PrinterMarkerTelemetry last = GetParam().expected;
    last.index = 1023;
    EXPECT_EQ(markers.back(), last);
    EXPECT_EQ(failureOf(answerOf(1025)), Case::outputTooLarge);
}

INSTANTIATE_TEST_SUITE_P(PrinterTelemetryParser, SingleMarkerArray,
                         ::testing::Values(MarkerArray{"Names", "marker-names", string("x"), {.name = text("x")}},
                                           MarkerArray{"Types", "marker-types", string("x"), {.type = text("x")}},
                                           MarkerArray{"Colors", "marker-colors", string("x"), {.color = text("x")}},
                                           MarkerArray{"Levels", "marker-levels", integer("7"), {.level = 7}},
                                           MarkerArray{"LowLevels", "marker-low-levels", integer("7"), {.lowLevel = 7}},
                                           MarkerArray{
                                               "HighLevels", "marker-high-levels", integer("7"), {.highLevel = 7}}),
                         test::RowName());

TEST(PrinterTelemetryParser, CountsTheLongestMarkerArray) {
    const auto answerOf = [](qsizetype names, qsizetype levels) {
        return answer({member("marker-names", array(QByteArrayList(names, string("x")))),
                       member("marker-high-levels", array(QByteArrayList(levels, integer("1"))))});
    };
    EXPECT_EQ(parsed(answerOf(1, 1024)).markers.size(), 1024);
    EXPECT_EQ(parsed(answerOf(1024, 1)).markers.size(), 1024);
    EXPECT_EQ(parsed(answerOf(1000, 1000)).markers.size(), 1000);
    EXPECT_EQ(failureOf(answerOf(1, 1025)), Case::outputTooLarge);
    EXPECT_EQ(failureOf(answerOf(1025, 1)), Case::outputTooLarge);
}

TEST(PrinterTelemetryParser, KeepsAMarkerWhoseValueItRejects) {
    const auto markers =
        snapshot({member("marker-names", array({string("a"), string("&lt;&lt;no-value&gt;&gt;"), integer("1"),
                                                string("d"), "<true/>", string("f")})),
                  member("marker-levels", array({string("42"), integer("1"), "<true/>", "<real>2.5</real>",
                                                 "<real>4.0</real>", integer("-2")}))})
            .markers;
    EXPECT_EQ(markers, (QList<PrinterMarkerTelemetry>{{.index = 0, .name = text("a")},
                                                      {.index = 1, .level = 1},
                                                      {.index = 2},
                                                      {.index = 3, .name = text("d")},
                                                      {.index = 4, .level = 4},
                                                      {.index = 5, .name = text("f"), .level = -2}}));
}

TEST(PrinterTelemetryParser, TakesASingleValueOutOfBandForAMarkerWithoutIt) {
    EXPECT_EQ(snapshot({member("marker-names", string("&lt;&lt;no-value&gt;&gt;"))}).markers,
              QList<PrinterMarkerTelemetry>{{.index = 0}});
}

TEST(PrinterTelemetryParser, HasNoMarkersOfEmptyArrays) {
    EXPECT_EQ(snapshot({member("marker-names", "<array/>"), member("marker-levels", "<array></array>")}).markers,
              QList<PrinterMarkerTelemetry>());
}

TEST(PrinterTelemetryParser, KeepsTheOrderOfMarkers) {
    EXPECT_EQ(namesOf(snapshot({member("marker-names", array({string("z"), string("a"), string("z")}))}).markers),
              (QStringList{text("z"), text("a"), text("z")}));
}

// Property lists that are none

TEST_P(BrokenAnswer, IsNoValidResponse) {
    EXPECT_EQ(failureOf(GetParam().bytes), Case::invalidResponse);
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryParser, BrokenAnswer,
    ::testing::Values(
        Broken{"Empty", ""}, Broken{"WhiteSpace", " \n"}, Broken{"NUL", QByteArray(1, '\0')},
        Broken{"Words", "lpstat: trouble"}, Broken{"Json", "{\"Successful\":true}"},
        Broken{"NULBehind", Answer().xml() + '\0'}, Broken{"WordsBehind", Answer().xml() + "x"},
        Broken{"Twice", Answer().xml() + Answer{.head = {}}.xml()}, Broken{"WordsBefore", "x" + Answer().xml()},
        Broken{"NoUTF8", answer({member("printer-state-message", "<string>\xC3\x28</string>")})},
        Broken{"NULInside", answer({member("printer-state-message", QByteArray("<string>\0</string>", 18))})},
        Broken{"ElementThatIsUnknown", answer({member("x", "<set/>")})},
        Broken{"NumberThatIsNone", answer({member("x", integer("three"))})},
        Broken{"KeyWithoutValue", answer({"<key>x</key>"})},
        Broken{"DeclaredEntity", Answer{.head = "<!DOCTYPE plist [<!ENTITY state \"3\">]>",
                                        .groups = dictionary({member("printer-state", integer("&state;"))})}
                                     .xml()},
        Broken{"DeclaredEntityThatIsNotUsed", Answer{.head = "<!DOCTYPE plist [<!ENTITY a \"b\">]>"}.xml()},
        Broken{"FileAsEntity", Answer{.head = "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>",
                                      .groups = dictionary({member("printer-state-message", string("&a;"))})}
                                   .xml()},
        Broken{"EntitiesOfEntities",
               Answer{.head = "<!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
                              "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">]>",
                      .groups = dictionary({member("printer-state-message", string("&c;&c;&c;"))})}
                   .xml()},
        Broken{"ParameterEntity",
               Answer{.head = "<!DOCTYPE plist [<!ENTITY % a SYSTEM \"file:///etc/passwd\">%a;]>"}.xml()},
        Broken{"UnknownEntityWithoutADocumentType",
               Answer{.head = {}, .groups = dictionary({member("printer-state-message", string("&a;"))})}.xml()},
        Broken{"OpenNesting", "<plist>" + QByteArray("<array>").repeated(100000)},
        Broken{"DeepNesting",
               "<plist>" + QByteArray("<array>").repeated(60000) + QByteArray("</array>").repeated(60000) + "</plist>"},
        Broken{"DeepNestingInAnAttribute",
               answer({member("x", QByteArray("<array>").repeated(60000) + QByteArray("</array>").repeated(60000))})},
        Broken{"Binary", QByteArray::fromHex(
                             "62706c6973743030d2010203045a5375636365737366756c55546573747309a105d406070801090a0e035"
                             "94f7065726174696f6e5f1012526573706f6e7365417474726962757465735a537461747573436f64655f"
                             "10164765742d5072696e7465722d41747472696275746573a10bd10c0d5d7072696e7465722d7374617465"
                             "10035d7375636365737366756c2d6f6b080d181e1f212a3449546d6f7280820000000000000101000000"
                             "000000000f00000000000000000000000000000090")}),
    test::RowName());

TEST(PrinterTelemetryParser, TakesCharacterDataAndCommentsInTexts) {
    const PrinterTelemetrySnapshot read =
        snapshot({"<!-- a -->", "<key>printer<!-- b -->-state-<![CDATA[message]]></key>",
                  "<string>Out<![CDATA[ <of> &amp; ]]>can<!-- c -->vas</string>", "<?tool d?>"});
    EXPECT_EQ(read.queueMessage, text("Out <of> &amp; canvas"));
}

TEST(PrinterTelemetryParser, SeesAValueOutOfBandInCharacterDataToo) {
    EXPECT_EQ(snapshot({member("printer-state-message", "<string><![CDATA[<<no-value>>]]></string>")}).queueMessage,
              QString());
}

TEST(PrinterTelemetryParser, ReadsUTF16WithItsMark) {
    const QString xml = QString::fromUtf8(
        Answer{.head = {}, .groups = dictionary({member("printer-state-message", string("纸"))})}.xml());
    QByteArray bytes("\xFF\xFE");
    for (const QChar unit : xml) {
        bytes.append(static_cast<char>(unit.cell())).append(static_cast<char>(unit.row()));
    }
    EXPECT_EQ(parsed(bytes).queueMessage, text("纸"));
}

TEST(PrinterTelemetryParser, GivesNothingOfATruncatedAnswer) {
    const QByteArray whole = toolBytes("telemetry_WSLOW_processing_markers.plist");
    const qsizetype end = whole.lastIndexOf('>') + 1;
    ASSERT_EQ(failureOf(whole.first(end), text("WSLOW")), std::nullopt);
    for (qsizetype size = end - 1; size >= 0; size -= 7) {
        SCOPED_TRACE(size);
        EXPECT_EQ(failureOf(whole.first(size), text("WSLOW")), Case::invalidResponse);
    }
}

TEST(PrinterTelemetryParser, EndsWellOrAsInvalidWhicheverByteIsLost) {
    const QByteArray whole =
        Answer{.groups = dictionary({member("printer-state", integer("3")), member("printer-name", string("A")),
                                     member("marker-names", array({string("x")}))})}
            .xml();
    for (qsizetype index = 0; index < whole.size(); ++index) {
        SCOPED_TRACE(index);
        const auto failure = failureOf(QByteArray(whole).remove(index, 1));
        EXPECT_TRUE(!failure || *failure == Case::invalidResponse);
    }
}

} // namespace orvex
