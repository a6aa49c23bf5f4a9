#include "InformationDictionary.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvex {

namespace {

constexpr qint64 limitBytes = 65'536; // far more than a handful of keys needs

QString dictionaryPath() {
    // The program's own path comes from the system: the dictionary is needed before any application object exists.
    const QString program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return QFileInfo(program).path() + QStringLiteral("/../share/orvex/info.json");
}

QJsonObject readDictionary() {
    QFile file(dictionaryPath());
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QJsonDocument::fromJson(file.read(limitBytes)).object();
}

} // namespace

std::optional<QString> informationDictionaryText(const char* key) {
    static const QJsonObject dictionary = readDictionary();
    const QJsonValue value = dictionary.value(QLatin1String(key));
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

} // namespace orvex
