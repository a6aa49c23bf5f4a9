#pragma once

#include <QtGlobal>

/// What is accepted of a roll PDF: by its renderer, by the update that writes its real size, and by direct printing.
namespace orvex::RollPDFLimits {

// The page. Lengths are points of the real print.

inline constexpr double largestUserUnit = 75000.0; ///< what readers of the format are bound to understand

/// Sizes this close are the same: inclusive for direct printing, exclusive for a roll that was just rendered.
inline constexpr double sizeTolerancePoints = 0.01;

// The update. Sizes bound what is read into memory, whatever the file claims.

inline constexpr qint64 headerBytes = 8; ///< "%PDF-1.x"; also the smallest file, which must have a header

/// The new object begins one byte behind the old end; its offset must fit the ten digits of a cross-reference entry.
inline constexpr qint64 largestFileBytes = 9'999'999'998;

inline constexpr qint64 tailBytes = 65'536; ///< of the file's end, searched for startxref

inline constexpr quint64 largestCrossReferenceBytes = 67'108'864; ///< from the table to the end; read at once

/// A table holds at least the free entry and one object; a longer one would outgrow what may be read.
inline constexpr qint64 fewestEntries = 2;
inline constexpr qint64 mostEntries = 999'999;

inline constexpr qint64 objectStartBytes = 512;    ///< read of an object to see whether it is the page
inline constexpr qint64 largestPageBytes = 65'536; ///< the page object is read and written whole
inline constexpr double readBackTolerance = 1e-10; ///< exclusive, between the UserUnit written and the one read back

// Direct printing. Lengths are points of the real print.

/// Two decimals of a file that are exactly the tolerance apart may be further apart as doubles, by less than this.
inline constexpr double roundingPoints = 1e-9;

inline constexpr double widestPagePoints = 4320.01; ///< 60 inches, the roll, and the tolerance; there is no longest

} // namespace orvex::RollPDFLimits
