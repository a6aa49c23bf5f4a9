#pragma once

#include "Imaging/Codecs.h"
#include "JpegFixture.h"
#include "RasterReading.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex::platform {

/// Opens JPEG files made by the test.
class JpegFiles : public ::testing::Test {
protected:
    using JpegFixture = test::JpegFixture;
    using Coding = JpegFixture::Coding;

    [[nodiscard]] std::unique_ptr<ImageSource> open(const QByteArray& bytes) const {
        QFile::remove(folder_.path(fileName)); // a file that is written over may be flushed to the disk every time
        const QString path = folder_.write(fileName, bytes);
        return openJpeg(std::make_shared<const RandomAccessFile>(RandomAccessFile::open(path)));
    }

    /// Opens and decodes everything.
    [[nodiscard]] QByteArray decoded(const QByteArray& bytes) const { return test::pixelsOf(open(bytes)->full()); }

    const QString fileName = QStringLiteral("picture.jpg");
    test::TemporaryFolder folder_;
};

/// The offset of the first segment with that marker, found by walking the headers; -1 without one.
inline qsizetype segmentOffset(const QByteArray& file, quint8 marker) {
    qsizetype offset = 2;
    while (offset + 4 <= file.size() && static_cast<quint8>(file[offset + 1]) != marker) {
        if (static_cast<quint8>(file[offset + 1]) == 0xDA) {
            return -1;
        }
        offset += 2 + static_cast<quint8>(file[offset + 2]) * 256 + static_cast<quint8>(file[offset + 3]);
    }
    return offset + 4 <= file.size() ? offset : -1;
}

/// A segment of that marker and payload.
inline QByteArray segment(quint8 marker, const QByteArray& payload) {
    const auto length = static_cast<quint16>(payload.size() + 2);
    return QByteArray("\xFF", 1) + static_cast<char>(marker) + static_cast<char>(length >> 8) +
           static_cast<char>(length) + payload;
}

} // namespace orvex::platform
