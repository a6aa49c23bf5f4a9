#pragma once

#include <QByteArray>

#include <array>
#include <optional>
#include <vector>

namespace orvex::test {

/// A chunk of a PNG file as a test handles it.
struct PngChunk {
    QByteArray type;
    QByteArray data;

    /// With its length and checksum.
    [[nodiscard]] QByteArray bytes() const;
};

/// The chunks of a well-formed file, and a file of chunks.
[[nodiscard]] std::vector<PngChunk> pngChunks(const QByteArray& file);
[[nodiscard]] QByteArray pngFile(const std::vector<PngChunk>& chunks);

/// The file with these chunks put in before the first of that type.
[[nodiscard]] QByteArray withChunksBefore(const QByteArray& file, const QByteArray& type,
                                          const std::vector<PngChunk>& added);

/// The joined data of the file's IDAT chunks, and the file with that data, in chunks of the given sizes and the rest in
/// a last one.
[[nodiscard]] QByteArray imageData(const QByteArray& file);
[[nodiscard]] QByteArray withImageData(const QByteArray& file, const QByteArray& data,
                                       const std::vector<qsizetype>& sizes = {});

[[nodiscard]] QByteArray deflated(const QByteArray& bytes);

/// Nothing if zlib finds the stream damaged; what follows it does not matter.
[[nodiscard]] std::optional<QByteArray> inflated(const QByteArray& stream);

[[nodiscard]] PngChunk pngDensity(quint32 x, quint32 y, quint8 unit);

/// A PNG file of arbitrary pixels, made without any encoder but zlib: each row's bytes are random and belong to a
/// filter, whatever picture that gives.
struct PngFixture {
    quint32 width = 1;
    quint32 height = 1;
    quint8 bitDepth = 8;
    quint8 colorType = 2;
    bool isInterlaced = false;
    std::optional<quint8> filter{}; ///< of all rows; a different one for each if absent
    int paletteSize = 0;            ///< for the colour types that may have one
    QByteArray transparency{};      ///< the data of tRNS; no such chunk if empty
    std::vector<PngChunk> headerChunks{};
    unsigned seed = 1;

    [[nodiscard]] int bitsPerPixel() const;

    /// The rows with their filters' numbers, for all passes.
    [[nodiscard]] QByteArray filteredRows() const;

    [[nodiscard]] QByteArray header() const;
    [[nodiscard]] QByteArray palette() const;
    [[nodiscard]] QByteArray bytes() const;
};

/// What libpng itself makes of a file, with everything expanded to whole bytes and transparency to alpha, in the
/// machine's byte order. Empty if it reports an error.
[[nodiscard]] QByteArray decodedByLibpng(const QByteArray& file);

} // namespace orvex::test
