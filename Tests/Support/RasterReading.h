#pragma once

#include "Imaging/Raster.h"

#include <gtest/gtest.h>

namespace orvex::test {

/// All rows of a raster in one piece. Adds a failure if the strips are not whole rows in order, or too many.
inline QByteArray pixelsOf(const platform::Raster& raster) {
    QByteArray pixels;
    qint64 nextRow = 0;
    raster.rows([&](const platform::RowStrip& strip) {
        EXPECT_EQ(strip.firstRow, nextRow);
        EXPECT_GE(strip.rowCount, 1);
        EXPECT_LE(strip.rowCount, platform::Raster::largestStripRows);
        EXPECT_EQ(static_cast<qint64>(strip.bytes.size()), strip.rowCount * raster.rowBytes());
        nextRow += strip.rowCount;
        pixels.append(reinterpret_cast<const char*>(strip.bytes.data()), static_cast<qsizetype>(strip.bytes.size()));
    });
    EXPECT_EQ(nextRow, raster.storedHeight());
    return pixels;
}

} // namespace orvex::test
