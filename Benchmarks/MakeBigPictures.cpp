// make-big-pictures FOLDER: the pictures of the comparison with other programs, unless they are there already.

#include "JpegToPng.h"
#include "Photograph.h"
#include "Writers.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <stdexcept>

using namespace orvex::samples;
namespace fs = std::filesystem;

namespace {

/// Makes one file; a broken-off run leaves nothing that looks whole.
void make(const fs::path& file, const std::function<void(const fs::path&)>& write) {
    if (fs::exists(file)) {
        return;
    }
    std::printf("Making %s\n", file.c_str());
    (void)std::fflush(stdout);
    const fs::path part = file.string() + ".part";
    write(part);
    fs::rename(part, file);
}

void writeBytes(const Bytes& bytes, const fs::path& file) {
    std::ofstream output(file, std::ios::binary);
    output.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    output.close();
    if (!output) {
        throw std::runtime_error("Cannot write " + file.string());
    }
}

void makeAll(const fs::path& folder) {
    fs::create_directories(folder);
    make(folder / "press.icc", [](const fs::path& file) { writeBytes(pressProfile(), file); });
    make(folder / "big.jpg", [](const fs::path& file) {
        JpegForm form;
        form.profile = sRgbProfile();
        writeJpeg(photograph(18'000, 12'000, 1), form, file);
    });
    make(folder / "big.png", [&](const fs::path& file) { jpegToPng(folder / "big.jpg", file, sRgbProfile()); });
    make(folder / "big16.tif", [](const fs::path& file) {
        TiffForm form;
        form.bitsPerSample = 16;
        form.compression = TiffForm::Compression::none;
        form.profile = wideGamutProfile();
        writeTiff(photograph(12'000, 8'000, 2), form, file);
    });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make-big-pictures FOLDER\n", stderr);
        return 2;
    }
    try {
        makeAll(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
