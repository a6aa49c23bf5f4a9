#pragma once

#include "InspectionCommand.h"
#include "InspectionResult.h"
#include "PrintModels.h"

#include <QFuture>
#include <QList>

#include <stop_token>

namespace orvex {

/// Looks at the local print queues by the read-only tools of CUPS. A plain value. Any thread.
class CUPSService {
public:
    /// The time for one command, kept within 0.2 to 30 seconds, and what it may write, within 1 KiB to 1 MiB.
    CUPSService(double timeoutSeconds, qint64 outputLimitBytes);

    /// As the program looks at the queues: 6 seconds and 256 KiB for each command.
    [[nodiscard]] static CUPSService standard() { return CUPSService(6.0, 262144); }

    [[nodiscard]] double timeout() const { return timeout_; }

    [[nodiscard]] qint64 outputLimit() const { return outputLimit_; }

    /// The queues that the status tool reports, in its order, as a task of the utility pool. The future raises
    /// CUPSInspectionError if no queue could be read, and Interrupted once a stop is requested; anything else that
    /// fails is told in the `diagnostic` of the queues that it concerns.
    [[nodiscard]] QFuture<QList<PrinterSnapshot>> discover(const std::stop_token& stop = {}) const;

    /// Runs one command to its end or deadline. Never raises: every failure is a result. Blocks, so it belongs on a
    /// background task.
    [[nodiscard]] InspectionResult run(const InspectionCommand& command, const std::stop_token& stop = {}) const;

    bool operator==(const CUPSService&) const = default;

private:
    [[nodiscard]] QList<PrinterSnapshot> inspectLocalQueues(const std::stop_token& stop) const;

    double timeout_;
    qint64 outputLimit_;
};

} // namespace orvex
