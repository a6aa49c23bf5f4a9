#pragma once

#include "Files/FileSystemError.h"
#include "Files/LinkFreeView.h"
#include "ProtectedSettings.h"
#include "Text.h"

#include <QByteArray>
#include <QUrl>

#include <cstddef>
#include <map>
#include <stop_token>
#include <vector>

namespace orvex {

/// One capture of protected paths. Races with the file system are not prevented but detected: what changes while it is
/// read is recorded as unreadable.
class SettingsCapture {
public:
    explicit SettingsCapture(std::stop_token stop);

    /// Records a location and all below it; an absolute, standardised one. Raises Interrupted.
    void add(const QUrl& location);

    /// All that was recorded, sorted by path.
    [[nodiscard]] QList<ProtectedSettingsFile> files() const;

private:
    // Paths are the bytes by which the system knows them; they need be no text.
    void capture(const platform::LinkFreeView& view, const QByteArray& path);
    void captureItem(const platform::LinkFreeView& view, const QByteArray& path);
    void captureRegularFile(const platform::LinkFreeView& view, const QByteArray& path,
                            const platform::ItemFacts& facts);
    void captureDirectory(const platform::LinkFreeView& view, const QByteArray& path, const platform::ItemFacts& facts);
    void captureLink(const platform::LinkFreeView& view, const QByteArray& path);
    [[nodiscard]] QString fingerprint(const platform::LinkFreeView& view, const QByteArray& path);
    void record(const QByteArray& path, ProtectedSettingsFile file);
    void recordFailure(const QByteArray& path, const platform::FileSystemError& error);

    struct Entry {
        ProtectedSettingsFile file;
        QByteArray unreadableName{}; ///< the path's bytes, where they are not the text
        bool isAmbiguous = false;    ///< paths of other bytes have the same text
    };

    std::stop_token stop_;
    std::vector<std::byte> buffer_;
    std::map<QString, Entry, platform::ScalarOrder> entries_;
};

} // namespace orvex
