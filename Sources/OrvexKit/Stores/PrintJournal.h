#pragma once

#include "Json/JsonReader.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <array>
#include <optional>

namespace orvex {

/// How the colours of a physical print looked.
enum class PrintObservationResult { normal, purple, other };

inline constexpr std::array allPrintObservationResults{PrintObservationResult::normal, PrintObservationResult::purple,
                                                       PrintObservationResult::other};

/// The text that stands for a result in stored records: Chinese in every language.
[[nodiscard]] QString rawValue(PrintObservationResult result);

/// The result of a stored text, absent for any other text.
[[nodiscard]] std::optional<PrintObservationResult> printObservationResult(const QString& rawValue);

/// The result in the current language.
[[nodiscard]] QString label(PrintObservationResult result);

/// What the operator saw of one physical print, and the conditions of the moment; its identity is the id. Plain value,
/// any thread.
struct PrintObservation {
    QUuid id = QUuid::createUuid();
    platform::Timestamp createdAt = platform::Timestamp::now();
    qint64 sequenceNumber = 1; ///< of the print in its run, from 1
    PrintObservationResult result = PrintObservationResult::normal;
    QString note = {};
    QString artwork = {};
    QString media = {};
    QString preset = {};
    QString colorMode = {}; ///< the colour workflow in words
    std::optional<QString> iccSHA256 = std::nullopt;

    /// Raises JsonError, for an unknown result, too.
    [[nodiscard]] static PrintObservation fromJson(const platform::JsonReader& reader);

    /// Raises JsonInvalidNumber for a moment that is not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const PrintObservation&) const = default;
};

/// The operator's record of physical prints in "print-observations.json", the newest first. It only grows.
///
/// Failures are OrvexError, FileSystemError and JsonError; each leaves the file as it was. A plain value. One thread at
/// a time.
class PrintJournalStore {
public:
    /// In the given folder or else in the application folder; it is made if it is missing.
    explicit PrintJournalStore(const std::optional<QUrl>& directory = std::nullopt);

    [[nodiscard]] const QUrl& directory() const { return directory_; }

    /// The observations in the file's order; none without a file. One that cannot be read makes the file unreadable.
    [[nodiscard]] QList<PrintObservation> load() const;

    /// Puts an observation before those in the file, and returns all. A file that cannot be read is not replaced.
    QList<PrintObservation> append(const PrintObservation& observation) const;

private:
    [[nodiscard]] QString filePath() const;

    QUrl directory_;
};

} // namespace orvex
