#pragma once

#include "PropertyList/PropertyList.h"

#include <optional>
#include <vector>

namespace orvex::platform {

/// Makes a property list of the elements of its XML form, as a parser meets them. Every function raises
/// PropertyListError for what cannot stand there.
class PropertyListBuilder {
public:
    void begin(QByteArrayView element);
    void text(QByteArrayView utf8);
    void end();

    /// The whole value, once its last element has ended.
    [[nodiscard]] PropertyList finish();

private:
    enum class Kind { plist, dictionary, key, array, string, integer, real, yes, no, opaque };

    struct Element {
        Kind kind = Kind::plist;
        QByteArray text{};
        PropertyList::Dictionary members{};
        PropertyList::Array items{};
        std::optional<QString> nextKey{};
    };

    [[nodiscard]] static Kind kindOf(QByteArrayView element);
    [[nodiscard]] static bool isContainer(Kind kind);
    [[nodiscard]] static PropertyList valueOf(Element element);
    [[nodiscard]] bool mayStandHere(Kind kind) const;
    void add(PropertyList value);

    std::vector<Element> open_;
    std::optional<PropertyList> root_;
};

} // namespace orvex::platform
