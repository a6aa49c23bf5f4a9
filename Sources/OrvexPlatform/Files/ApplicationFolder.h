#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace orvex::platform {

/// The folder "ORVEX" in the user's data folder (XDG_DATA_HOME if that is absolute, or ~/.local/share), which the
/// stores share; it need not exist yet.
[[nodiscard]] QString applicationFolder();

/// The folder of a store: the given one, or else a folder of that name in the application folder, or that itself for
/// an empty name. It is made if it is missing. Raises FileSystemError.
[[nodiscard]] QUrl storeFolder(const std::optional<QUrl>& directory, const QString& name = {});

/// Makes a folder and those above it, for this user alone, as far as they are missing. Raises FileSystemError.
void makeFolder(const QString& path);

} // namespace orvex::platform
