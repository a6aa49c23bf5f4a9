#include "Color/Inflate.h"

#include <zlib.h>

#include <algorithm>

namespace orvex::platform {

std::optional<QByteArray> inflate(QByteArrayView stream, qsizetype firstBytes, qsizetype largestBytes) {
    const auto* input = reinterpret_cast<const Bytef*>(stream.data());
    for (qsizetype room = std::min(firstBytes, largestBytes);; room = std::min(room * 2, largestBytes)) {
        QByteArray content(room, Qt::Uninitialized);
        auto length = static_cast<uLongf>(room);
        const int status =
            uncompress(reinterpret_cast<Bytef*>(content.data()), &length, input, static_cast<uLong>(stream.size()));
        if (status == Z_OK) {
            content.truncate(static_cast<qsizetype>(length));
            content.squeeze();
            return content;
        }
        if (status != Z_BUF_ERROR || room == largestBytes) {
            return std::nullopt;
        }
    }
}

} // namespace orvex::platform
