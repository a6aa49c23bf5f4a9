#pragma once

#include <QByteArray>
#include <QString>
#ifndef POINTERHOLDER_TRANSITION
#define POINTERHOLDER_TRANSITION 4 // the present form of the library's pointers
#endif
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <memory>
#include <string>
#include <vector>

namespace orvex::test {

/// A PDF as a reader of another house sees it; damage of any kind fails the test with an exception.
class QpdfReading {
public:
    explicit QpdfReading(const QString& path) : pdf_(QPDF::create()) {
        pdf_->setAttemptRecovery(false);
        pdf_->setSuppressWarnings(true);
        pdf_->processFile(path.toLocal8Bit().constData());
    }

    [[nodiscard]] QPDFObjectHandle trailer() { return pdf_->getTrailer(); }

    [[nodiscard]] std::size_t pageCount() { return pdf_->getAllPages().size(); }

    [[nodiscard]] QPDFObjectHandle page() { return pdf_->getAllPages().at(0); }

    [[nodiscard]] std::vector<double> mediaBox() {
        std::vector<double> box;
        for (auto& side : page().getKey("/MediaBox").getArrayAsVector()) {
            box.push_back(side.getNumericValue());
        }
        return box;
    }

    /// The image that the page names "Im{number}", in the order of their names.
    [[nodiscard]] std::vector<QPDFObjectHandle> images() {
        std::vector<QPDFObjectHandle> images;
        auto named = page().getKey("/Resources").getKey("/XObject").getDictAsMap();
        for (auto& [name, image] : named) {
            images.push_back(image);
        }
        return images;
    }

    /// The page's content stream.
    [[nodiscard]] QByteArray content() { return data(page().getKey("/Contents")); }

    /// A stream with its filters undone as far as they lose nothing.
    [[nodiscard]] static QByteArray data(QPDFObjectHandle stream) {
        const auto buffer = stream.getStreamData(qpdf_dl_generalized);
        return QByteArray(reinterpret_cast<const char*>(buffer->getBuffer()),
                          static_cast<qsizetype>(buffer->getSize()));
    }

    /// A stream's bytes as they stand in the file.
    [[nodiscard]] static QByteArray rawData(QPDFObjectHandle stream) {
        const auto buffer = stream.getRawStreamData();
        return QByteArray(reinterpret_cast<const char*>(buffer->getBuffer()),
                          static_cast<qsizetype>(buffer->getSize()));
    }

private:
    std::shared_ptr<QPDF> pdf_;
};

} // namespace orvex::test
