#include "StoredRecords.h"
#include "Stores/LocalQueue.h"

#include <cstdint>

// Lists of staged jobs of any bytes: each is refused, or read and written so that it reads the same.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvex::fuzz::exerciseList<orvex::StagedJob>(QByteArrayView(data, static_cast<qsizetype>(size)));
    return 0;
}
