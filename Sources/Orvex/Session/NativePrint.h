#pragma once

#include "Output/ColorManagement.h"

#include <QString>
#include <QUrl>

namespace orvex {

/// What is to be printed, on which queue.
struct NativePrintRequest {
    QUrl pdfURL;
    QString queueName; ///< the exact queue; there is no other
    QString jobTitle;
    double widthInches = 0.0; ///< of the page, as the layout or the job's record has it
    double heightInches = 0.0;
    ColorWorkflow workflow;

    bool operator==(const NativePrintRequest&) const = default;
};

/// A print that passed all checks and waits for its window.
class NativePrintOperation {
public:
    NativePrintOperation() = default;
    NativePrintOperation(const NativePrintOperation&) = delete;
    NativePrintOperation& operator=(const NativePrintOperation&) = delete;
    virtual ~NativePrintOperation() = default;

    /// Opens the print window and returns when it is closed. Whether the operator submitted the job.
    [[nodiscard]] virtual bool run() = 0;
};

} // namespace orvex
