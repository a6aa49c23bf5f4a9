#include "JpegToPng.h"

#include "Writers.h"

#include <jpeglib.h>

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

namespace orvex::samples {

namespace {

[[noreturn]] void fail(j_common_ptr codec) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    codec->err->format_message(codec, message.data());
    throw std::runtime_error(message.data());
}

/// The rows of a JPEG from the top, each once.
class JpegRows {
public:
    explicit JpegRows(const std::filesystem::path& path) : file_(std::fopen(path.c_str(), "rb")) {
        if (!file_) {
            throw std::runtime_error("Cannot read " + path.string());
        }
        codec_.err = jpeg_std_error(&errors_);
        errors_.error_exit = fail;
        jpeg_create_decompress(&codec_);
        jpeg_stdio_src(&codec_, file_.get());
        jpeg_read_header(&codec_, TRUE);
        jpeg_start_decompress(&codec_);
    }

    JpegRows(const JpegRows&) = delete;
    JpegRows& operator=(const JpegRows&) = delete;

    ~JpegRows() { jpeg_destroy_decompress(&codec_); }

    [[nodiscard]] int width() const { return static_cast<int>(codec_.output_width); }

    [[nodiscard]] int height() const { return static_cast<int>(codec_.output_height); }

    void next(std::vector<std::uint8_t>& samples) {
        samples.resize(std::size_t{codec_.output_width} * 3);
        std::uint8_t* row = samples.data();
        jpeg_read_scanlines(&codec_, &row, 1);
    }

private:
    struct Closer {
        void operator()(std::FILE* file) const { (void)std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> file_;
    jpeg_decompress_struct codec_{};
    jpeg_error_mgr errors_{};
};

} // namespace

void jpegToPng(const std::filesystem::path& jpeg, const std::filesystem::path& png, const Bytes& profile) {
    JpegRows rows(jpeg);
    PngForm form;
    form.profile = profile;
    writePngRows(rows.width(), rows.height(), form, png, [&](const RowWriter& write) {
        std::vector<std::uint8_t> samples;
        for (int row = 0; row < rows.height(); ++row) {
            rows.next(samples);
            write(samples);
        }
    });
}

} // namespace orvex::samples
