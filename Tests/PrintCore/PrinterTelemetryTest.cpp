#include "PrinterTelemetry.h"

#include "InChinese.h"
#include "Json/JsonError.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using platform::JsonError;
using platform::JsonReader;
using test::compactJson;
using test::text;

PrinterMarkerTelemetry fullMarker() {
    return {.index = 1,
            .name = text("Black Ink"),
            .type = text("ink-cartridge"),
            .color = text("#000000"),
            .level = -1,
            .lowLevel = 10,
            .highLevel = 100};
}

PrinterTelemetrySnapshot fullSnapshot() {
    return {.queueName = text("卷纸"),
            .sampledAt = {816936000.25},
            .queueState = 4,
            .queueMessage = text("Printing \"page\" 1\n37%"),
            .queueReasons = {text("media-low-warning"), text("none")},
            .queuedJobCount = 2,
            .isAcceptingJobs = false,
            .markerChangeTime = 1795243216,
            .markers = {{.index = 0}, fullMarker()}};
}

constexpr auto fullMarkerJson = R"({"color":"#000000","highLevel":100,"index":1,"level":-1,"lowLevel":10,)"
                                R"("name":"Black Ink","type":"ink-cartridge"})";

PrinterMarkerTelemetry marker(const QByteArray& json) {
    return PrinterMarkerTelemetry::fromJson(JsonReader::parse(json));
}

PrinterTelemetrySnapshot snapshot(const QByteArray& json) {
    return PrinterTelemetrySnapshot::fromJson(JsonReader::parse(json));
}

/// A snapshot's JSON with one more or another member; an empty value removes it.
QByteArray snapshotJson(const char* key, const QByteArray& value) {
    QMap<QByteArray, QByteArray> members{{"queueName", "\"A\""},
                                         {"sampledAt", "1.5"},
                                         {"queueMessage", "\"\""},
                                         {"queueReasons", "[]"},
                                         {"markers", "[]"}};
    members.insert(key, value);
    QByteArrayList list;
    for (const auto& [name, member] : members.asKeyValueRange()) {
        if (!member.isEmpty()) {
            list.append('"' + name + "\":" + member);
        }
    }
    return '{' + list.join(',') + '}';
}

struct Refusal {
    const char* name;
    const char* key;
    const char* value; ///< in JSON, empty for none
    const char* message;
};

void PrintTo(const Refusal& row, std::ostream* out) {
    *out << row.name;
}

class PrinterTelemetryRefusal : public ::testing::TestWithParam<Refusal> {};

} // namespace

// JSON

TEST(PrinterTelemetry, WritesItsFieldsUnderTheirNames) {
    EXPECT_EQ(compactJson(fullMarker().toJson()), fullMarkerJson);
    EXPECT_EQ(compactJson(fullSnapshot().toJson()),
              QByteArray(R"({"isAcceptingJobs":false,"markerChangeTime":1795243216,"markers":[{"index":0},)") +
                  fullMarkerJson +
                  R"(],"queueMessage":"Printing \"page\" 1\n37%","queueName":"卷纸",)"
                  R"("queueReasons":["media-low-warning","none"],"queueState":4,"queuedJobCount":2,)"
                  R"("sampledAt":816936000.25})");
}

TEST(PrinterTelemetry, LeavesAbsentFieldsOut) {
    EXPECT_EQ(compactJson(PrinterMarkerTelemetry{.index = 3}.toJson()), R"({"index":3})");
    EXPECT_EQ(compactJson(PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = {1.5}}.toJson()),
              R"({"markers":[],"queueMessage":"","queueName":"A","queueReasons":[],"sampledAt":1.5})");
}

TEST(PrinterTelemetry, ReadsWhatItHasWritten) {
    for (const PrinterTelemetrySnapshot& written :
         {fullSnapshot(), PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = {1.5}}}) {
        SCOPED_TRACE(written.queueName.toStdString());
        EXPECT_EQ(snapshot(QJsonDocument(written.toJson()).toJson()), written);
    }
    EXPECT_EQ(marker(fullMarkerJson), fullMarker());
    EXPECT_EQ(marker(R"({"index":3})"), PrinterMarkerTelemetry{.index = 3});
}

TEST(PrinterTelemetry, KeepsIntegersOf64BitsExactly) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    const PrinterTelemetrySnapshot written{.queueName = text("A"),
                                           .queueState = most,
                                           .queuedJobCount = least,
                                           .markerChangeTime = most - 1,
                                           .markers = {{.index = most, .level = least}}};
    EXPECT_EQ(snapshot(QJsonDocument(written.toJson()).toJson()), written);
}

TEST(PrinterTelemetry, ReadsNullAsAbsent) {
    EXPECT_EQ(snapshot(R"({"queueName":"A","sampledAt":1.5,"queueState":null,"queueMessage":"","queueReasons":[],)"
                       R"("queuedJobCount":null,"isAcceptingJobs":null,"markerChangeTime":null,)"
                       R"("markers":[{"index":0,"name":null,"level":null}]})"),
              (PrinterTelemetrySnapshot{.queueName = text("A"), .sampledAt = {1.5}, .markers = {{.index = 0}}}));
}

TEST(PrinterTelemetry, IgnoresUnknownKeys) {
    EXPECT_EQ(marker(R"({"index":3,"x":1})"), PrinterMarkerTelemetry{.index = 3});
    EXPECT_EQ(snapshot(snapshotJson("sampledDate", "7")).sampledAt, platform::Timestamp{1.5});
}

TEST(PrinterTelemetry, ReadsAMissingMomentAsTheStartOfTheTimeScale) {
    EXPECT_EQ(snapshot(snapshotJson("sampledAt", "")).sampledAt, platform::Timestamp{0.0});
}

TEST_P(PrinterTelemetryRefusal, NamesTheKey) {
    try {
        (void)snapshot(snapshotJson(GetParam().key, GetParam().value));
        ADD_FAILURE() << "it was read";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.message(), text(GetParam().message));
    }
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetry, PrinterTelemetryRefusal,
    ::testing::Values(
        Refusal{"NoQueueName", "queueName", "", "queueName: The required key is missing."},
        Refusal{"QueueNameNumber", "queueName", "1", "queueName: Expected text."},
        Refusal{"QueueNameNull", "queueName", "null", "queueName: Expected text."},
        Refusal{"SampledAtText", "sampledAt", "\"1\"", "sampledAt: Expected a number."},
        Refusal{"NoQueueMessage", "queueMessage", "", "queueMessage: The required key is missing."},
        Refusal{"QueueMessageList", "queueMessage", "[]", "queueMessage: Expected text."},
        Refusal{"NoQueueReasons", "queueReasons", "", "queueReasons: The required key is missing."},
        Refusal{"QueueReasonsText", "queueReasons", "\"none\"", "queueReasons: Expected an array."},
        Refusal{"QueueReasonsOfNumbers", "queueReasons", "[\"a\",1]", "queueReasons[1]: Expected text."},
        Refusal{"QueueStateText", "queueState", "\"3\"", "queueState: Expected an integer."},
        Refusal{"QueueStateFraction", "queueState", "3.5", "queueState: Expected an integer."},
        Refusal{"QueueStateBoolean", "queueState", "true", "queueState: Expected an integer."},
        Refusal{"QueuedJobCountText", "queuedJobCount", "\"1\"", "queuedJobCount: Expected an integer."},
        Refusal{"IsAcceptingJobsNumber", "isAcceptingJobs", "1", "isAcceptingJobs: Expected true or false."},
        Refusal{"MarkerChangeTimeList", "markerChangeTime", "[0]", "markerChangeTime: Expected an integer."},
        Refusal{"NoMarkers", "markers", "", "markers: The required key is missing."},
        Refusal{"MarkersObject", "markers", "{}", "markers: Expected an array."},
        Refusal{"MarkersOfNumbers", "markers", "[1]", "markers[0]: Expected an object."},
        Refusal{"MarkerWithoutIndex", "markers", "[{\"index\":0},{}]",
                "markers[1].index: The required key is missing."},
        Refusal{"MarkerIndexFraction", "markers", "[{\"index\":0.5}]", "markers[0].index: Expected an integer."},
        Refusal{"MarkerNameNumber", "markers", "[{\"index\":0,\"name\":1}]", "markers[0].name: Expected text."},
        Refusal{"MarkerTypeNumber", "markers", "[{\"index\":0,\"type\":1}]", "markers[0].type: Expected text."},
        Refusal{"MarkerColorNumber", "markers", "[{\"index\":0,\"color\":1}]", "markers[0].color: Expected text."},
        Refusal{"MarkerLevelText", "markers", "[{\"index\":0,\"level\":\"1\"}]",
                "markers[0].level: Expected an integer."},
        Refusal{"MarkerLowLevelFraction", "markers", "[{\"index\":0,\"lowLevel\":1.5}]",
                "markers[0].lowLevel: Expected an integer."},
        Refusal{"MarkerHighLevelBoolean", "markers", "[{\"index\":0,\"highLevel\":true}]",
                "markers[0].highLevel: Expected an integer."}),
    test::RowName());

TEST(PrinterTelemetry, DoesNotWriteAMomentThatIsNotFinite) {
    const PrinterTelemetrySnapshot endless{.queueName = text("A"),
                                           .sampledAt = {std::numeric_limits<double>::infinity()}};
    try {
        (void)endless.toJson();
        ADD_FAILURE() << "it was written";
    } catch (const platform::JsonInvalidNumber& error) {
        EXPECT_EQ(error.keyPath(), text("sampledAt"));
    }
}

// What it tells

TEST(PrinterTelemetry, HasASecondNameForItsMoment) {
    EXPECT_EQ(fullSnapshot().sampledDate(), fullSnapshot().sampledAt);
}

TEST(PrinterTelemetry, TellsThatItIsNotTheDeviceThatSpeaks) {
    EXPECT_EQ(fullSnapshot().sourceDescription(), text("Local CUPS cache; live device status is not guaranteed"));
    const test::InChinese chinese;
    EXPECT_EQ(fullSnapshot().sourceDescription(), text("本机 CUPS 缓存；不保证反映设备的实时状态"));
}

TEST(PrinterTelemetry, KnowsNothingOfMaintenanceCartridgeAndPrinthead) {
    EXPECT_EQ(fullSnapshot().maintenanceCartridgeStatus(), std::nullopt);
    EXPECT_EQ(fullSnapshot().printheadStatus(), std::nullopt);
}

} // namespace orvex
