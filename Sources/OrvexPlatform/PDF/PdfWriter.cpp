#include "PDF/PdfWriter.h"

#include "Interrupted.h"
#include "OrvexLanguage.h"
#include "PDF/FlateRows.h"
#include "PDF/PdfError.h"
#include "PDF/PdfText.h"
#include "PDF/RowPredictor.h"

#include <isa-l/crc.h>

namespace orvex::platform {

namespace {

constexpr int catalogObject = 1;
constexpr int pagesObject = 2;
constexpr int pageObject = 3;
constexpr int firstFreeObject = 4;

constexpr qsizetype bufferBytes = 1 << 16;
constexpr qint64 largestOffset = 9'999'999'999; // ten digits: ISO 32000-1, 7.5.4
constexpr qint64 largestRowBytes = 1 << 30;     // one row is the least that is held in memory
constexpr qsizetype identifierBytes = 16;       // the customary length of a file identifier: ISO 32000-1, 14.4

QByteArray reference(int object) {
    return QByteArray::number(object) + " 0 R";
}

QByteArray deviceSpace(ColorModel model) {
    switch (model) {
    case ColorModel::gray:
        return "/DeviceGray";
    case ColorModel::rgb:
        return "/DeviceRGB";
    case ColorModel::cmyk:
        return "/DeviceCMYK";
    }
    return {};
}

QByteArray imageEntries(qint64 width, qint64 height, const QByteArray& colorSpace, int bitsPerComponent) {
    return "/Type /XObject /Subtype /Image /Width " + QByteArray::number(width) + " /Height " +
           QByteArray::number(height) + " /ColorSpace " + colorSpace + " /BitsPerComponent " +
           QByteArray::number(bitsPerComponent) + " /Interpolate true";
}

/// ISO 32000-1, 7.4.4.4; predictor 15 lets every row name its own filter.
QByteArray flateEntries(qint64 colors, int bitsPerComponent, qint64 columns) {
    return " /Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors " + QByteArray::number(colors) +
           " /BitsPerComponent " + QByteArray::number(bitsPerComponent) + " /Columns " + QByteArray::number(columns) +
           " >>";
}

QByteArray filterEntries(const EncodedStream& stream) {
    if (stream.filter == EncodedStream::Filter::dct) {
        // ISO 32000-1, 7.4.8: said explicitly, since readers guess differently where the file is silent.
        return " /Filter /DCTDecode /DecodeParms << /ColorTransform " + QByteArray::number(stream.dctColorTransform) +
               " >>";
    }
    const int colors = stream.palette.isEmpty() ? componentCount(stream.model) : 1;
    return flateEntries(colors, stream.bitsPerComponent, stream.width);
}

QByteArray indexedSpace(const QByteArray& base, const QByteArray& palette) {
    const qsizetype highest = palette.size() / 3 - 1;
    return "[/Indexed " + base + ' ' + QByteArray::number(highest) + ' ' + pdfHexString(palette) + ']';
}

QByteArray crossReferenceEntry(qint64 offset) {
    return QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
}

/// The progress of the first (0) or second (1) of two readings of the same rows.
RowProgress halfOf(const RowProgress& whole, qint64 half) {
    if (!whole) {
        return {};
    }
    return [&whole, half](qint64 done, qint64 count) { whole((half * count + done) / 2, count); };
}

} // namespace

PdfWriter::PdfWriter(FileReplacer& file) : file_(file), offsets_(firstFreeObject, 0) {
    // Four bytes above 127 tell transfer programs that the file is binary: ISO 32000-1, 7.5.2.
    put("%PDF-1.5\n%\xe2\xe3\xcf\xd3\n");
}

int PdfWriter::newObject() {
    offsets_.push_back(0);
    return static_cast<int>(offsets_.size()) - 1;
}

void PdfWriter::beginObject(int number) {
    offsets_[static_cast<std::size_t>(number)] = position_;
    put(QByteArray::number(number) + " 0 obj\n");
}

void PdfWriter::writeObject(int number, const QByteArray& body) {
    beginObject(number);
    put(body + "\nendobj\n");
}

void PdfWriter::writeStreamObject(int number, const QByteArray& dictionary, const QByteArray& data) {
    beginObject(number);
    put("<< " + dictionary + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n");
    putStreamData(data);
    put("\nendstream\nendobj\n");
}

template <typename WriteData>
void PdfWriter::writeMeasuredStream(int number, const QByteArray& dictionary, WriteData writeData) {
    const int length = newObject();
    beginObject(number);
    put("<< " + dictionary + " /Length " + reference(length) + " >>\nstream\n");
    const qint64 start = position_;
    writeData();
    const qint64 lengthBytes = position_ - start;
    put("\nendstream\nendobj\n");
    writeObject(length, QByteArray::number(lengthBytes));
}

QByteArray PdfWriter::colorSpace(ColorModel model, const std::optional<QByteArray>& iccProfile) {
    if (!iccProfile) {
        return deviceSpace(model);
    }
    auto known = profiles_.find(*iccProfile);
    if (known == profiles_.end()) {
        const int number = newObject();
        writeStreamObject(number,
                          "/N " + QByteArray::number(componentCount(model)) + " /Alternate " + deviceSpace(model),
                          *iccProfile);
        known = profiles_.emplace(*iccProfile, number).first;
    }
    return "[/ICCBased " + reference(known->second) + ']';
}

int PdfWriter::addRows(const Raster& raster, bool isSoftMask, const QByteArray& furtherEntries,
                       const std::stop_token& stop, const RowProgress& progress) {
    const Samples samples = isSoftMask ? Samples::alpha : Samples::colours;
    const ColorModel model = isSoftMask ? ColorModel::gray : raster.format().model;
    const QByteArray space = isSoftMask ? deviceSpace(model) : colorSpace(model, raster.iccProfile());
    const int bits = pdfBitsPerComponent(raster.format());
    const int number = newObject();
    writeMeasuredStream(number,
                        imageEntries(raster.storedWidth(), raster.storedHeight(), space, bits) +
                            flateEntries(componentCount(model), bits, raster.storedWidth()) + furtherEntries,
                        [&] {
                            const auto output = [this](QByteArrayView bytes) { putStreamData(bytes); };
                            flateRows(raster, samples, output, stop, progress);
                        });
    return number;
}

PdfImage PdfWriter::addImage(const Raster& raster, const std::stop_token& stop, const RowProgress& progress) {
    if (predictedRows(raster.format(), raster.storedWidth(), Samples::colours).strideBytes() > largestRowBytes) {
        throw PdfError(spt("图像的像素行过宽，无法写入 PDF。", "The image's pixel rows are too wide for a PDF."));
    }
    if (raster.format().hasAlpha) {
        const int mask = addRows(raster, true, {}, stop, halfOf(progress, 0));
        const QByteArray entry = " /SMask " + reference(mask);
        images_.push_back({addRows(raster, false, entry, stop, halfOf(progress, 1))});
    } else {
        images_.push_back({addRows(raster, false, {}, stop, progress)});
    }
    return images_.back();
}

PdfImage PdfWriter::addImage(const EncodedStream& stream, const std::optional<QByteArray>& iccProfile,
                             const std::stop_token& stop, const RowProgress& progress) {
    if (progress) {
        progress(0, stream.height);
    }
    QByteArray space = colorSpace(stream.model, iccProfile);
    if (!stream.palette.isEmpty()) {
        space = indexedSpace(space, stream.palette);
    }
    const QByteArray decode = stream.isInverted ? " /Decode [1 0 1 0 1 0 1 0]" : "";
    const int number = newObject();
    writeMeasuredStream(number,
                        imageEntries(stream.width, stream.height, space, stream.bitsPerComponent) +
                            filterEntries(stream) + decode,
                        [&] {
                            stream.copy([&](std::span<const std::byte> bytes) {
                                throwIfStopped(stop);
                                putStreamData(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
                            });
                        });
    images_.push_back({number});
    if (progress) {
        progress(stream.height, stream.height);
    }
    return images_.back();
}

int PdfWriter::writeResources() {
    // An object of its own: a page object with a thousand image names would be too long for what amends it later.
    const int number = newObject();
    QByteArray names;
    for (const PdfImage& image : images_) {
        names += " /" + image.name() + ' ' + reference(image.objectNumber);
    }
    writeObject(number, "<< /XObject <<" + names + " >> >>");
    return number;
}

int PdfWriter::writeInformation(const PdfPage& page) {
    const int number = newObject();
    writeObject(number, "<< /Title " + pdfTextString(page.title) + " /Creator " + pdfTextString(page.creator) + " >>");
    return number;
}

void PdfWriter::finish(const PdfPage& page, const QByteArray& content) {
    const int contentObject = newObject();
    writeStreamObject(contentObject, "", content);
    const int resources = writeResources();
    writeObject(pageObject, "<< /Type /Page /Parent " + reference(pagesObject) + " /MediaBox [0 0 " +
                                pdfNumber(page.widthPoints) + ' ' + pdfNumber(page.heightPoints) + "] /Resources " +
                                reference(resources) + " /Contents " + reference(contentObject) + " >>");
    writeObject(pagesObject, "<< /Type /Pages /Kids [" + reference(pageObject) + "] /Count 1 >>");
    writeObject(catalogObject, "<< /Type /Catalog /Pages " + reference(pagesObject) + " >>");
    writeTrailer(writeInformation(page));
    flush();
}

void PdfWriter::writeTrailer(int information) {
    const qint64 tableOffset = position_;
    if (tableOffset > largestOffset) {
        throw PdfError(spt("卷布 PDF 超过 PDF 格式所能容纳的 9999999999 字节。请将作品分到多个卷布文件。",
                           "The roll PDF exceeds the 9999999999 bytes that the PDF format can hold. Split the artworks "
                           "into multiple roll files."));
    }
    const QByteArray size = QByteArray::number(static_cast<qint64>(offsets_.size()));
    put("xref\n0 " + size + "\n0000000000 65535 f \n");
    for (std::size_t number = 1; number < offsets_.size(); ++number) {
        put(crossReferenceEntry(offsets_[number]));
    }
    identity_.add(QByteArray::number(streamChecksum_));
    const QByteArray identifier = pdfHexString(identity_.digest().first(identifierBytes));
    buffer_ += "trailer\n<< /Size " + size + " /Root " + reference(catalogObject) + " /Info " + reference(information) +
               " /ID [" + identifier + ' ' + identifier + "] >>\nstartxref\n" + QByteArray::number(tableOffset) +
               "\n%%EOF\n";
}

void PdfWriter::put(QByteArrayView bytes) {
    identity_.add(bytes);
    buffer_.append(bytes);
    position_ += bytes.size();
    if (buffer_.size() >= bufferBytes) {
        flush();
    }
}

void PdfWriter::putStreamData(QByteArrayView bytes) {
    // A checksum stands for a stream in the identifier: digesting gigabytes would cost more than writing them.
    streamChecksum_ = crc32_gzip_refl(streamChecksum_, reinterpret_cast<const unsigned char*>(bytes.data()),
                                      static_cast<quint64>(bytes.size()));
    flush();
    file_.write(bytes);
    position_ += bytes.size();
}

void PdfWriter::flush() {
    file_.write(buffer_);
    buffer_.clear();
}

} // namespace orvex::platform
