#pragma once

#include <utility>

namespace orvex::platform {

/// Owns one open file descriptor and closes it. Errors of the closing are ignored: a writer synchronises before.
class FileDescriptor {
public:
    FileDescriptor() = default;

    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}

    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }

    ~FileDescriptor();

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }

    /// Gives up the descriptor without closing it.
    [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

} // namespace orvex::platform
