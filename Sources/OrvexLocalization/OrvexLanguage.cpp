#include "OrvexLanguage.h"

#include "InformationDictionary.h"

#include <QLocale>

#include <mutex>

namespace orvex {

namespace {

std::mutex configuredMutex;
std::optional<QString> configuredByCommandLine;

std::optional<QString> configuredTag() {
    {
        const std::scoped_lock lock(configuredMutex);
        if (configuredByCommandLine) {
            return configuredByCommandLine;
        }
    }
    return informationDictionaryText("ORVEXAppLanguage");
}

std::optional<OrvexLanguage> languageOfTag(const QString& tag) {
    const QString normalised = QString(tag).replace(u'_', u'-').toLower();
    if (normalised == u"zh" || normalised.startsWith(u"zh-")) {
        return OrvexLanguage::simplifiedChinese;
    }
    if (normalised == u"en" || normalised.startsWith(u"en-")) {
        return OrvexLanguage::english;
    }
    return std::nullopt;
}

} // namespace

OrvexLanguage OrvexLanguage::current() {
    // A build without the key speaks Chinese, whatever the user's system says.
    const QString configured = configuredTag().value_or(QStringLiteral("zh-Hans"));
    return resolve(configured, QLocale::system().uiLanguages());
}

OrvexLanguage OrvexLanguage::resolve(const std::optional<QString>& configured, const QStringList& preferredLanguages) {
    if (configured) {
        if (const auto language = languageOfTag(*configured)) {
            return *language;
        }
    }
    if (preferredLanguages.isEmpty()) {
        return english;
    }
    return languageOfTag(preferredLanguages.first()).value_or(english);
}

void OrvexLanguage::setConfigured(const QString& tag) {
    const std::scoped_lock lock(configuredMutex);
    configuredByCommandLine = tag;
}

QString OrvexLanguage::rawValue() const {
    return value_ == simplifiedChinese ? QStringLiteral("zh-Hans") : QStringLiteral("en");
}

QString OrvexLanguage::localeIdentifier() const {
    return value_ == simplifiedChinese ? QStringLiteral("zh-Hans") : QStringLiteral("en_US");
}

QString OrvexLanguage::text(const char* chinese, const char* englishText) const {
    return QString::fromUtf8(value_ == simplifiedChinese ? chinese : englishText);
}

QString spt(const char* chinese, const char* english) {
    return OrvexLanguage::current().text(chinese, english);
}

} // namespace orvex
