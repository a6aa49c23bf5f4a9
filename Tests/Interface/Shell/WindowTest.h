#pragma once

#include "CanvasTest.h"
#include "Shell/DesktopServices.h"
#include "Shell/MainWindow.h"

#include <QApplication>
#include <QTest>

namespace orvex::test {

/// The whole window over a session, with the keyboard.
class WindowTest : public CanvasTest {
protected:
    DesktopServices desktop; ///< the session's own services are the test's
    std::unique_ptr<MainWindow> window;

    ~WindowTest() override { window.reset(); }

    MainWindow& open() {
        window = std::make_unique<MainWindow>(*model, desktop);
        services.onCommitEditing = [this] { desktop.commitEditing(); };
        window->show();
        activate();
        turn();
        return *window;
    }

    void activate() const {
        QApplication::setActiveWindow(window.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    static void turn() {
        for (int times = 0; times < 3; ++times) {
            QCoreApplication::processEvents();
        }
    }

    template <typename Widget>
    [[nodiscard]] Widget* find(const char* name) const {
        auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
};

} // namespace orvex::test
