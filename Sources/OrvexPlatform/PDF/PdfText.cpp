#include "PDF/PdfText.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <charconv>

namespace orvex::platform {

QByteArray pdfNumber(double number) {
    constexpr std::size_t longestFixedDouble = 512; // 309 digits before the point, and the smallest ones behind it
    std::array<char, longestFixedDouble> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
    return QByteArray(text.data(), end - text.data());
}

QByteArray pdfHexString(const QByteArray& bytes) {
    return '<' + bytes.toHex() + '>';
}

QByteArray pdfTextString(const QString& text) {
    const bool isPrintableAscii =
        std::all_of(text.begin(), text.end(), [](QChar c) { return c >= QChar(u' ') && c <= QChar(u'~'); });
    if (isPrintableAscii) {
        QByteArray literal = text.toLatin1();
        literal.replace('\\', "\\\\").replace('(', "\\(").replace(')', "\\)");
        return '(' + literal + ')';
    }
    QByteArray utf16("\xfe\xff");
    for (const QChar c : text) {
        const quint16 unit = qToBigEndian(c.unicode());
        utf16.append(reinterpret_cast<const char*>(&unit), sizeof(unit));
    }
    return pdfHexString(utf16);
}

} // namespace orvex::platform
