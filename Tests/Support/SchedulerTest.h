#pragma once

#include "OnPrivateMachine.h"

namespace orvex::test {

/// The base of all tests that have nothing but a print scheduler of their own.
using SchedulerTest = OnPrivateMachine<>;

} // namespace orvex::test
