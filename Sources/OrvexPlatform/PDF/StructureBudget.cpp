#include "PDF/StructureBudget.h"

#include <stdexcept>

namespace orvex::platform {

namespace {

// A cross-reference table of a million entries is read within 52 MB.
constexpr qint64 largestReadingBytes = 64 * 1024 * 1024;

// The objects down to the first page, and the page tree of some ten thousand pages. At worst they fill 700 MB.
constexpr qint64 largestParsingBytes = 4 * 1024 * 1024;

thread_local StructureBudget* current = nullptr;

void take(qint64& remaining, qint64 bytes) {
    if (bytes > remaining) {
        remaining = 0; // once exhausted, no smaller wish is granted either
        throw std::length_error("the structure of the document is too large");
    }
    remaining -= bytes;
}

} // namespace

StructureBudget::StructureBudget() : readingBytes_(largestReadingBytes), parsingBytes_(largestParsingBytes) {
    current = this;
}

StructureBudget::~StructureBudget() {
    current = nullptr;
}

void StructureBudget::spendOnReading(qint64 bytes) {
    if (current != nullptr) {
        take(current->readingBytes_, bytes);
    }
}

void StructureBudget::spendOnParsing(qint64 bytes) {
    if (current != nullptr) {
        take(current->parsingBytes_, bytes);
    }
}

} // namespace orvex::platform
