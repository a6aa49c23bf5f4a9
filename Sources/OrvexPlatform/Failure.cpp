#include "Failure.h"

#include "OrvexLanguage.h"

#include <new>

namespace orvex {

QString failureMessage(const std::exception& exception) {
    if (const auto* failure = dynamic_cast<const Failure*>(&exception)) {
        return failure->message();
    }
    if (dynamic_cast<const std::bad_alloc*>(&exception) != nullptr) {
        return spt("内存不足。", "Not enough memory.");
    }
    return spt("系统资源不足或发生意外错误：%1。",
               "The system is short of resources, or something unexpected failed: %1")
        .arg(QString::fromLocal8Bit(exception.what()));
}

} // namespace orvex
