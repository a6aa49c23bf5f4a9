#include "Layout/BatchArtworkSizing.h"
#include "Layout/InchLayout.h"
#include "OrvexError.h"

#include <cstdint>
#include <cstdlib>

// Pasted print sizes of any text: refused, or a positive pair for each artwork.

using namespace orvex;

namespace {

void exercise(const QString& text, const QList<QUuid>& ids) {
    try {
        const auto requests = BatchArtworkSizeParser::requests(text, ids);
        if (requests.size() != ids.size()) {
            std::abort();
        }
        for (const BatchArtworkSizeRequest& request : requests) {
            if (!PrintUnits::isPositive(request.widthInches.value_or(0.0)) ||
                !PrintUnits::isPositive(request.heightInches.value_or(0.0))) {
                std::abort();
            }
        }
    } catch (const OrvexError&) {
        // A refusal is an answer.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(QByteArrayView(data, static_cast<qsizetype>(size)));
    QList<QUuid> ids;
    for (uint count = 0; count <= 3; ++count) {
        exercise(text, ids);
        ids.append(QUuid(count, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    }
    return 0;
}
