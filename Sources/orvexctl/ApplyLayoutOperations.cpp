#include "ApplyOperations.h"
#include "Json/JsonWriter.h"
#include "Layout/QuarterInchArtworkSizing.h"
#include "Layout/RollInteraction.h"
#include "OrvexLanguage.h"

#include <QJsonArray>
#include <QJsonObject>

namespace orvex {

namespace {

using platform::JsonReader;

/// The value that a text names, or a JsonError at its place.
template <typename Value>
Value named(const JsonReader& json, const std::map<QString, Value>& values) {
    const auto found = values.find(json.text());
    if (found == values.end()) {
        json.fail(spt("无效的取值：%1。", "Unknown value %1.").arg(json.text()));
    }
    return found->second;
}

/// Runs an edit on the request's layout and gives the layout back.
template <typename Edit>
ApplyAnswer edited(const ApplyRequest& request, Edit edit) {
    RollLayout layout = request.layout();
    edit(layout);
    return {.layout = layout, .result = std::nullopt};
}

ApplyAnswer append(const ApplyRequest& request) {
    RollLayout layout = request.layout();
    const QUuid id =
        layout.append(RollArtwork::fromJson(request.args.at("artwork")), request.args.at("gapInches").number());
    return {.layout = layout, .result = QJsonValue(platform::uuidText(id))};
}

ApplyAnswer move(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) {
        layout.move(request.args.at("id").uuid(), request.args.at("xInches").number(),
                    request.args.at("yInches").number());
    });
}

ApplyAnswer resize(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) {
        layout.resize(request.args.at("id").uuid(), request.args.at("widthInches").number());
    });
}

ApplyAnswer rotate(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) { layout.rotate(request.args.at("id").uuid()); });
}

ApplyAnswer nudge(const ApplyRequest& request) {
    static const std::map<QString, RollNudgeDirection> directions{
        {QStringLiteral("left"), RollNudgeDirection::left},
        {QStringLiteral("right"), RollNudgeDirection::right},
        {QStringLiteral("up"), RollNudgeDirection::up},
        {QStringLiteral("down"), RollNudgeDirection::down},
    };
    RollLayout layout = request.layout();
    const bool hasChanged =
        layout.nudge(request.args.at("id").uuid(), named(request.args.at("direction"), directions),
                     request.args.at("accelerated").boolean(), request.args.at("canvasLength").number());
    return {.layout = layout, .result = QJsonValue(hasChanged)};
}

ApplyAnswer remove(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) { layout.remove(request.args.at("id").uuid()); });
}

ApplyAnswer autoArrange(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) { layout.autoArrange(request.args.at("gapInches").number()); });
}

ApplyAnswer optimizeArrangement(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) {
        layout.optimizeArrangement(request.args.at("allowQuarterTurns").boolean(),
                                   request.args.at("gapInches").number());
    });
}

ApplyAnswer changeRollWidth(const ApplyRequest& request) {
    return edited(request, [&](RollLayout& layout) {
        layout.changeRollWidth(request.args.at("to").number(), request.args.at("allowQuarterTurns").boolean());
    });
}

ApplyAnswer removeAndOptimize(const ApplyRequest& request) {
    RollLayout layout = request.layout();
    const bool hasRemoved =
        layout.removeAndOptimize(request.args.at("id").uuid(), request.args.at("allowQuarterTurns").boolean(),
                                 request.args.at("gapInches").number());
    return {.layout = layout, .result = QJsonValue(hasRemoved)};
}

std::optional<double> optionalNumber(const JsonReader& json, const char* key) {
    const auto value = json.find(key);
    return value ? std::optional(value->number()) : std::nullopt;
}

ApplyAnswer sizingArtworks(const ApplyRequest& request) {
    const JsonReader wishes = request.args.at("requests");
    QList<BatchArtworkSizeRequest> requests;
    for (qsizetype index = 0; index < wishes.count(); ++index) {
        const JsonReader wish = wishes.element(index);
        requests.append({.id = wish.at("id").uuid(),
                         .widthInches = optionalNumber(wish, "widthInches"),
                         .heightInches = optionalNumber(wish, "heightInches")});
    }
    return {.layout = request.layout().sizingArtworks(requests, request.args.at("allowQuarterTurns").boolean()),
            .result = std::nullopt};
}

ApplyAnswer batchSizeRequests(const ApplyRequest& request) {
    const JsonReader ids = request.args.at("artworkIDs");
    QList<QUuid> artworkIDs;
    for (qsizetype index = 0; index < ids.count(); ++index) {
        artworkIDs.append(ids.element(index).uuid());
    }
    QJsonArray requests;
    for (const auto& each : BatchArtworkSizeParser::requests(request.args.at("text").text(), artworkIDs)) {
        requests.append(QJsonObject{{QStringLiteral("id"), platform::uuidText(each.id)},
                                    {QStringLiteral("widthInches"), *each.widthInches},
                                    {QStringLiteral("heightInches"), *each.heightInches}});
    }
    return {.layout = std::nullopt, .result = requests};
}

ApplyAnswer exportValidationError(const ApplyRequest& request) {
    return {.layout = std::nullopt, .result = answerText(request.layout().exportValidationError())};
}

ApplyAnswer widthValidationError(const ApplyRequest& request) {
    return {.layout = std::nullopt, .result = answerText(request.layout().widthValidationError())};
}

ApplyAnswer structureValidationError(const ApplyRequest& request) {
    return {.layout = std::nullopt, .result = answerText(request.layout().structureValidationError())};
}

ApplyAnswer lengthInches(const ApplyRequest& request) {
    return {.layout = std::nullopt, .result = answerNumber(request.layout().lengthInches())};
}

ApplyAnswer artworkValidationError(const ApplyRequest& request) {
    const RollArtwork artwork = RollArtwork::fromJson(request.args.at("artwork"));
    return {.layout = std::nullopt,
            .result = answerText(artwork.validationError(request.args.at("rollWidthInches").number()))};
}

ApplyAnswer resizedWidth(const ApplyRequest& request) {
    const JsonReader& args = request.args;
    const double width = RollInteraction::resizedWidth(
        args.at("startWidth").number(), args.at("startHeight").number(), args.at("translationX").number(),
        args.at("translationY").number(), args.at("originX").number(), args.at("rollWidthInches").number());
    return {.layout = std::nullopt, .result = answerNumber(width)};
}

ApplyAnswer constrainedMoveY(const ApplyRequest& request) {
    const JsonReader& args = request.args;
    const double y = RollInteraction::constrainedMoveY(args.at("requestedY").number(), args.at("trimHeight").number(),
                                                       args.at("canvasLength").number());
    return {.layout = std::nullopt, .result = answerNumber(y)};
}

ApplyAnswer quarterInchSize(const ApplyRequest& request) {
    using namespace QuarterInchArtworkSizing;
    static const std::map<QString, Dimension> dimensions{{QStringLiteral("width"), Dimension::width},
                                                         {QStringLiteral("height"), Dimension::height}};
    static const std::map<QString, Strategy> strategies{{QStringLiteral("bothDimensions"), Strategy::bothDimensions},
                                                        {QStringLiteral("editedDimension"), Strategy::editedDimension}};
    const JsonReader& args = request.args;
    const Result size = QuarterInchArtworkSizing::size(
        RollArtwork::fromJson(args.at("artwork")), args.at("target").number(), named(args.at("dimension"), dimensions),
        args.at("rollWidthInches").number(), named(args.at("strategy"), strategies));
    return {.layout = std::nullopt,
            .result = QJsonObject{{QStringLiteral("widthInches"), answerNumber(size.widthInches)},
                                  {QStringLiteral("heightInches"), answerNumber(size.heightInches)},
                                  {QStringLiteral("scale"), answerNumber(size.scale)}}};
}

} // namespace

const ApplyOperations& layoutOperations() {
    static const ApplyOperations operations{
        {QStringLiteral("append"), append},
        {QStringLiteral("move"), move},
        {QStringLiteral("resize"), resize},
        {QStringLiteral("rotate"), rotate},
        {QStringLiteral("nudge"), nudge},
        {QStringLiteral("remove"), remove},
        {QStringLiteral("autoArrange"), autoArrange},
        {QStringLiteral("optimizeArrangement"), optimizeArrangement},
        {QStringLiteral("changeRollWidth"), changeRollWidth},
        {QStringLiteral("removeAndOptimize"), removeAndOptimize},
        {QStringLiteral("sizingArtworks"), sizingArtworks},
        {QStringLiteral("batchSizeRequests"), batchSizeRequests},
        {QStringLiteral("exportValidationError"), exportValidationError},
        {QStringLiteral("widthValidationError"), widthValidationError},
        {QStringLiteral("structureValidationError"), structureValidationError},
        {QStringLiteral("lengthInches"), lengthInches},
        {QStringLiteral("artworkValidationError"), artworkValidationError},
        {QStringLiteral("resizedWidth"), resizedWidth},
        {QStringLiteral("constrainedMoveY"), constrainedMoveY},
        {QStringLiteral("quarterInchSize"), quarterInchSize},
    };
    return operations;
}

} // namespace orvex
