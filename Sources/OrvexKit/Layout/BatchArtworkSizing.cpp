#include "Layout/BatchArtworkSizing.h"

#include "Layout/InchLayout.h"
#include "Layout/NumberText.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Text.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr double relativeAspectTolerance = 1e-9; // for pairs that a person typed

bool areDistinct(const QList<QUuid>& ids) {
    return QSet<QUuid>(ids.begin(), ids.end()).size() == ids.size();
}

// The parser

QStringList linesWithText(const QString& text) {
    QStringList lines = platform::filledLines(text);
    lines.removeIf([](const QString& line) { return line.trimmed().isEmpty(); });
    return lines;
}

/// The positive number that a whole text is, in the plain form of every locale.
std::optional<double> length(const QString& text) {
    const auto value = parseWholeDouble(text.toUtf8());
    return value && PrintUnits::isPositive(*value) ? value : std::nullopt;
}

BatchArtworkSizeRequest request(const QUuid& id, const QString& line, qsizetype lineNumber) {
    const QStringList numbers =
        platform::pieces(line, [](QChar each) { return each.isSpace() || QStringView(u"×xX").contains(each); });
    const auto width = numbers.size() == 2 ? length(numbers[0]) : std::nullopt;
    const auto height = numbers.size() == 2 ? length(numbers[1]) : std::nullopt;
    if (!width || !height) {
        throw OrvexError::invalid(spt("第 %1 行的尺寸无效。请输入一对正数的宽 × 高，例如 24 × 16（英寸）。",
                                      "Invalid dimensions on line %1. Enter a positive width × height pair, such as 24 "
                                      "× 16, in inches.")
                                      .arg(lineNumber));
    }
    return {.id = id, .widthInches = width, .heightInches = height};
}

// Applying requests

OrvexError refusalFor(const RollArtwork& artwork, const QString& message) {
    return OrvexError::invalid(spt("「%1」：%2", "“%1”: %2").arg(artwork.title, message));
}

/// The size that a request comes to, and whether it speaks of the turned artwork.
struct RequestedSize {
    double width = 0.0;
    double height = 0.0;
    bool wantsTurn = false;
};

bool isSameAspect(double a, double b) {
    return PrintUnits::isPositive(a) && std::abs(a - b) <= std::max(a, b) * relativeAspectTolerance;
}

void validateNumbers(const BatchArtworkSizeRequest& request, const RollArtwork& artwork) {
    if (!request.widthInches && !request.heightInches) {
        throw refusalFor(artwork, spt("请至少输入作品的宽度或高度（英寸）。",
                                      "Enter at least an artwork width or height in inches."));
    }
    if (!PrintUnits::isPositive(request.widthInches.value_or(1.0)) ||
        !PrintUnits::isPositive(request.heightInches.value_or(1.0))) {
        throw refusalFor(artwork, spt("作品宽度和高度必须是有效的正数（英寸）。",
                                      "Artwork width and height must be valid positive values in inches."));
    }
}

RequestedSize sizeInProportion(const BatchArtworkSizeRequest& request, const RollArtwork& artwork,
                               bool allowQuarterTurns) {
    const double aspect = artwork.naturalWidthInches() / artwork.naturalHeightInches();
    if (!request.widthInches) {
        return {aspect * *request.heightInches, *request.heightInches};
    }
    const double width = *request.widthInches;
    if (!request.heightInches) {
        return {width, width / aspect};
    }
    const double requested = width / *request.heightInches;
    if (isSameAspect(requested, aspect)) {
        return {width, width / aspect};
    }
    if (allowQuarterTurns && isSameAspect(requested, 1.0 / aspect)) {
        return {width, aspect * width, true};
    }
    throw refusalFor(artwork,
                     spt("该尺寸会改变原图比例。请只输入宽度或高度以等比缩放，或输入与原图比例一致的宽 × 高。",
                         "These dimensions would change the source aspect ratio. Enter only width or height for "
                         "proportional scaling, or enter a width × height pair matching the source ratio."));
}

RequestedSize requestedSize(const BatchArtworkSizeRequest& request, const RollArtwork& artwork,
                            bool allowQuarterTurns) {
    validateNumbers(request, artwork);
    const RequestedSize size = sizeInProportion(request, artwork, allowQuarterTurns);
    if (!PrintUnits::isPositive(size.width) || !PrintUnits::isPositive(size.height)) {
        throw refusalFor(artwork,
                         spt("按原图比例计算出的尺寸无效。未应用批量尺寸。",
                             "The dimensions calculated from the source aspect ratio are invalid. Batch sizes were not "
                             "applied."));
    }
    return size;
}

/// What an artwork is to become on the roll.
struct FittedSize {
    double width = 0.0;
    bool isTurned = false;
};

FittedSize fitted(const RequestedSize& size, const RollArtwork& artwork, double rollWidth, bool allowQuarterTurns) {
    const double limit = (rollWidth - PrintUnits::bothBordersInches) + PrintUnits::toleranceInches;
    if (size.width <= limit) {
        return {size.width, size.wantsTurn};
    }
    if (allowQuarterTurns && size.height <= limit) {
        return {size.height, !size.wantsTurn};
    }
    throw refusalFor(
        artwork,
        spt("加两侧各 2.5 英寸白边后，此作品超出 %1 英寸卷布。请修改尺寸，或允许旋转 90°。应用不会自动缩小作品。",
            "With 2.5-inch borders on both sides, this artwork exceeds the %1-inch roll. Change its size or allow 90° "
            "rotation. The app will not shrink it automatically.")
            .arg(formatNumber(rollWidth, 4)));
}

/// Turns an artwork of whatever size: first it becomes small enough to lie turned on the roll.
void turn(RollLayout& layout, const RollArtwork& artwork) {
    const double usable = layout.widthInches - PrintUnits::bothBordersInches;
    const double turnable = usable / (artwork.naturalHeightInches() / artwork.naturalWidthInches());
    layout.resize(artwork.id, std::min({usable, artwork.widthInches, turnable}));
    layout.rotate(artwork.id);
}

void validateRequests(const RollLayout& layout, const QList<BatchArtworkSizeRequest>& requests) {
    QList<QUuid> ids;
    for (const BatchArtworkSizeRequest& request : requests) {
        ids.append(request.id);
    }
    if (!areDistinct(ids)) {
        throw OrvexError::invalid(spt("同一作品有重复的尺寸请求。未应用批量尺寸。",
                                      "Duplicate size requests for the same artwork. Batch sizes were not applied."));
    }
    QSet<QUuid> known;
    for (const RollArtwork& item : layout.items) {
        known.insert(item.id);
    }
    if (!std::all_of(ids.begin(), ids.end(), [&](const QUuid& id) { return known.contains(id); })) {
        throw OrvexError::invalid(spt("批量列表中有已不存在的作品。请重新打开尺寸列表。",
                                      "The batch includes artwork that no longer exists. Reopen the size list."));
    }
}

void validateLayout(const RollLayout& layout) {
    refuse(layout.versionValidationError());
    refuse(layout.widthValidationError());
    if (!layout.hasDistinctIDs()) {
        throw OrvexError::invalid(
            spt("作品 ID 重复。未应用批量尺寸。", "Duplicate artwork IDs. Batch sizes were not applied."));
    }
    for (const RollArtwork& item : layout.items) {
        if (const auto issue = item.validationError(layout.widthInches)) {
            throw refusalFor(item, *issue);
        }
    }
}

} // namespace

QList<BatchArtworkSizeRequest> BatchArtworkSizeParser::requests(const QString& from, const QList<QUuid>& artworkIDs) {
    if (!areDistinct(artworkIDs)) {
        throw OrvexError::invalid(spt("作品列表中有重复的 ID。请重新打开尺寸列表。",
                                      "The artwork list contains duplicate IDs. Reopen the size list."));
    }
    const QStringList lines = linesWithText(from);
    if (lines.size() != artworkIDs.size()) {
        throw OrvexError::invalid(spt("请按列表顺序为每件作品输入一行宽 × 高：需要 %1 行，实际提供了 %2 行。",
                                      "Enter one width × height pair per artwork in list order: %1 lines are required; "
                                      "%2 were provided.")
                                      .arg(artworkIDs.size())
                                      .arg(lines.size()));
    }
    QList<BatchArtworkSizeRequest> requests;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        requests.append(request(artworkIDs[index], lines[index], index + 1));
    }
    return requests;
}

RollLayout RollLayout::sizingArtworks(const QList<BatchArtworkSizeRequest>& requests, bool allowQuarterTurns) const {
    validateLayout(*this);
    validateRequests(*this, requests);
    RollLayout result = *this;
    for (const BatchArtworkSizeRequest& request : requests) {
        const RollArtwork& artwork = items.at(index(request.id));
        const RequestedSize size = requestedSize(request, artwork, allowQuarterTurns);
        const FittedSize target = fitted(size, artwork, widthInches, allowQuarterTurns);
        if (target.isTurned) {
            turn(result, artwork);
        }
        result.resize(request.id, target.width);
    }
    return result;
}

} // namespace orvex
