#include "CUPSService.h"

#include "BackgroundTask.h"
#include "OrvexLanguage.h"
#include "Process/ChildProcess.h"
#include "QueueDiscovery.h"
#include "Text.h"
#include "ToolCommand.h"

#include <algorithm>
#include <chrono>

namespace orvex {

namespace {

using namespace std::chrono_literals;

constexpr double shortestTimeoutSeconds = 0.2;
constexpr double longestTimeoutSeconds = 30.0;
constexpr qint64 smallestOutputLimitBytes = 1024;
constexpr qint64 largestOutputLimitBytes = 1048576;

platform::ChildRules rules(const CUPSService& service) {
    return {.pipes = platform::ChildPipes::shared,
            .overflow = platform::ChildOverflow::discarded,
            .outputLimitBytes = service.outputLimit(),
            .readsPerTurn = 32,
            .timeout = std::chrono::duration<double>(service.timeout()),
            .pollStep = 20ms,
            .terminationGrace = 350ms,
            .killGrace = 500ms,
            .graceStep = 10ms};
}

InspectionResult notStarted(const platform::ChildStartError& error) {
    const bool hasNoPipe = error.stage() == platform::ChildStartError::Stage::pipes;
    return {.output = hasNoPipe ? spt("无法创建非阻塞的读取管道。", "Cannot create a nonblocking read pipe.")
                                : error.message(),
            .status = std::nullopt};
}

} // namespace

CUPSService::CUPSService(double timeoutSeconds, qint64 outputLimitBytes)
    // In this order of arguments a timeout that is no number becomes the shortest one.
    : timeout_(std::min(longestTimeoutSeconds, std::max(shortestTimeoutSeconds, timeoutSeconds))),
      outputLimit_(std::clamp(outputLimitBytes, smallestOutputLimitBytes, largestOutputLimitBytes)) {}

InspectionResult CUPSService::run(const InspectionCommand& command, const std::stop_token& stop) const {
    try {
        const platform::ChildResult child = platform::runChild(toolCommand(command), rules(*this), stop);
        return {.output = platform::textWithReplacements(child.output),
                .status = child.status,
                .timedOut = child.end != platform::ChildEnd::ended,
                .truncated = child.isOutputTooLarge};
    } catch (const platform::ChildStartError& error) {
        return notStarted(error);
    }
}

QFuture<QList<PrinterSnapshot>> CUPSService::discover(const std::stop_token& stop) const {
    return platform::startUtilityTask([service = *this, stop] { return service.inspectLocalQueues(stop); });
}

QList<PrinterSnapshot> CUPSService::inspectLocalQueues(const std::stop_token& stop) const {
    return QueueDiscovery([this, &stop](const InspectionCommand& command) { return run(command, stop); }, stop)
        .snapshots();
}

} // namespace orvex
