#pragma once

#include "Picture.h"

#include <functional>

namespace orvex::samples {

/// What a person sees at a place: `x` and `y` in pixels of an upright picture of the scene's size, y downward.
using Scene = std::function<Pixel(int x, int y)>;

// Each scene is one artwork, made for any size; the same size gives the same pixels.

/// Mountain ridges before a rising sun, and their reflection in a lake.
[[nodiscard]] Scene mountainDawn(int width, int height);

/// Marbled waves of blue, teal and gold.
[[nodiscard]] Scene marbledTide(int width, int height);

/// A flower with soft edges on transparency.
[[nodiscard]] Scene dahlia(int width, int height);

/// Fruit on a table, lit from a window.
[[nodiscard]] Scene stillLife(int width, int height);

/// Birches in the mist, gray.
[[nodiscard]] Scene birches(int width, int height);

/// A city by the water at night.
[[nodiscard]] Scene harbourLights(int width, int height);

} // namespace orvex::samples
