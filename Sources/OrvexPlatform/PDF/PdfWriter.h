#pragma once

#include "Files/FileReplacer.h"
#include "Imaging/ImageSource.h"
#include "Imaging/Raster.h"
#include "Sha256.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <stop_token>
#include <vector>

namespace orvex::platform {

/// What the document says about itself and its page.
struct PdfPage {
    double widthPoints = 0; ///< the media box is (0, 0, width, height)
    double heightPoints = 0;
    QString title;
    QString creator;
};

/// Names an image of the document for the page's content.
struct PdfImage {
    int objectNumber = 0;

    /// The operand of the Do operator, without the slash.
    [[nodiscard]] QByteArray name() const { return "Im" + QByteArray::number(objectNumber); }
};

/// Writes a document of one page, forward only: images as they come, then the page. PDF 1.5 with one classic
/// cross-reference table; the page object opens with its type; offsets have 64 bits, and a file that outgrows the ten
/// digits of the table is refused. The same calls give the same bytes: there are no dates, and the identifier is made
/// from the content.
///
/// All calls raise FileSystemError when writing fails, and PdfError beyond the limits of the format. One thread.
class PdfWriter {
public:
    /// Begins the document in an open file, which must outlive the writer.
    explicit PdfWriter(FileReplacer& file);

    /// Adds a raster at its full pixel size: its rows compressed, its colour space, its alpha as a soft mask of the
    /// same depth. Its orientation is the business of whoever places it. `progress` is told of the rows that are in the
    /// file; with alpha, each of the two readings of the raster counts for half. Raises what decoding raises.
    [[nodiscard]] PdfImage addImage(const Raster& raster, const std::stop_token& stop = {},
                                    const RowProgress& progress = {});

    /// Adds an encoded picture untouched, in the given colour space or its model's device space. Its rows are done all
    /// at once.
    [[nodiscard]] PdfImage addImage(const EncodedStream& stream, const std::optional<QByteArray>& iccProfile,
                                    const std::stop_token& stop = {}, const RowProgress& progress = {});

    /// Ends the document with its page; `content` is the page's content stream. Everything has reached the file then.
    void finish(const PdfPage& page, const QByteArray& content);

private:
    int newObject();
    void beginObject(int number);
    void writeObject(int number, const QByteArray& body);
    void writeStreamObject(int number, const QByteArray& dictionary, const QByteArray& data);

    /// Writes a stream object whose length is known only at its end.
    template <typename WriteData>
    void writeMeasuredStream(int number, const QByteArray& dictionary, WriteData writeData);

    int addRows(const Raster& raster, bool isSoftMask, const QByteArray& furtherEntries, const std::stop_token& stop,
                const RowProgress& progress);
    QByteArray colorSpace(ColorModel model, const std::optional<QByteArray>& iccProfile);
    int writeResources();
    int writeInformation(const PdfPage& page);
    void writeTrailer(int information);

    void put(QByteArrayView bytes);
    void putStreamData(QByteArrayView bytes);
    void flush();

    FileReplacer& file_;
    QByteArray buffer_;
    qint64 position_ = 0;
    std::vector<qint64> offsets_; ///< by object number; 0 is not written yet
    std::vector<PdfImage> images_;
    std::map<QByteArray, int> profiles_; ///< objects by the profile's bytes
    Sha256 identity_;
    quint32 streamChecksum_ = 0;
};

} // namespace orvex::platform
