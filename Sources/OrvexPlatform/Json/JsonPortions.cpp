#include "Json/JsonPortions.h"

namespace orvex::platform {

namespace {

constexpr qsizetype elementsOfPortion = 64; // small enough to share the work out evenly, large enough to be worth it

bool isSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

/// The text without what JSON takes for space around it. Qt's trimmed() takes two more characters for space.
QByteArrayView withoutSpaceAround(QByteArrayView text) {
    while (!text.isEmpty() && isSpace(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isSpace(text.back())) {
        text.chop(1);
    }
    return text;
}

/// The cuts at every so many commas that stand neither in a text nor in an array or object within the list.
std::vector<QByteArrayView> cut(QByteArrayView list) {
    std::vector<QByteArrayView> portions;
    qsizetype begin = 0;
    qsizetype commas = 0;
    qsizetype depth = 0;
    bool isInText = false;
    for (qsizetype offset = 0; offset < list.size(); ++offset) {
        const char byte = list[offset];
        if (isInText) {
            offset += byte == '\\' ? 1 : 0;
            isInText = byte != '"';
        } else if (byte == '"') {
            isInText = true;
        } else if (byte == '{' || byte == '[') {
            ++depth;
        } else if (byte == '}' || byte == ']') {
            --depth;
        } else if (byte == ',' && depth == 0 && ++commas % elementsOfPortion == 0) {
            portions.push_back(list.sliced(begin, offset - begin));
            begin = offset + 1;
        }
    }
    portions.push_back(list.sliced(begin));
    return portions;
}

} // namespace

std::optional<std::vector<QByteArrayView>> jsonArrayPortions(QByteArrayView text) {
    const QByteArrayView array = withoutSpaceAround(text);
    if (array.size() < 2 || array.front() != '[' || array.back() != ']') {
        return std::nullopt;
    }
    std::vector<QByteArrayView> portions = cut(array.sliced(1, array.size() - 2));
    const bool endsWithComma = portions.size() > 1 && withoutSpaceAround(portions.back()).isEmpty();
    return endsWithComma ? std::nullopt : std::optional(std::move(portions));
}

} // namespace orvex::platform
