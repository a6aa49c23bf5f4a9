#pragma once

#include "Files/RandomAccessFile.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

struct inflate_state;

namespace orvex::platform {

/// The data of a PNG's consecutive IDAT chunks, joined, with every chunk's checksum proved. The file must outlive it.
/// One thread.
class PngImageData {
public:
    /// Begins with the chunk at `offset`.
    PngImageData(const RandomAccessFile& file, qint64 offset);

    /// Fills the buffer; the count is short only at the end of the last chunk. Raises ImageError for a wrong checksum
    /// or a file that ends too early, FileSystemError.
    [[nodiscard]] std::size_t read(std::span<std::byte> buffer);

private:
    [[nodiscard]] bool beginsChunk();
    void endChunk();
    [[nodiscard]] quint32 number();
    [[nodiscard]] std::span<const std::byte> available(std::size_t least);

    void skip(std::size_t count) { taken_ += count; }

    const RandomAccessFile& file_;
    qint64 position_; ///< of the byte after the window
    std::vector<std::byte> window_;
    std::size_t taken_ = 0; ///< of the window
    std::size_t filled_ = 0;
    quint32 chunkLeft_ = 0;
    quint32 checksum_ = 0;
    bool isEnded_ = false;
};

/// The inflated image data of a PNG. ISA-L inflates it, since with libpng that was the whole cost of a picture: on the
/// machine of the first measurements libpng gave 162 MB/s of rows, where zlib alone inflates 340 and ISA-L 753.
/// Holds about 600 KB. The file must outlive it. One thread.
class PngInflater {
public:
    /// The chunk of the first image data is at `offset`.
    PngInflater(const RandomAccessFile& file, qint64 offset);
    ~PngInflater();
    PngInflater(const PngInflater&) = delete;
    PngInflater& operator=(const PngInflater&) = delete;

    /// Fills the buffer, of less than 4 GiB. Raises ImageError for damaged data or too little of it, FileSystemError,
    /// and Interrupted if the reading of the file is to stop.
    void read(std::span<std::byte> buffer);

    /// Checks that the stream ends here, with its checksum, and that nothing follows. Raises ImageError,
    /// FileSystemError.
    void finish();

private:
    [[nodiscard]] bool isFinished() const;
    [[nodiscard]] std::size_t inflateInto(std::span<std::byte> buffer);

    const RandomAccessFile& file_;
    PngImageData data_;
    std::vector<std::byte> input_;
    std::unique_ptr<inflate_state> state_;
};

} // namespace orvex::platform
