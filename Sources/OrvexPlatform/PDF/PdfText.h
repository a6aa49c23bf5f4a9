#pragma once

#include <QByteArray>
#include <QString>

namespace orvex::platform {

/// A number as PDF writes it (ISO 32000-1, 7.3.3): plain decimals that read back as the same double, never an exponent.
[[nodiscard]] QByteArray pdfNumber(double number);

/// A text string object (ISO 32000-1, 7.9.2.2): a literal for printable ASCII, otherwise UTF-16 as hexadecimal digits.
[[nodiscard]] QByteArray pdfTextString(const QString& text);

/// A string object of arbitrary bytes, as hexadecimal digits.
[[nodiscard]] QByteArray pdfHexString(const QByteArray& bytes);

} // namespace orvex::platform
