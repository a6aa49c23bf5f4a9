#pragma once

#include "Layout/RollLayout.h"

#include <QUrl>

namespace orvex {

/// The folder of this session's stores, which need not exist.
[[nodiscard]] QUrl storesFolder();

/// Raises OrvexError if writing to `to` would write over the source of an artwork, by whatever path or link.
void refuseOverwritingSources(const QUrl& to, const RollLayout& layout);

/// Raises OrvexError if writing to `to` would write over the program's own data, by whatever path or link.
void refuseOverwritingOwnData(const QUrl& to);

} // namespace orvex
