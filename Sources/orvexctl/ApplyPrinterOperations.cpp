#include "ApplyOperations.h"
#include "CUPSParsers.h"
#include "DriverPaperGeometry.h"
#include "Json/JsonRecords.h"
#include "PrinterAnswers.h"
#include "PrinterTelemetryCommand.h"
#include "PrinterTelemetryParser.h"
#include "ProtectedSettingsBaseline.h"
#include "ReadinessPolicies.h"
#include "SettingsPreservationService.h"

namespace orvex {

namespace {

using platform::JsonReader;

ApplyAnswer answerOf(const QJsonValue& result) {
    return {.layout = std::nullopt, .result = result};
}

QString textOf(const ApplyRequest& request) {
    return request.args.at("text").text();
}

// What the tools print

ApplyAnswer printerStatuses(const ApplyRequest& request) {
    QJsonArray statuses;
    for (const PrinterStatus& status : CUPSParsers::printerStatuses(textOf(request))) {
        statuses.append(
            QJsonObject{{QStringLiteral("name"), status.name}, {QStringLiteral("summary"), status.summary}});
    }
    return answerOf(statuses);
}

ApplyAnswer deviceURIs(const ApplyRequest& request) {
    QJsonObject uris;
    const QMap<QString, QString> found = CUPSParsers::deviceURIs(textOf(request));
    for (auto each = found.begin(); each != found.end(); ++each) {
        uris.insert(each.key(), each.value());
    }
    return answerOf(uris);
}

ApplyAnswer driverOptions(const ApplyRequest& request) {
    return answerOf(platform::jsonArray(CUPSParsers::driverOptions(textOf(request))));
}

ApplyAnswer jobs(const ApplyRequest& request) {
    return answerOf(platform::jsonArray(CUPSParsers::jobs(textOf(request), request.args.at("queueName").text())));
}

ApplyAnswer paperDimensions(const ApplyRequest& request) {
    QJsonObject dimensions;
    const QMap<QString, Size> papers = DriverPaperGeometry::paperDimensions(textOf(request));
    for (auto each = papers.begin(); each != papers.end(); ++each) {
        dimensions.insert(each.key(), QJsonArray{each->width, each->height});
    }
    return answerOf(dimensions);
}

// A queue's state

ApplyAnswer isReadOnlyTestScript(const ApplyRequest& request) {
    return answerOf(PrinterTelemetryCommand::isReadOnlyTestScript(textOf(request)));
}

ApplyAnswer isValidQueueName(const ApplyRequest& request) {
    return answerOf(PrinterTelemetryCommand::isValidQueueName(textOf(request)));
}

ApplyAnswer parseTelemetry(const ApplyRequest& request) {
    const QByteArray plist = request.args.at("plist").text().toUtf8();
    const auto snapshot = PrinterTelemetryParser::parse(plist, request.args.at("queueName").text(), {});
    QJsonObject json = snapshot.toJson();
    json.remove(QStringLiteral("sampledAt")); // no answer was awaited here
    return answerOf(json);
}

ApplyAnswer readiness(const ApplyRequest& request) {
    const auto json = request.args.find("telemetry");
    const auto telemetry = json ? std::optional(PrinterTelemetrySnapshot::fromJson(*json)) : std::nullopt;
    return answerOf(
        readinessJson(NativePrintReadinessPolicy::evaluate(telemetry, request.args.at("queueName").text())));
}

std::optional<PrinterSnapshot> printerWithOptions(const std::optional<JsonReader>& json) {
    if (!json) {
        return std::nullopt;
    }
    PrinterSnapshot snapshot;
    snapshot.options = platform::readRecords<DriverOption>(*json);
    return snapshot;
}

ApplyAnswer cutting(const ApplyRequest& request) {
    const auto assessment = ManualCuttingPolicy::evaluate(printerWithOptions(request.args.find("options")));
    return answerOf(
        QJsonObject{{QStringLiteral("isAllowed"), assessment.isAllowed},
                    {QStringLiteral("blockingReason"), assessment.blockingReason},
                    {QStringLiteral("candidateOptions"), platform::jsonArray(assessment.candidateOptions)}});
}

// Settings

ApplyAnswer compareSettings(const ApplyRequest& request) {
    const auto baseline = ProtectedSettingsSnapshot::fromJson(request.args.at("baseline"));
    const auto current = ProtectedSettingsSnapshot::fromJson(request.args.at("current"));
    return answerOf(SettingsPreservationService::compare(baseline, current).toJson());
}

ApplyAnswer validateBaseline(const ApplyRequest& request) {
    try {
        ProtectedSettingsBaseline::validate(ProtectedSettingsSnapshot::fromJson(request.args.at("snapshot")));
        return answerOf(QJsonValue());
    } catch (const InvalidBaselineError& error) {
        return answerOf(error.message());
    }
}

} // namespace

const ApplyOperations& printerOperations() {
    static const ApplyOperations operations{
        {QStringLiteral("printerStatuses"), printerStatuses},
        {QStringLiteral("deviceURIs"), deviceURIs},
        {QStringLiteral("driverOptions"), driverOptions},
        {QStringLiteral("jobs"), jobs},
        {QStringLiteral("paperDimensions"), paperDimensions},
        {QStringLiteral("isReadOnlyTestScript"), isReadOnlyTestScript},
        {QStringLiteral("isValidQueueName"), isValidQueueName},
        {QStringLiteral("parseTelemetry"), parseTelemetry},
        {QStringLiteral("readiness"), readiness},
        {QStringLiteral("cutting"), cutting},
        {QStringLiteral("compareSettings"), compareSettings},
        {QStringLiteral("validateBaseline"), validateBaseline},
    };
    return operations;
}

} // namespace orvex
