#pragma once

#include "CUPSParsers.h"
#include "InspectionCommand.h"
#include "InspectionResult.h"
#include "PrintModels.h"

#include <functional>
#include <stop_token>

namespace orvex {

/// One pass over the local queues: four questions in a fixed order, folded into a snapshot of each queue. Only the
/// first can fail the pass; every later failure leaves an empty field and is told in the queue's diagnostic.
class QueueDiscovery {
public:
    using Run = std::function<InspectionResult(const InspectionCommand&)>;

    QueueDiscovery(Run run, std::stop_token stop) : run_(std::move(run)), stop_(std::move(stop)) {}

    /// The snapshots, in the order of the status tool; none if the system has no queues. Raises CUPSInspectionError if
    /// that cannot be told, Interrupted once a stop is requested.
    [[nodiscard]] QList<PrinterSnapshot> snapshots() const;

private:
    struct Answers;

    [[nodiscard]] InspectionResult ask(const InspectionCommand& command) const;
    [[nodiscard]] PrinterSnapshot snapshot(const PrinterStatus& queue, const Answers& answers) const;

    Run run_;
    std::stop_token stop_;
};

} // namespace orvex
