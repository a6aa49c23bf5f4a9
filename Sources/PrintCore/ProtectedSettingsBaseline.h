#pragma once

#include "Failure.h"
#include "ProtectedSettings.h"

#include <QByteArrayView>
#include <QString>
#include <QUrl>

#include <optional>

namespace orvex {

/// A baseline that holds what no capture makes.
class InvalidBaselineError : public Failure {
public:
    InvalidBaselineError();

    [[nodiscard]] static QString domain() { return QStringLiteral("Orvex.SettingsPreservation"); }

    [[nodiscard]] static int code() { return 1; }
};

/// A place for a baseline that is itself protected, so that nothing may be written there.
class ProtectedPlaceError : public Failure {
public:
    explicit ProtectedPlaceError(const QString& path);
};

/// The rules and the file form of a baseline, the snapshot that later ones are compared with. Any thread.
class ProtectedSettingsBaseline {
public:
    /// What a file may have at most: that is millions of protected paths.
    static constexpr qint64 largestBytes = 1 << 29;

    /// Raises InvalidBaselineError for a snapshot that cannot be compared with: of another version, with paths twice or
    /// outside of its roots, roots without an entry, or fingerprints that are none.
    static void validate(const ProtectedSettingsSnapshot& snapshot);

    /// The baseline in these bytes. Raises JsonError and InvalidBaselineError.
    [[nodiscard]] static ProtectedSettingsSnapshot decode(QByteArrayView json);

    /// The baseline in a file; absent if there is none. Raises FileSystemError, JsonError and InvalidBaselineError.
    [[nodiscard]] static std::optional<ProtectedSettingsSnapshot> load(const QString& path);

    /// Writes a baseline file, or replaces one. Raises what `load` raises for a file that cannot be understood, and
    /// leaves that as it is; and ProtectedPlaceError for an absolute path in one of the snapshot's own roots.
    static void save(const ProtectedSettingsSnapshot& snapshot, const QString& path);
};

/// The place of the program's own baseline. A plain value. One thread.
class ProtectedSettingsBaselineStore {
public:
    /// In the given folder or else in the application folder; it is made if it is missing. Raises FileSystemError.
    explicit ProtectedSettingsBaselineStore(const std::optional<QUrl>& directory = std::nullopt);

    [[nodiscard]] const QUrl& directory() const { return directory_; }

    [[nodiscard]] QUrl fileURL() const;

    /// As ProtectedSettingsBaseline has it.
    [[nodiscard]] std::optional<ProtectedSettingsSnapshot> load() const;
    void save(const ProtectedSettingsSnapshot& snapshot) const;

private:
    QUrl directory_;
};

} // namespace orvex
