#include "PrivateMachine.h"
#include "RunTests.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!GTEST_FLAG_GET(list_tests)) {
        orvex::test::PrivateMachine::enter(); // without its print system, which would be different on every machine
    }
    return orvex::test::runTests(argc, argv);
}
