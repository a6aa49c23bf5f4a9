#pragma once

#include "Layout/Geometry.h"
#include "PDF/PdfStructure.h"

#include <QUrl>

#include <optional>

namespace orvex {

enum class PaperOrientation { portrait, landscape };

/// The real size of a page that direct printing accepts.
struct NativePrintGeometry {
    Size physicalSizePoints; ///< the media box times `userUnit`
    double userUnit = 1.0;   ///< 1 for a page that has none

    /// Checks the page's measures against each other: `mediaBounds` as the first reader gives it, `viewBounds` as the
    /// second does (which may apply the UserUnit or not), and the sizes that a job's record expects, where there are
    /// any. Raises OrvexError.
    [[nodiscard]] static NativePrintGeometry make(const Rect& mediaBounds, double userUnit, const Rect& viewBounds,
                                                  const std::optional<double>& expectedWidthInches,
                                                  const std::optional<double>& expectedHeightInches);

    [[nodiscard]] double widthInches() const;
    [[nodiscard]] double heightInches() const;
    [[nodiscard]] PaperOrientation paperOrientation() const;

    bool operator==(const NativePrintGeometry&) const = default;
};

/// A PDF that may be printed directly, and what was found in it.
struct NativePrintSource {
    QUrl pdfURL;
    platform::PdfStructure document;
    NativePrintGeometry geometry;
};

namespace NativePrintFactory {

/// Proves that a PDF is one whole roll page of exactly known size: two independent readers open it and agree. Expected
/// sizes are those of the job's record. Raises OrvexError; the file is only read.
[[nodiscard]] NativePrintSource openDocument(const QUrl& pdfURL, const std::optional<double>& expectedWidthInches,
                                             const std::optional<double>& expectedHeightInches);

/// Whether two boxes, in points, are the same within the tolerance.
[[nodiscard]] bool matchingBounds(const Rect& a, const Rect& b);

} // namespace NativePrintFactory

} // namespace orvex
