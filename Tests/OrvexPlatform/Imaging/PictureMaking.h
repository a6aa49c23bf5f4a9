#pragma once

#include "Imaging/Raster.h"

#include <cstring>
#include <random>

namespace orvex::platform {

/// A pixel format, and its samples as numbers.
struct SampleType {
    int bits = 8;
    bool isFloat = false;

    [[nodiscard]] qsizetype bytes() const { return bits / 8; }

    [[nodiscard]] double largest() const { return isFloat ? 1.0 : std::exp2(bits) - 1.0; }

    void write(QByteArray& to, double value) const {
        const auto append = [&](auto sample) { to.append(reinterpret_cast<const char*>(&sample), sizeof sample); };
        if (isFloat) {
            append(static_cast<float>(value));
        } else if (bits == 8) {
            append(static_cast<quint8>(value));
        } else if (bits == 16) {
            append(static_cast<quint16>(value));
        } else {
            append(static_cast<quint32>(value));
        }
    }

    [[nodiscard]] double read(const QByteArray& from, qsizetype index) const {
        const auto sample = [&](auto value) {
            std::memcpy(&value, from.constData() + index * bytes(), sizeof value);
            return static_cast<double>(value);
        };
        if (isFloat) {
            return sample(0.0F);
        }
        return bits == 8 ? sample(quint8{}) : bits == 16 ? sample(quint16{}) : sample(quint32{});
    }
};

inline const std::vector<SampleType>& sampleTypes() {
    static const std::vector<SampleType> types{{8}, {16}, {32}, {32, true}};
    return types;
}

inline QByteArray noise(SampleType type, qint64 sampleCount) {
    std::mt19937 random(static_cast<unsigned>(sampleCount));
    std::uniform_real_distribution<double> distribution(0.0, 1.0);
    QByteArray bytes;
    for (qint64 index = 0; index < sampleCount; ++index) {
        const double value = distribution(random) * type.largest();
        type.write(bytes, type.isFloat ? value : std::round(value));
    }
    return bytes;
}

} // namespace orvex::platform
