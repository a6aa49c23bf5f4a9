#include "Exif.h"

namespace orvex::samples {

namespace {

void put16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void put32(Bytes& bytes, unsigned value) {
    put16(bytes, value >> 16);
    put16(bytes, value & 0xFFFF);
}

void putEntry(Bytes& bytes, unsigned tag, unsigned type, unsigned value) {
    put16(bytes, tag);
    put16(bytes, type);
    put32(bytes, 1);
    put32(bytes, value);
}

} // namespace

Bytes exifBlock(int orientation, int pixelsPerInch, bool declaresSRgb) {
    constexpr unsigned typeShort = 3;
    constexpr unsigned typeLong = 4;
    constexpr unsigned typeRational = 5;
    const unsigned entries = declaresSRgb ? 5 : 4;
    const unsigned afterDirectory = 8 + 2 + entries * 12 + 4;
    Bytes bytes{'M', 'M', 0, 42};
    put32(bytes, 8);
    put16(bytes, entries);
    putEntry(bytes, 0x0112, typeShort, static_cast<unsigned>(orientation) << 16); // Orientation
    putEntry(bytes, 0x011A, typeRational, afterDirectory);                        // XResolution
    putEntry(bytes, 0x011B, typeRational, afterDirectory + 8);                    // YResolution
    putEntry(bytes, 0x0128, typeShort, 2U << 16);                                 // ResolutionUnit: inch
    if (declaresSRgb) {
        putEntry(bytes, 0x8769, typeLong, afterDirectory + 16); // the Exif directory
    }
    put32(bytes, 0);
    for (int side = 0; side < 2; ++side) {
        put32(bytes, static_cast<unsigned>(pixelsPerInch));
        put32(bytes, 1);
    }
    if (declaresSRgb) {
        put16(bytes, 1);
        putEntry(bytes, 0xA001, typeShort, 1U << 16); // ColorSpace: sRGB
        put32(bytes, 0);
    }
    return bytes;
}

} // namespace orvex::samples
