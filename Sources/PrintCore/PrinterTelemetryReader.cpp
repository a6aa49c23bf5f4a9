#include "PrinterTelemetryReader.h"

#include "BackgroundTask.h"
#include "Files/FileSystemError.h"
#include "Files/RandomAccessFile.h"
#include "Interrupted.h"
#include "OrvexLanguage.h"
#include "PrinterTelemetryCommand.h"
#include "PrinterTelemetryError.h"
#include "PrinterTelemetryParser.h"
#include "Process/ChildProcess.h"
#include "Text.h"
#include "ToolCommand.h"

#include <chrono>

namespace orvex {

namespace {

using namespace std::chrono_literals;

constexpr platform::ChildRules rules{.pipes = platform::ChildPipes::separate,
                                     .overflow = platform::ChildOverflow::stopsChild,
                                     .outputLimitBytes = PrinterTelemetryParser::largestAnswerBytes,
                                     .readsPerTurn = 16,
                                     .timeout = 8s,
                                     .pollStep = 15ms,
                                     .terminationGrace = 300ms,
                                     .killGrace = 500ms,
                                     .graceStep = 10ms};

PrinterTelemetryError noScript() {
    return PrinterTelemetryError::unavailable(
        spt("系统的只读查询脚本不可用。", "The system read-only query script is unavailable."));
}

QByteArray testScriptBytes() {
    try {
        const auto file = platform::RandomAccessFile::open(QString::fromLatin1(PrinterTelemetryCommand::testFile));
        return file.bytesAt(0, PrinterTelemetryCommand::largestTestScriptBytes + 1); // one more shows that it is longer
    } catch (const platform::FileSystemError&) {
        throw noScript(); // the system's own words would tell the user less
    }
}

void requireReadOnlyTestScript() {
    const QByteArray bytes = testScriptBytes();
    if (bytes.size() > PrinterTelemetryCommand::largestTestScriptBytes) {
        throw PrinterTelemetryError::unsafeTestScript();
    }
    const auto text = platform::validText(bytes);
    if (!text) {
        throw noScript();
    }
    if (!PrinterTelemetryCommand::isReadOnlyTestScript(*text)) {
        throw PrinterTelemetryError::unsafeTestScript();
    }
}

platform::ChildResult runTool(const PrinterTelemetryCommand& command, const std::stop_token& stop) {
    try {
        return platform::runChild(toolCommand(command), rules, stop);
    } catch (const platform::ChildStartError& error) {
        throw PrinterTelemetryError::unavailable(
            error.stage() == platform::ChildStartError::Stage::pipes
                ? spt("无法创建读取状态的管道。", "Cannot create the status-reading pipe.")
                : spt("系统的 ipptool 不可用。", "The system ipptool is unavailable."));
    }
}

/// The answer of a tool that ended well.
QByteArray answerOf(const platform::ChildResult& child) {
    if (child.isOutputTooLarge) {
        throw PrinterTelemetryError::outputTooLarge();
    }
    if (child.end == platform::ChildEnd::timedOut || !child.status) {
        throw PrinterTelemetryError::timedOut();
    }
    if (*child.status != 0) {
        throw PrinterTelemetryError::queryFailed();
    }
    return child.output;
}

PrinterTelemetrySnapshot readLocalQueue(const QString& queueName, const std::stop_token& stop) {
    platform::throwIfStopped(stop);
    const PrinterTelemetryCommand command(queueName);
    requireReadOnlyTestScript();
    const platform::ChildResult child = runTool(command, stop);
    platform::throwIfStopped(stop);
    return PrinterTelemetryParser::parse(answerOf(child), queueName, platform::Timestamp::now());
}

} // namespace

QFuture<PrinterTelemetrySnapshot> PrinterTelemetryReader::read(const QString& queueName,
                                                               const std::stop_token& stop) const {
    if (!isValidQueueName(queueName)) {
        return QtFuture::makeExceptionalFuture<PrinterTelemetrySnapshot>(
            std::make_exception_ptr(PrinterTelemetryError::invalidQueueName()));
    }
    return platform::startUtilityTask([queueName, stop] { return readLocalQueue(queueName, stop); });
}

bool PrinterTelemetryReader::isValidQueueName(const QString& text) {
    return PrinterTelemetryCommand::isValidQueueName(text);
}

} // namespace orvex
