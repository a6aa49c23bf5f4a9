#include "Imaging/JpegDecoder.h"

#include "Imaging/DensityUnits.h"
#include "Imaging/ImageError.h"

#include <jerror.h>

#include <cstdlib>
#include <type_traits>

namespace orvex::platform {

namespace {

constexpr std::size_t inputBufferBytes = 256 << 10;
constexpr qint64 largestHeaderBytes = 64 << 20; // a profile has 255 segments at most, under 17 MB
constexpr qint64 blocksPerByte = 8;             // every Huffman-coded block takes one bit at least
constexpr int largestScanCount = 100;           // each may cross the whole picture for a handful of bytes
constexpr int profileMarker = JPEG_APP0 + 2;
constexpr unsigned largestSegmentBytes = 0xFFFF;

/// Warnings that say nothing against the picture; every other one means damaged or missing data.
bool isHarmless(int messageCode) {
    return messageCode == JWRN_ADOBE_XFORM || messageCode == JWRN_JFIF_MAJOR || messageCode == JWRN_BOGUS_ICC;
}

ColorModel modelOf(J_COLOR_SPACE space) {
    switch (space) {
    case JCS_GRAYSCALE:
        return ColorModel::gray;
    case JCS_RGB:
    case JCS_YCbCr:
        return ColorModel::rgb;
    case JCS_CMYK:
    case JCS_YCCK:
        return ColorModel::cmyk;
    default:
        throw ImageError(QStringLiteral("JPEG colour space %1 is not supported").arg(space));
    }
}

J_COLOR_SPACE outputSpace(ColorModel model) {
    switch (model) {
    case ColorModel::gray:
        return JCS_GRAYSCALE;
    case ColorModel::rgb:
        return JCS_RGB;
    case ColorModel::cmyk:
        return JCS_CMYK;
    }
    return JCS_UNKNOWN;
}

std::optional<double> perInch(int unit, UINT16 density) {
    // JFIF 1.02: 0 is a bare aspect ratio, 1 dots per inch, 2 dots per centimetre.
    switch (unit) {
    case 1:
        return density;
    case 2:
        return density * centimetresPerInch;
    default:
        return std::nullopt;
    }
}

} // namespace

/// Runs a call into the library. An error in there jumps back to here, over frames that must hold nothing to destroy:
/// the library's own, those of the callbacks, and the call's.
template <typename Call>
void JpegDecoder::guarded(const Call& call) {
    static_assert(std::is_trivially_destructible_v<Call>);
    if (setjmp(jump_) != 0) {
        raise();
    }
    call();
}

void JpegDecoder::raise() {
    if (readFailure_) {
        std::rethrow_exception(readFailure_);
    }
    throw ImageError(QString::fromLatin1(message_));
}

JpegDecoder::JpegDecoder(const RandomAccessFile& file) : file_(file), input_(inputBufferBytes) {
    library_.err = jpeg_std_error(&errors_);
    library_.client_data = this;
    errors_.error_exit = errorExit;
    errors_.emit_message = emitMessage;
    guarded([this] { jpeg_create_decompress(&library_); });
    connectCallbacks();
}

void JpegDecoder::connectCallbacks() {
    source_.init_source = doNothing;
    source_.fill_input_buffer = fillInputBuffer;
    source_.skip_input_data = skipInputData;
    source_.resync_to_restart = jpeg_resync_to_restart;
    source_.term_source = doNothing;
    library_.src = &source_;
    progress_.progress_monitor = monitorProgress;
    library_.progress = &progress_;
}

JpegHeader JpegDecoder::readHeader(bool keepsProfile) {
    isInHeader_ = true;
    headerBytesLeft_ = largestHeaderBytes;
    guarded([this, keepsProfile] {
        if (keepsProfile) {
            jpeg_save_markers(&library_, profileMarker, largestSegmentBytes);
        }
        jpeg_read_header(&library_, TRUE);
    });
    isInHeader_ = false;
    refuseBomb();
    return header();
}

JpegHeader JpegDecoder::header() const {
    JpegHeader header;
    header.width = library_.image_width;
    header.height = library_.image_height;
    header.storedSpace = library_.jpeg_color_space;
    header.model = modelOf(header.storedSpace);
    header.isArithmeticCoded = library_.arith_code != FALSE;
    if (library_.saw_Adobe_marker != FALSE) {
        header.adobeTransform = library_.Adobe_transform;
    }
    header.jfifDpiWidth = perInch(library_.density_unit, library_.X_density);
    header.jfifDpiHeight = perInch(library_.density_unit, library_.Y_density);
    return header;
}

void JpegDecoder::refuseBomb() const {
    qint64 blocks = 0;
    for (int index = 0; index < library_.num_components; ++index) {
        const jpeg_component_info& component = library_.comp_info[index];
        blocks += qint64{component.width_in_blocks} * qint64{component.height_in_blocks};
    }
    if (blocks / blocksPerByte > file_.size()) {
        throw ImageError(QStringLiteral("the JPEG file is too short for the size that it claims"));
    }
}

std::optional<QByteArray> JpegDecoder::iccProfile() {
    JOCTET* bytes = nullptr;
    unsigned int count = 0;
    guarded([this, &bytes, &count] { jpeg_read_icc_profile(&library_, &bytes, &count); });
    if (bytes == nullptr) {
        return std::nullopt;
    }
    const std::unique_ptr<JOCTET, decltype(&std::free)> owner(bytes, &std::free);
    return QByteArray(reinterpret_cast<const char*>(bytes), count);
}

void JpegDecoder::start(int denominator) {
    library_.out_color_space = outputSpace(modelOf(library_.jpeg_color_space));
    library_.scale_num = 1;
    library_.scale_denom = static_cast<unsigned int>(denominator);
    // A guess at coefficients that a file leaves out would not be what another decoder shows.
    library_.do_block_smoothing = FALSE;
    bool hasSeveralScans = false;
    guarded([this, &hasSeveralScans] {
        jpeg_start_decompress(&library_);
        hasSeveralScans = jpeg_has_multiple_scans(&library_) != FALSE;
    });
    // One scan has all components; of several, that of a component may be missing without a word of the library.
    if (hasSeveralScans && componentsSeen_ != (1U << library_.num_components) - 1U) {
        throw ImageError(QStringLiteral("the JPEG file has no scan of one of its components"));
    }
}

void JpegDecoder::readRows(std::span<std::byte> bytes) {
    const std::size_t rowBytes = std::size_t{library_.output_width} * static_cast<unsigned>(library_.output_components);
    auto* const samples = reinterpret_cast<JSAMPLE*>(bytes.data());
    const std::size_t rowCount = bytes.size() / rowBytes;
    guarded([this, samples, rowBytes, rowCount] {
        for (std::size_t row = 0; row < rowCount;) {
            JSAMPROW rows[DCTSIZE];
            const std::size_t asked = std::min<std::size_t>(DCTSIZE, rowCount - row);
            for (std::size_t index = 0; index < asked; ++index) {
                rows[index] = samples + (row + index) * rowBytes;
            }
            row += jpeg_read_scanlines(&library_, rows, static_cast<JDIMENSION>(asked));
        }
    });
}

void JpegDecoder::finish() {
    guarded([this] { jpeg_finish_decompress(&library_); });
}

JpegDecoder& JpegDecoder::of(j_common_ptr library) {
    return *static_cast<JpegDecoder*>(library->client_data);
}

JpegDecoder& JpegDecoder::of(j_decompress_ptr library) {
    return *static_cast<JpegDecoder*>(library->client_data);
}

void JpegDecoder::fail(const char* message) {
    qstrncpy(message_, message, sizeof message_);
    std::longjmp(jump_, 1);
}

void JpegDecoder::errorExit(j_common_ptr library) {
    char message[JMSG_LENGTH_MAX];
    library->err->format_message(library, message);
    of(library).fail(message);
}

void JpegDecoder::emitMessage(j_common_ptr library, int level) {
    const bool isWarning = level < 0;
    if (isWarning && !isHarmless(library->err->msg_code)) {
        errorExit(library);
    }
}

void JpegDecoder::doNothing(j_decompress_ptr) {}

/// Reads on; false at the end of the file, beyond the header's limit, or with `readFailure_`.
bool JpegDecoder::refill() noexcept {
    try {
        const qint64 count = file_.readAt(position_, input_);
        if (isInHeader_) {
            headerBytesLeft_ -= count;
        }
        position_ += count;
        source_.next_input_byte = reinterpret_cast<const JOCTET*>(input_.data());
        source_.bytes_in_buffer = static_cast<std::size_t>(count);
        return count > 0 && headerBytesLeft_ >= 0;
    } catch (...) {
        readFailure_ = std::current_exception();
        return false;
    }
}

/// Whether a stop is requested, with `readFailure_` if so.
bool JpegDecoder::isStopped() noexcept {
    try {
        file_.throwIfStopped();
        return false;
    } catch (...) {
        readFailure_ = std::current_exception();
        return true;
    }
}

boolean JpegDecoder::fillInputBuffer(j_decompress_ptr library) {
    if (!of(library).refill()) {
        of(library).fail("the JPEG file ends early, or its headers are too long");
    }
    return TRUE;
}

void JpegDecoder::skipInputData(j_decompress_ptr library, long count) {
    if (count <= 0) {
        return;
    }
    jpeg_source_mgr& source = *library->src;
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t buffered = std::min(wanted, source.bytes_in_buffer);
    source.next_input_byte += buffered;
    source.bytes_in_buffer -= buffered;
    of(library).position_ += static_cast<qint64>(wanted - buffered);
}

/// Called for every row of blocks: a file of several scans is read to its end before its first row of pixels.
void JpegDecoder::monitorProgress(j_common_ptr common) {
    const auto* library = reinterpret_cast<j_decompress_ptr>(common);
    if (of(common).isStopped()) {
        of(common).fail("interrupted");
    }
    if (library->input_scan_number > largestScanCount) {
        of(common).fail("the JPEG file has too many scans");
    }
    for (int index = 0; index < library->comps_in_scan; ++index) {
        of(common).componentsSeen_ |= 1U << library->cur_comp_info[index]->component_index;
    }
}

} // namespace orvex::platform
