#pragma once

#include "Layout/RollLayout.h"

#include <QUrl>

namespace orvex {

/// Raises OrvexError if writing to `to` would write over the source of an artwork, by whatever path or link.
void refuseOverwritingSources(const QUrl& to, const RollLayout& layout);

} // namespace orvex
