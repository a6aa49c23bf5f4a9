#pragma once

#include <functional>
#include <span>
#include <vector>

namespace orvex::samples {

/// One pixel of a made picture: values from 0 to 1 as the picture's colour space encodes them; alpha not multiplied in.
struct Pixel {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;
};

/// A picture as a rule: `row` fills the pixels of one row (0 is the top), in any order and from any thread.
struct Picture {
    int width = 0;
    int height = 0;
    std::function<void(int row, std::span<Pixel> pixels)> row;
};

/// A picture given pixel by pixel.
[[nodiscard]] Picture pictureOf(int width, int height, std::function<Pixel(int x, int y)> pixel);

/// The stored picture of which `upright` is what a viewer shows who obeys orientation 6.
[[nodiscard]] Picture storedForOrientation6(std::function<Pixel(int x, int y)> upright, int uprightWidth,
                                            int uprightHeight);

/// Makes every row, in bands on all cores, and hands them over in order from the top.
void forEachRow(const Picture& picture, const std::function<void(std::span<const Pixel>)>& sink);

} // namespace orvex::samples
