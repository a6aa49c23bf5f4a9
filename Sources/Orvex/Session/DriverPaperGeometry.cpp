#include "DriverPaperGeometry.h"

#include "Files/FileSystemError.h"
#include "Files/RandomAccessFile.h"
#include "Layout/InchLayout.h"
#include "Layout/NumberText.h"
#include "QueueFileName.h"
#include "Text.h"

#include <QList>

#include <algorithm>

namespace orvex {

namespace {

/// What a piece of a value spells, infinity for more than a double holds; absent if it is no plain decimal.
std::optional<double> number(const QString& piece) {
    const bool isDecimal =
        std::ranges::all_of(piece, [](QChar each) { return QStringView(u"0123456789+-.Ee").contains(each); });
    return isDecimal ? parseWholeDouble(piece.toLatin1()) : std::nullopt;
}

std::optional<Size> size(QString value) {
    QList<double> numbers;
    for (const QString& piece : platform::words(value.remove(u'"'))) {
        if (const auto each = number(piece)) {
            numbers.append(*each);
        }
    }
    if (numbers.size() != 2 || !std::ranges::all_of(numbers, PrintUnits::isPositive)) {
        return std::nullopt;
    }
    return Size{numbers[0], numbers[1]};
}

} // namespace

QMap<QString, Size> DriverPaperGeometry::paperDimensions(const QString& text) {
    const QString prefix = QStringLiteral("*PaperDimension ");
    QMap<QString, Size> sizes;
    for (const QString& line : platform::filledLines(text)) {
        const qsizetype colon = line.indexOf(u':');
        if (!line.startsWith(prefix) || colon < 0) {
            continue;
        }
        const QString key = line.first(colon).sliced(prefix.size());
        const QString name = key.left(key.indexOf(u'/')).trimmed(); // the other part is the name's translation
        const auto declared = size(line.sliced(colon + 1));
        if (!name.isEmpty() && declared) {
            sizes.insert(name, *declared);
        }
    }
    return sizes;
}

QMap<QString, Size> DriverPaperGeometry::read(const QString& queue) {
    return read(queue, QString::fromLatin1(descriptionsFolder));
}

QMap<QString, Size> DriverPaperGeometry::read(const QString& queue, const QString& folder) {
    if (!isSafeInFileName(queue)) {
        return {};
    }
    try {
        const QString path = folder + u'/' + queue + QStringLiteral(".ppd");
        const auto text = platform::validText(platform::readWholeFile(path, largestDescriptionBytes));
        return text ? paperDimensions(*text) : QMap<QString, Size>();
    } catch (const platform::FileSystemError&) {
        return {}; // as is usual: only the print system itself may read these files
    }
}

} // namespace orvex
