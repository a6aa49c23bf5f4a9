#pragma once

#include "SessionServices.h"

#include <QString>
#include <QStringList>

namespace orvex::FileKinds {

/// What a file dialog offers for a kind of file: the filter by which it shows files, in the dialog's own form, and the
/// ending that a new file gets where the user types none.
[[nodiscard]] QStringList filters(FileKind kind);
[[nodiscard]] QString suffix(FileKind kind);

} // namespace orvex::FileKinds
