#pragma once

#include "Files/RandomAccessFile.h"
#include "Imaging/Raster.h"

#include <QByteArray>

#include <jpeglib.h>

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <optional>
#include <span>
#include <vector>

namespace orvex::platform {

/// What the headers of a JPEG file say up to its first scan.
struct JpegHeader {
    qint64 width = 0;
    qint64 height = 0;
    ColorModel model = ColorModel::rgb;
    J_COLOR_SPACE storedSpace = JCS_UNKNOWN; ///< gray, RGB, YCbCr, CMYK or YCCK
    bool isArithmeticCoded = false;
    std::optional<int> adobeTransform;  ///< of the Adobe marker, if there is one
    std::optional<double> jfifDpiWidth; ///< pixels per inch
    std::optional<double> jfifDpiHeight;

    /// CMYK stored with 0 as full ink, which is what an Adobe marker means.
    [[nodiscard]] bool isInverted() const { return model == ColorModel::cmyk && adobeTransform.has_value(); }

    bool operator==(const JpegHeader&) const = default;
};

/// One decoding pass over a JPEG file. The calls come in the order in which they stand here, each at most once but
/// `readRows`. All raise ImageError for damaged, cut-off or unsupported data, and for all that the library warns of as
/// damage; FileSystemError when the file cannot be read; Interrupted soon after a stop of the file's reading. After a
/// failure only the destruction is left. One thread.
///
/// Memory: some rows; for a progressive file or one with several scans the coefficients of the whole picture, two bytes
/// for each sample.
class JpegDecoder {
public:
    /// The file must outlive the decoder.
    explicit JpegDecoder(const RandomAccessFile& file);
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    /// Reads up to the first scan. `keepsProfile` makes `iccProfile` possible.
    [[nodiscard]] JpegHeader readHeader(bool keepsProfile);

    /// The profile of the headers as the library joins it; absent if there is none or its parts do not fit.
    [[nodiscard]] std::optional<QByteArray> iccProfile();

    /// Prepares for rows of a picture reduced to 1/`denominator` (1, 2, 4 or 8), its sides rounded up.
    void start(int denominator);

    /// Decodes whole rows of the output into `bytes`, as many as it holds. CMYK comes as it is stored.
    void readRows(std::span<std::byte> bytes);

    /// Checks after the last row that the file ends as it should.
    void finish();

private:
    struct Library : jpeg_decompress_struct {
        Library() : jpeg_decompress_struct() {}

        ~Library() { jpeg_destroy_decompress(this); }

        Library(const Library&) = delete;
        Library& operator=(const Library&) = delete;
    };

    template <typename Call>
    void guarded(const Call& call);
    [[noreturn]] void raise();

    void connectCallbacks();
    void refuseBomb() const;
    [[nodiscard]] JpegHeader header() const;
    bool refill() noexcept;
    bool isStopped() noexcept;
    [[noreturn]] void fail(const char* message);

    static JpegDecoder& of(j_common_ptr library);
    static JpegDecoder& of(j_decompress_ptr library);
    [[noreturn]] static void errorExit(j_common_ptr library);
    static void emitMessage(j_common_ptr library, int level);
    static void doNothing(j_decompress_ptr library);
    static boolean fillInputBuffer(j_decompress_ptr library);
    static void skipInputData(j_decompress_ptr library, long count);
    static void monitorProgress(j_common_ptr library);

    const RandomAccessFile& file_;
    std::vector<std::byte> input_;
    qint64 position_ = 0;        ///< of the byte after the input buffer
    qint64 headerBytesLeft_ = 0; ///< what may still be read before the first scan
    bool isInHeader_ = false;
    unsigned componentsSeen_ = 0; ///< one bit for each component that a scan has brought

    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    jpeg_progress_mgr progress_{};
    std::jmp_buf jump_{};
    char message_[JMSG_LENGTH_MAX] = {};
    std::exception_ptr readFailure_;
    Library library_;
};

} // namespace orvex::platform
