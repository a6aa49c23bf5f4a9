#pragma once

#include "Output/FileStamp.h"
#include "Output/ImageMetadata.h"

#include <memory>

namespace orvex {

/// Keeps the pixels of all previews of a session within a budget of memory. A preview that it hands out is a promise of
/// rows like any other; pixels that had to go are read again from the picture's file. Any thread.
class PreviewStore {
public:
    static constexpr qint64 defaultBudgetBytes = 336 << 20;

    explicit PreviewStore(qint64 budgetBytes = defaultBudgetBytes);

    /// What a file's inspection gave, with a preview of the same facts whose pixels the store keeps; `stamp` is that of
    /// the inspected file. Of equal colour profiles, only one is kept in memory.
    ///
    /// The preview's rows come from memory, or else from the file, which is then kept in memory again; the pixels used
    /// least recently go, so that the sum stays within the budget, and those larger than the budget are never kept.
    /// They go, too, with the last copy of the preview, which may outlive the store. Reading the file again raises
    /// OrvexError if it no longer is what was inspected, and FileSystemError if it cannot be read.
    [[nodiscard]] ImageMetadata hold(const ImageMetadata& metadata, const FileStamp& stamp) const;

    /// The size of all pixels in memory.
    [[nodiscard]] qint64 heldBytes() const;

private:
    class Shelf;
    class Preview;

    std::shared_ptr<Shelf> shelf_;
};

} // namespace orvex
