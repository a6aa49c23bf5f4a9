#pragma once

#include <QString>

namespace orvex::platform {

/// The temporary files and folders of this process that exist at this moment, so that none outlives a process that must
/// end at once. Any thread.
namespace LiveTemporaries {

void add(const QString& path);
void remove(const QString& path);

/// Removes all of them and ends the process without waiting for any thread.
[[noreturn]] void removeAllAndExit(int status);

} // namespace LiveTemporaries

} // namespace orvex::platform
