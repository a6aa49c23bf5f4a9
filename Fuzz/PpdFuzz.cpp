#include "DriverPaperGeometry.h"
#include "Layout/InchLayout.h"
#include "Text.h"

#include <cstdint>
#include <cstdlib>

// The paper sizes in any driver's description: none, or names with positive sizes that a line of the text declares.

using namespace orvex;

namespace {

bool isSound(const QString& name, const Size& size) {
    const bool isName = !name.isEmpty() && name == name.trimmed() && !name.contains(u'/') && !name.contains(u':') &&
                        platform::filledLines(name).size() == 1;
    return isName && PrintUnits::isPositive(size.width) && PrintUnits::isPositive(size.height);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = platform::textWithReplacements({data, static_cast<qsizetype>(size)});
    const QMap<QString, Size> papers = DriverPaperGeometry::paperDimensions(text);
    for (auto each = papers.begin(); each != papers.end(); ++each) {
        if (!isSound(each.key(), each.value()) || !text.contains(each.key())) {
            std::abort();
        }
    }
    return 0;
}
