#pragma once

#include <QtGlobal>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

namespace orvex::platform {

/// A large table of values that become known one by one, each of which may be computed by several threads to the same
/// end. Memory is taken where values are known, in pages of the system. Any thread, and several at once.
template <typename Value>
class KnownColors {
public:
    explicit KnownColors(std::size_t count) : values_(zeroed<Value>(count)), known_(zeroed<quint64>(count / 64)) {}

    [[nodiscard]] bool isKnown(std::size_t index) const {
        return (std::atomic_ref(known_[index / 64]).load(std::memory_order_acquire) >> (index % 64) & 1U) != 0;
    }

    /// Has what is known of a value brought near the processor: a table of colours is larger than its caches.
    void prefetch(std::size_t index) const {
        __builtin_prefetch(&known_[index / 64]);
        __builtin_prefetch(&values_[index]);
    }

    /// A value that is known to the calling thread.
    [[nodiscard]] Value at(std::size_t index) const {
        return std::atomic_ref(values_[index]).load(std::memory_order_relaxed);
    }

    void learn(std::size_t index, Value value) {
        std::atomic_ref(values_[index]).store(value, std::memory_order_relaxed);
        std::atomic_ref(known_[index / 64]).fetch_or(quint64{1} << (index % 64), std::memory_order_release);
    }

private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };

    template <typename T>
    using Array = std::unique_ptr<T[], Free>;

    /// Zeros of the system, which become memory when they are written.
    template <typename T>
    static Array<T> zeroed(std::size_t count) {
        auto* memory = static_cast<T*>(std::calloc(count, sizeof(T)));
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return Array<T>(memory);
    }

    Array<Value> values_;
    Array<quint64> known_; // a bit for each value
};

/// The place of three samples of 8 bits in a table of all such colours. Colours that are alike lie close together.
[[nodiscard]] constexpr std::size_t colorIndex(quint32 first, quint32 second, quint32 third) {
    const quint32 block = (first >> 3U) << 10U | (second >> 3U) << 5U | third >> 3U;
    return std::size_t{block << 9U | (first & 7U) << 6U | (second & 7U) << 3U | (third & 7U)};
}

inline constexpr std::size_t colorIndexCount = std::size_t{1} << 24U;

} // namespace orvex::platform
