#pragma once

class QApplication;

namespace orvex {

class MainWindow;

/// What the program does when it has started, and when its window goes. Main thread.
class AppDelegate {
public:
    /// Brings the window to the front, wherever the program was started from.
    void applicationDidFinishLaunching(MainWindow& window) const;

    /// Closing the window ends the program.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
};

} // namespace orvex
