#pragma once

#include <QString>

namespace orvex {

/// The pages on the web that the panels lead to. The vendor moves the pages of single products, so that its links lead
/// to the page from which all of them are found.
namespace HelpLinks {

[[nodiscard]] inline QString canonManual() {
    return QStringLiteral("https://www.usa.canon.com/support");
}

[[nodiscard]] inline QString canonNozzleCheck() {
    return QStringLiteral("https://www.usa.canon.com/support");
}

[[nodiscard]] inline QString canonColourCalibration() {
    return QStringLiteral("https://www.usa.canon.com/support");
}

[[nodiscard]] inline QString cupsOptions() {
    return QStringLiteral("https://www.cups.org/doc/options.html");
}

} // namespace HelpLinks

} // namespace orvex
