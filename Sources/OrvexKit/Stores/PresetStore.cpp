#include "Stores/PresetStore.h"

#include "Color/IccProfile.h"
#include "Files/ApplicationFolder.h"
#include "Files/FileFacts.h"
#include "Files/FileRemoval.h"
#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/FolderEntries.h"
#include "Files/Paths.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Sha256.h"
#include "Stores/StoreFiles.h"
#include "Text.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>

namespace orvex {

namespace {

using platform::IccProfile;

constexpr qint64 largestPresetBytes = 1 << 22; // a real one has some thousand

const QString presetsName = QStringLiteral("presets");

QString profilesFolder(const QUrl& directory) {
    return StoreFiles::path(directory, QStringLiteral("profiles"));
}

QString profilePath(const QUrl& directory, const QString& filename) {
    return profilesFolder(directory) + u'/' + filename;
}

void removeStaleTemporaries(const QUrl& directory) {
    platform::FileReplacer::removeStaleTemporaries(platform::localPath(directory));
    platform::FileReplacer::removeStaleTemporaries(profilesFolder(directory));
}

QString presetFilename(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces) + QStringLiteral(".json");
}

/// The names of the files with an extension that are not hidden, in the order of their Unicode scalars.
QStringList filesWithExtension(const QString& folder, const QString& extension) {
    return platform::folderEntries(folder, [&](const QString& name) {
        return !name.startsWith(u'.') && QFileInfo(name).suffix().toLower() == extension;
    });
}

OrvexError unusableProfile() {
    return OrvexError::invalid(spt("无法解析此 ICC 配置文件。", "Cannot parse the ICC profile."));
}

IccProfile validatedColorSpace(const QByteArray& data) {
    auto profile = IccProfile::fromData(data);
    if (!profile) {
        throw unusableProfile();
    }
    return *std::move(profile);
}

QByteArray profileBytes(const QString& path) {
    try {
        return StoreFiles::readRegularFile(path, IccProfile::largestBytes);
    } catch (const platform::FileSystemError& error) {
        if (error.code() == EFBIG) {
            throw unusableProfile();
        }
        throw;
    }
}

PrintPreset readPreset(const PresetStore& store, const QString& filename) {
    const QString path = StoreFiles::path(store.directory(), filename);
    const QByteArray json = StoreFiles::readRegularFile(path, largestPresetBytes);
    PrintPreset preset = PrintPreset::fromJson(platform::JsonReader::parse(json));
    refuse(preset.validationError());
    if (preset.iccAsset) {
        static_cast<void>(store.resolveICC(*preset.iccAsset));
    }
    // Two files with the same id cannot both have its name.
    if (filename != presetFilename(preset.id)) {
        throw OrvexError::invalid(spt("预设 ID 与文件名不一致，或与其他预设重复。",
                                      "The preset ID does not match its filename or is duplicated."));
    }
    preset.colorWorkflow.driverColorCorrectionDisabledConfirmed = false;
    return preset;
}

/// The system's words end without a full stop.
QString asSentence(const QString& reason) {
    const bool isSentence = reason.endsWith(u'.') || reason.endsWith(u'。');
    return isSentence ? reason : reason + spt("。", ".");
}

OrvexError unreadablePreset(const QString& filename, const QString& reason) {
    return OrvexError::invalid(spt("无法读取预设 %1。原文件已保留，请修复或移走该文件后再继续。原因：%2",
                                   "Cannot read preset %1: %2 The original file was kept. Repair or move it before "
                                   "continuing.")
                                   .arg(filename, asSentence(reason)));
}

bool comesBefore(const PrintPreset& first, const PrintPreset& second) {
    if (first.updatedAt != second.updatedAt) {
        return first.updatedAt.secondsSince2001 > second.updatedAt.secondsSince2001;
    }
    return platform::localizedStandardCompare(first.name, second.name) < 0;
}

} // namespace

PresetStore::PresetStore(const std::optional<QUrl>& directory)
    : directory_(platform::storeFolder(directory, presetsName)) {
    platform::makeFolder(profilesFolder(directory_));
}

QUrl PresetStore::folderIn(const QUrl& applicationFolder) {
    return QUrl::fromLocalFile(StoreFiles::path(applicationFolder, presetsName));
}

QList<PrintPreset> PresetStore::load() const {
    QList<PrintPreset> presets;
    for (const QString& filename : filesWithExtension(platform::localPath(directory_), QStringLiteral("json"))) {
        try {
            presets.append(readPreset(*this, filename));
        } catch (const Failure& failure) {
            throw unreadablePreset(filename, failure.message());
        }
    }
    std::stable_sort(presets.begin(), presets.end(), comesBefore);
    return presets;
}

PrintPreset PresetStore::save(const PrintPreset& preset) const {
    const QList<PrintPreset> stored = load();
    PrintPreset copy = preset;
    copy.name = preset.name.trimmed();
    copy.colorWorkflow.driverColorCorrectionDisabledConfirmed = false;
    const auto existing = std::ranges::find(stored, preset.id, &PrintPreset::id);
    if (existing != stored.end()) {
        copy.createdAt = existing->createdAt;
    }
    copy.updatedAt = platform::Timestamp::now();
    refuse(copy.validationError());
    if (copy.iccAsset) {
        static_cast<void>(resolveICC(*copy.iccAsset));
    }
    const QString path = StoreFiles::path(directory_, presetFilename(copy.id));
    const QByteArray json = platform::writeJson(copy.toJson(), platform::JsonForm::pretty);
    if (json.size() > largestPresetBytes) {
        throw platform::FileSystemError(EFBIG, path); // it could not be read again
    }
    removeStaleTemporaries(directory_);
    platform::FileReplacer::replace(path, json);
    return copy;
}

void PresetStore::remove(const QUuid& id) const {
    const QList<PrintPreset> stored = load();
    if (std::ranges::find(stored, id, &PrintPreset::id) != stored.end()) {
        platform::removeFile(StoreFiles::path(directory_, presetFilename(id)));
    }
}

void PresetStore::backUp(const QUuid& id, const QString& folder) const {
    const QString name = presetFilename(id);
    const QString copy = folder + u'/' + name;
    platform::makeFolder(folder);
    if (!platform::isThere(copy)) {
        const QString path = StoreFiles::path(directory_, name);
        platform::FileReplacer::replace(copy, StoreFiles::readRegularFile(path, largestPresetBytes));
    }
}

ManagedICCAsset PresetStore::importICC(const QUrl& from) const {
    const QByteArray data = profileBytes(platform::localPath(from));
    static_cast<void>(validatedColorSpace(data));
    const QString digest = platform::sha256Hex(data);
    const ManagedICCAsset asset{
        .filename = digest + QStringLiteral(".icc"), .sha256 = digest, .displayName = from.fileName()};
    refuse(asset.validationError()); // before anything is written
    const QString path = profilePath(directory_, asset.filename);
    if (!QFileInfo::exists(path)) {
        removeStaleTemporaries(directory_);
        platform::FileReplacer::replace(path, data);
    }
    static_cast<void>(resolveICC(asset)); // a stored file that is no longer what its name says is not replaced
    return asset;
}

QUrl PresetStore::resolveICC(const ManagedICCAsset& asset) const {
    refuse(asset.validationError());
    const QString path = profilePath(directory_, asset.filename);
    const QByteArray data = profileBytes(path);
    if (platform::sha256Hex(data) != asset.sha256) {
        throw OrvexError::invalid(spt("ICC 配置文件校验失败，文件可能已被替换：%1。",
                                      "ICC profile verification failed; the file may have been replaced: %1.")
                                      .arg(asset.displayName));
    }
    // The digest says that this is what was imported, and was validated in full then.
    if (!IccProfile::isWellFormed(data)) {
        throw unusableProfile();
    }
    return QUrl::fromLocalFile(path);
}

QList<ManagedICCAsset> PresetStore::listICCAssets() const {
    QList<ManagedICCAsset> assets;
    for (const QString& filename : filesWithExtension(profilesFolder(directory_), QStringLiteral("icc"))) {
        const QByteArray data = profileBytes(profilePath(directory_, filename));
        const IccProfile profile = validatedColorSpace(data);
        assets.append({.filename = filename,
                       .sha256 = platform::sha256Hex(data),
                       .displayName = profile.description().value_or(filename)});
        static_cast<void>(resolveICC(assets.last())); // proves that the file is named after its content
    }
    return assets;
}

} // namespace orvex
