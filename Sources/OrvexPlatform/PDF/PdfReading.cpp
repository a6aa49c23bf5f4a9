#include "PDF/PdfReading.h"

#include "OrvexLanguage.h"

namespace orvex::platform {

PdfError unreadablePdf() {
    return PdfError(
        spt("无法读取该 PDF 文件。原文件已保留。", "Cannot read this PDF file. The original file was kept."));
}

} // namespace orvex::platform
