#pragma once

#include "ProtectedSettings.h"
#include "SettingsPreservationService.h"
#include "TemporaryFolder.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QJsonDocument>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

namespace orvex {

inline void PrintTo(const ProtectedSettingsFile& file, std::ostream* out) {
    *out << QJsonDocument(file.toJson()).toJson(QJsonDocument::Compact).toStdString();
}

namespace test {

using Status = ProtectedSettingsFileStatus;

/// The SHA-256 of bytes, by another hand than the program's.
inline QString sha256(const QByteArray& bytes) {
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

inline ProtectedSettingsFile regularFile(const QString& path, const QByteArray& content) {
    return {.path = path, .status = Status::regularFile, .sha256 = sha256(content)};
}

inline ProtectedSettingsFile directory(const QString& path) {
    return {.path = path, .status = Status::directory};
}

inline ProtectedSettingsFile missing(const QString& path) {
    return {.path = path, .status = Status::missing};
}

inline ProtectedSettingsFile unreadable(const QString& path, const QString& diagnostic) {
    return {.path = path, .status = Status::unreadable, .sha256 = std::nullopt, .diagnostic = diagnostic};
}

inline ProtectedSettingsFile symbolicLink(const QString& path, const QByteArray& target) {
    return {.path = path,
            .status = Status::symbolicLink,
            .sha256 = sha256(target),
            .diagnostic = QStringLiteral("The link target was recorded without following it. This path cannot be "
                                         "confirmed unchanged.")};
}

inline ProtectedSettingsFile unsupported(const QString& path) {
    return {.path = path,
            .status = Status::unsupported,
            .sha256 = std::nullopt,
            .diagnostic = QStringLiteral("This is not a regular file or directory. Its contents were not read.")};
}

/// What a capture of these paths finds.
inline ProtectedSettingsSnapshot capture(const QStringList& paths) {
    QList<QUrl> locations;
    for (const QString& path : paths) {
        locations.append(QUrl::fromLocalFile(path));
    }
    return SettingsPreservationService::capture(locations);
}

/// The only entry of a path; the test fails without it.
inline ProtectedSettingsFile entryOf(const ProtectedSettingsSnapshot& snapshot, const QString& path) {
    QList<ProtectedSettingsFile> found;
    std::ranges::copy_if(snapshot.files, std::back_inserter(found),
                         [&](const ProtectedSettingsFile& file) { return file.path == path; });
    EXPECT_EQ(found.size(), 1) << path.toStdString();
    return found.value(0, missing(QStringLiteral("no entry")));
}

/// A folder of settings, to be looked at and left alone.
class ProtectedFolder {
public:
    ProtectedFolder() = default;
    ProtectedFolder(const ProtectedFolder&) = delete;
    ProtectedFolder& operator=(const ProtectedFolder&) = delete;

    /// Qt leaves what has a name that is no text.
    ~ProtectedFolder() {
        std::error_code failed;
        for (const auto& item : std::filesystem::directory_iterator(path().toStdString(), failed)) {
            std::filesystem::remove_all(item, failed);
            EXPECT_FALSE(failed) << item.path();
        }
    }

    [[nodiscard]] QString path() const { return folder_.path(); }

    [[nodiscard]] QString path(const char* name) const { return path() + u'/' + QString::fromUtf8(name); }

    /// The path of a name that need be no text.
    [[nodiscard]] QByteArray native(const QByteArray& name) const { return path().toUtf8() + '/' + name; }

    QString write(const char* name, const QByteArray& content) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        return folder_.write(QString::fromUtf8(name), content);
    }

    QString makeFolder(const char* name) const {
        EXPECT_TRUE(QDir().mkpath(path(name)));
        return path(name);
    }

    QString link(const char* target, const char* name) const {
        EXPECT_EQ(::symlink(target, native(name).constData()), 0);
        return path(name);
    }

    /// A file of this size that takes no room on the disk.
    QString makeSparse(const char* name, qint64 size) const {
        write(name, {});
        EXPECT_EQ(::truncate(native(name).constData(), size), 0);
        return path(name);
    }

    void setMode(const char* name, mode_t mode) const { EXPECT_EQ(::chmod(native(name).constData(), mode), 0); }

private:
    TemporaryFolder folder_;
};

} // namespace test

} // namespace orvex
