#pragma once

#include "Failure.h"

#include <QByteArray>
#include <QByteArrayList>

#include <chrono>
#include <optional>
#include <stop_token>

namespace orvex::platform {

/// What a child process is made of: a program by its absolute path (none is looked for), its arguments, and its whole
/// environment, each entry as NAME=VALUE.
struct ChildCommand {
    QByteArray executable;
    QByteArrayList arguments;
    QByteArrayList environment;
};

/// The pipes that take a child's standard output and standard error.
enum class ChildPipes {
    shared,   ///< one for both; what is kept has both, in the order of their arrival
    separate, ///< two; only standard output is kept, but both count
};

/// What becomes of output beyond the limit.
enum class ChildOverflow {
    discarded,  ///< the first bytes up to the limit are kept; the rest is read and thrown away
    stopsChild, ///< a piece that crosses the limit is dropped whole, and the child is stopped
};

/// How a child is watched. All times are those of the monotonic clock.
struct ChildRules {
    ChildPipes pipes;
    ChildOverflow overflow;
    qsizetype outputLimitBytes;
    int readsPerTurn;                           ///< of at most 8192 bytes each, from each pipe
    std::chrono::duration<double> timeout;      ///< then the child is stopped
    std::chrono::milliseconds pollStep;         ///< between two looks at a child that runs
    std::chrono::milliseconds terminationGrace; ///< between SIGTERM and SIGKILL
    std::chrono::milliseconds killGrace;        ///< then a child that still runs is left to the system
    std::chrono::milliseconds graceStep;        ///< between two looks at a child that was asked to stop
};

/// Why the watching of a child ended.
enum class ChildEnd { ended, timedOut, cancelled, outputTooLarge };

struct ChildResult {
    QByteArray output;
    std::optional<qint32> status; ///< the exit status or the ending signal's number; absent if the child still runs
    ChildEnd end = ChildEnd::ended;
    bool isOutputTooLarge = false; ///< the child wrote more than the limit
};

/// A child that could not be started.
class ChildStartError : public Failure {
public:
    enum class Stage {
        pipes,  ///< no pipe that can be read without waiting
        launch, ///< the message is the system's description
    };

    ChildStartError(Stage stage, const QString& message) : Failure(message), stage_(stage) {}

    [[nodiscard]] Stage stage() const { return stage_; }

private:
    Stage stage_;
};

/// Runs a child process to its end, or until it is given up: at the deadline, on a stop request, or for too much
/// output. It is then asked to stop by SIGTERM and, after a grace, ended by SIGKILL, and so is all that it has started,
/// as far as that has not made itself a session of its own.
///
/// The child has the null device as standard input, no controlling terminal, no signal blocked or ignored, and no file
/// of this process but its pipes. It is polled, so a call returns within the timeout, both graces and one turn of
/// reading. A child that outlives even that is reaped whenever it ends. What a child that ends by itself leaves behind
/// is neither waited for nor ended. This process must not ignore SIGCHLD: the system would throw the status away. If it
/// is itself killed, the child goes on by itself. Raises ChildStartError. Blocks; any thread.
[[nodiscard]] ChildResult runChild(const ChildCommand& command, const ChildRules& rules,
                                   const std::stop_token& stop = {});

} // namespace orvex::platform
