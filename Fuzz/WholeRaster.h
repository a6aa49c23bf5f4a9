#pragma once

#include "Imaging/ImageError.h"
#include "Imaging/ImageSource.h"

#include <cstdlib>

namespace orvex::fuzz {

/// Whether all rows of a raster come; a refusal is an answer. Rows that are not what was promised end the program.
inline bool decodes(const platform::Raster& raster) {
    qint64 nextRow = 0;
    try {
        raster.rows([&](const platform::RowStrip& strip) {
            const auto expected = static_cast<std::size_t>(strip.rowCount * raster.rowBytes());
            if (strip.firstRow != nextRow || strip.bytes.size() != expected) {
                std::abort();
            }
            nextRow += strip.rowCount;
        });
    } catch (const platform::ImageError&) {
        return false;
    }
    if (nextRow != raster.storedHeight()) {
        std::abort();
    }
    return true;
}

inline bool makesPreview(const platform::ImageSource& image) {
    try {
        return decodes(image.preview(50));
    } catch (const platform::ImageError&) {
        return false;
    }
}

} // namespace orvex::fuzz
