#include "PrinterTelemetryError.h"

#include "InChinese.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <functional>

namespace orvex {

namespace {

using test::text;
using Case = PrinterTelemetryError::Case;

struct Message {
    const char* name;
    std::function<PrinterTelemetryError()> make;
    Case errorCase;
    const char* english;
    const char* chinese;
};

void PrintTo(const Message& row, std::ostream* out) {
    *out << row.name;
}

class PrinterTelemetryErrorTest : public ::testing::TestWithParam<Message> {};

} // namespace

TEST_P(PrinterTelemetryErrorTest, SaysWhatFailed) {
    const PrinterTelemetryError error = GetParam().make();
    EXPECT_EQ(error.errorCase(), GetParam().errorCase);
    EXPECT_EQ(error.message(), text(GetParam().english));
    EXPECT_STREQ(error.what(), GetParam().english);
}

TEST_P(PrinterTelemetryErrorTest, SaysItInChineseToo) {
    const test::InChinese chinese;
    EXPECT_EQ(GetParam().make().message(), text(GetParam().chinese));
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryError, PrinterTelemetryErrorTest,
    ::testing::Values(Message{"Unavailable", [] { return PrinterTelemetryError::unavailable(text("Reason %1 %2.")); },
                              Case::unavailable, "Cannot read local CUPS status: Reason %1 %2.",
                              "无法读取本机 CUPS 状态：Reason %1 %2."},
                      Message{"InvalidQueueName", PrinterTelemetryError::invalidQueueName, Case::invalidQueueName,
                              "Invalid local print queue name.", "本机系统打印队列名称无效。"},
                      Message{"InvalidResponse", PrinterTelemetryError::invalidResponse, Case::invalidResponse,
                              "CUPS did not return valid read-only status data.", "CUPS 没有返回有效的只读状态数据。"},
                      Message{"QueryFailed", PrinterTelemetryError::queryFailed, Case::queryFailed,
                              "The local CUPS status query failed. Device status is unknown.",
                              "本机 CUPS 状态查询失败，设备状态未知。"},
                      Message{"UnsafeTestScript", PrinterTelemetryError::unsafeTestScript, Case::unsafeTestScript,
                              "The system status script does not match the verified read-only script. It was not run.",
                              "系统状态脚本与已核实的只读脚本不一致，未运行该脚本。"},
                      Message{"TimedOut", PrinterTelemetryError::timedOut, Case::timedOut,
                              "Reading local CUPS status timed out. Device status is unknown.",
                              "读取本机 CUPS 状态超时，设备状态未知。"},
                      Message{"OutputTooLarge", PrinterTelemetryError::outputTooLarge, Case::outputTooLarge,
                              "The CUPS status response is too large. Incomplete data was not used.",
                              "CUPS 状态响应过大，未使用不完整的数据。"}),
    test::RowName());

TEST(PrinterTelemetryError, ListsItsCasesInTheirOrder) {
    EXPECT_LT(Case::unavailable, Case::invalidQueueName);
    EXPECT_LT(Case::invalidQueueName, Case::invalidResponse);
    EXPECT_LT(Case::invalidResponse, Case::queryFailed);
    EXPECT_LT(Case::queryFailed, Case::unsafeTestScript);
    EXPECT_LT(Case::unsafeTestScript, Case::timedOut);
    EXPECT_LT(Case::timedOut, Case::outputTooLarge);
}

} // namespace orvex
