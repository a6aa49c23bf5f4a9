#include "Json/JsonWriter.h"
#include "PrinterTelemetryCommand.h"
#include "PrinterTelemetryError.h"
#include "PrinterTelemetryParser.h"
#include "ReadinessPolicies.h"

#include <cstdint>
#include <cstdlib>

// Answers of ipptool of any bytes: each is refused, or read, judged and written so that it reads the same.

using namespace orvex;

namespace {

constexpr qint64 mostMarkers = 1024;
constexpr platform::Timestamp sampledAt{.secondsSince2001 = 800'000'000.125};

void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// The queue that the answer seems to be of, so that not every one is refused as that of another.
QString queueNameIn(QByteArrayView answer) {
    constexpr QByteArrayView key = "<key>printer-name</key>\n<string>";
    const qsizetype begin = answer.indexOf(key);
    const QByteArrayView rest = begin < 0 ? QByteArrayView() : answer.sliced(begin + key.size());
    const QString name = QString::fromUtf8(rest.first(qMax(rest.indexOf('<'), 0)));
    return PrinterTelemetryCommand::isValidQueueName(name) ? name : QStringLiteral("W9400");
}

void exerciseReadiness(const PrinterTelemetrySnapshot& telemetry) {
    const auto own = NativePrintReadinessPolicy::evaluate(telemetry, telemetry.queueName);
    mustHold(own.isAllowed() == !own.blockingReason.has_value());
    mustHold(!own.isAllowed() || (telemetry.isAcceptingJobs == true && telemetry.queueState));
    const auto other = NativePrintReadinessPolicy::evaluate(telemetry, telemetry.queueName + u'x');
    mustHold(other.state == NativePrintReadinessState::unknown && other.blockingReason);
}

void exercise(QByteArrayView answer, const QString& queueName) {
    const auto telemetry = PrinterTelemetryParser::parse(answer, queueName, sampledAt);
    mustHold(telemetry.queueName == queueName && telemetry.sampledAt == sampledAt);
    mustHold(telemetry.markers.size() <= mostMarkers);
    for (qsizetype index = 0; index < telemetry.markers.size(); ++index) {
        mustHold(telemetry.markers[index].index == index);
    }
    exerciseReadiness(telemetry);
    const QByteArray written = platform::writeJson(telemetry.toJson(), platform::JsonForm::pretty);
    mustHold(PrinterTelemetrySnapshot::fromJson(platform::JsonReader::parse(written)) == telemetry);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView answer(data, static_cast<qsizetype>(size));
    try {
        exercise(answer, queueNameIn(answer));
    } catch (const PrinterTelemetryError&) {
        // A refusal is an answer; any other error is none.
    }
    return 0;
}
