#include "ApplyOperations.h"
#include "Layout/Document.h"
#include "Layout/InchLayout.h"

#include <QJsonArray>

namespace orvex {

namespace {

using platform::JsonReader;

QLocale localeOf(const JsonReader& args) {
    return QLocale(args.at("locale").text());
}

DocumentSettings baseOf(const JsonReader& args) {
    const auto base = args.find("base");
    return base ? DocumentSettings::fromJson(*base) : DocumentSettings();
}

/// Calls `make` with the one page dimension that the arguments give.
template <typename Make>
ApplyAnswer page(const JsonReader& args, Make make) {
    const auto width = args.find("pageWidthInches");
    const auto height = args.find("pageHeightInches");
    if (width.has_value() == height.has_value()) {
        args.fail(QStringLiteral("pageWidthInches | pageHeightInches"));
    }
    const DocumentSettings settings = width ? make(PageWidthInches{width->number()}) //
                                            : make(PageHeightInches{height->number()});
    return {.layout = std::nullopt, .result = settings.toJson(platform::JsonNumbers::orNonFiniteText)};
}

ApplyAnswer pageSettings(const ApplyRequest& request) {
    const JsonReader& args = request.args;
    return page(args, [&](auto dimension) {
        return BorderedArtworkLayout::settings(dimension, args.at("pixelWidth").integer(),
                                               args.at("pixelHeight").integer(), baseOf(args));
    });
}

ApplyAnswer pageDraft(const ApplyRequest& request) {
    const JsonReader& args = request.args;
    return page(args, [&](auto dimension) {
        return BorderedArtworkLayout::draft(dimension, args.at("pixelWidth").integer(),
                                            args.at("pixelHeight").integer(), baseOf(args));
    });
}

ApplyAnswer documentValidationError(const ApplyRequest& request) {
    const auto settings = DocumentSettings::fromJson(request.args.at("settings"));
    return {.layout = std::nullopt, .result = answerText(settings.validationError())};
}

ApplyAnswer imageRect(const ApplyRequest& request) {
    const auto settings = DocumentSettings::fromJson(request.args.at("settings"));
    const Rect rect =
        settings.imageRect(request.args.at("pixelWidth").integer(), request.args.at("pixelHeight").integer());
    return {.layout = std::nullopt,
            .result = QJsonArray{answerNumber(rect.x), answerNumber(rect.y), answerNumber(rect.width),
                                 answerNumber(rect.height)}};
}

ApplyAnswer parseDecimalInput(const ApplyRequest& request) {
    const auto number = PrintUnits::parseDecimalInput(request.args.at("text").text(), localeOf(request.args));
    return {.layout = std::nullopt, .result = number ? answerNumber(*number) : QJsonValue()};
}

ApplyAnswer formatMMAsInches(const ApplyRequest& request) {
    return {.layout = std::nullopt,
            .result = PrintUnits::formatMMAsInches(request.args.at("mm").number(), localeOf(request.args))};
}

} // namespace

const ApplyOperations& pageOperations() {
    static const ApplyOperations operations{
        {QStringLiteral("pageSettings"), pageSettings},
        {QStringLiteral("pageDraft"), pageDraft},
        {QStringLiteral("documentValidationError"), documentValidationError},
        {QStringLiteral("imageRect"), imageRect},
        {QStringLiteral("parseDecimalInput"), parseDecimalInput},
        {QStringLiteral("formatMMAsInches"), formatMMAsInches},
    };
    return operations;
}

} // namespace orvex
