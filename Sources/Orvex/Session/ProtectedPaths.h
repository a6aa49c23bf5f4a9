#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace orvex {

/// The files and folders in which the driver and the system keep the settings of a queue, and which are fingerprinted:
/// absolute and standardised, in a fixed order. `home` is the user's home folder. A queue whose name is empty, or no
/// safe part of a file name, has no files of its own. Nothing is looked at. Any thread.
[[nodiscard]] QList<QUrl> protectedPaths(const QString& home, const QString& selectedPrinterName);

} // namespace orvex
