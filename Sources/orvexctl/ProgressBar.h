#pragma once

#include <QString>

#include <unistd.h>

#include <chrono>
#include <functional>

namespace orvex {

/// One line on standard error that shows how far long work has come, redrawn at most ten times a second and erased when
/// the object goes. Shows nothing at all where standard error is no terminal, nor for work of less than a tenth of a
/// second. One thread.
class ProgressBar {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// `terminal` is a descriptor that stays the caller's.
    explicit ProgressBar(int terminal = STDERR_FILENO, Clock clock = std::chrono::steady_clock::now);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `label` says what is being done; `fraction`, 0 to 1, how much of it.
    void show(const QString& label, double fraction);

private:
    void erase();

    int terminal_;
    Clock clock_;
    bool isShown_;
    std::chrono::steady_clock::time_point lastDrawn_;
    int drawnColumns_ = 0;
};

/// The line itself, which leaves the last of the terminal's columns free so that no terminal begins another line. What
/// finds no room is left out: first the bar, then the label, then all.
[[nodiscard]] QString progressLine(const QString& label, double fraction, int columns);

/// The columns that a text takes in a terminal, where a Chinese character has two.
[[nodiscard]] int columnsOf(const QString& text);

} // namespace orvex
