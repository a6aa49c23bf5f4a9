#pragma once

namespace orvex::BoardAccessibility {

/// Makes each artwork of a board a node of its own for those who hear the screen. Once for the process; main thread.
void install();

} // namespace orvex::BoardAccessibility
