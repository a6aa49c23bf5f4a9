#pragma once

#include "Json/JsonReader.h"
#include "Layout/Document.h"
#include "Layout/RollLayout.h"
#include "Output/ColorManagement.h"
#include "Output/RollPDFRenderer.h"
#include "Stores/PrintPresets.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <functional>
#include <optional>
#include <stop_token>

namespace orvex {

/// A prepared roll PDF that waits to be printed, with all that is needed to print it later or to prove what it was made
/// from; its identity is the id. What is absent was not kept by the version that made the record. Plain value, any
/// thread.
struct StagedJob {
    QUuid id;
    QString title;
    QString printerName; ///< the queue that was selected when the job was staged
    platform::Timestamp createdAt = platform::Timestamp::now();
    DocumentSettings settings = {};
    QString sourceProfile; ///< the description of the source colour profile
    std::optional<QString> inspectedICC = std::nullopt;
    std::optional<ColorWorkflow> colorWorkflow = std::nullopt;
    std::optional<QString> outputICCSHA256 = std::nullopt; ///< 64 lower-case hexadecimal digits
    std::optional<DriverOptionSelection> driverQuality = std::nullopt;
    std::optional<QString> presetName = std::nullopt;
    std::optional<QString> canvasMediaName = std::nullopt;
    std::optional<RollLayout> rollLayout = std::nullopt;
    std::optional<QList<RollSourceAudit>> rollSourceAudits = std::nullopt;

    /// The id in upper case, followed by ".pdf".
    [[nodiscard]] QString pdfFileName() const;

    /// Raises JsonError.
    [[nodiscard]] static StagedJob fromJson(const platform::JsonReader& reader);

    /// Raises JsonError for a layout with a bad width and for numbers that are not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const StagedJob&) const = default;
};

/// The list of staged jobs in "queue.json", and beside it one PDF for each. The store holds nothing in memory: whoever
/// calls passes the whole list in and takes the whole list out.
///
/// Failures are FileSystemError, JsonError and OrvexError; each leaves the list's file as it was. A plain value. One
/// thread at a time.
class LocalQueueStore {
public:
    /// In the given folder or else in the application folder; it is made if it is missing.
    explicit LocalQueueStore(const std::optional<QUrl>& directory = std::nullopt);

    [[nodiscard]] const QUrl& directory() const { return directory_; }

    /// The jobs in the file's order; none without a file. One record that cannot be read makes the file unreadable.
    [[nodiscard]] QList<StagedJob> load() const;

    /// Replaces the list.
    void save(const QList<StagedJob>& jobs) const;

    /// Saves the list without the job, `remaining`, and then deletes the job's PDF: a record never points at a PDF that
    /// is gone. False if the PDF could not be deleted; that is no failure.
    [[nodiscard]] bool remove(const StagedJob& job, const QList<StagedJob>& remaining) const;

    /// What to say when `remove` could not delete the PDF, in the current language.
    [[nodiscard]] static QString pdfNotDeleted();

    /// The place of the job's PDF.
    [[nodiscard]] QUrl pdfURL(const StagedJob& job) const;

    /// Copies the job's PDF to a file, which keeps its old content until the copy is complete. `report` is told of the
    /// part that is done, 0 to 1, for each piece of it. Raises OrvexError for a file of the stores, and Interrupted
    /// once a stop is requested.
    void exportPDF(const StagedJob& job, const QUrl& to, const std::function<void(double fraction)>& report = {},
                   const std::stop_token& stop = {}) const;

private:
    [[nodiscard]] QString listPath() const;

    QUrl directory_;
};

} // namespace orvex
