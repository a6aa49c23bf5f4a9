#include "Process/ChildProcess.h"

#include "Files/FileSystemError.h"
#include "Process/ChildOutput.h"

#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace orvex::platform {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void failLaunch(int code, const ChildCommand& command) {
    const FileSystemError error(code, QFile::decodeName(command.executable));
    throw ChildStartError(ChildStartError::Stage::launch, error.message());
}

void requireLaunched(int code, const ChildCommand& command) {
    if (code != 0) {
        failLaunch(code, command);
    }
}

void requireMemory(int code) {
    if (code != 0) {
        throw std::bad_alloc(); // the only failure that there is
    }
}

// What the child has in place of this process's files: the null device and its pipes, and no others.
class FileActions {
public:
    FileActions(const ChildCommand& command, const ChildOutput& output) : FileActions() {
        // The pipes go first: an end of theirs may itself stand where the null device comes.
        requireLaunched(::posix_spawn_file_actions_adddup2(&actions_, output.standardOutput(), STDOUT_FILENO), command);
        requireLaunched(::posix_spawn_file_actions_adddup2(&actions_, output.standardError(), STDERR_FILENO), command);
        requireLaunched(::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0), command);
        requireLaunched(::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1), command);
    }

    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    // Complete before the rest of the construction can fail, so that it is destroyed then.
    FileActions() { requireMemory(::posix_spawn_file_actions_init(&actions_)); }

    posix_spawn_file_actions_t actions_{};
};

// A session of its own: the child cannot ask for a password on the terminal, does not take part in its Ctrl-C, and can
// be ended together with what it has started. No signal stays blocked or ignored, as this process may have them.
class Attributes {
public:
    explicit Attributes(const ChildCommand& command) : Attributes() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        requireLaunched(::posix_spawnattr_setsigmask(&attributes_, &none), command);
        requireLaunched(::posix_spawnattr_setsigdefault(&attributes_, &all), command);
        requireLaunched(::posix_spawnattr_setflags(&attributes_,
                                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF),
                        command);
    }

    ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }

    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    Attributes() { requireMemory(::posix_spawnattr_init(&attributes_)); }

    posix_spawnattr_t attributes_{};
};

/// The texts as the system takes them. One that holds a NUL would be cut short and is refused.
std::vector<char*> nativeTexts(QByteArrayList& texts, const ChildCommand& command) {
    std::vector<char*> pointers;
    for (QByteArray& text : texts) {
        if (text.contains('\0')) {
            failLaunch(EINVAL, command);
        }
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t launch(const ChildCommand& command, const ChildOutput& output) {
    QByteArrayList arguments = QByteArrayList{command.executable} + command.arguments;
    QByteArrayList environment = command.environment;
    const std::vector<char*> argumentPointers = nativeTexts(arguments, command);
    const std::vector<char*> environmentPointers = nativeTexts(environment, command);
    if (!command.executable.startsWith('/')) {
        failLaunch(ENOENT, command);
    }
    const FileActions actions(command, output);
    const Attributes attributes(command);
    pid_t process = -1;
    requireLaunched(::posix_spawn(&process, command.executable.constData(), actions.get(), attributes.get(),
                                  argumentPointers.data(), environmentPointers.data()),
                    command);
    return process;
}

/// A started child; it is reaped in any case. Until then its number, and that of the group that it leads, stay its own,
/// even when it has ended.
class Child {
public:
    explicit Child(pid_t process) : process_(process) {}

    ~Child() {
        if (isRunning()) {
            reapLater();
        } else if (!isGone_) {
            ::waitpid(process_, nullptr, 0);
        }
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    [[nodiscard]] bool isRunning() {
        if (isGone_ || status_) {
            return false;
        }
        siginfo_t ended{};
        // A failure means that there is no such child any more: the system has reaped it.
        isGone_ = ::waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT) != 0;
        if (ended.si_pid == process_) {
            status_ = ended.si_status;
        }
        return !isGone_ && !status_;
    }

    /// The exit status or the number of the signal that ended it; absent while it runs.
    [[nodiscard]] std::optional<qint32> status() const { return status_; }

    /// Reaches all that is left of the group that the child leads, or the child alone if it has left that.
    void signal(int number) const {
        if (!isGone_) {
            ::kill(::getpgid(process_) == process_ ? -process_ : process_, number);
        }
    }

private:
    void reapLater() const {
        try {
            std::thread([process = process_] { ::waitpid(process, nullptr, 0); }).detach();
        } catch (const std::system_error&) {
            // Without a thread the system reaps it when this process ends.
        }
    }

    pid_t process_;
    bool isGone_ = false;
    std::optional<qint32> status_;
};

/// One child under watch.
class Watch {
public:
    Watch(Child& child, ChildOutput& output, const ChildRules& rules, const std::stop_token& stop)
        : child_(child),
          output_(output),
          rules_(rules),
          stop_(stop),
          deadline_(Clock::now() + std::chrono::duration_cast<Clock::duration>(rules.timeout)) {}

    /// Waits for the end of the child, or for a reason to give it up.
    ChildEnd untilEndOrReason() {
        while (child_.isRunning()) {
            output_.drainBoth();
            if (const ChildEnd reason = reasonToStop(); reason != ChildEnd::ended) {
                return reason;
            }
            std::this_thread::sleep_for(rules_.pollStep);
        }
        return ChildEnd::ended;
    }

    void stopChild() {
        child_.signal(SIGTERM);
        await(rules_.terminationGrace);
        child_.signal(SIGKILL); // what it has started may still run when it does not
        await(rules_.killGrace);
    }

private:
    [[nodiscard]] ChildEnd reasonToStop() const {
        if (stop_.stop_requested()) {
            return ChildEnd::cancelled;
        }
        if (rules_.overflow == ChildOverflow::stopsChild && output_.isTooLarge()) {
            return ChildEnd::outputTooLarge;
        }
        return Clock::now() >= deadline_ ? ChildEnd::timedOut : ChildEnd::ended;
    }

    void await(std::chrono::milliseconds grace) {
        const Clock::time_point end = Clock::now() + grace;
        while (child_.isRunning() && Clock::now() < end) {
            output_.drainBoth();
            std::this_thread::sleep_for(rules_.graceStep);
        }
    }

    Child& child_;
    ChildOutput& output_;
    const ChildRules& rules_;
    const std::stop_token& stop_;
    Clock::time_point deadline_;
};

} // namespace

ChildResult runChild(const ChildCommand& command, const ChildRules& rules, const std::stop_token& stop) {
    ChildOutput output(rules);
    Child child(launch(command, output));
    output.closeWriteEnds();
    Watch watch(child, output, rules, stop);
    const ChildEnd end = watch.untilEndOrReason();
    if (end != ChildEnd::ended) {
        watch.stopChild();
    }
    output.drainBoth();
    const bool isRunning = child.isRunning();
    return {.output = output.takeKept(),
            .status = isRunning ? std::nullopt : child.status(),
            .end = end,
            .isOutputTooLarge = output.isTooLarge()};
}

} // namespace orvex::platform
