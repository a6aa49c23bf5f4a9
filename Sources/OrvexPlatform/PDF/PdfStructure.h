#pragma once

#include "PDF/PdfReading.h"

#include <QString>

#include <optional>
#include <variant>

namespace orvex::platform {

/// A page without the entry.
struct PdfUserUnitAbsent {
    bool operator==(const PdfUserUnitAbsent&) const = default;
};

/// A page whose entry is something else than a number.
struct PdfUserUnitNotANumber {
    bool operator==(const PdfUserUnitNotANumber&) const = default;
};

using PdfUserUnit = std::variant<PdfUserUnitAbsent, PdfUserUnitNotANumber, double>;

/// What the objects of a PDF say, newest revision first: the first of the two independent readers. Facts only; the file
/// is closed again.
///
/// Nothing is repaired: a file that a lenient reader would mend is refused. Only the structure is read, never the data
/// of the page's streams, and only within a StructureBudget, so that neither a document of many gigabytes nor a hostile
/// one fills the memory; a document whose structure is larger counts as unreadable. Any thread.
class PdfStructure {
public:
    /// Reads a file, with the empty password if it is encrypted. Raises PdfError if it is no sound PDF, FileSystemError
    /// if it cannot be opened or is no regular file; a FIFO or a device is never waited for.
    [[nodiscard]] static PdfStructure open(const QString& path);

    [[nodiscard]] bool isEncrypted() const { return isEncrypted_; }

    /// Whether the content can be read: the file is not encrypted, or opens with the empty password. A locked document
    /// has none of the facts below.
    [[nodiscard]] bool isUnlocked() const { return isUnlocked_; }

    /// The pages that the page tree really holds, whatever count it claims.
    [[nodiscard]] qint64 pageCount() const { return pageCount_; }

    /// The boxes of the first page, inherited ones included; without a crop box it is the media box. An empty box if
    /// there is no page, no such entry, or one that is no rectangle.
    [[nodiscard]] const PdfBox& mediaBox() const { return mediaBox_; }

    [[nodiscard]] const PdfBox& cropBox() const { return cropBox_; }

    /// The rotation of the first page in degrees as it is written, inherited ones included, 0 without an entry; absent
    /// if the entry is no integer.
    [[nodiscard]] const std::optional<qint64>& rotationDegrees() const { return rotationDegrees_; }

    /// The first page's own entry; it cannot be inherited.
    [[nodiscard]] const PdfUserUnit& userUnit() const { return userUnit_; }

private:
    friend class PdfStructureReader;

    PdfStructure() = default;

    bool isEncrypted_ = false;
    bool isUnlocked_ = true;
    qint64 pageCount_ = 0;
    PdfBox mediaBox_;
    PdfBox cropBox_;
    std::optional<qint64> rotationDegrees_ = 0;
    PdfUserUnit userUnit_;
};

} // namespace orvex::platform
