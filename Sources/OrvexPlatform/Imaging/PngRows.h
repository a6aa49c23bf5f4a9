#pragma once

#include "Files/RandomAccessFile.h"
#include "Imaging/PngHeader.h"
#include "Imaging/Raster.h"

#include <memory>

namespace orvex::platform {

/// The rows of a PNG file, decoded afresh by each call: inflated in a thread of their own, unfiltered and converted in
/// the caller's. Holds some strips; for an interlaced picture the whole of it as it is stored, since half of its rows
/// come last.
class PngRows : public RowSource {
public:
    PngRows(std::shared_ptr<const RandomAccessFile> file, PngHeader header);

    void rows(const RowSink& sink) const override;

private:
    class Delivery;

    void rowsInOrder(Delivery& delivery) const;
    void rowsOfPasses(Delivery& delivery) const;

    std::shared_ptr<const RandomAccessFile> file_;
    PngHeader header_;
    qint64 stripRows_;
};

} // namespace orvex::platform
