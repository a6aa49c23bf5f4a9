#include "Stores/PrintJournal.h"

#include "Files/ApplicationFolder.h"
#include "Json/JsonRecords.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Stores/StoreFiles.h"

namespace orvex {

namespace {

PrintObservationResult readResult(const platform::JsonReader& reader) {
    const auto result = printObservationResult(reader.text());
    if (!result) {
        reader.fail(spt("未知的观察结果。", "Unknown observation result."));
    }
    return *result;
}

} // namespace

QString rawValue(PrintObservationResult result) {
    switch (result) {
    case PrintObservationResult::normal:
        return QStringLiteral("颜色正常");
    case PrintObservationResult::purple:
        return QStringLiteral("局部偏紫");
    case PrintObservationResult::other:
        return QStringLiteral("其他异常");
    }
    return {};
}

std::optional<PrintObservationResult> printObservationResult(const QString& text) {
    for (const PrintObservationResult each : allPrintObservationResults) {
        if (text == rawValue(each)) {
            return each;
        }
    }
    return std::nullopt;
}

QString label(PrintObservationResult result) {
    switch (result) {
    case PrintObservationResult::normal:
        return spt("颜色正常", "Color normal");
    case PrintObservationResult::purple:
        return spt("局部偏紫", "Local purple shift");
    case PrintObservationResult::other:
        return spt("其他异常", "Other issue");
    }
    return {};
}

PrintObservation PrintObservation::fromJson(const platform::JsonReader& reader) {
    return {.id = reader.at("id").uuid(),
            .createdAt = platform::Timestamp::fromJson(reader.at("createdAt")),
            .sequenceNumber = reader.at("sequenceNumber").integer(),
            .result = readResult(reader.at("result")),
            .note = reader.at("note").text(),
            .artwork = reader.at("artwork").text(),
            .media = reader.at("media").text(),
            .preset = reader.at("preset").text(),
            .colorMode = reader.at("colorMode").text(),
            .iccSHA256 = platform::findText(reader, "iccSHA256")};
}

QJsonObject PrintObservation::toJson() const {
    QJsonObject json{{QStringLiteral("id"), platform::uuidText(id)},
                     {QStringLiteral("createdAt"), createdAt.toJson("createdAt")},
                     {QStringLiteral("sequenceNumber"), sequenceNumber},
                     {QStringLiteral("result"), rawValue(result)},
                     {QStringLiteral("note"), note},
                     {QStringLiteral("artwork"), artwork},
                     {QStringLiteral("media"), media},
                     {QStringLiteral("preset"), preset},
                     {QStringLiteral("colorMode"), colorMode}};
    platform::insertIfPresent(json, QStringLiteral("iccSHA256"), iccSHA256);
    return json;
}

PrintJournalStore::PrintJournalStore(const std::optional<QUrl>& directory)
    : directory_(platform::storeFolder(directory)) {}

QString PrintJournalStore::filePath() const {
    return StoreFiles::path(directory_, QStringLiteral("print-observations.json"));
}

QList<PrintObservation> PrintJournalStore::load() const {
    return StoreFiles::readList<PrintObservation>(filePath());
}

QList<PrintObservation> PrintJournalStore::append(const PrintObservation& observation) const {
    if (observation.sequenceNumber < 1) {
        throw OrvexError::invalid(spt("请填写实物打印序号。", "Enter the physical print sequence number."));
    }
    QList<PrintObservation> observations = load();
    observations.prepend(observation);
    StoreFiles::writeList(filePath(), observations);
    return observations;
}

} // namespace orvex
