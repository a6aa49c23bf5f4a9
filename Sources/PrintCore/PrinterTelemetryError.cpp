#include "PrinterTelemetryError.h"

#include "OrvexLanguage.h"

namespace orvex {

PrinterTelemetryError PrinterTelemetryError::unavailable(const QString& reason) {
    return {Case::unavailable, spt("无法读取本机 CUPS 状态：%1", "Cannot read local CUPS status: %1").arg(reason)};
}

PrinterTelemetryError PrinterTelemetryError::invalidQueueName() {
    return {Case::invalidQueueName, spt("本机系统打印队列名称无效。", "Invalid local print queue name.")};
}

PrinterTelemetryError PrinterTelemetryError::invalidResponse() {
    return {Case::invalidResponse,
            spt("CUPS 没有返回有效的只读状态数据。", "CUPS did not return valid read-only status data.")};
}

PrinterTelemetryError PrinterTelemetryError::queryFailed() {
    return {Case::queryFailed, spt("本机 CUPS 状态查询失败，设备状态未知。",
                                   "The local CUPS status query failed. Device status is unknown.")};
}

PrinterTelemetryError PrinterTelemetryError::unsafeTestScript() {
    return {Case::unsafeTestScript,
            spt("系统状态脚本与已核实的只读脚本不一致，未运行该脚本。",
                "The system status script does not match the verified read-only script. It was not run.")};
}

PrinterTelemetryError PrinterTelemetryError::timedOut() {
    return {Case::timedOut, spt("读取本机 CUPS 状态超时，设备状态未知。",
                                "Reading local CUPS status timed out. Device status is unknown.")};
}

PrinterTelemetryError PrinterTelemetryError::outputTooLarge() {
    return {Case::outputTooLarge, spt("CUPS 状态响应过大，未使用不完整的数据。",
                                      "The CUPS status response is too large. Incomplete data was not used.")};
}

} // namespace orvex
