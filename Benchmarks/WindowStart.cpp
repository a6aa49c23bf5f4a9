// window-start: starts the program as a user does, and ends once its window is painted.

#include "EndAfterPaint.h"
#include "LargeBlocks.h"
#include "Shell/OrvexApp.h"

int main(int argc, char** argv) {
    orvex::platform::returnLargeBlocks();
    orvex::EndingSignals::block();
    QApplication application(argc, argv);
    const orvex::benchmarks::EndAfterPaint end(application);
    return orvex::OrvexApp(application, {}).run();
}
