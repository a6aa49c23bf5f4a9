#pragma once

#include "SessionLock.h"

namespace orvex {

/// Keeps the program's window and other commands from changing the stores for as long as this lives. A folder that
/// cannot be locked is left to the stores themselves.
class StoreChange {
public:
    /// Raises OrvexError if the window is open with the same folder.
    StoreChange();

private:
    SessionLock lock_;
};

} // namespace orvex
