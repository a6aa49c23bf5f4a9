#pragma once

#include "InChinese.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvex::test {

/// Ids that tests can name: the same number is the same id.
inline QUuid id(unsigned number) {
    return QUuid(number, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
}

/// An artwork of that physical size at 100 %, in inches with at most three decimals, at the roll's corner.
inline RollArtwork artwork(double widthInches, double heightInches, unsigned number = 1) {
    const QString name = QStringLiteral("art%1").arg(number);
    return {.id = id(number),
            .sourceURL = QUrl(QStringLiteral("file:///images/%1.png").arg(name)),
            .title = name,
            .pixelWidth = std::llround(widthInches * 1000.0),
            .pixelHeight = std::llround(heightInches * 1000.0),
            .originalWidthInches = widthInches,
            .originalHeightInches = heightInches,
            .widthInches = widthInches};
}

inline RollArtwork artworkAt(double x, double y, double widthInches, double heightInches, unsigned number = 1) {
    RollArtwork placed = artwork(widthInches, heightInches, number);
    placed.xInches = x;
    placed.yInches = y;
    return placed;
}

/// The message of a validator, or "(none)".
inline std::string messageOf(const std::optional<QString>& message) {
    return message ? message->toStdString() : "(none)";
}

/// The message that an operation refuses with, or "(none)".
template <typename Operation>
std::string refusalOf(Operation&& operation) {
    try {
        operation();
    } catch (const OrvexError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

/// Every field as it stands, doubles bit by bit, so that a value that must not change can be compared even where == of
/// numbers cannot tell.
struct Snapshot {
    std::vector<std::string> texts;
    std::vector<std::int64_t> integers;
    std::vector<std::uint64_t> doubles;

    explicit Snapshot(const QList<RollArtwork>& items) {
        for (const RollArtwork& item : items) {
            add(item);
        }
    }

    explicit Snapshot(const RollLayout& layout) : Snapshot(layout.items) {
        integers.push_back(layout.schemaVersion);
        doubles.push_back(std::bit_cast<std::uint64_t>(layout.widthInches));
    }

    bool operator==(const Snapshot&) const = default;

private:
    void add(const RollArtwork& item) {
        texts.push_back(item.id.toString().toStdString());
        texts.push_back(item.sourceURL.toString().toStdString());
        texts.push_back(item.title.toStdString());
        for (const qint64 value : {item.pixelWidth, item.pixelHeight, item.rotationQuarterTurns}) {
            integers.push_back(value);
        }
        for (const double value :
             {item.originalWidthInches, item.originalHeightInches, item.widthInches, item.xInches, item.yInches}) {
            doubles.push_back(std::bit_cast<std::uint64_t>(value));
        }
    }
};

/// The refusal of an operation, which must leave the layout as it was to the last bit.
template <typename Operation>
std::string untouchedRefusal(RollLayout& layout, Operation&& operation) {
    const Snapshot before(layout);
    const std::string refusal = refusalOf([&] { operation(layout); });
    EXPECT_NE(refusal, "(none)");
    EXPECT_EQ(Snapshot(layout), before);
    return refusal;
}

} // namespace orvex::test
