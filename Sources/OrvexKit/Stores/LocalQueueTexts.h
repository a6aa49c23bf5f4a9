#pragma once

#include <QString>

namespace orvex {

/// The messages about jobs that more than one user of the queue gives, in the current language.
namespace LocalQueueTexts {

[[nodiscard]] QString pdfNotDeleted();

} // namespace LocalQueueTexts

} // namespace orvex
