#include "Json/JsonError.h"

#include "OrvexLanguage.h"

namespace orvex::platform {

namespace {

QString compose(const QString& keyPath, const QString& description) {
    return keyPath.isEmpty() ? description : spt("%1：%2", "%1: %2").arg(keyPath, description);
}

} // namespace

JsonError::JsonError(const QString& keyPath, const QString& description)
    : Failure(compose(keyPath, description)),
      keyPath_(keyPath),
      description_(description) {}

JsonSyntaxError::JsonSyntaxError(qsizetype offset)
    : JsonError(
          {},
          spt("内容不是有效的 JSON（第 %1 字节处）。", "Not valid JSON (at byte %1).").arg(QString::number(offset))),
      offset_(offset) {}

} // namespace orvex::platform
