#include "ApplyOperations.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"
#include "Output/ImageMetadata.h"

namespace orvex {

namespace {

QStringList texts(const platform::JsonReader& json) {
    QStringList list;
    const qsizetype count = json.count();
    for (qsizetype index = 0; index < count; ++index) {
        list.append(json.element(index).text());
    }
    return list;
}

ApplyAnswer resolveLanguage(const ApplyRequest& request) {
    const auto configured = request.args.find("configured");
    const OrvexLanguage language = OrvexLanguage::resolve(configured ? std::optional(configured->text()) : std::nullopt,
                                                          texts(request.args.at("preferredLanguages")));
    return {.layout = std::nullopt,
            .result = language == OrvexLanguage::simplifiedChinese ? QStringLiteral("simplifiedChinese")
                                                                   : QStringLiteral("english")};
}

ApplyAnswer qaWorkspace(const ApplyRequest& request) {
    const auto directory = OrvexQAWorkspace::directory(texts(request.args.at("arguments")));
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
