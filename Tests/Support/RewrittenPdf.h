#pragma once

#include <QByteArray>

#ifndef POINTERHOLDER_TRANSITION
#define POINTERHOLDER_TRANSITION 4 // the present form of the library's pointers
#endif
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include <functional>
#include <memory>

namespace orvex::test {

/// A PDF as another program saves it, set up by `configure`.
inline QByteArray rewritten(const QByteArray& pdf, const std::function<void(QPDFWriter&)>& configure) {
    QPDF document;
    document.processMemoryFile("test", pdf.constData(), static_cast<std::size_t>(pdf.size()));
    QPDFWriter writer(document);
    writer.setOutputMemory();
    configure(writer);
    writer.write();
    const std::shared_ptr<Buffer> buffer = writer.getBufferSharedPointer();
    return QByteArray(reinterpret_cast<const char*>(buffer->getBuffer()), static_cast<qsizetype>(buffer->getSize()));
}

/// The PDF, encrypted by 256 bits; with an empty user password everyone can read it.
inline QByteArray encrypted(const QByteArray& pdf, const char* userPassword) {
    return rewritten(pdf, [userPassword](QPDFWriter& writer) {
        writer.setR6EncryptionParameters(userPassword, "owner", true, true, true, true, true, true, qpdf_r3p_full,
                                         true);
    });
}

/// The PDF with its objects in compressed streams and a cross-reference stream instead of a table.
inline QByteArray compressed(const QByteArray& pdf) {
    return rewritten(pdf, [](QPDFWriter& writer) { writer.setObjectStreamMode(qpdf_o_generate); });
}

} // namespace orvex::test
