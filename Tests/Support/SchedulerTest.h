#pragma once

#include "PrivateMachine.h"

#include <gtest/gtest.h>

namespace orvex::test {

/// The base of all tests that need a private machine. Where there can be none, they are skipped and say why; so make a
/// scheduler in the test itself, not in a member.
class SchedulerTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!PrivateMachine::refusal().empty()) {
            GTEST_SKIP() << "no private print system: " << PrivateMachine::refusal();
        }
    }
};

} // namespace orvex::test
