#pragma once

#include "PrivateMachine.h"

#include <gtest/gtest.h>

namespace orvex::test {

/// A kind of test that needs a private machine. Where there can be none, its tests are skipped and say why; so make
/// what needs the machine in the test itself, not in a member.
template <typename Base = ::testing::Test>
class OnPrivateMachine : public Base {
protected:
    void SetUp() override {
        if (!PrivateMachine::refusal().empty()) {
            GTEST_SKIP() << "no private machine: " << PrivateMachine::refusal();
        }
    }
};

} // namespace orvex::test
