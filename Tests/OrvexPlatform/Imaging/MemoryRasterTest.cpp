#include "Imaging/MemoryRaster.h"

#include "RasterReading.h"

#include <gtest/gtest.h>

namespace orvex::platform {

TEST(MemoryRaster, KeepsItsFacts) {
    const PixelFormat format{ColorModel::cmyk, 16, false, true};
    const Raster raster = memoryRaster(3, 2, format, QByteArray("profile"), QByteArray(60, 'x'));
    EXPECT_EQ(raster.width(), 3);
    EXPECT_EQ(raster.height(), 2);
    EXPECT_EQ(raster.orientation(), 1);
    EXPECT_EQ(raster.format(), format);
    EXPECT_EQ(raster.iccProfile(), QByteArray("profile"));
}

TEST(MemoryRaster, DeliversItsBytesInStripsAsOftenAsWanted) {
    QByteArray bytes(10 * 700 * 3, '\0');
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<char>(index % 251);
    }
    const Raster raster = memoryRaster(10, 700, {}, std::nullopt, bytes);
    std::vector<qint64> counts;
    raster.rows([&](const RowStrip& strip) { counts.push_back(strip.rowCount); });
    EXPECT_EQ(counts, (std::vector<qint64>{256, 256, 188}));
    EXPECT_EQ(test::pixelsOf(raster), bytes);
    EXPECT_EQ(test::pixelsOf(raster), bytes);
}

} // namespace orvex::platform
