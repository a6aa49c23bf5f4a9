#include "PDF/StructureFlate.h"

#include "PDF/QpdfHeaders.h"
#include "PDF/StructureBudget.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

namespace orvex::platform {

namespace {

constexpr long long noPredictor = 1;
constexpr long long firstPngPredictor = 10; // ISO 32000-1, 7.4.4.4: all from here on name each row's filter in the row
constexpr long long lastPngPredictor = 15;
constexpr long long largestColumns = 1 << 24; // with the next two, the product cannot overflow
constexpr long long largestColors = 32;
constexpr long long largestBits = 16;
constexpr long long largestRowBytes = 1 << 26; // two rows are held in memory; this is no limit for pictures

/// Spends the budget on what passes through.
class Meter : public Pipeline {
public:
    explicit Meter(Pipeline* output) : Pipeline("meter", output) {}

    void write(const unsigned char* data, size_t length) override {
        StructureBudget::spendOnParsing(static_cast<qint64>(length));
        getNext()->write(data, length);
    }

    void finish() override { getNext()->finish(); }
};

/// The shape of predicted rows.
struct RowShape {
    size_t rowBytes = 0;
    size_t pixelBytes = 1;
};

/// Undoes the PNG filters of rows (ISO/IEC 15948, 9).
class PngRows : public Pipeline {
public:
    PngRows(Pipeline* output, RowShape shape)
        : Pipeline("rows", output),
          pixelBytes_(shape.pixelBytes),
          above_(shape.rowBytes, 0),
          row_(shape.rowBytes, 0) {}

    void write(const unsigned char* data, size_t length) override {
        for (const unsigned char byte : std::span(data, length)) {
            if (!filter_) {
                filter_ = byte;
                continue;
            }
            row_[filled_] = static_cast<unsigned char>(byte + prediction());
            ++filled_;
            if (filled_ == row_.size()) {
                endRow();
            }
        }
    }

    void finish() override {
        if (filter_) {
            throw std::runtime_error("the last row is not complete");
        }
        getNext()->finish();
    }

private:
    [[nodiscard]] int prediction() const {
        const int up = above_[filled_];
        const int left = filled_ < pixelBytes_ ? 0 : row_[filled_ - pixelBytes_];
        const int upLeft = filled_ < pixelBytes_ ? 0 : above_[filled_ - pixelBytes_];
        switch (*filter_) {
        case 0:
            return 0;
        case 1:
            return left;
        case 2:
            return up;
        case 3:
            return (left + up) / 2;
        case 4:
            return paeth(left, up, upLeft);
        default:
            throw std::runtime_error("a row has an unknown filter");
        }
    }

    static int paeth(int left, int up, int upLeft) {
        const int estimate = left + up - upLeft;
        const int toLeft = std::abs(estimate - left);
        const int toUp = std::abs(estimate - up);
        const int toUpLeft = std::abs(estimate - upLeft);
        if (toLeft <= toUp && toLeft <= toUpLeft) {
            return left;
        }
        return toUp <= toUpLeft ? up : upLeft;
    }

    void endRow() {
        getNext()->write(row_.data(), row_.size());
        std::swap(row_, above_);
        filled_ = 0;
        filter_.reset();
    }

    size_t pixelBytes_;
    std::vector<unsigned char> above_;
    std::vector<unsigned char> row_;
    size_t filled_ = 0;
    std::optional<unsigned char> filter_;
};

/// An integer from 1 to `largest`, or the default of a missing key; 0 for anything else.
long long parameter(QPDFObjectHandle parameters, const char* key, long long missing, long long largest) {
    QPDFObjectHandle value = parameters.getKey(key);
    if (value.isNull()) {
        return missing;
    }
    const long long number = value.isInteger() ? value.getIntValue() : 0;
    return number <= largest ? std::max(number, 0LL) : 0;
}

class StructureFlate : public QPDFStreamFilter {
public:
    bool setDecodeParms(QPDFObjectHandle parameters) override {
        if (parameters.isNull()) {
            return true;
        }
        if (!parameters.isDictionary()) {
            return false;
        }
        const long long predictor = parameter(parameters, "/Predictor", noPredictor, lastPngPredictor);
        if (predictor == noPredictor) {
            return true;
        }
        const long long columns = parameter(parameters, "/Columns", 1, largestColumns);
        const long long colors = parameter(parameters, "/Colors", 1, largestColors);
        const long long bits = parameter(parameters, "/BitsPerComponent", 8, largestBits);
        const long long rowBytes = (columns * colors * bits + 7) / 8;
        if (predictor < firstPngPredictor || rowBytes == 0 || rowBytes > largestRowBytes) {
            return false;
        }
        shape_ = {.rowBytes = static_cast<size_t>(rowBytes),
                  .pixelBytes = static_cast<size_t>((colors * bits + 7) / 8)};
        return true;
    }

    Pipeline* getDecodePipeline(Pipeline* next) override {
        if (shape_) {
            rows_ = std::make_unique<PngRows>(next, *shape_);
            next = rows_.get();
        }
        meter_ = std::make_unique<Meter>(next);
        inflater_ = std::make_unique<Pl_Flate>("inflate", meter_.get(), Pl_Flate::a_inflate);
        return inflater_.get();
    }

private:
    std::optional<RowShape> shape_;
    std::unique_ptr<PngRows> rows_;
    std::unique_ptr<Meter> meter_;
    std::unique_ptr<Pl_Flate> inflater_;
};

/// A filter that qpdf shall not undo.
class ClosedFilter : public QPDFStreamFilter {
public:
    bool setDecodeParms(QPDFObjectHandle /*parameters*/) override { return false; }

    Pipeline* getDecodePipeline(Pipeline* /*next*/) override { return nullptr; }
};

} // namespace

void boundStructureFilters() {
    static std::once_flag done;
    std::call_once(done, [] {
        QPDF::registerStreamFilter("/FlateDecode", [] { return std::make_shared<StructureFlate>(); });
        QPDF::registerStreamFilter("/LZWDecode", [] { return std::make_shared<ClosedFilter>(); });
        QPDF::registerStreamFilter("/RunLengthDecode", [] { return std::make_shared<ClosedFilter>(); });
    });
}

} // namespace orvex::platform
