#include "Imaging/PngFilter.h"

#include "Imaging/ImageError.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace orvex::platform {

namespace {

using Bytes = std::vector<std::byte>;

int valueOf(std::byte byte) {
    return std::to_integer<int>(byte);
}

/// PNG 1.2, 6.6, as it stands there.
int paeth(int a, int b, int c) {
    const int p = a + b - c;
    const int pa = std::abs(p - a);
    const int pb = std::abs(p - b);
    const int pc = std::abs(p - c);
    if (pa <= pb && pa <= pc) {
        return a;
    }
    return pb <= pc ? b : c;
}

int predictor(int filter, int a, int b, int c) {
    switch (filter) {
    case 1:
        return a;
    case 2:
        return b;
    case 3:
        return (a + b) / 2;
    case 4:
        return paeth(a, b, c);
    default:
        return 0;
    }
}

/// Undoes the filters byte by byte.
void undoPlainly(const Bytes& filtered, std::size_t rowBytes, std::size_t pixelBytes, Bytes& rows) {
    for (std::size_t row = 0; row < filtered.size() / (rowBytes + 1); ++row) {
        const std::byte* in = filtered.data() + row * (rowBytes + 1);
        const std::byte* above = rows.data() + row * rowBytes;
        std::byte* out = rows.data() + (row + 1) * rowBytes;
        for (std::size_t at = 0; at < rowBytes; ++at) {
            const bool isFirst = at < pixelBytes;
            const int a = isFirst ? 0 : valueOf(out[at - pixelBytes]);
            const int c = isFirst ? 0 : valueOf(above[at - pixelBytes]);
            out[at] = static_cast<std::byte>(valueOf(in[1 + at]) + predictor(valueOf(in[0]), a, valueOf(above[at]), c));
        }
    }
}

class Rows {
public:
    Rows(std::size_t pixels, std::size_t pixelBytes, const std::vector<int>& filters, unsigned seed)
        : rowBytes_(pixels * pixelBytes),
          pixelBytes_(pixelBytes) {
        std::mt19937 random(seed);
        const auto fill = [&](std::size_t count) {
            Bytes bytes(count);
            // Near values as well as far ones, so that every neighbour gets its turn.
            std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random() % (seed % 2 == 0 ? 256 : 4)); });
            return bytes;
        };
        above_ = fill(rowBytes_);
        for (const int filter : filters) {
            filtered_.push_back(static_cast<std::byte>(filter));
            std::ranges::copy(fill(rowBytes_), std::back_inserter(filtered_));
        }
    }

    void expectPlainResult() const {
        const std::size_t count = filtered_.size() / (rowBytes_ + 1);
        Bytes expected((count + 1) * rowBytes_, std::byte{0xEE});
        std::ranges::copy(above_, expected.begin());
        Bytes rows = expected;
        undoPlainly(filtered_, rowBytes_, pixelBytes_, expected);
        undoPngFilters(filtered_, rowBytes_, pixelBytes_, rows);
        EXPECT_EQ(rows, expected);
    }

private:
    std::size_t rowBytes_;
    std::size_t pixelBytes_;
    Bytes above_;
    Bytes filtered_;
};

constexpr std::array<std::size_t, 6> pixelSizes{1, 2, 3, 4, 6, 8};

} // namespace

TEST(PngFilters, AreUndoneInAnyPairOfRows) {
    for (const std::size_t pixelBytes : pixelSizes) {
        for (const std::size_t pixels : std::initializer_list<std::size_t>{1, 2, 3, 4, 5, 16, 67}) {
            for (int filters = 0; filters < 25; ++filters) {
                SCOPED_TRACE(testing::Message() << pixelBytes << " bytes, " << pixels << " pixels, filters "
                                                << filters / 5 << " and " << filters % 5);
                Rows(pixels, pixelBytes, {filters / 5, filters % 5}, 2).expectPlainResult();
                Rows(pixels, pixelBytes, {filters / 5, filters % 5}, 3).expectPlainResult();
            }
        }
    }
}

TEST(PngFilters, AreUndoneInAnyCountOfRows) {
    std::mt19937 random(7);
    for (const std::size_t pixelBytes : pixelSizes) {
        for (std::size_t count = 0; count < 40; ++count) {
            std::vector<int> filters(count);
            std::ranges::generate(filters, [&] { return static_cast<int>(random() % 5); });
            SCOPED_TRACE(testing::Message() << pixelBytes << " bytes, " << count << " rows");
            Rows(1 + count % 9, pixelBytes, filters, static_cast<unsigned>(count)).expectPlainResult();
        }
    }
}

TEST(PngFilters, ThatDoNotExistAreRefusedInAnyRow) {
    for (const std::size_t pixelBytes : pixelSizes) {
        for (std::size_t place = 0; place < 6; ++place) {
            for (const int neighbour : {0, 4}) {
                Bytes filtered(6 * (1 + pixelBytes));
                for (std::size_t row = 0; row < 6; ++row) {
                    filtered[row * (1 + pixelBytes)] = static_cast<std::byte>(row == place ? 5 : neighbour);
                }
                Bytes rows(7 * pixelBytes);
                EXPECT_THROW(undoPngFilters(filtered, pixelBytes, pixelBytes, rows), ImageError);
            }
        }
    }
}

} // namespace orvex::platform
