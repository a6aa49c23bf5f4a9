#include "Output/SourceGuard.h"

#include "Files/Paths.h"

#include <algorithm>

namespace orvex {

bool overwritesSource(const QUrl& to, const QList<QUrl>& sources) {
    const QString destination = platform::localPath(to);
    const QString resolved = platform::resolvingSymlinks(destination);
    return std::any_of(sources.begin(), sources.end(), [&](const QUrl& source) {
        const QString path = platform::localPath(source);
        if (path.isEmpty()) {
            return false; // no local file, so none to write over
        }
        return platform::resolvingSymlinks(path) == resolved || platform::isSameFile(path, destination);
    });
}

} // namespace orvex
