#pragma once

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace orvex::benchmarks {

inline double millisecondsOf(const std::function<void()>& step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The value below which this part of the figures lies; `part` is from 0 to 1.
inline double percentile(std::vector<double> figures, double part) {
    std::ranges::sort(figures);
    return figures.at(static_cast<std::size_t>(part * static_cast<double>(figures.size() - 1)));
}

/// A line of /proc/self/status in MiB, such as "VmHWM:" for the peak of resident memory.
inline double memoryMiB(const char* line) {
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no memory figures");
    }
    for (const QByteArray& each : file.readAll().split('\n')) {
        if (each.startsWith(line)) {
            return each.simplified().split(' ').at(1).toDouble() / 1024.0;
        }
    }
    throw std::runtime_error("no such memory figure");
}

/// Prints figures as rows of a table, and keeps in mind whether one missed its bar.
class Figures {
public:
    explicit Figures(const char* title) {
        std::printf("%-52s %-16s %9s %-4s   %-5s %s\n", title, "figure", "value", "", "bar", "met");
    }

    [[nodiscard]] bool isMissed() const { return isMissed_; }

    /// A figure that has to be below `most`.
    void add(const char* task, const char* figure, double value, double most, const char* unit) {
        const bool isMet = value < most;
        isMissed_ = isMissed_ || !isMet;
        std::printf("%-52s %-16s %9.3f %-4s < %-5g %s\n", task, figure, value, unit, most, isMet ? "yes" : "NO");
        (void)std::fflush(stdout);
    }

    /// A figure for orientation only.
    static void note(const char* task, const char* figure, double value, const char* unit) {
        std::printf("%-52s %-16s %9.3f %s\n", task, figure, value, unit);
        (void)std::fflush(stdout);
    }

private:
    bool isMissed_ = false;
};

} // namespace orvex::benchmarks
