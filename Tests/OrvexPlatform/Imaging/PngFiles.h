#pragma once

#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"
#include "PngFixture.h"
#include "RasterReading.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex::platform {

/// Opens PNG files made by the test.
class PngFiles : public ::testing::Test {
protected:
    using PngChunk = test::PngChunk;
    using PngFixture = test::PngFixture;

    QString write(const QByteArray& bytes) const {
        QFile::remove(folder_.path(fileName)); // a file that is written over may be flushed to the disk every time
        return folder_.write(fileName, bytes);
    }

    [[nodiscard]] std::unique_ptr<ImageSource> open(const QByteArray& bytes) const {
        return openPng(std::make_shared<const RandomAccessFile>(RandomAccessFile::open(write(bytes))));
    }

    /// Opens and decodes everything.
    [[nodiscard]] QByteArray decoded(const QByteArray& bytes) const { return test::pixelsOf(open(bytes)->full()); }

    const QString fileName = QStringLiteral("picture.png");
    test::TemporaryFolder folder_;
};

} // namespace orvex::platform
