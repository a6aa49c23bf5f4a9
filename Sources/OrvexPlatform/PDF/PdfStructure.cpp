#include "PDF/PdfStructure.h"

#include "Files/RandomAccessFile.h"
#include "PDF/QpdfHeaders.h"
#include "PDF/StructureBudget.h"
#include "PDF/StructureFlate.h"
#include "PDF/StructureSource.h"

#include <array>
#include <charconv>
#include <cmath>
#include <set>
#include <string_view>

namespace orvex::platform {

namespace {

/// A number of PDF syntax (ISO 32000-1, 7.3.3); qpdf itself would read it by the rules of the user's locale.
std::optional<double> number(QPDFObjectHandle object) {
    if (object.isInteger()) {
        return static_cast<double>(object.getIntValue());
    }
    if (!object.isReal()) {
        return std::nullopt;
    }
    const std::string text = object.getRealValue();
    std::string_view digits = text;
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    double value = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value, std::chars_format::fixed);
    return error == std::errc() && end == digits.end() ? std::optional(value) : std::nullopt;
}

/// A rectangle (ISO 32000-1, 7.9.5) by whichever corners it is given; empty for anything else.
PdfBox box(QPDFObjectHandle object) {
    constexpr int cornerNumbers = 4;
    if (!object.isArray() || object.getArrayNItems() != cornerNumbers) {
        return {};
    }
    std::array<double, cornerNumbers> corners{};
    for (int index = 0; index < cornerNumbers; ++index) {
        const std::optional<double> corner = number(object.getArrayItem(index));
        if (!corner) {
            return {};
        }
        corners[static_cast<std::size_t>(index)] = *corner;
    }
    const auto [x1, y1, x2, y2] = corners;
    return {std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1), std::abs(y2 - y1)};
}

/// The entries that a page takes from the nodes above it (ISO 32000-1, 7.7.3.4).
struct Inheritable {
    QPDFObjectHandle mediaBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle cropBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle rotation = QPDFObjectHandle::newNull();

    [[nodiscard]] Inheritable overriddenBy(QPDFObjectHandle node) const {
        const auto nearest = [&node](const char* key, const QPDFObjectHandle& inherited) {
            return node.hasKey(key) ? node.getKey(key) : inherited;
        };
        return {nearest("/MediaBox", mediaBox), nearest("/CropBox", cropBox), nearest("/Rotate", rotation)};
    }
};

bool isInnerNode(QPDFObjectHandle node) {
    QPDFObjectHandle type = node.getKey("/Type");
    return node.hasKey("/Kids") || (type.isName() && type.getName() == "/Pages");
}

PdfUserUnit userUnitOf(QPDFObjectHandle page) {
    if (!page.hasKey("/UserUnit")) {
        return PdfUserUnitAbsent();
    }
    const std::optional<double> value = number(page.getKey("/UserUnit"));
    return value ? PdfUserUnit(*value) : PdfUserUnit(PdfUserUnitNotANumber());
}

} // namespace

/// Reads one document with qpdf.
class PdfStructureReader {
public:
    explicit PdfStructureReader(const RandomAccessFile& file) : source_(std::make_shared<StructureSource>(file)) {}

    /// Raises PdfError, or the file system's failure if reading ended by one.
    PdfStructure read() {
        try {
            readDocument();
        } catch (const std::exception&) { // whatever qpdf stumbled over
            if (source_->failure()) {
                std::rethrow_exception(source_->failure());
            }
            throw unreadablePdf();
        }
        return result_;
    }

private:
    struct Node {
        QPDFObjectHandle object;
        Inheritable inherited;
    };

    void readDocument() {
        qpdf_.setSuppressWarnings(true);
        qpdf_.setAttemptRecovery(false);
        if (!openDocument()) {
            return;
        }
        walkPageTree();
        if (qpdf_.anyWarnings()) {
            throw unreadablePdf(); // each tells of damage
        }
    }

    /// Whether the content is open to reading.
    bool openDocument() {
        try {
            qpdf_.processInputSource(source_, "");
        } catch (const QPDFExc& error) {
            // A password, or a way of encrypting that is unknown; any other trouble is damage.
            const bool isLocked = error.getErrorCode() == qpdf_e_password ||
                                  (error.getErrorCode() == qpdf_e_unsupported && qpdf_.isEncrypted());
            if (!isLocked) {
                throw;
            }
            result_.isUnlocked_ = false;
        }
        result_.isEncrypted_ = qpdf_.isEncrypted() || !result_.isUnlocked_;
        return result_.isUnlocked_;
    }

    /// Goes through the tree in page order, without recursion: the file decides how deep it is.
    void walkPageTree() {
        std::vector<Node> pending{{qpdf_.getRoot().getKey("/Pages"), {}}};
        std::set<QPDFObjGen> seen;
        while (!pending.empty()) {
            Node node = std::move(pending.back());
            pending.pop_back();
            if (!node.object.isDictionary()) {
                continue; // no page, and not counted
            }
            if (node.object.isIndirect() && !seen.insert(node.object.getObjGen()).second) {
                throw unreadablePdf(); // a loop, or a page that stands twice
            }
            const Inheritable attributes = node.inherited.overriddenBy(node.object);
            if (isInnerNode(node.object)) {
                addKids(node.object.getKey("/Kids"), attributes, pending);
            } else {
                countPage(node.object, attributes);
            }
        }
    }

    static void addKids(QPDFObjectHandle kids, const Inheritable& attributes, std::vector<Node>& pending) {
        const int count = kids.isArray() ? kids.getArrayNItems() : 0;
        for (int index = count - 1; index >= 0; --index) {
            pending.push_back({kids.getArrayItem(index), attributes});
        }
    }

    void countPage(QPDFObjectHandle page, Inheritable attributes) {
        ++result_.pageCount_;
        if (result_.pageCount_ > 1) {
            return;
        }
        result_.mediaBox_ = box(attributes.mediaBox);
        result_.cropBox_ = attributes.cropBox.isNull() ? result_.mediaBox_ : box(attributes.cropBox);
        if (!attributes.rotation.isNull()) {
            result_.rotationDegrees_ = attributes.rotation.isInteger()
                                           ? std::optional<qint64>(attributes.rotation.getIntValue())
                                           : std::nullopt;
        }
        result_.userUnit_ = userUnitOf(page);
    }

    StructureBudget budget_;
    std::shared_ptr<StructureSource> source_;
    QPDF qpdf_;
    PdfStructure result_;
};

PdfStructure PdfStructure::open(const QString& path) {
    boundStructureFilters();
    const RandomAccessFile file = RandomAccessFile::open(path);
    return PdfStructureReader(file).read();
}

} // namespace orvex::platform
