#pragma once

#include "Layout/BatchArtworkSizing.h"
#include "Layout/RollArtwork.h"

#include <optional>

namespace orvex {

enum class BatchDimension { width, height };

/// One field of the table of print sizes.
struct BatchFieldID {
    QUuid id; ///< of the row's artwork
    BatchDimension dimension = BatchDimension::width;

    bool operator==(const BatchFieldID&) const = default;
};

/// What to say of an entry that is no size, in the current language.
[[nodiscard]] QString batchSizeNotPositive();

/// One row of the table of print sizes: what was typed for an artwork, and the size that comes of it. Inches, border
/// excluded. Numbers are read and shown in the current locale. Main thread.
struct BatchSizeDraft {
    RollArtwork item; ///< as it was on opening; its id is the row's
    double rollWidth = 0.0;
    RollArtwork reference; ///< whose proportions hold: the item, or its turned form after a paste
    bool enabled = true;
    QString widthText;
    QString heightText;
    std::optional<double> width;
    std::optional<double> height;
    std::optional<QString> sizingIssue; ///< why the last entry cannot be met

    /// The row of an artwork: at the nearest pair of quarter inches, or at the present size with an issue.
    [[nodiscard]] static BatchSizeDraft make(const RollArtwork& item, double rollWidth);

    bool operator==(const BatchSizeDraft&) const = default;

    [[nodiscard]] const QString& text(BatchDimension dimension) const;

    /// Takes a text as it is typed into one field; the other field follows at once if a size comes of it.
    void edit(const QString& text, BatchDimension dimension);

    /// Shows the size in force in both fields, if there is one without an issue.
    void confirm();

    /// Takes the size, and the turn, that a pasted size gave the artwork. Raises OrvexError, and then changes nothing,
    /// if no pair of quarter inches fits.
    void take(const RollArtwork& sized);

    /// What the row asks for. Raises OrvexError for a row without a valid size.
    [[nodiscard]] BatchArtworkSizeRequest request() const;
};

} // namespace orvex
