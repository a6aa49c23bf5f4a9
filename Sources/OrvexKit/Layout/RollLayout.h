#pragma once

#include "Json/JsonReader.h"
#include "Layout/BatchArtworkSizing.h"
#include "Layout/RollArtwork.h"
#include "Layout/RollKeyboardNudge.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvex {

/// Whether the JSON form of a layout holds only what a file may hold (`checked`: a valid roll width, finite numbers),
/// or any layout at all (`lenient`: any width; numbers that are not finite are texts).
enum class LayoutCoding { checked, lenient };

/// One long canvas of a fixed width with artworks on it. Inches, origin at the top left, y grows along the roll without
/// limit. `items` keeps the order of addition, whatever the positions. A plain value that is cheap to copy; any thread.
///
/// Every operation that changes a layout raises OrvexError when it refuses, and then leaves the layout as it was.
struct RollLayout {
    static constexpr qint64 currentSchemaVersion = 1;
    static constexpr double rollWidthInches = 60.0; ///< the default and the maximum width
    static constexpr double defaultGapInches = 0.0; ///< trim frames may touch

    qint64 schemaVersion = currentSchemaVersion;
    QList<RollArtwork> items;
    double widthInches = rollWidthInches;

    explicit RollLayout(QList<RollArtwork> artworks = {}, double rollWidth = rollWidthInches)
        : items(std::move(artworks)),
          widthInches(rollWidth) {}

    bool operator==(const RollLayout&) const = default;

    /// The canvas in use: the largest bottom edge of any trim frame, 0 without artworks, NaN if an edge is not finite.
    [[nodiscard]] double lengthInches() const;

    // Validators: the message to show, or nothing.

    [[nodiscard]] std::optional<QString> widthValidationError() const;

    /// Version, width, distinct ids and every artwork; overlap is no part of it.
    [[nodiscard]] std::optional<QString> structureValidationError() const;

    /// What keeps the layout from becoming a PDF: the structure, an empty roll, frames that overlap.
    [[nodiscard]] std::optional<QString> exportValidationError() const;

    /// The version alone, as every operation asks first.
    [[nodiscard]] std::optional<QString> versionValidationError() const;

    [[nodiscard]] bool hasDistinctIDs() const;

    // Editing of single artworks

    /// Adds the artwork at the first vacancy, moving no other; its own position does not count. Gives its id.
    QUuid append(const RollArtwork& artwork, double gapInches);

    /// Moves an artwork, kept on the roll by the least change. Overlap is allowed.
    void move(const QUuid& id, double x, double y);

    /// Sets the printed width; the corner of the frame stays unless the frame would leave the roll on the right.
    void resize(const QUuid& id, double width);

    /// Turns an artwork by one quarter at its present physical size.
    void rotate(const QUuid& id);

    /// Moves an artwork by 0.01 inch, or 0.1 if accelerated, within the roll and the given canvas length. Whether the
    /// layout changed.
    bool nudge(const QUuid& id, RollNudgeDirection direction, bool accelerated, double canvasLength);

    /// Deletes every artwork with this id; the others stay where they are. Never fails.
    void remove(const QUuid& id);

    // Arranging all

    /// Places all artworks so that the used length is as short as the fixed set of candidates makes it; sizes, turns
    /// and list order stay. Roughly cubic in the number of artworks.
    void autoArrange(double gapInches);

    /// The same, and then a search for a shorter roll in which artworks may lie turned by a quarter. A turn is kept
    /// only where it makes the roll shorter; the print scales stay. Runs on all processors.
    void optimizeArrangement(bool allowQuarterTurns, double gapInches);

    /// Changes the width and arranges anew, without a gap. What no longer fits is turned first, if that is allowed;
    /// nothing is made smaller, so artworks that fit in no way are refused by name.
    void changeRollWidth(double to, bool allowQuarterTurns);

    /// Deletes the artwork and arranges the others anew. Whether there was one with this id.
    bool removeAndOptimize(const QUuid& id, bool allowQuarterTurns, double gapInches);

    /// The layout with new print sizes of some artworks; all proportions stay, nothing is made smaller to fit, and a
    /// quarter turn is made only where allowed. Positions stay as `resize` keeps them.
    [[nodiscard]] RollLayout sizingArtworks(const QList<BatchArtworkSizeRequest>& requests,
                                            bool allowQuarterTurns) const;

    // What the operations share

    /// The position in `items`; refuses an unsupported layout and an unknown id.
    [[nodiscard]] qsizetype index(const QUuid& of) const;

    /// Moves the artwork onto the roll by the least change; refuses what is still invalid then.
    static void clampAndValidate(RollArtwork& artwork, double rollWidth);

    static void validateGap(double gapInches);

    /// Whether all trim frames keep the gap from each other.
    [[nodiscard]] static bool hasSpacing(const QList<RollArtwork>& items, double gapInches);

    /// Reads a layout. Apart from wrong types only the width is looked at, and that only if `checked`: items and the
    /// version are reported by `structureValidationError` at their first use. Raises JsonError.
    [[nodiscard]] static RollLayout fromJson(const platform::JsonReader& reader,
                                             LayoutCoding coding = LayoutCoding::checked);

    /// Raises JsonError, when `checked`, for a bad width and for numbers that are not finite.
    [[nodiscard]] QJsonObject toJson(LayoutCoding coding = LayoutCoding::checked) const;
};

} // namespace orvex
