#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace orvex::platform {

/// The names in a folder that are wanted, in the order of their Unicode scalars. Raises FileSystemError.
[[nodiscard]] QStringList folderEntries(const QString& path, const std::function<bool(const QString& name)>& isWanted);

/// All names in a folder, hidden ones too.
[[nodiscard]] QStringList folderEntries(const QString& path);

} // namespace orvex::platform
