#include "PropertyList/PropertyListBuilder.h"

#include "Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace orvex::platform {

namespace {

constexpr std::size_t deepestNesting = 128; // what the tools print nests less than ten levels deep

void require(bool condition) {
    if (!condition) {
        throw PropertyListError();
    }
}

bool isDecimal(QByteArrayView text) {
    const QByteArrayView digits = text.startsWith('-') || text.startsWith('+') ? text.sliced(1) : text;
    return !digits.isEmpty() && std::ranges::all_of(digits, [](char digit) { return digit >= '0' && digit <= '9'; });
}

PropertyList real(QByteArrayView text) {
    const QByteArrayView number = text.startsWith('+') ? text.sliced(1) : text;
    double value = std::numeric_limits<double>::infinity(); // for one beyond the range, which counts as no number
    const auto [end, error] = std::from_chars(number.begin(), number.end(), value);
    require(error != std::errc::invalid_argument && end == number.end());
    return PropertyList(PropertyNumber{value});
}

PropertyList integer(const QByteArray& text) {
    const bool isHexadecimal = text.startsWith("0x");
    require(isHexadecimal || isDecimal(text));
    bool isWithin64Bits = false;
    const qint64 value = text.toLongLong(&isWithin64Bits, isHexadecimal ? 16 : 10);
    require(isWithin64Bits || !isHexadecimal);
    return isWithin64Bits ? PropertyList(PropertyNumber{value}) : real(text);
}

PropertyList boolean(bool value, const QByteArray& text) {
    require(text.isEmpty());
    return PropertyList(value);
}

} // namespace

PropertyListBuilder::Kind PropertyListBuilder::kindOf(QByteArrayView element) {
    static const std::map<QByteArray, Kind> kinds{
        {"plist", Kind::plist},   {"dict", Kind::dictionary}, {"key", Kind::key},     {"array", Kind::array},
        {"string", Kind::string}, {"integer", Kind::integer}, {"real", Kind::real},   {"true", Kind::yes},
        {"false", Kind::no},      {"date", Kind::opaque},     {"data", Kind::opaque},
    };
    const auto found = kinds.find(element.toByteArray());
    require(found != kinds.end());
    return found->second;
}

bool PropertyListBuilder::isContainer(Kind kind) {
    return kind == Kind::plist || kind == Kind::dictionary || kind == Kind::array;
}

bool PropertyListBuilder::mayStandHere(Kind kind) const {
    if (open_.empty()) {
        return kind == Kind::plist;
    }
    const Element& parent = open_.back();
    switch (parent.kind) {
    case Kind::plist:
        return kind != Kind::key && kind != Kind::plist && !root_;
    case Kind::dictionary:
        return parent.nextKey ? kind != Kind::key && kind != Kind::plist : kind == Kind::key;
    case Kind::array:
        return kind != Kind::key && kind != Kind::plist;
    default:
        return false;
    }
}

void PropertyListBuilder::begin(QByteArrayView element) {
    const Kind kind = kindOf(element);
    require(mayStandHere(kind) && open_.size() < deepestNesting);
    open_.push_back({.kind = kind});
}

void PropertyListBuilder::text(QByteArrayView utf8) {
    if (isContainer(open_.back().kind)) {
        require(utf8.trimmed().isEmpty());
    } else {
        open_.back().text.append(utf8);
    }
}

PropertyList PropertyListBuilder::valueOf(Element element) {
    switch (element.kind) {
    case Kind::dictionary:
        require(!element.nextKey);
        return PropertyList(std::move(element.members));
    case Kind::array:
        return PropertyList(std::move(element.items));
    case Kind::string:
        return PropertyList(textWithReplacements(element.text));
    case Kind::integer:
        return integer(element.text.trimmed());
    case Kind::real:
        return real(element.text.trimmed());
    case Kind::yes:
    case Kind::no:
        return boolean(element.kind == Kind::yes, element.text);
    default:
        return PropertyList();
    }
}

void PropertyListBuilder::end() {
    Element element = std::move(open_.back());
    open_.pop_back();
    if (element.kind == Kind::key) {
        open_.back().nextKey = textWithReplacements(element.text);
    } else if (element.kind != Kind::plist) {
        add(valueOf(std::move(element)));
    }
}

void PropertyListBuilder::add(PropertyList value) {
    Element& parent = open_.back();
    if (parent.kind == Kind::plist) {
        root_ = std::move(value);
    } else if (parent.kind == Kind::array) {
        parent.items.push_back(std::move(value));
    } else {
        require(parent.members.emplace(*parent.nextKey, std::move(value)).second);
        parent.nextKey.reset();
    }
}

PropertyList PropertyListBuilder::finish() {
    require(root_.has_value());
    return std::move(*root_);
}

} // namespace orvex::platform
