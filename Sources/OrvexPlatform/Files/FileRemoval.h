#pragma once

#include <QString>

namespace orvex::platform {

/// Removes a file or a link, for good: the folder is synchronised to the disk. Raises FileSystemError, for a missing
/// file, too.
void removeFile(const QString& path);

} // namespace orvex::platform
