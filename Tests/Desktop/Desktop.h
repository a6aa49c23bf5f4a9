#pragma once

#include "FileManager.h"
#include "Program.h"
#include "ScreenReader.h"
#include "TemporaryFolder.h"

#include <QPoint>
#include <QProcessEnvironment>
#include <QString>

#include <memory>

namespace orvex::test {

/// A desktop that nobody sees: a display, a window manager and a message bus of its own, a home in a temporary folder,
/// and somebody at the mouse, the keyboard and the screen reader. Everything ends with it. What goes wrong raises
/// std::runtime_error.
class Desktop {
public:
    Desktop();
    ~Desktop();

    /// Where home and temporary files of the programs are.
    [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }

    /// What programs on this desktop are started with.
    [[nodiscard]] const QProcessEnvironment& environment() const { return environment_; }

    [[nodiscard]] ScreenReader& screenReader() { return *screenReader_; }

    /// Of the programs that are started from now on, such as "zh_CN.UTF-8".
    void setLanguage(const QString& locale) { environment_.insert(QStringLiteral("LANG"), locale); }

    [[nodiscard]] const FileManager& fileManager() const { return *fileManager_; }

    // The mouse; places on the screen

    void click(const QPoint& place) const;

    /// Moves the pressed mouse from one place to another, and releases it there.
    void drag(const QPoint& from, const QPoint& to) const;

    void pressMouse(const QPoint& place) const;
    void releaseMouse() const;

    /// With its button down or not, in steps, as a hand does.
    void moveMouse(const QPoint& from, const QPoint& to) const;

    /// Turns the mouse's wheel by one step.
    void turnWheelDown(const QPoint& place) const;

    // The keyboard; keys in xdotool's words

    void press(const QString& key) const;
    void type(const QString& text) const;

    /// Holds a key down for that long; the display repeats it.
    void hold(const QString& key, int milliseconds) const;

    void keyDown(const QString& key) const;
    void keyUp(const QString& key) const;

    // Windows

    /// The title of the one that has the keyboard; empty for none.
    [[nodiscard]] QString activeWindow() const;

    /// Where the window of this title is, without its frame.
    [[nodiscard]] QRect placeOf(const QString& title) const;

    /// Brings the window of this title to the front.
    void activate(const QString& title) const;

    void minimizeActiveWindow() const;

    /// Asks the window of this title to close, as a click on the cross of its frame does.
    void close(const QString& title) const;

private:
    void startDisplay();
    void startBus();
    QString xdotool(const QStringList& words) const;
    [[nodiscard]] QString windowNamed(const QString& title) const;

    TemporaryFolder folder_;
    QProcessEnvironment environment_;
    std::unique_ptr<Program> display_;
    std::unique_ptr<Program> windowManager_;
    std::unique_ptr<Program> bus_;
    std::unique_ptr<ScreenReader> screenReader_;
    std::unique_ptr<FileManager> fileManager_;
};

} // namespace orvex::test
