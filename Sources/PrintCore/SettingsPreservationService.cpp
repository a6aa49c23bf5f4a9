#include "SettingsPreservationService.h"

#include "Files/Paths.h"
#include "OrvexLanguage.h"
#include "SettingsCapture.h"
#include "Text.h"

#include <map>
#include <set>

namespace orvex {

namespace {

using SortedTexts = std::set<QString, platform::ScalarOrder>;
using FilesByPath = std::map<QString, ProtectedSettingsFile, platform::ScalarOrder>;

QStringList listOf(const SortedTexts& texts) {
    return {texts.begin(), texts.end()};
}

QUrl standardized(const QUrl& location) {
    QUrl result = location;
    result.setPath(platform::standardizedPath(location.path(QUrl::FullyDecoded)), QUrl::DecodedMode);
    return result;
}

FilesByPath filesByPath(const ProtectedSettingsSnapshot& snapshot) {
    FilesByPath files;
    for (const ProtectedSettingsFile& file : snapshot.files) {
        files.insert_or_assign(file.path, file);
    }
    return files;
}

std::optional<ProtectedSettingsFile> find(const FilesByPath& files, const QString& path) {
    const auto found = files.find(path);
    return found == files.end() ? std::nullopt : std::optional(found->second);
}

bool cannotBeVerified(const std::optional<ProtectedSettingsFile>& file) {
    return file && !file->isVerifiable();
}

bool isChanged(const std::optional<ProtectedSettingsFile>& before, const std::optional<ProtectedSettingsFile>& after) {
    if (!before || !after) {
        return true;
    }
    return before->status != after->status || before->sha256 != after->sha256;
}

} // namespace

ProtectedSettingsSnapshot SettingsPreservationService::capture(const QList<QUrl>& paths, const std::stop_token& stop) {
    SortedTexts roots;
    SettingsCapture capture(stop);
    for (const QUrl& path : paths) {
        const QUrl location = standardized(path);
        roots.insert(location.path(QUrl::FullyDecoded));
        capture.add(location);
    }
    return {.timestamp = platform::Timestamp::now(), .rootPaths = listOf(roots), .files = capture.files()};
}

SettingsPreservationComparison SettingsPreservationService::compare(const ProtectedSettingsSnapshot& baseline,
                                                                    const ProtectedSettingsSnapshot& current) {
    const FilesByPath befores = filesByPath(baseline);
    const FilesByPath afters = filesByPath(current);
    SortedTexts paths;
    for (const FilesByPath* files : {&befores, &afters}) {
        for (const auto& [path, file] : *files) {
            paths.insert(path);
        }
    }

    SettingsPreservationComparison comparison;
    SortedTexts unverifiable;
    for (const QString& path : paths) {
        const auto before = find(befores, path);
        const auto after = find(afters, path);
        if (cannotBeVerified(before) || cannotBeVerified(after)) {
            unverifiable.insert(path);
        }
        if (isChanged(before, after)) {
            comparison.changes.append({.path = path, .before = before, .after = after});
        }
    }
    for (const ProtectedSettingsSnapshot* snapshot : {&baseline, &current}) {
        if (snapshot->schemaVersion != ProtectedSettingsSnapshot::currentSchemaVersion) {
            unverifiable.insert(spt("不支持的设置快照版本", "Unsupported settings snapshot version"));
        }
    }
    comparison.unverifiablePaths = listOf(unverifiable);
    return comparison;
}

} // namespace orvex
