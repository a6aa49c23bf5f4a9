// empty-window: opens a window of the program's size that holds nothing, and ends once it is painted.

#include "EndAfterPaint.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const orvex::benchmarks::EndAfterPaint end(application);
    QWidget window;
    window.resize(1440, 940);
    window.show();
    return QApplication::exec();
}
