#include "Timestamp.h"

#include "Json/JsonWriter.h"

#include <chrono>

namespace orvex::platform {

Timestamp Timestamp::now() {
    using std::chrono::sys_days;
    constexpr std::chrono::sys_seconds reference = sys_days(std::chrono::year(2001) / 1 / 1);
    const std::chrono::duration<double> elapsed = std::chrono::system_clock::now() - reference;
    return {elapsed.count()};
}

QJsonValue Timestamp::toJson(const char* key) const {
    return jsonNumber(key, secondsSince2001);
}

} // namespace orvex::platform
