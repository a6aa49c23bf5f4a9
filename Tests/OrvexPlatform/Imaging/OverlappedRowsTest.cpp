#include "Imaging/OverlappedRows.h"

#include "Imaging/ImageError.h"
#include "RasterReading.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace orvex::platform {

namespace {

/// Strips of one row whose bytes are the row's number; counts how far the decoding went.
class CountingSource : public RowSource {
public:
    static constexpr qint64 rowBytes = 3;

    explicit CountingSource(qint64 height, qint64 failingRow = -1) : height_(height), failingRow_(failingRow) {}

    void rows(const RowSink& sink) const override {
        decodingThread = std::this_thread::get_id();
        for (qint64 row = 0; row < height_; ++row) {
            if (row == failingRow_) {
                throw ImageError(QStringLiteral("row %1 is damaged").arg(row));
            }
            const std::vector<std::byte> bytes(rowBytes, static_cast<std::byte>(row));
            ++decoded;
            sink({row, 1, bytes});
        }
        isWhole = true;
    }

    mutable std::atomic<qint64> decoded = 0;
    mutable std::atomic<bool> isWhole = false;
    mutable std::thread::id decodingThread;

private:
    qint64 height_;
    qint64 failingRow_;
};

Raster rasterOf(const std::shared_ptr<const CountingSource>& source, qint64 height) {
    return {1, height, 1, PixelFormat{}, std::nullopt, source};
}

} // namespace

TEST(OverlappedRows, DeliversEveryRowInOrderOnTheCallersThread) {
    const auto source = std::make_shared<const CountingSource>(1000);
    const auto caller = std::this_thread::get_id();
    qint64 next = 0;
    overlappedRows(rasterOf(source, 1000), [&](const RowStrip& strip) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        EXPECT_EQ(strip.firstRow, next++);
        EXPECT_EQ(strip.rowCount, 1);
        ASSERT_EQ(strip.bytes.size(), 3U);
        EXPECT_EQ(strip.bytes[2], static_cast<std::byte>(strip.firstRow));
    });
    EXPECT_EQ(next, 1000);
    EXPECT_NE(source->decodingThread, caller);
}

TEST(OverlappedRows, DecodesNoFurtherAheadThanItsStripsInFlight) {
    const auto source = std::make_shared<const CountingSource>(200);
    qint64 consumed = 0;
    overlappedRows(rasterOf(source, 200), [&](const RowStrip&) {
        // The one that is being handed over stands in no slot yet.
        EXPECT_LE(source->decoded, consumed + stripsInFlight + 1);
        if (consumed < 20) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ++consumed;
    });
    EXPECT_EQ(consumed, 200);
}

TEST(OverlappedRows, PassesOnTheDecodersFailureAfterTheRowsBeforeIt) {
    for (const qint64 failingRow : {0, 1, 2, 3, 4, 50}) {
        const auto source = std::make_shared<const CountingSource>(100, failingRow);
        qint64 consumed = 0;
        try {
            overlappedRows(rasterOf(source, 100), [&](const RowStrip&) { ++consumed; });
            FAIL() << "nothing was raised";
        } catch (const ImageError& error) {
            EXPECT_EQ(error.message(), QStringLiteral("row %1 is damaged").arg(failingRow));
        }
        EXPECT_EQ(consumed, failingRow);
    }
}

TEST(OverlappedRows, StopsTheDecoderWhenTheSinkFails) {
    constexpr qint64 height = 1'000'000'000;
    for (const qint64 failingRow : {0, 1, 2, 3, 10}) {
        const auto source = std::make_shared<const CountingSource>(height);
        const auto sink = [&](const RowStrip& strip) {
            if (strip.firstRow == failingRow) {
                throw std::runtime_error("the disk is full");
            }
        };
        EXPECT_THROW(overlappedRows(rasterOf(source, height), sink), std::runtime_error);
        EXPECT_FALSE(source->isWhole);
        EXPECT_LE(source->decoded, failingRow + stripsInFlight + 1);
    }
}

TEST(OverlappedRows, RaisesTheSinksFailureWhereBothFail) {
    const auto source = std::make_shared<const CountingSource>(10, 2);
    EXPECT_THROW(overlappedRows(rasterOf(source, 10), [](const RowStrip&) { throw std::runtime_error("full"); }),
                 std::runtime_error);
}

TEST(OverlappedRows, CanBeNested) {
    const auto inner = std::make_shared<const CountingSource>(20);
    qint64 consumed = 0;
    overlappedRows(rasterOf(std::make_shared<const CountingSource>(20), 20),
                   [&](const RowStrip&) { overlappedRows(rasterOf(inner, 20), [&](const RowStrip&) { ++consumed; }); });
    EXPECT_EQ(consumed, 400);
}

TEST(OverlappedRows, EndsAtOnceForAPictureWithoutRows) {
    overlappedRows(rasterOf(std::make_shared<const CountingSource>(0), 0), [](const RowStrip&) { FAIL(); });
}

} // namespace orvex::platform
