#include "ApplyOperations.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"
#include "Output/ImageMetadata.h"

namespace orvex {

namespace {

ApplyAnswer resolveLanguage(const ApplyRequest& request) {
    const auto configured = request.args.find("configured");
    const OrvexLanguage language = OrvexLanguage::resolve(configured ? std::optional(configured->text()) : std::nullopt,
                                                          request.args.at("preferredLanguages").texts());
    return {.layout = std::nullopt,
            .result = language == OrvexLanguage::simplifiedChinese ? QStringLiteral("simplifiedChinese")
                                                                   : QStringLiteral("english")};
}

ApplyAnswer qaWorkspace(const ApplyRequest& request) {
    const auto directory = OrvexQAWorkspace::directory(request.args.at("arguments").texts());
    return {.layout = std::nullopt,
            .result = answerText(directory ? std::optional(directory->toLocalFile()) : std::nullopt)};
}

ApplyAnswer localizedPhysicalSizeSource(const ApplyRequest& request) {
    return {.layout = std::nullopt,
            .result = ImageMetadata::localizedPhysicalSizeSource(request.args.at("text").text())};
}

} // namespace

const ApplyOperations& languageOperations() {
    static const ApplyOperations operations{
        {QStringLiteral("resolveLanguage"), resolveLanguage},
        {QStringLiteral("qaWorkspace"), qaWorkspace},
        {QStringLiteral("localizedPhysicalSizeSource"), localizedPhysicalSizeSource},
    };
    return operations;
}

} // namespace orvex
