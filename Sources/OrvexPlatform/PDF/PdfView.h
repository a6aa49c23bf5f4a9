#pragma once

#include "PDF/PdfReading.h"

#include <QByteArray>
#include <QString>

namespace orvex::platform {

/// A picture of a page on white paper.
struct PdfPicture {
    int width = 0;
    int height = 0;
    QByteArray rgb; ///< 8 bits each of red, green and blue, rows from the top, without padding
};

/// A PDF as a viewer takes it: the second of the two independent readers. It mends what it can and knows nothing of
/// UserUnit. Facts only; the file is closed again. Any thread.
class PdfView {
public:
    /// The largest `longerSidePixels`: the picture and the renderer's own copy stay within half a gigabyte.
    static constexpr int largestSidePixels = 8192;

    /// Reads a file, with the empty password if it is encrypted. Raises PdfError if it is no PDF, FileSystemError if it
    /// cannot be opened or is no regular file; a FIFO or a device is never waited for.
    [[nodiscard]] static PdfView open(const QString& path);

    /// Draws the first page's crop box, upright as a viewer shows it: its longer side has exactly the given pixels
    /// (1 to `largestSidePixels`), the other side follows and has at least one. Raises as `open` does, and PdfError for
    /// a locked document, one without a page, a size out of range, and a page of which anything cannot be drawn: a
    /// picture that lacks a part would be taken for the print. It takes long for a large page.
    [[nodiscard]] static PdfPicture renderPage(const QString& path, int longerSidePixels);

    [[nodiscard]] bool isEncrypted() const { return isEncrypted_; }

    /// Whether a password is missing. A locked document has none of the facts below.
    [[nodiscard]] bool isLocked() const { return isLocked_; }

    [[nodiscard]] int pageCount() const { return pageCount_; }

    /// Whether the first page can really be had.
    [[nodiscard]] bool hasFirstPage() const { return hasFirstPage_; }

    /// The boxes of the first page in its own unrotated coordinates; a crop box is cut to the media box. Empty boxes
    /// without a page.
    [[nodiscard]] const PdfBox& mediaBox() const { return mediaBox_; }

    [[nodiscard]] const PdfBox& cropBox() const { return cropBox_; }

    /// By how much the first page is turned clockwise to be read: 0, 90, 180 or 270 degrees. An entry that is no
    /// multiple of 90 counts as 0 here.
    [[nodiscard]] int rotationDegrees() const { return rotationDegrees_; }

private:
    PdfView() = default;

    bool isEncrypted_ = false;
    bool isLocked_ = false;
    int pageCount_ = 0;
    bool hasFirstPage_ = false;
    PdfBox mediaBox_;
    PdfBox cropBox_;
    int rotationDegrees_ = 0;
};

} // namespace orvex::platform
