#pragma once

#include <QString>

/// Writes the real size of a long page into a PDF, by an incremental update, byte by byte.
namespace orvex::RollPDFUserUnit {

/// Gives the only page of the program's own PDF at `toOwnQuartzPDF` (a local path) the UserUnit `userUnit`.
///
/// It understands one shape of file alone, the one that the program writes: a classic cross-reference table in one
/// section that starts at object 0, a plain trailer, and one page object whose dictionary opens with its type. Every
/// other file is refused with one OrvexError. On success a new revision of the page object, a cross-reference section
/// of one entry and a trailer follow the old bytes, and a header below 1.6 says 1.6; nothing else changes. Another
/// reader has then found the value in the file.
///
/// The update is in place: a failure may leave it half done, so the file must be one that can be thrown away. A refusal
/// of the file's shape or of the value leaves it as it was. Failures of the file itself are FileSystemError. Only the
/// header, the end, the cross-reference section and the start of each object are read. Any thread.
void apply(double userUnit, const QString& toOwnQuartzPDF);

} // namespace orvex::RollPDFUserUnit
