#pragma once

#include <QByteArray>

#include <jpeglib.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

namespace orvex::test {

/// A JPEG file made by libjpeg, and what libjpeg itself makes of one. An error in here ends the test program.
struct JpegFixture {
    enum class Coding { baseline, progressive, arithmetic, separateScans };

    struct Density {
        quint8 unit = 0;
        quint16 x = 1;
        quint16 y = 1;
    };

    unsigned width = 1;
    unsigned height = 1;
    J_COLOR_SPACE pixelSpace = JCS_RGB;
    J_COLOR_SPACE storedSpace = JCS_YCbCr;
    Coding coding = Coding::baseline;
    int quality = 100;
    int lumaSampling = 1; ///< 2 halves the colours' resolution on both sides
    unsigned restartInterval = 0;
    std::optional<bool> hasJfif{}; ///< the library's habit for the colour space if absent
    std::optional<bool> hasAdobe{};
    Density density{};
    QByteArray exif{}; ///< from the TIFF header on
    QByteArray profile{};
    QByteArray pixels{}; ///< CMYK as it shall be stored; a pattern if empty

    static unsigned components(J_COLOR_SPACE space) {
        return space == JCS_GRAYSCALE ? 1 : space == JCS_RGB || space == JCS_YCbCr ? 3 : space == JCS_UNKNOWN ? 2 : 4;
    }

    /// Smooth ramps with some texture, different in each component and asymmetric.
    [[nodiscard]] QByteArray pattern() const {
        const unsigned count = components(pixelSpace);
        QByteArray bytes;
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width; ++x) {
                for (unsigned index = 0; index < count; ++index) {
                    const unsigned ramp = (x * (index + 1) * 160 / width + y * (4 - index) * 60 / height) % 230;
                    bytes += static_cast<char>(ramp + (x * 7 + y * 3 + index * 5) % 23);
                }
            }
        }
        return bytes;
    }

    [[nodiscard]] static QByteArray flat(unsigned width, unsigned height, const std::vector<int>& color) {
        QByteArray pixel;
        for (const int sample : color) {
            pixel += static_cast<char>(sample);
        }
        return pixel.repeated(static_cast<qsizetype>(width) * height);
    }

    [[nodiscard]] QByteArray bytes() const {
        jpeg_compress_struct library{};
        jpeg_error_mgr errors{};
        library.err = jpeg_std_error(&errors);
        jpeg_create_compress(&library);
        unsigned char* output = nullptr;
        unsigned long outputBytes = 0;
        jpeg_mem_dest(&library, &output, &outputBytes);
        configure(library);
        jpeg_start_compress(&library, TRUE);
        writeSegments(library);
        QByteArray source = pixels.isEmpty() ? pattern() : pixels;
        const auto rowBytes = static_cast<qsizetype>(width) * components(pixelSpace);
        while (library.next_scanline < height) {
            JSAMPROW row = reinterpret_cast<JSAMPROW>(source.data() + library.next_scanline * rowBytes);
            jpeg_write_scanlines(&library, &row, 1);
        }
        jpeg_finish_compress(&library);
        const QByteArray result(reinterpret_cast<const char*>(output), static_cast<qsizetype>(outputBytes));
        jpeg_destroy_compress(&library);
        std::free(output);
        return result;
    }

    /// A plain decode, reduced to 1/`denominator`; CMYK as stored.
    [[nodiscard]] static QByteArray decoded(const QByteArray& file, J_COLOR_SPACE outputSpace,
                                            unsigned denominator = 1) {
        jpeg_decompress_struct library{};
        jpeg_error_mgr errors{};
        library.err = jpeg_std_error(&errors);
        errors.emit_message = [](j_common_ptr, int) {}; // warnings
        jpeg_create_decompress(&library);
        jpeg_mem_src(&library, reinterpret_cast<const unsigned char*>(file.constData()),
                     static_cast<unsigned long>(file.size()));
        jpeg_read_header(&library, TRUE);
        library.out_color_space = outputSpace;
        library.scale_denom = denominator;
        jpeg_start_decompress(&library);
        const auto rowBytes = static_cast<qsizetype>(library.output_width) * library.output_components;
        QByteArray result(rowBytes * library.output_height, '\0');
        while (library.output_scanline < library.output_height) {
            JSAMPROW row = reinterpret_cast<JSAMPROW>(result.data() + library.output_scanline * rowBytes);
            jpeg_read_scanlines(&library, &row, 1);
        }
        jpeg_finish_decompress(&library);
        jpeg_destroy_decompress(&library);
        return result;
    }

private:
    void configure(jpeg_compress_struct& library) const {
        library.image_width = width;
        library.image_height = height;
        library.input_components = static_cast<int>(components(pixelSpace));
        library.in_color_space = pixelSpace;
        jpeg_set_defaults(&library);
        jpeg_set_colorspace(&library, storedSpace);
        jpeg_set_quality(&library, quality, TRUE);
        library.comp_info[0].h_samp_factor = lumaSampling;
        library.comp_info[0].v_samp_factor = lumaSampling;
        if (storedSpace == JCS_YCCK) {
            library.comp_info[3].h_samp_factor = lumaSampling;
            library.comp_info[3].v_samp_factor = lumaSampling;
        }
        library.restart_interval = restartInterval;
        library.write_JFIF_header = hasJfif ? boolean{*hasJfif} : library.write_JFIF_header;
        library.write_Adobe_marker = hasAdobe ? boolean{*hasAdobe} : library.write_Adobe_marker;
        library.density_unit = density.unit;
        library.X_density = density.x;
        library.Y_density = density.y;
        configureCoding(library);
    }

    void configureCoding(jpeg_compress_struct& library) const {
        static const jpeg_scan_info separate[] = {
            {1, {0}, 0, 63, 0, 0}, {1, {1}, 0, 63, 0, 0}, {1, {2}, 0, 63, 0, 0}, {1, {3}, 0, 63, 0, 0}};
        switch (coding) {
        case Coding::baseline:
            break;
        case Coding::progressive:
            jpeg_simple_progression(&library);
            break;
        case Coding::arithmetic:
            library.arith_code = TRUE;
            break;
        case Coding::separateScans:
            library.scan_info = separate;
            library.num_scans = library.num_components;
            break;
        }
    }

    void writeSegments(jpeg_compress_struct& library) const {
        if (!exif.isEmpty()) {
            const QByteArray segment = QByteArray("Exif\0\0", 6) + exif;
            jpeg_write_marker(&library, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(segment.constData()),
                              static_cast<unsigned>(segment.size()));
        }
        if (!profile.isEmpty()) {
            jpeg_write_icc_profile(&library, reinterpret_cast<const JOCTET*>(profile.constData()),
                                   static_cast<unsigned>(profile.size()));
        }
    }
};

} // namespace orvex::test
