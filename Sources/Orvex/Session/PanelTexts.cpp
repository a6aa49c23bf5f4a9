#include "PanelTexts.h"

#include "InformationDictionary.h"
#include "OrvexLanguage.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

namespace orvex {

namespace {

QString inEnglish(const QString& stored, const char* english) {
    return OrvexLanguage::current() == OrvexLanguage::english ? QString::fromLatin1(english) : stored;
}

/// The moment; invalid beyond what milliseconds in 64 bits tell.
QDateTime dateTime(platform::Timestamp date) {
    constexpr double farthestSeconds = 9e15;
    if (!(std::abs(date.secondsSince2001) <= farthestSeconds)) {
        return {};
    }
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return reference.addMSecs(static_cast<qint64>(std::floor(date.secondsSince2001 * 1000.0)));
}

} // namespace

QString paperSourceLabel(const QString& value) {
    if (value == QStringLiteral("卷纸")) {
        return inEnglish(value, "Roll");
    }
    if (value == QStringLiteral("单张纸")) {
        return inEnglish(value, "Cut sheet");
    }
    return value;
}

QString orvexDateTime(platform::Timestamp date) {
    const QLocale locale(OrvexLanguage::current().localeIdentifier());
    return locale.toString(dateTime(date).toLocalTime(), QLocale::ShortFormat);
}

QString dateText(platform::Timestamp date) {
    return dateTime(date).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss +0000"));
}

QString appVersion() {
    return appVersion(informationDictionaryText("CFBundleShortVersionString"));
}

QString appVersion(const std::optional<QString>& shortVersion) {
    return shortVersion.value_or(QStringLiteral("0.8.4"));
}

} // namespace orvex
