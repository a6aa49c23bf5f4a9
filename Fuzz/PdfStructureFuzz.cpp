// The facts of a PDF as the first of the two readers finds them.

#include "FileInMemory.h"
#include "PDF/PdfStructure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const orvex::fuzz::FileInMemory file(data, size);
    try {
        const auto pdf = orvex::platform::PdfStructure::open(file.path());
        const bool hasFacts = pdf.pageCount() > 0 || pdf.mediaBox() == orvex::platform::PdfBox();
        const bool isSized = !(pdf.mediaBox().width < 0) && !(pdf.cropBox().height < 0);
        if (!hasFacts || !isSized || (!pdf.isUnlocked() && !pdf.isEncrypted())) {
            std::abort();
        }
    } catch (const orvex::platform::PdfError&) {
        // Most inputs are no sound PDF.
    }
    return 0;
}
