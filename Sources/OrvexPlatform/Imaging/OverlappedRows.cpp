#include "Imaging/OverlappedRows.h"

#include "Interrupted.h"

#include <array>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <thread>

namespace orvex::platform {

namespace {

/// A ring of strips between one decoding and one consuming thread. Its buffers are used again and again.
class StripQueue {
public:
    /// Decodes all rows into the queue, and ends it. Raises nothing: a failure waits for the consumer.
    void fill(const Raster& raster, const std::stop_token& stop) {
        try {
            raster.rows([&](const RowStrip& strip) { push(strip, stop); });
        } catch (...) {
            failure_ = std::current_exception();
        }
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
        changed_.notify_all();
    }

    /// Hands every strip to the sink, and raises the decoder's failure after the last.
    void drain(const RowSink& sink) {
        for (qint64 taken = 0; waitForStrip(); ++taken) {
            const Slot& slot = slots_[static_cast<std::size_t>(taken % stripsInFlight)];
            sink({slot.firstRow, slot.rowCount, std::span(slot.bytes)});
            const std::lock_guard lock(mutex_);
            --filled_;
            changed_.notify_all();
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

private:
    struct Slot {
        qint64 firstRow = 0;
        qint64 rowCount = 0;
        std::vector<std::byte> bytes;
    };

    void push(const RowStrip& strip, const std::stop_token& stop) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, stop, [this] { return filled_ < stripsInFlight; });
        }
        throwIfStopped(stop);
        // The slot is the decoder's alone until `filled_` counts it.
        Slot& slot = slots_[static_cast<std::size_t>(pushed_++ % stripsInFlight)];
        slot.firstRow = strip.firstRow;
        slot.rowCount = strip.rowCount;
        slot.bytes.assign(strip.bytes.begin(), strip.bytes.end());
        const std::lock_guard lock(mutex_);
        ++filled_;
        changed_.notify_all();
    }

    /// Whether there is a strip; false once the queue has ended.
    bool waitForStrip() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return filled_ > 0 || isEnded_; });
        return filled_ > 0;
    }

    std::array<Slot, stripsInFlight> slots_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    qint64 pushed_ = 0; // the decoder's own
    int filled_ = 0;
    bool isEnded_ = false;
    std::exception_ptr failure_;
};

} // namespace

void overlappedRows(const Raster& raster, const RowSink& sink) {
    StripQueue queue;
    // Leaving this function by the sink's exception asks the thread to stop and waits for it.
    const std::jthread decoder([&](const std::stop_token& stop) { queue.fill(raster, stop); });
    queue.drain(sink);
}

} // namespace orvex::platform
