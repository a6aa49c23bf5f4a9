#include "ForkedWork.h"

#include "Failure.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <utility>

namespace orvex::test {

namespace {

constexpr unsigned longestSeconds = 60;

void tell(int pipe, const void* bytes, std::size_t size) {
    if (::write(pipe, bytes, size) != static_cast<ssize_t>(size)) {
        ::_exit(3);
    }
}

void tell(int pipe, const QByteArray& text) {
    tell(pipe, text.constData(), static_cast<std::size_t>(text.size()));
}

/// Never returns, so that nothing of the parent's is ended twice.
[[noreturn]] void runAndExit(const std::function<void(const ForkedWork::Report&)>& work, int reports, int message) {
    ::alarm(longestSeconds); // whoever waits for the end shall get one
    try {
        work([reports](int number) { tell(reports, &number, sizeof number); });
        ::_exit(0);
    } catch (const Failure& failure) {
        tell(message, failure.message().toUtf8());
        ::_exit(1);
    } catch (const std::exception& error) {
        tell(message, QByteArray(error.what()));
        ::_exit(2);
    }
}

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

std::optional<int> nextReport(int pipe) {
    int number = 0;
    return ::read(pipe, &number, sizeof number) == sizeof number ? std::optional(number) : std::nullopt;
}

QByteArray rest(int pipe) {
    QByteArray text;
    std::array<char, 1024> piece{};
    for (ssize_t count = 0; (count = ::read(pipe, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), count);
    }
    return text;
}

} // namespace

ForkedWork::ForkedWork(const std::function<void(const Report&)>& work) {
    const auto reports = makePipe();
    const auto message = makePipe();
    process_ = ::fork();
    if (process_ == 0) {
        runAndExit(work, reports[1], message[1]);
    }
    ::close(reports[1]);
    ::close(message[1]);
    reports_ = reports[0];
    message_ = message[0];
    if (process_ < 0) {
        throw std::runtime_error("no process");
    }
}

ForkedWork::~ForkedWork() {
    if (process_ > 0) {
        kill();
        ::waitpid(process_, nullptr, 0);
    }
    ::close(reports_);
    ::close(message_);
}

void ForkedWork::kill() const {
    ::kill(process_, SIGKILL);
}

void ForkedWork::waitForReport() {
    const auto number = nextReport(reports_);
    if (!number) {
        throw std::runtime_error("the child process has ended without a report");
    }
    seen_.push_back(*number);
}

Outcome ForkedWork::wait() {
    Outcome outcome;
    outcome.reports = seen_;
    while (const auto number = nextReport(reports_)) {
        outcome.reports.push_back(*number);
    }
    outcome.message = rest(message_);
    int status = 0;
    if (::waitpid(std::exchange(process_, -1), &status, 0) < 0) {
        throw std::runtime_error("the child process has been lost");
    }
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return outcome;
}

Outcome outcomeOf(const std::function<void()>& work) {
    return ForkedWork([&](const ForkedWork::Report&) { work(); }).wait();
}

} // namespace orvex::test
