#pragma once

namespace orvex::platform {

/// A density of one pixel per centimetre is so many per inch.
inline constexpr double centimetresPerInch = 2.54;

} // namespace orvex::platform
