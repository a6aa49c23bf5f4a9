#pragma once

namespace orvex::platform {

/// What a number may be: a JSON number, or also one of the texts "NaN", "Infinity" and "-Infinity".
enum class JsonNumbers { finite, orNonFiniteText };

} // namespace orvex::platform
