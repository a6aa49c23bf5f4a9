#include "AppDelegate.h"

#include "Shell/MainWindow.h"

namespace orvex {

void AppDelegate::applicationDidFinishLaunching(MainWindow& window) const {
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace orvex
