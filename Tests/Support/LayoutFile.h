#pragma once

namespace orvex::test {

/// A layout file as the program writes it: one artwork, which is selected.
inline constexpr auto layoutFile = R"({
    "gapInches": 0.25,
    "layout": {
        "items": [
            {
                "id": "00000001-0000-0000-0000-000000000000",
                "originalHeightInches": 20,
                "originalWidthInches": 10,
                "pixelHeight": 20000,
                "pixelWidth": 10000,
                "rotationQuarterTurns": 0,
                "sourceURL": "file:///images/art1.png",
                "title": "art1",
                "widthInches": 10,
                "xInches": 1.5,
                "yInches": 2
            }
        ],
        "schemaVersion": 1,
        "widthInches": 60
    },
    "selection": "00000001-0000-0000-0000-000000000000",
    "sizingDescriptions": {
        "00000001-0000-0000-0000-000000000000": "24 × 16 in/out"
    },
    "version": 1
}
)";

} // namespace orvex::test
