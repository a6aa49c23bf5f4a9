#pragma once

#include <QByteArray>

#include <sys/types.h>

#include <functional>
#include <vector>

namespace orvex::test {

/// How a child process ended.
struct Outcome {
    int status = -1; ///< 0; 1 after a failure with a message for the user, 2 after any other exception; -1 by a signal
    int signal = 0;
    QByteArray message;
    std::vector<int> reports;
};

/// Work in a child process, which may be killed at any moment. It is killed at the latest with this object.
class ForkedWork {
public:
    using Report = std::function<void(int)>;

    /// Starts the work; it can report numbers, which outlive it: some thousands at most. It has a minute.
    explicit ForkedWork(const std::function<void(const Report& report)>& work);
    ForkedWork(const ForkedWork&) = delete;
    ForkedWork& operator=(const ForkedWork&) = delete;
    ~ForkedWork();

    /// Ends the process on the spot.
    void kill() const;

    /// Waits for the first report.
    void waitForReport();

    /// Waits for the end.
    Outcome wait();

private:
    pid_t process_ = -1;
    int reports_ = -1;
    int message_ = -1;
    std::vector<int> seen_;
};

/// The outcome of work in a child process.
[[nodiscard]] Outcome outcomeOf(const std::function<void()>& work);

} // namespace orvex::test
