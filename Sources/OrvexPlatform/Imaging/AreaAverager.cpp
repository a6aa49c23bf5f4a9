#include "Imaging/AreaAverager.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

namespace orvex::platform {

namespace {

// Positions and weights are whole numbers: along a side, a source pixel is `target` units long and a target pixel is
// `source` units, so that the borders of both fall on whole units and no area is lost to rounding.

/// Sums in single precision, of which the processor works on twice as many at a time, are exact enough for the means
/// of integers of 16 bits as long as a target pixel is made of so many source pixels a side at most.
constexpr qint64 largestSingleRatio = 64;

/// What the samples of eight rows are summed in.
template <typename Sample>
struct Summation {
    using Rows = double;
};

template <>
struct Summation<std::uint8_t> {
    using Rows = std::uint16_t;
};

template <>
struct Summation<std::uint16_t> {
    using Rows = std::int32_t; // converts to floating point in one step, unlike its unsigned twin
};

/// The columns of the source that a target pixel covers.
template <typename Sum>
struct Cover {
    std::size_t first = 0;
    std::size_t count = 0;
    Sum firstWeight = 0;
    Sum lastWeight = 0; ///< 0 if there is one column only
};

template <typename Sum>
std::vector<Cover<Sum>> coverColumns(qint64 source, qint64 target) {
    std::vector<Cover<Sum>> covers(static_cast<std::size_t>(target));
    qint64 begin = 0;
    for (Cover<Sum>& cover : covers) {
        const qint64 end = begin + source;
        const qint64 first = begin / target;
        const qint64 last = (end - 1) / target;
        cover.first = static_cast<std::size_t>(first);
        cover.count = static_cast<std::size_t>(last - first + 1);
        cover.firstWeight = static_cast<Sum>(std::min(end, (first + 1) * target) - begin);
        cover.lastWeight = last > first ? static_cast<Sum>(end - last * target) : Sum{0};
        begin = end;
    }
    return covers;
}

/// Adds `rowCount` rows to the sums.
template <std::size_t rowCount, typename Sample, typename Sum>
void addRows(Sum* __restrict sums, const Sample* __restrict first, std::size_t stride, std::size_t length, Sum weight) {
    using Rows = typename Summation<Sample>::Rows;
    for (std::size_t index = 0; index < length; ++index) {
        Rows total = static_cast<Rows>(first[index]);
        for (std::size_t row = 1; row < rowCount; ++row) {
            total = static_cast<Rows>(total + static_cast<Rows>(first[row * stride + index]));
        }
        sums[index] += weight * static_cast<Sum>(total);
    }
}

/// Adds any count of rows, a block of columns after the other, whose sums stay in the first cache meanwhile.
template <typename Sample, typename Sum>
void addOpaqueRows(Sum* sums, const Sample* rows, std::size_t stride, std::size_t rowCount, Sum weight) {
    constexpr std::size_t blockLength = 2048;
    for (std::size_t begin = 0; begin < stride; begin += blockLength) {
        const std::size_t length = std::min(blockLength, stride - begin);
        const Sample* block = rows + begin;
        std::size_t left = rowCount;
        for (; left >= 8; left -= 8, block += 8 * stride) {
            addRows<8>(sums + begin, block, stride, length, weight);
        }
        for (; left >= 4; left -= 4, block += 4 * stride) {
            addRows<4>(sums + begin, block, stride, length, weight);
        }
        for (; left >= 1; --left, block += stride) {
            addRows<1>(sums + begin, block, stride, length, weight);
        }
    }
}

/// Adds one row whose last sample of each pixel is alpha, by which the colours count.
template <std::size_t samples, typename Sample, typename Sum>
void addRowWithAlpha(Sum* __restrict sums, const Sample* __restrict row, std::size_t pixelCount, Sum weight) {
    constexpr std::size_t colors = samples - 1;
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel, sums += samples, row += samples) {
        const Sum alpha = weight * static_cast<Sum>(row[colors]);
        for (std::size_t index = 0; index < colors; ++index) {
            sums[index] += alpha * static_cast<Sum>(row[index]);
        }
        sums[colors] += alpha;
    }
}

template <typename Sample, typename Sum>
Sample sampleOf(Sum mean) {
    if constexpr (std::is_integral_v<Sample>) {
        constexpr Sum largest = static_cast<Sum>(std::numeric_limits<Sample>::max());
        return static_cast<Sample>(std::min(mean + Sum{0.5}, largest));
    } else {
        return static_cast<Sample>(mean);
    }
}

template <typename Sample, typename Sum, std::size_t samples, bool hasAlpha>
class Averager final : public AreaAverager {
public:
    Averager(Size source, Size target, RowWriter writer)
        : source_(source),
          target_(target),
          writer_(std::move(writer)),
          covers_(coverColumns<Sum>(source.width, target.width)),
          sums_(static_cast<std::size_t>(source.width) * samples),
          pixels_(static_cast<std::size_t>(target.width) * samples) {}

    void add(const RowStrip& strip) override {
        const auto* const rows = reinterpret_cast<const Sample*>(strip.bytes.data());
        const qint64 end = (strip.firstRow + strip.rowCount) * target_.height;
        for (qint64 position = strip.firstRow * target_.height; position < end;) {
            const qint64 border = (targetRow_ + 1) * source_.height;
            const qint64 row = position / target_.height;
            const qint64 wholeRows = (std::min(border, end) - position) / target_.height;
            const Sample* const samplesOfRow = rows + static_cast<std::size_t>(row - strip.firstRow) * sums_.size();
            if (wholeRows > 0 && position % target_.height == 0) {
                accumulate(samplesOfRow, wholeRows, target_.height);
                position += wholeRows * target_.height;
            } else {
                const qint64 next = std::min(border, (row + 1) * target_.height);
                accumulate(samplesOfRow, 1, next - position);
                position = next;
            }
            if (position == border) {
                finishRow();
            }
        }
    }

private:
    void accumulate(const Sample* rows, qint64 rowCount, qint64 weight) {
        const auto count = static_cast<std::size_t>(rowCount);
        if constexpr (hasAlpha) {
            const auto width = static_cast<std::size_t>(source_.width);
            for (std::size_t row = 0; row < count; ++row) {
                addRowWithAlpha<samples>(sums_.data(), rows + row * sums_.size(), width, static_cast<Sum>(weight));
            }
        } else {
            addOpaqueRows(sums_.data(), rows, sums_.size(), count, static_cast<Sum>(weight));
        }
    }

    void finishRow() {
        const auto full = static_cast<Sum>(target_.width);
        Sample* pixel = pixels_.data();
        for (const Cover<Sum>& cover : covers_) {
            const Sum* sum = sums_.data() + cover.first * samples;
            Sum inner[samples] = {};
            for (std::size_t column = 1; column + 1 < cover.count; ++column) {
                for (std::size_t index = 0; index < samples; ++index) {
                    inner[index] += sum[column * samples + index];
                }
            }
            const Sum* last = sum + (cover.count - 1) * samples;
            for (std::size_t index = 0; index < samples; ++index) {
                inner[index] = cover.firstWeight * sum[index] + full * inner[index] + cover.lastWeight * last[index];
            }
            store(inner, pixel);
            pixel += samples;
        }
        writer_(targetRow_, std::as_bytes(std::span(pixels_)));
        std::ranges::fill(sums_, Sum{0});
        ++targetRow_;
    }

    void store(const Sum* sums, Sample* pixel) const {
        // The weights of a target pixel's area sum up to this, whatever its position.
        const Sum perArea =
            static_cast<Sum>(1.0 / (static_cast<double>(source_.width) * static_cast<double>(source_.height)));
        if constexpr (!hasAlpha) {
            for (std::size_t index = 0; index < samples; ++index) {
                pixel[index] = sampleOf<Sample>(sums[index] * perArea);
            }
        } else {
            const Sum alpha = sums[samples - 1];
            const Sum perAlpha = alpha != 0 ? 1 / alpha : Sum{0};
            for (std::size_t index = 0; index < samples - 1; ++index) {
                pixel[index] = sampleOf<Sample>(sums[index] * perAlpha);
            }
            pixel[samples - 1] = sampleOf<Sample>(alpha * perArea);
        }
    }

    Size source_;
    Size target_;
    RowWriter writer_;
    std::vector<Cover<Sum>> covers_;
    std::vector<Sum> sums_; ///< of the target row that is under way
    std::vector<Sample> pixels_;
    qint64 targetRow_ = 0;
};

template <typename Sample, typename Sum>
std::unique_ptr<AreaAverager> makeFor(const PixelFormat& format, AreaAverager::Size source, AreaAverager::Size target,
                                      AreaAverager::RowWriter writer) {
    const auto make = [&]<std::size_t samples, bool hasAlpha>() -> std::unique_ptr<AreaAverager> {
        return std::make_unique<Averager<Sample, Sum, samples, hasAlpha>>(source, target, std::move(writer));
    };
    switch (format.model) {
    case ColorModel::gray:
        return format.hasAlpha ? make.template operator()<2, true>() : make.template operator()<1, false>();
    case ColorModel::rgb:
        return format.hasAlpha ? make.template operator()<4, true>() : make.template operator()<3, false>();
    case ColorModel::cmyk:
        return format.hasAlpha ? make.template operator()<5, true>() : make.template operator()<4, false>();
    }
    return nullptr;
}

} // namespace

std::unique_ptr<AreaAverager> AreaAverager::make(const PixelFormat& format, Size source, Size target,
                                                 RowWriter writer) {
    const bool isSingleEnough =
        source.width / target.width < largestSingleRatio && source.height / target.height < largestSingleRatio;
    if (format.isFloat) {
        return makeFor<float, double>(format, source, target, std::move(writer));
    }
    switch (format.bitsPerComponent) {
    case 8:
        return isSingleEnough ? makeFor<std::uint8_t, float>(format, source, target, std::move(writer))
                              : makeFor<std::uint8_t, double>(format, source, target, std::move(writer));
    case 16:
        return isSingleEnough ? makeFor<std::uint16_t, float>(format, source, target, std::move(writer))
                              : makeFor<std::uint16_t, double>(format, source, target, std::move(writer));
    default:
        return makeFor<std::uint32_t, double>(format, source, target, std::move(writer));
    }
}

} // namespace orvex::platform
