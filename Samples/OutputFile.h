#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace orvex::samples {

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

using OutputFile = std::unique_ptr<std::FILE, FileCloser>;

[[nodiscard]] inline OutputFile openOutput(const std::filesystem::path& path) {
    OutputFile file(std::fopen(path.c_str(), "wb"));
    if (!file) {
        throw std::runtime_error("Cannot write " + path.string());
    }
    return file;
}

/// Closes the file; raises if not every byte could be written.
inline void closeOutput(OutputFile file, const std::filesystem::path& path) {
    if (std::ferror(file.get()) != 0 || std::fclose(file.release()) != 0) {
        throw std::runtime_error("Cannot write " + path.string());
    }
}

} // namespace orvex::samples
