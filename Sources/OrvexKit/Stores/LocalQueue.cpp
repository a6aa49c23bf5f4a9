#include "Stores/LocalQueue.h"

#include "Files/ApplicationFolder.h"
#include "Files/FileRemoval.h"
#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonRecords.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Stores/StoreFiles.h"

namespace orvex {

namespace {

std::optional<QList<RollSourceAudit>> findAudits(const platform::JsonReader& reader) {
    const auto audits = reader.find("rollSourceAudits");
    return audits ? std::optional(platform::readRecords<RollSourceAudit>(*audits)) : std::nullopt;
}

void refuseOwnFile(const QUrl& to, const QUrl& directory) {
    if (StoreFiles::isOwnFile(to, directory)) {
        throw OrvexError::invalid(spt("不能将 PDF 导出到应用自身的数据文件。请另选一个文件。",
                                      "A PDF cannot be exported over the program's own data. Choose another file."));
    }
}

/// Whether no such file is left.
bool removeIfThere(const QString& path) {
    try {
        platform::removeFile(path);
        return true;
    } catch (const platform::FileSystemError& error) {
        return error.isMissing();
    }
}

} // namespace

QString StagedJob::pdfFileName() const {
    return platform::uuidText(id) + QStringLiteral(".pdf");
}

StagedJob StagedJob::fromJson(const platform::JsonReader& reader) {
    return {.id = reader.at("id").uuid(),
            .title = reader.at("title").text(),
            .printerName = reader.at("printerName").text(),
            .createdAt = platform::Timestamp::fromJson(reader.at("createdAt")),
            .settings = DocumentSettings::fromJson(reader.at("settings")),
            .sourceProfile = reader.at("sourceProfile").text(),
            .inspectedICC = platform::findText(reader, "inspectedICC"),
            .colorWorkflow = platform::findRecord<ColorWorkflow>(reader, "colorWorkflow"),
            .outputICCSHA256 = platform::findText(reader, "outputICCSHA256"),
            .driverQuality = platform::findRecord<DriverOptionSelection>(reader, "driverQuality"),
            .presetName = platform::findText(reader, "presetName"),
            .canvasMediaName = platform::findText(reader, "canvasMediaName"),
            .rollLayout = platform::findRecord<RollLayout>(reader, "rollLayout"),
            .rollSourceAudits = findAudits(reader)};
}

QJsonObject StagedJob::toJson() const {
    QJsonObject json{
        {QStringLiteral("id"), platform::uuidText(id)},  {QStringLiteral("title"), title},
        {QStringLiteral("printerName"), printerName},    {QStringLiteral("createdAt"), createdAt.toJson("createdAt")},
        {QStringLiteral("settings"), settings.toJson()}, {QStringLiteral("sourceProfile"), sourceProfile}};
    platform::insertIfPresent(json, QStringLiteral("inspectedICC"), inspectedICC);
    platform::insertRecordIfPresent(json, QStringLiteral("colorWorkflow"), colorWorkflow);
    platform::insertIfPresent(json, QStringLiteral("outputICCSHA256"), outputICCSHA256);
    platform::insertRecordIfPresent(json, QStringLiteral("driverQuality"), driverQuality);
    platform::insertIfPresent(json, QStringLiteral("presetName"), presetName);
    platform::insertIfPresent(json, QStringLiteral("canvasMediaName"), canvasMediaName);
    platform::insertRecordIfPresent(json, QStringLiteral("rollLayout"), rollLayout);
    if (rollSourceAudits) {
        json.insert(QStringLiteral("rollSourceAudits"), platform::jsonArray(*rollSourceAudits));
    }
    return json;
}

LocalQueueStore::LocalQueueStore(const std::optional<QUrl>& directory) : directory_(platform::storeFolder(directory)) {}

QString LocalQueueStore::listPath() const {
    return StoreFiles::path(directory_, QStringLiteral("queue.json"));
}

QList<StagedJob> LocalQueueStore::load() const {
    return StoreFiles::readList<StagedJob>(listPath());
}

void LocalQueueStore::save(const QList<StagedJob>& jobs) const {
    StoreFiles::writeList(listPath(), jobs);
}

bool LocalQueueStore::remove(const StagedJob& job, const QList<StagedJob>& remaining) const {
    save(remaining);
    return removeIfThere(platform::localPath(pdfURL(job)));
}

QUrl LocalQueueStore::pdfURL(const StagedJob& job) const {
    return QUrl::fromLocalFile(StoreFiles::path(directory_, job.pdfFileName()));
}

QString LocalQueueStore::pdfNotDeleted() {
    return spt("作业记录已移除，但无法删除其 PDF。请检查应用数据文件夹的权限。",
               "The job record was removed, but its PDF could not be deleted. Check permissions for the app data "
               "folder.");
}

void LocalQueueStore::exportPDF(const StagedJob& job, const QUrl& to,
                                const std::function<void(double fraction)>& report, const std::stop_token& stop) const {
    refuseOwnFile(to, directory_);
    const auto pdf = platform::RandomAccessFile::open(platform::localPath(pdfURL(job)), stop);
    auto copy = platform::FileReplacer::open(platform::localPath(to));
    pdf.forEachPiece([&](QByteArrayView piece) {
        copy.write(piece);
        if (report) {
            report(static_cast<double>(copy.position()) / static_cast<double>(pdf.size()));
        }
    });
    copy.commit();
}

} // namespace orvex
