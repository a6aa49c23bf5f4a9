#include "PDF/PdfText.h"

#include <gtest/gtest.h>

namespace orvex::platform {
namespace {

TEST(PdfNumber, isThePlainDecimalThatReadsBackTheSame) {
    EXPECT_EQ(pdfNumber(0), "0");
    EXPECT_EQ(pdfNumber(4320), "4320");
    EXPECT_EQ(pdfNumber(-180.5), "-180.5");
    EXPECT_EQ(pdfNumber(0.1), "0.1");
    EXPECT_EQ(pdfNumber(1.0 / 3), "0.3333333333333333");
}

TEST(PdfNumber, neverHasAnExponent) {
    EXPECT_EQ(pdfNumber(1e-7), "0.0000001");
    EXPECT_EQ(pdfNumber(1e22), "10000000000000000000000");
    EXPECT_FALSE(pdfNumber(1.7976931348623157e308).contains('e'));
    EXPECT_FALSE(pdfNumber(5e-324).contains('e'));
}

TEST(PdfTextString, isALiteralForPrintableAscii) {
    EXPECT_EQ(pdfTextString(QStringLiteral("Roll 1")), "(Roll 1)");
    EXPECT_EQ(pdfTextString(QString()), "()");
}

TEST(PdfTextString, escapesWhatALiteralCannotHold) {
    EXPECT_EQ(pdfTextString(QStringLiteral("a(b)\\c")), "(a\\(b\\)\\\\c)");
}

TEST(PdfTextString, isUtf16ForAnythingElse) {
    EXPECT_EQ(pdfTextString(QStringLiteral("·")), "<feff00b7>");
    EXPECT_EQ(pdfTextString(QStringLiteral("a\n")), "<feff0061000a>");
    EXPECT_EQ(pdfTextString(QStringLiteral("卷😀")), "<feff5377d83dde00>");
}

} // namespace
} // namespace orvex::platform
