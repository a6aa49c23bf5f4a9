#include "Imaging/PngImageData.h"

#include "Imaging/ImageError.h"
#include "Imaging/PngChunk.h"

#include <QtEndian>

#include <isa-l/igzip_lib.h>

#include <cstring>

namespace orvex::platform {

namespace {

constexpr std::size_t windowBytes = 256 * 1024; // many chunks as most encoders write them, 8 KiB each
constexpr std::size_t inputBytes = 256 * 1024;

std::uint8_t* writable(std::span<std::byte> bytes) {
    return reinterpret_cast<std::uint8_t*>(bytes.data());
}

} // namespace

PngImageData::PngImageData(const RandomAccessFile& file, qint64 offset)
    : file_(file),
      position_(offset),
      window_(windowBytes) {}

/// At least so many bytes of the file from here on, and as many more as are at hand.
std::span<const std::byte> PngImageData::available(std::size_t least) {
    if (filled_ - taken_ < least) {
        std::memmove(window_.data(), window_.data() + taken_, filled_ - taken_);
        filled_ -= taken_;
        taken_ = 0;
        const qint64 count = file_.readAt(position_, std::span(window_).subspan(filled_));
        position_ += count;
        filled_ += static_cast<std::size_t>(count);
    }
    if (filled_ < least) {
        throw ImageError(QStringLiteral("the PNG file is cut off"));
    }
    return std::span(window_).subspan(taken_, filled_ - taken_);
}

quint32 PngImageData::number() {
    const auto value = qFromBigEndian<quint32>(available(4).data());
    skip(4);
    return value;
}

/// Goes to the next chunk that holds anything.
bool PngImageData::beginsChunk() {
    while (!isEnded_ && chunkLeft_ == 0) {
        chunkLeft_ = number();
        isEnded_ = number() != pngImageData;
        checksum_ = pngTypeChecksum(pngImageData);
        if (!isEnded_ && chunkLeft_ == 0) {
            endChunk();
        }
    }
    return !isEnded_;
}

void PngImageData::endChunk() {
    if (number() != checksum_) {
        throw ImageError(QStringLiteral("a checksum of the PNG file's image data is wrong"));
    }
}

std::size_t PngImageData::read(std::span<std::byte> buffer) {
    std::size_t done = 0;
    while (done < buffer.size() && beginsChunk()) {
        const std::span<const std::byte> bytes = available(1);
        const std::size_t count = std::min({bytes.size(), buffer.size() - done, std::size_t{chunkLeft_}});
        std::memcpy(buffer.data() + done, bytes.data(), count);
        checksum_ = pngChecksum(checksum_, bytes.first(count));
        skip(count);
        done += count;
        chunkLeft_ -= static_cast<quint32>(count);
        if (chunkLeft_ == 0) {
            endChunk();
        }
    }
    return done;
}

PngInflater::PngInflater(const RandomAccessFile& file, qint64 offset)
    : file_(file),
      data_(file, offset),
      input_(inputBytes),
      state_(std::make_unique<inflate_state>()) {
    isal_inflate_init(state_.get());
    state_->crc_flag = ISAL_ZLIB; // with header and Adler-32
}

PngInflater::~PngInflater() = default;

bool PngInflater::isFinished() const {
    return state_->block_state == ISAL_BLOCK_FINISH;
}

/// Inflates until the buffer is full or the stream has ended; the count is short only then.
std::size_t PngInflater::inflateInto(std::span<std::byte> buffer) {
    state_->next_out = writable(buffer);
    state_->avail_out = static_cast<std::uint32_t>(buffer.size());
    while (state_->avail_out > 0 && !isFinished()) {
        if (state_->avail_in == 0) {
            state_->next_in = writable(input_);
            state_->avail_in = static_cast<std::uint32_t>(data_.read(input_));
        }
        const bool isDrained = state_->avail_in == 0;
        const std::uint32_t before = state_->avail_out;
        if (isal_inflate(state_.get()) != ISAL_DECOMP_OK) {
            throw ImageError(QStringLiteral("the PNG file's image data is damaged"));
        }
        if (isDrained && state_->avail_out == before && !isFinished()) {
            throw ImageError(QStringLiteral("the PNG file's image data is not complete"));
        }
    }
    return buffer.size() - state_->avail_out;
}

void PngInflater::read(std::span<std::byte> buffer) {
    file_.throwIfStopped(); // a few bytes of the file may hold a great many rows
    if (inflateInto(buffer) < buffer.size()) {
        throw ImageError(QStringLiteral("the PNG file has too little image data"));
    }
}

void PngInflater::finish() {
    std::byte surplus{};
    if (inflateInto({&surplus, 1}) > 0) {
        throw ImageError(QStringLiteral("the PNG file has more image data than rows"));
    }
    if (state_->avail_in > 0 || data_.read({&surplus, 1}) > 0) {
        throw ImageError(QStringLiteral("something follows the stream of the PNG file's image data"));
    }
}

} // namespace orvex::platform
