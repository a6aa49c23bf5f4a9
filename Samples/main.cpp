#include "Scenes.h"
#include "Writers.h"

#include <cstdio>
#include <exception>
#include <string>

using namespace orvex::samples;
namespace fs = std::filesystem;

namespace {

struct Sample {
    std::string name;
    std::function<void(const fs::path&)> write;
};

JpegForm grayTurned(int pixelsPerInch) {
    JpegForm form;
    form.isGray = true;
    form.orientation = 6;
    form.pixelsPerInch = pixelsPerInch;
    return form;
}

// The upright sizes divide into quarter inches: 24 x 16, 24 x 18, 16 x 16, 20 x 16, 16 x 24 and 16 x 9.
std::vector<Sample> samples() {
    return {
        {"mountain-dawn.jpg",
         [](const fs::path& file) {
             writeJpeg(pictureOf(2400, 1600, mountainDawn(2400, 1600)),
                       {.pixelsPerInch = 100, .orientation = {}, .profile = sRgbProfile()}, file);
         }},
        {"marbled-tide.tif",
         [](const fs::path& file) {
             writeTiff(pictureOf(2400, 1800, marbledTide(2400, 1800)),
                       {.bitsPerSample = 16, .pixelsPerInch = 100, .profile = wideGamutProfile()}, file);
         }},
        {"dahlia.png",
         [](const fs::path& file) {
             writePng(pictureOf(1600, 1600, dahlia(1600, 1600)),
                      {.hasAlpha = true, .pixelsPerInch = 100, .profile = sRgbProfile()}, file);
         }},
        {"still-life.tif",
         [](const fs::path& file) {
             writeTiff(pictureOf(2000, 1600, stillLife(2000, 1600)),
                       {.isCmyk = true, .pixelsPerInch = 100, .profile = sRgbProfile()}, file);
         }},
        {"birches.jpg",
         [](const fs::path& file) {
             writeJpeg(storedForOrientation6(birches(1600, 2400), 1600, 2400), grayTurned(100), file);
         }},
        {"harbour-lights.heic",
         [](const fs::path& file) {
             writeHeif(pictureOf(1920, 1080, harbourLights(1920, 1080)),
                       {.pixelsPerInch = 120, .profile = displayP3Profile()}, file);
         }},
    };
}

/// Writes one artwork unless it is there; a broken-off run leaves nothing that looks whole.
void make(const Sample& sample, const fs::path& folder) {
    const fs::path file = folder / sample.name;
    if (fs::exists(file)) {
        return;
    }
    const fs::path part = folder / (".part-" + sample.name);
    sample.write(part);
    fs::rename(part, file);
    std::printf("Made %s\n", file.c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make-samples FOLDER\n", stderr);
        return 2;
    }
    try {
        fs::create_directories(argv[1]);
        for (const Sample& sample : samples()) {
            make(sample, argv[1]);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
