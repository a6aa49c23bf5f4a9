#include "StoredRecords.h"
#include "Stores/PrintJournal.h"

#include <cstdint>

// Print journals of any bytes: each is refused, or read and written so that it reads the same.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvex::fuzz::exerciseList<orvex::PrintObservation>(QByteArrayView(data, static_cast<qsizetype>(size)));
    return 0;
}
