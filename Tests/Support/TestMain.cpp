#include "RunTests.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    return orvex::test::runTests(argc, argv);
}
