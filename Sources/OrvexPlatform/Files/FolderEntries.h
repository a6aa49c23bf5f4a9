#pragma once

#include <QString>
#include <QStringList>

namespace orvex::platform {

/// The names in a folder, hidden ones too, in the order of their Unicode scalars. Raises FileSystemError.
[[nodiscard]] QStringList folderEntries(const QString& path);

} // namespace orvex::platform
