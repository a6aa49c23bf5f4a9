#pragma once

#include <QString>

namespace orvex::platform {

/// Removes a file or a link, if the system can do that for good. Raises FileSystemError, for a missing file, too.
void removeFile(const QString& path);

} // namespace orvex::platform
