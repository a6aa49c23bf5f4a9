#pragma once

#include "Layout/Document.h"

#include <QLocale>
#include <QString>
#include <QUrl>

#include <optional>

namespace orvex {

/// The conversion between the units, and numbers as persons type and read them. The only home of these constants.
namespace PrintUnits {

inline constexpr double mmPerInch = 25.4;
inline constexpr double pointsPerInch = 72.0;

/// The white border kept on every side of every artwork; its two sides together are what a width or height loses.
inline constexpr double whiteBorderInches = 2.5;
inline constexpr double bothBordersInches = 5.0;
inline constexpr double whiteBorderMM = 63.5;

/// Lengths and positions on the roll that differ by no more than this are the same, unless a test says it is exact.
inline constexpr double toleranceInches = 1e-9;

[[nodiscard]] constexpr double inches(double fromMM) {
    return fromMM / mmPerInch;
}

[[nodiscard]] constexpr double millimetres(double fromInches) {
    return fromInches * mmPerInch;
}

/// Whether a length or a ratio is finite and greater than 0.
[[nodiscard]] bool isPositive(double value);

/// Millimetres as inches in the locale, with 0 to 3 fraction digits and no unit.
[[nodiscard]] QString formatMMAsInches(double mm, const QLocale& locale = QLocale());

/// A number that a person typed. The locale's decimal separator and "." both work as the decimal point; no grouping,
/// no words, no hexadecimal. Absent for anything else and for values that are not finite; ranges are the caller's.
[[nodiscard]] std::optional<double> parseDecimalInput(const QString& text, const QLocale& locale);

} // namespace PrintUnits

/// The one canvas medium that the program is tailored to.
namespace CanvasMedia {

inline constexpr double rollWidthMM = 1524.0;
inline constexpr double rollLengthMetres = 15.2;

[[nodiscard]] QString name();

/// The manufacturer's public support page.
[[nodiscard]] const QUrl& sourceURL();

} // namespace CanvasMedia

/// The reference artwork format: 18,000 × 12,000 pixels at the full width of the roll.
namespace ArtPrintLayout {

inline constexpr double maximumPageWidthMM = 1524.0;
inline constexpr qint64 orvexPixelWidth = 18000;
inline constexpr qint64 orvexPixelHeight = 12000;
inline constexpr quint64 orvexPixelCount = 216000000;

/// The reference page.
[[nodiscard]] DocumentSettings orvex18K60Inch(double marginMM, Placement placement);

/// The lesser of the two resolutions, in pixels per inch, that an image has on a page. Absent for a page that is not
/// valid and for an image without pixels.
[[nodiscard]] std::optional<double> effectivePPI(qint64 pixelWidth, qint64 pixelHeight,
                                                 const DocumentSettings& settings);

} // namespace ArtPrintLayout

/// Which dimension of a page is given; the other follows from the image's proportions.
struct PageWidthInches {
    double value = 0.0;
};

struct PageHeightInches {
    double value = 0.0;
};

/// The page that has one image with a 2.5-inch white border on every side: the image keeps the pixel proportions, the
/// borders do not scale. Texts of the paper come from `base`.
namespace BorderedArtworkLayout {

/// Raises OrvexError for pixel sizes or page dimensions that give no valid page.
[[nodiscard]] DocumentSettings settings(PageWidthInches pageWidthInches, qint64 pixelWidth, qint64 pixelHeight,
                                        const DocumentSettings& base);
[[nodiscard]] DocumentSettings settings(PageHeightInches pageHeightInches, qint64 pixelWidth, qint64 pixelHeight,
                                        const DocumentSettings& base);

/// The same page without any validation; never fails.
[[nodiscard]] DocumentSettings draft(PageWidthInches pageWidthInches, qint64 pixelWidth, qint64 pixelHeight,
                                     const DocumentSettings& base);
[[nodiscard]] DocumentSettings draft(PageHeightInches pageHeightInches, qint64 pixelWidth, qint64 pixelHeight,
                                     const DocumentSettings& base);

} // namespace BorderedArtworkLayout

} // namespace orvex
