#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <gtest/gtest.h>

namespace orvex::test {

/// A small PDF written by hand: objects one behind the other, a classic cross-reference table, a trailer.
struct PdfText {
    QByteArray header = "%PDF-1.5\n";
    QByteArrayList objects;    ///< the bodies; the first is object 1
    QByteArray trailerEntries; ///< besides /Size and /Root
    QByteArray root = "1 0 R";

    /// The text of an object with its frame.
    [[nodiscard]] static QByteArray object(qsizetype number, const QByteArray& body) {
        return QByteArray::number(number) + " 0 obj\n" + body + "\nendobj\n";
    }

    [[nodiscard]] static QByteArray stream(const QByteArray& data, const QByteArray& entries = {}) {
        return "<< /Length " + QByteArray::number(data.size()) + entries + " >>\nstream\n" + data + "\nendstream";
    }

    [[nodiscard]] static QByteArray entry(qint64 offset) {
        return QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    }

    [[nodiscard]] QByteArray bytes() const {
        QByteArray text = header;
        QByteArray entries;
        for (qsizetype index = 0; index < objects.size(); ++index) {
            entries += entry(text.size());
            text += object(index + 1, objects[index]);
        }
        const QByteArray start = QByteArray::number(text.size());
        const QByteArray size = QByteArray::number(objects.size() + 1);
        return text + "xref\n0 " + size + "\n0000000000 65535 f \n" + entries + "trailer\n<< /Size " + size +
               " /Root " + root + trailerEntries + " >>\nstartxref\n" + start + "\n%%EOF\n";
    }
};

/// A document of one page: object 1 is the catalog, 2 the page tree, 3 the page, 4 its content.
inline PdfText onePage(const QByteArray& pageEntries, const QByteArray& content = {}) {
    PdfText pdf;
    pdf.objects = {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                   "<< /Type /Page /Parent 2 0 R /Contents 4 0 R " + pageEntries + " >>", PdfText::stream(content)};
    return pdf;
}

/// A document of one page with the given entries, ready.
inline QByteArray onePagePdf(const QByteArray& pageEntries = "/MediaBox [0 0 100 200]",
                             const QByteArray& content = {}) {
    return onePage(pageEntries, content).bytes();
}

/// The text with its only occurrence of `from` replaced.
inline QByteArray replacedOnce(QByteArray text, const QByteArray& from, const QByteArray& to) {
    EXPECT_EQ(text.count(from), 1) << "not one occurrence of " << from.constData();
    return text.replace(from, to);
}

} // namespace orvex::test
