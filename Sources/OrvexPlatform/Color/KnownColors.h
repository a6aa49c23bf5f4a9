#pragma once

#include <QtGlobal>

#include <sys/mman.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

namespace orvex::platform {

/// The pages of memory that a table consists of. Where neighbouring pixels need places all over a large table, a third
/// of the time goes into finding small pages; where few places are needed, large pages are mostly waste.
enum class TablePages { small, large };

/// Asks for large pages where memory has not been used yet. A system that has none does without.
inline void useLargePages(void* memory, std::size_t bytes) {
    constexpr std::size_t pageBytes = std::size_t{1} << 21U;
    if (std::align(pageBytes, pageBytes, memory, bytes) != nullptr) {
        ::madvise(memory, bytes, MADV_HUGEPAGE);
    }
}

/// A large table of values that become known one by one, each of which may be computed by several threads to the same
/// end. What is not known is zero, in memory that the system gives when it is first needed. Any thread, and several at
/// once.
template <typename Value>
class KnownColors {
public:
    KnownColors(std::size_t count, TablePages pages) : values_(static_cast<Value*>(std::calloc(count, sizeof(Value)))) {
        if (!values_) {
            throw std::bad_alloc();
        }
        if (pages == TablePages::large) {
            useLargePages(values_.get(), count * sizeof(Value));
        }
    }

    /// Has a value brought near the processor: a table of colours is larger than its caches.
    void prefetch(std::size_t index) const { __builtin_prefetch(&values_[index]); }

    [[nodiscard]] Value at(std::size_t index) const {
        return std::atomic_ref(values_[index]).load(std::memory_order_acquire);
    }

    void learn(std::size_t index, Value value) {
        std::atomic_ref(values_[index]).store(value, std::memory_order_release);
    }

private:
    struct Free {
        void operator()(Value* memory) const { std::free(memory); }
    };

    std::unique_ptr<Value[], Free> values_;
};

/// The place of three samples of 8 bits in a table of all such colours. Colours that are alike lie close together.
[[nodiscard]] constexpr std::size_t colorIndex(quint32 first, quint32 second, quint32 third) {
    const quint32 block = (first >> 3U) << 10U | (second >> 3U) << 5U | third >> 3U;
    return std::size_t{block << 9U | (first & 7U) << 6U | (second & 7U) << 3U | (third & 7U)};
}

inline constexpr std::size_t colorIndexCount = std::size_t{1} << 24U;

} // namespace orvex::platform
