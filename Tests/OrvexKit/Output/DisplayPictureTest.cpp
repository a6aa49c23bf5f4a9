#include "Output/DisplayPicture.h"

#include "Color/IccProfile.h"
#include "IccFixtures.h"
#include "Imaging/MemoryRaster.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using platform::ColorModel;
using platform::PixelFormat;

template <typename Sample>
QByteArray bytesOf(std::initializer_list<Sample> samples) {
    QByteArray bytes;
    for (const Sample sample : samples) {
        bytes.append(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
    return bytes;
}

DisplayPicture shown(qint64 width, qint64 height, const PixelFormat& format, const QByteArray& bytes,
                     const std::optional<QByteArray>& profile = std::nullopt, qint64 longestSide = 100) {
    return DisplayPictures().make(platform::memoryRaster(width, height, format, profile, bytes), longestSide);
}

} // namespace

TEST(DisplayPicture, ADeviceRgbPictureShowsItsSamples) {
    const QByteArray pixels = bytesOf<quint8>({1, 2, 3, 254, 255, 0});
    EXPECT_EQ(shown(2, 1, {}, pixels), (DisplayPicture{.width = 2, .height = 1, .rgb = pixels}));
}

TEST(DisplayPicture, GrayShowsAsEqualSamples) {
    EXPECT_EQ(shown(2, 1, {.model = ColorModel::gray}, bytesOf<quint8>({0, 200})).rgb,
              bytesOf<quint8>({0, 0, 0, 200, 200, 200}));
}

TEST(DisplayPicture, DeviceInksTakeAwayLight) {
    EXPECT_EQ(shown(3, 1, {.model = ColorModel::cmyk}, bytesOf<quint8>({0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 255})).rgb,
              bytesOf<quint8>({255, 255, 255, 0, 255, 255, 0, 0, 0}));
}

TEST(DisplayPicture, DeeperSamplesShowTheirLevel) {
    EXPECT_EQ(shown(1, 1, {.bitsPerComponent = 16}, bytesOf<quint16>({0, 32768, 65535})).rgb,
              bytesOf<quint8>({0, 128, 255}));
    EXPECT_EQ(shown(1, 1, {.bitsPerComponent = 32}, bytesOf<quint32>({0, 0x80000000, 0xffffffff})).rgb,
              bytesOf<quint8>({0, 128, 255}));
    EXPECT_EQ(shown(1, 1, {.bitsPerComponent = 32, .isFloat = true}, bytesOf<float>({-1.0F, 0.5F, 2.0F})).rgb,
              bytesOf<quint8>({0, 128, 255}));
}

TEST(DisplayPicture, WhatIsTransparentShowsWhite) {
    EXPECT_EQ(shown(2, 1, {.hasAlpha = true}, bytesOf<quint8>({9, 9, 9, 0, 0, 0, 0, 255})).rgb,
              bytesOf<quint8>({255, 255, 255, 0, 0, 0}));
    EXPECT_EQ(shown(1, 1, {.hasAlpha = true}, bytesOf<quint8>({0, 0, 0, 51})).rgb, bytesOf<quint8>({204, 204, 204}));
}

TEST(DisplayPicture, ALargePictureIsAveragedDownWithItsProportions) {
    const DisplayPicture picture =
        shown(4, 2, {.model = ColorModel::gray}, bytesOf<quint8>({0, 100, 50, 50, 0, 100, 50, 50}), std::nullopt, 2);
    EXPECT_EQ(picture, (DisplayPicture{.width = 2, .height = 1, .rgb = bytesOf<quint8>({50, 50, 50, 50, 50, 50})}));
}

TEST(DisplayPicture, AnExtremePictureKeepsAPixelOfItsShortSide) {
    const DisplayPicture picture = shown(1000, 1, {.model = ColorModel::gray}, QByteArray(1000, '\x40'), {}, 10);
    EXPECT_EQ(picture.width, 10);
    EXPECT_EQ(picture.height, 1);
}

TEST(DisplayPicture, ThePictureOfTheScreensOwnSpaceIsNotConverted) {
    const QByteArray pixel = bytesOf<quint8>({10, 150, 240});
    EXPECT_EQ(shown(1, 1, {}, pixel, platform::sRgbProfileData()).rgb, pixel);
}

TEST(DisplayPicture, AProfileIsConvertedToTheScreensSpace) {
    const QByteArray wide = test::icc::saved(test::icc::rgb(2.2));
    const DisplayPicture picture = shown(2, 1, {}, bytesOf<quint8>({0, 255, 0, 128, 128, 128}), wide);
    EXPECT_EQ(picture.rgb.left(3), bytesOf<quint8>({0, 255, 0}));
    const auto gray = static_cast<quint8>(picture.rgb.at(3));
    EXPECT_NEAR(gray, 128, 2);
    EXPECT_NE(shown(1, 1, {}, bytesOf<quint8>({128, 0, 0}), wide).rgb, bytesOf<quint8>({128, 0, 0}));
}

TEST(DisplayPicture, AProfileOfAnotherModelCountsForNothing) {
    const QByteArray rgb = test::icc::saved(test::icc::rgb(2.2));
    EXPECT_EQ(shown(1, 1, {.model = ColorModel::gray}, bytesOf<quint8>({77}), rgb).rgb, bytesOf<quint8>({77, 77, 77}));
    EXPECT_EQ(shown(1, 1, {.model = ColorModel::gray}, bytesOf<quint8>({77}), QByteArray("no profile")).rgb,
              bytesOf<quint8>({77, 77, 77}));
}

} // namespace orvex
