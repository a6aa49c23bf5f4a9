#include "SettingsCapture.h"

#include "Files/DescriptorIO.h"
#include "Files/Paths.h"
#include "Interrupted.h"
#include "OrvexLanguage.h"
#include "Sha256.h"

namespace orvex {

namespace {

using platform::ItemFacts;
using platform::ItemKind;
using platform::LinkFreeView;
using Status = ProtectedSettingsFileStatus;

constexpr std::size_t readBytes = 1048576;

ProtectedSettingsFile unreadable(const QString& diagnostic) {
    return {.path = {}, .status = Status::unreadable, .sha256 = std::nullopt, .diagnostic = diagnostic};
}

ProtectedSettingsFile ambiguous(const QString& path) {
    ProtectedSettingsFile file = unreadable(
        spt("有多个项目的名称不是有效文本，显示时完全相同，无法区分。",
            "Several items have names that are not valid text and look the same. They cannot be told apart."));
    file.path = path;
    return file;
}

bool sameIdentityAndModification(const ItemFacts& first, const ItemFacts& second) {
    return first == second;
}

bool isSameItem(const ItemFacts& first, const ItemFacts& second) {
    return first.kind == second.kind && first.fileNumber == second.fileNumber;
}

bool isMissing(const platform::FileSystemError& error) {
    return error.isMissing();
}

QByteArray entryPath(const QByteArray& folder, const QByteArray& name) {
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

} // namespace

SettingsCapture::SettingsCapture(std::stop_token stop) : stop_(std::move(stop)), buffer_(readBytes) {}

void SettingsCapture::add(const QUrl& location) {
    const QString path = location.path(QUrl::FullyDecoded);
    if (!location.isLocalFile()) {
        record(path.toUtf8(), unreadable(spt("只支持本机文件路径。", "Only local file paths are supported.")));
        return;
    }
    QByteArray native;
    try {
        native = platform::nativePath(path);
    } catch (const platform::FileSystemError& error) {
        record(path.toUtf8(), unreadable(error.message())); // no path that the system could know
        return;
    }
    try {
        capture(LinkFreeView(native), native);
    } catch (const platform::FileSystemError& error) {
        recordFailure(native, error);
    }
}

void SettingsCapture::capture(const LinkFreeView& view, const QByteArray& path) {
    platform::throwIfStopped(stop_);
    try {
        captureItem(view, path);
    } catch (const platform::FileSystemError& error) {
        recordFailure(path, error);
    }
}

void SettingsCapture::captureItem(const LinkFreeView& view, const QByteArray& path) {
    const ItemFacts facts = view.facts(path);
    switch (facts.kind) {
    case ItemKind::regularFile:
        captureRegularFile(view, path, facts);
        return;
    case ItemKind::directory:
        captureDirectory(view, path, facts);
        return;
    case ItemKind::symbolicLink:
        captureLink(view, path);
        return;
    case ItemKind::other:
        record(path, {.path = {},
                      .status = Status::unsupported,
                      .diagnostic = spt("这不是普通文件或文件夹，未读取其内容。",
                                        "This is not a regular file or directory. Its contents were not read.")});
    }
}

void SettingsCapture::captureRegularFile(const LinkFreeView& view, const QByteArray& path, const ItemFacts& facts) {
    const QString hash = fingerprint(view, path);
    if (sameIdentityAndModification(facts, view.facts(path))) {
        record(path, {.path = {}, .status = Status::regularFile, .sha256 = hash});
    } else {
        record(path, unreadable(spt("读取期间文件发生了变化，请重新检查。",
                                    "The file changed while it was being read. Check again.")));
    }
}

void SettingsCapture::captureDirectory(const LinkFreeView& view, const QByteArray& path, const ItemFacts& facts) {
    const QByteArrayList names = view.entries(path);
    record(path, {.path = {}, .status = Status::directory});
    for (const QByteArray& name : names) {
        capture(view, entryPath(path, name));
    }
    // What has taken the folder's place may have the same names in it, or lead elsewhere.
    if (!isSameItem(facts, view.facts(path)) || view.entries(path) != names) {
        record(path, unreadable(spt("读取期间文件夹发生了变化，请重新检查。",
                                    "The directory changed while it was being read. Check again.")));
    }
}

void SettingsCapture::captureLink(const LinkFreeView& view, const QByteArray& path) {
    record(path, {.path = {},
                  .status = Status::symbolicLink,
                  .sha256 = platform::sha256Hex(view.linkTarget(path)),
                  .diagnostic = spt("已记录链接目标，但未跟随链接，无法确认此路径没有变化。",
                                    "The link target was recorded without following it. This path cannot be confirmed "
                                    "unchanged.")});
}

QString SettingsCapture::fingerprint(const LinkFreeView& view, const QByteArray& path) {
    const platform::FileDescriptor file = view.openFile(path);
    const QString shownPath = QString::fromUtf8(path);
    platform::Sha256 hash;
    qint64 offset = 0;
    while (const qint64 count = platform::readAt(file, offset, buffer_, shownPath)) {
        platform::throwIfStopped(stop_);
        hash.add(QByteArrayView(buffer_.data(), count));
        offset += count;
    }
    return QString::fromLatin1(hash.digest().toHex());
}

void SettingsCapture::record(const QByteArray& path, ProtectedSettingsFile file) {
    file.path = QString::fromUtf8(path);
    const QByteArray unreadableName = file.path.toUtf8() == path ? QByteArray() : path;
    Entry& entry = entries_.try_emplace(file.path, Entry{.file = file, .unreadableName = unreadableName}).first->second;
    entry.isAmbiguous = entry.isAmbiguous || entry.unreadableName != unreadableName;
    entry.file = entry.isAmbiguous ? ambiguous(file.path) : file;
}

void SettingsCapture::recordFailure(const QByteArray& path, const platform::FileSystemError& error) {
    if (isMissing(error)) {
        record(path, {.path = {}, .status = Status::missing});
    } else {
        record(path, unreadable(error.message()));
    }
}

QList<ProtectedSettingsFile> SettingsCapture::files() const {
    QList<ProtectedSettingsFile> files;
    files.reserve(static_cast<qsizetype>(entries_.size()));
    for (const auto& [path, entry] : entries_) {
        files.append(entry.file);
    }
    return files;
}

} // namespace orvex
