#include "PresetDeletion.h"

#include "Files/FileRemoval.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"

namespace orvex {

namespace {

void removeIfThere(const QUrl& file) {
    try {
        platform::removeFile(platform::localPath(file));
    } catch (const platform::FileSystemError& error) {
        if (!error.isMissing()) {
            throw;
        }
    }
}

} // namespace

void deletePreset(const QUuid& id, const PresetStore& store, const std::optional<QUrl>& defaultsURL,
                  std::optional<CanvasPreference>& preference) {
    if (defaultsURL && preference && preference->presetID == id) {
        removeIfThere(*defaultsURL);
        preference.reset();
    }
    store.remove(id);
}

} // namespace orvex
