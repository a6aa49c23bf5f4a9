#pragma once

#include "PDF/PdfError.h"

namespace orvex::platform {

/// A box of a page in the page's own units, y upward: its least corner and its size, whatever the order of the corners
/// in the file.
struct PdfBox {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const PdfBox&) const = default;
};

/// The refusal of a file that is no PDF, or a damaged one.
[[nodiscard]] PdfError unreadablePdf();

} // namespace orvex::platform
