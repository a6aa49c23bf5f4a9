#pragma once

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvex {

/// A wish for the print size of one artwork, as it is to lie on the roll. Inches, border excluded.
struct BatchArtworkSizeRequest {
    QUuid id;
    std::optional<double> widthInches = std::nullopt;
    std::optional<double> heightInches = std::nullopt;

    bool operator==(const BatchArtworkSizeRequest&) const = default;
};

/// Reads print sizes that a person pasted as text.
namespace BatchArtworkSizeParser {

/// One request for each artwork, from lines such as "24 × 16" in the order of the ids. Empty lines do not count; the
/// decimal point is "." in every locale. Raises OrvexError for the first line that is not two positive numbers, and if
/// there are not as many lines as ids. Any thread.
[[nodiscard]] QList<BatchArtworkSizeRequest> requests(const QString& from, const QList<QUuid>& artworkIDs);

} // namespace BatchArtworkSizeParser

} // namespace orvex
