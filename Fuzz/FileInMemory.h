#pragma once

#include "Files/FileDescriptor.h"

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

namespace orvex::fuzz {

/// A regular file with a path, of these bytes, that no disk sees. It lives as long as this object.
class FileInMemory {
public:
    FileInMemory(const std::uint8_t* data, std::size_t size) : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
        for (std::size_t done = 0; done < size;) {
            const ssize_t count = ::write(descriptor_.get(), data + done, size - done);
            if (count <= 0) {
                std::abort();
            }
            done += static_cast<std::size_t>(count);
        }
    }

    [[nodiscard]] QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(descriptor_.get()); }

private:
    platform::FileDescriptor descriptor_;
};

} // namespace orvex::fuzz
