#pragma once

#include "Json/JsonReader.h"
#include "Layout/Geometry.h"

#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace orvex {

/// What a new artwork is made from; what is left out follows from the rest.
struct RollArtworkSource {
    QUuid id;
    QUrl sourceURL;
    std::optional<QString> title = std::nullopt; ///< the last path component of the source
    qint64 pixelWidth = 0;
    qint64 pixelHeight = 0;
    std::optional<double> originalWidthInches = std::nullopt;  ///< the pixels at 300 per inch
    std::optional<double> originalHeightInches = std::nullopt; ///< the pixels at 300 per inch
    std::optional<double> widthInches = std::nullopt;          ///< the natural width
    double xInches = 0.0;
    double yInches = 0.0;
    qint64 rotationQuarterTurns = 0;
};

/// One artwork on a roll. Inches; the roll's origin is its top left corner, y grows along the roll. The position is
/// that of the manual-trim frame: the image plus 2.5 inches on every side. There is no stored height: it follows from
/// the width and the proportions, so no edit can distort an artwork. Plain value that owns no file; any thread.
struct RollArtwork {
    QUuid id;
    QUrl sourceURL;
    QString title;
    qint64 pixelWidth = 0; ///< of the source, unrotated, as are the next three
    qint64 pixelHeight = 0;
    double originalWidthInches = 0.0; ///< physical size of the source at 100 %
    double originalHeightInches = 0.0;
    double widthInches = 0.0; ///< of the image as it lies on the roll: border excluded, rotation included
    double xInches = 0.0;
    double yInches = 0.0;
    qint64 rotationQuarterTurns = 0; ///< 0 to 3 when valid

    static RollArtwork make(const RollArtworkSource& source);

    bool operator==(const RollArtwork&) const = default;

    [[nodiscard]] double naturalWidthInches() const;
    [[nodiscard]] double naturalHeightInches() const;
    [[nodiscard]] double heightInches() const;
    [[nodiscard]] double scale() const;
    [[nodiscard]] double scalePercent() const;

    /// How many pixels of the source lie on an inch of the roll.
    [[nodiscard]] double effectivePixelsPerInch() const;

    /// The frame that is cut by hand later, and what packing treats as the artwork.
    [[nodiscard]] Rect trimRectInches() const;

    /// The image inside its frame.
    [[nodiscard]] Rect artworkRectInches() const;

    /// Whether the original size has the proportions of the pixels.
    [[nodiscard]] bool matchesPixels() const;

    /// The artwork turned by a quarter at its present physical size, back rather than further where it is turned
    /// already. Its position stays.
    [[nodiscard]] RollArtwork turned() const;

    /// The message of the first rule that the artwork breaks on a roll of that width, or nothing.
    [[nodiscard]] std::optional<QString> validationError(double rollWidthInches = 60.0) const;

    /// The same without the rules of the position.
    [[nodiscard]] std::optional<QString> sizeValidationError(double rollWidthInches) const;

    /// The rules of the position alone, for an artwork whose size is valid.
    [[nodiscard]] std::optional<QString> positionValidationError(double rollWidthInches) const;

    /// The rules that no roll takes part in.
    [[nodiscard]] std::optional<QString> coreValidationError() const;

    /// Reads the eleven required keys; the values are not validated. Raises JsonError.
    [[nodiscard]] static RollArtwork fromJson(const platform::JsonReader& reader);

    /// Raises JsonError for a number that the given mode cannot write.
    [[nodiscard]] QJsonObject toJson(platform::JsonNumbers numbers = platform::JsonNumbers::finite) const;
};

/// The rule for the width of a roll: greater than 5 and no more than 60 inches, exactly. The message, or nothing.
[[nodiscard]] std::optional<QString> rollWidthValidationError(double widthInches);

} // namespace orvex
