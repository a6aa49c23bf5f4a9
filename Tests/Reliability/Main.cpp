#include "PrivateMachine.h"
#include "RunTests.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!GTEST_FLAG_GET(list_tests)) {
        orvex::test::PrivateMachine::enter();
    }
    return orvex::test::runTests(argc, argv);
}
