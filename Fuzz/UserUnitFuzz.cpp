// The update that writes a UserUnit into a roll PDF.

#include "FileInMemory.h"
#include "Files/RandomAccessFile.h"
#include "OrvexError.h"
#include "Output/RollPDFUserUnit.h"
#include "PDF/PdfStructure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr double userUnit = 2.5;
    constexpr qsizetype versionBytes = 8;
    const QByteArray before(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const orvex::fuzz::FileInMemory file(data, size);
    bool isAccepted = true;
    try {
        orvex::RollPDFUserUnit::apply(userUnit, file.path());
    } catch (const orvex::OrvexError&) {
        isAccepted = false;
    }
    const QByteArray after = orvex::platform::readWholeFile(file.path(), before.size() + 1'000'000'000);
    if (!after.sliced(0, before.size()).endsWith(before.mid(versionBytes))) {
        std::abort(); // the old bytes behind the version never change
    }
    if (isAccepted &&
        orvex::platform::PdfStructure::open(file.path()).userUnit() != orvex::platform::PdfUserUnit(userUnit)) {
        std::abort();
    }
    return 0;
}
