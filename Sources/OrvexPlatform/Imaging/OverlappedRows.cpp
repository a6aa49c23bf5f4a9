#include "Imaging/OverlappedRows.h"

#include "Interrupted.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace orvex::platform {

namespace {

/// The strips between one decoding and one consuming thread.
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
    void drain(const std::function<void(OwnedStrip)>& sink) {
        while (waitForStrip()) {
            sink(std::move(strips_.front()));
            const std::lock_guard lock(mutex_);
            strips_.pop_front();
            changed_.notify_all();
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

private:
    void push(const RowStrip& strip, const std::stop_token& stop) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, stop, [this] { return std::ssize(strips_) < stripsInFlight; });
        }
        throwIfStopped(stop);
        OwnedStrip copy{strip.firstRow, strip.rowCount, std::vector(strip.bytes.begin(), strip.bytes.end())};
        const std::lock_guard lock(mutex_);
        strips_.push_back(std::move(copy));
        changed_.notify_all();
    }

    /// Whether there is a strip; false once the queue has ended.
    bool waitForStrip() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !strips_.empty() || isEnded_; });
        return !strips_.empty();
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<OwnedStrip> strips_; // the first of which the sink works on
    bool isEnded_ = false;
    std::exception_ptr failure_;
};

} // namespace

void overlappedRows(const Raster& raster, const RowSink& sink) {
    overlappedStrips(raster, [&sink](const OwnedStrip& strip) {
        sink({.firstRow = strip.firstRow, .rowCount = strip.rowCount, .bytes = strip.bytes});
    });
}

void overlappedStrips(const Raster& raster, const std::function<void(OwnedStrip)>& sink) {
    StripQueue queue;
    // Leaving this function by the sink's exception asks the thread to stop and waits for it.
    const std::jthread decoder([&](const std::stop_token& stop) { queue.fill(raster, stop); });
    queue.drain(sink);
}

} // namespace orvex::platform
