#pragma once

#include <QtGlobal>

#include <sys/stat.h>

namespace orvex::platform {

/// When a file was modified, in nanoseconds since 1970-01-01 00:00:00 UTC. Such a number has room until the year 2262;
/// a time beyond that wraps around, which still tells it from others.
[[nodiscard]] inline qint64 modifiedNanosecondsOf(const struct stat& facts) {
    constexpr quint64 nanosecondsPerSecond = 1'000'000'000;
    return static_cast<qint64>(static_cast<quint64>(facts.st_mtim.tv_sec) * nanosecondsPerSecond +
                               static_cast<quint64>(facts.st_mtim.tv_nsec));
}

} // namespace orvex::platform
