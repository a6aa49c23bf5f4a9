#pragma once

#include <QString>

namespace orvex::platform {

/// The folder "ORVEX" in the user's data folder (XDG_DATA_HOME if that is absolute, or ~/.local/share), which the
/// stores share; it need not exist yet.
[[nodiscard]] QString applicationFolder();

/// Makes a folder and those above it, for this user alone, as far as they are missing. Raises FileSystemError.
void makeFolder(const QString& path);

} // namespace orvex::platform
