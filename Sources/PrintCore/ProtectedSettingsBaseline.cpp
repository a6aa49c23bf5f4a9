#include "ProtectedSettingsBaseline.h"

#include "Files/ApplicationFolder.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonWriter.h"
#include "OrvexLanguage.h"
#include "Sha256.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <set>

namespace orvex {

namespace {

using Status = ProtectedSettingsFileStatus;

InvalidBaselineError invalidBaseline() {
    return {};
}

void require(bool condition) {
    if (!condition) {
        throw invalidBaseline();
    }
}

QStringList pathsOf(const QList<ProtectedSettingsFile>& files) {
    QStringList paths;
    for (const ProtectedSettingsFile& file : files) {
        paths.append(file.path);
    }
    return paths;
}

bool areDistinct(const QStringList& texts) {
    return QSet<QString>(texts.begin(), texts.end()).size() == texts.size();
}

bool isAbsolute(const QString& path) {
    return path.startsWith(u'/');
}

/// The roots of a snapshot. A path is compared with those of the lengths that there are, not with each of them, and not
/// at each of its slashes: a file may have very many of either.
class Roots {
public:
    explicit Roots(const QStringList& paths) : paths_(paths.begin(), paths.end()) {
        for (const QString& path : paths) {
            sizes_.insert(path.size());
        }
    }

    [[nodiscard]] const QSet<QString>& paths() const { return paths_; }

    /// Whether a path is one of the roots, or below one.
    [[nodiscard]] bool contain(const QString& path) const {
        if (paths_.contains(path) || paths_.contains(QStringLiteral("/"))) {
            return true;
        }
        return std::ranges::any_of(sizes_, [&](qsizetype size) {
            return size < path.size() && path[size] == u'/' && paths_.contains(path.first(size));
        });
    }

private:
    QSet<QString> paths_;
    std::set<qsizetype> sizes_;
};

/// A baseline file is the one thing that is written, and never in a place that it speaks of.
void requireOutsideOfRoots(const QString& path, const ProtectedSettingsSnapshot& snapshot) {
    QStringList roots;
    for (const QString& root : snapshot.rootPaths) {
        roots.append(platform::resolvingSymlinks(root));
    }
    if (Roots(roots).contain(platform::resolvingSymlinks(path))) {
        throw ProtectedPlaceError(path);
    }
}

bool hasFingerprintIfNeeded(const ProtectedSettingsFile& file) {
    const bool isNeeded = file.status == Status::regularFile || file.status == Status::symbolicLink;
    return !isNeeded || (file.sha256 && platform::isSha256Hex(*file.sha256));
}

} // namespace

InvalidBaselineError::InvalidBaselineError()
    : Failure(spt("设置基线无效，或其版本不受支持。原文件已保留。",
                  "The settings protection baseline is invalid or its version is unsupported. The original file was "
                  "kept.")) {}

ProtectedPlaceError::ProtectedPlaceError(const QString& path)
    : Failure(spt("设置基线不能存放在受保护的路径“%1”中。请另选位置。",
                  "The settings baseline cannot be kept in the protected path \"%1\". Choose another place.")
                  .arg(path)) {}

void ProtectedSettingsBaseline::validate(const ProtectedSettingsSnapshot& snapshot) {
    const QStringList paths = pathsOf(snapshot.files);
    const QSet<QString> pathSet(paths.begin(), paths.end());
    const Roots roots(snapshot.rootPaths);
    require(snapshot.schemaVersion == ProtectedSettingsSnapshot::currentSchemaVersion);
    require(std::isfinite(snapshot.timestamp.secondsSince2001));
    require(areDistinct(paths) && areDistinct(snapshot.rootPaths));
    require(std::ranges::all_of(snapshot.rootPaths, isAbsolute));
    require(std::ranges::all_of(paths, [&](const QString& path) { return isAbsolute(path) && roots.contain(path); }));
    require(std::ranges::all_of(snapshot.files, hasFingerprintIfNeeded));
    require(pathSet.contains(roots.paths()));
}

ProtectedSettingsSnapshot ProtectedSettingsBaseline::decode(QByteArrayView json) {
    const auto snapshot = ProtectedSettingsSnapshot::fromJson(platform::JsonReader::parse(json));
    validate(snapshot);
    return snapshot;
}

std::optional<ProtectedSettingsSnapshot> ProtectedSettingsBaseline::load(const QString& path) {
    const auto content = platform::readFileIfThere(path, largestBytes);
    return content ? std::optional(decode(*content)) : std::nullopt;
}

void ProtectedSettingsBaseline::save(const ProtectedSettingsSnapshot& snapshot, const QString& path) {
    static_cast<void>(load(path)); // one that cannot be understood is not replaced
    validate(snapshot);
    requireOutsideOfRoots(path, snapshot);
    platform::FileReplacer::replace(path, platform::writeJson(snapshot.toJson(), platform::JsonForm::pretty));
}

ProtectedSettingsBaselineStore::ProtectedSettingsBaselineStore(const std::optional<QUrl>& directory)
    : directory_(platform::storeFolder(directory)) {}

QUrl ProtectedSettingsBaselineStore::fileURL() const {
    const QString name = QStringLiteral("/settings-preservation-baseline.json");
    return QUrl::fromLocalFile(platform::standardizedPath(platform::localPath(directory_) + name));
}

std::optional<ProtectedSettingsSnapshot> ProtectedSettingsBaselineStore::load() const {
    return ProtectedSettingsBaseline::load(platform::localPath(fileURL()));
}

void ProtectedSettingsBaselineStore::save(const ProtectedSettingsSnapshot& snapshot) const {
    ProtectedSettingsBaseline::save(snapshot, platform::localPath(fileURL()));
}

} // namespace orvex
