#pragma once

#include "Layout/Geometry.h"

#include <QMap>
#include <QString>

namespace orvex {

/// The paper sizes that the driver of a local queue declares, by name, in points. Any thread.
namespace DriverPaperGeometry {

/// Where the print system keeps the description of each queue's driver.
inline constexpr const char* descriptionsFolder = "/etc/cups/ppd";

/// What a driver's description may have at most; the largest real ones have one or two million bytes.
inline constexpr qint64 largestDescriptionBytes = 16 * 1024 * 1024;

/// The sizes in the text of a description; of two with one name the later. Lines that are not understood do not count.
[[nodiscard]] QMap<QString, Size> paperDimensions(const QString& text);

/// The sizes of a queue; none for a name that could lead out of the folder, and none without a readable description.
[[nodiscard]] QMap<QString, Size> read(const QString& queue);
[[nodiscard]] QMap<QString, Size> read(const QString& queue, const QString& folder);

} // namespace DriverPaperGeometry

} // namespace orvex
