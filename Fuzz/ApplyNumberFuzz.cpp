#include "Layout/InchLayout.h"
#include "Layout/NumberText.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

// Typed numbers of any text: the answer is absent or finite, and a finite one can be shown and typed again.

using namespace orvex;

namespace {

void exercise(const QString& text, const QLocale& locale) {
    const auto value = PrintUnits::parseDecimalInput(text, locale);
    if (!value) {
        return;
    }
    const auto again = PrintUnits::parseDecimalInput(formatNumber(*value, locale, 6), locale);
    if (!std::isfinite(*value) || !again || std::abs(*again - *value) > 1e-6 + std::abs(*value) * 1e-12) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(QByteArrayView(data, static_cast<qsizetype>(size)));
    for (const QLocale::Language language : {QLocale::C, QLocale::English, QLocale::German, QLocale::Chinese}) {
        exercise(text, QLocale(language));
    }
    return 0;
}
