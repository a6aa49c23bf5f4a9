// A program that behaves as no good tool does. The tests run it in place of the system's tools.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr unsigned longSeconds = 600; // whoever waits for this has failed

void say(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

/// Writes that many bytes to a stream, however long its reader takes.
void flood(int descriptor, long bytes) {
    const std::vector<char> piece(65536, 'x');
    while (bytes > 0) {
        const auto size =
            static_cast<std::size_t>(bytes) < piece.size() ? static_cast<std::size_t>(bytes) : piece.size();
        const ssize_t written = ::write(descriptor, piece.data(), size);
        if (written < 0) {
            std::exit(90);
        }
        bytes -= written;
    }
}

[[noreturn]] void linger() {
    while (true) {
        ::sleep(longSeconds);
    }
}

/// Starts a process that holds the pipe open when this one has long ended.
void leaveGrandchild() {
    constexpr unsigned seconds = 300; // nobody may end it
    if (::fork() == 0) {
        ::sleep(seconds);
        ::_exit(0);
    }
}

/// Tells what a child process got from the one that started it.
void showSurroundings() {
    for (char** entry = environ; *entry != nullptr; ++entry) {
        say(std::string("environment ") + *entry + "\n");
    }
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        char target[4096] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        if (::readlink(link.c_str(), target, sizeof target - 1) > 0) {
            say("descriptor " + std::to_string(descriptor) + " " + std::string(target).substr(0, 5) + "\n");
        }
    }
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action {};

        const bool isIgnored = ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
        if (isIgnored || sigismember(&blocked, number) == 1) {
            say("signal " + std::to_string(number) + "\n");
        }
    }
    say(::getsid(0) == ::getpid() ? "leads its session\n" : "shares a session\n");
}

void sayOnBothStreams() {
    for (const char* word : {"one ", "three "}) {
        say(word);
        std::fputs(std::strcmp(word, "one ") == 0 ? "two " : "four", stderr);
        std::fflush(stderr);
    }
}

void sayBye(int) {
    const ssize_t ignored = ::write(STDOUT_FILENO, "bye", 3);
    ::_exit(ignored == 3 ? 7 : 8);
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const long number = argc > 2 ? std::atol(argv[2]) : 0;
    if (mode == "exit") {
        return static_cast<int>(number);
    }
    if (mode == "echo") {
        for (int index = 2; index < argc; ++index) {
            say(std::string("[") + argv[index] + "]");
        }
    } else if (mode == "flood") {
        flood(STDOUT_FILENO, number);
    } else if (mode == "flood-errors") {
        flood(STDERR_FILENO, number);
    } else if (mode == "flood-for-ever") {
        std::signal(SIGTERM, SIG_IGN);
        while (true) {
            flood(STDOUT_FILENO, 1 << 20);
        }
    } else if (mode == "ignore-term") {
        std::signal(SIGTERM, SIG_IGN);
        say("deaf");
        linger();
    } else if (mode == "say-bye") {
        std::signal(SIGTERM, sayBye);
        say("waiting ");
        linger();
    } else if (mode == "close-and-linger") {
        ::close(STDOUT_FILENO);
        ::close(STDERR_FILENO);
        linger();
    } else if (mode == "invalid-utf8") {
        say("a\xFF\xFE z\xC3");
    } else if (mode == "signal") {
        ::raise(static_cast<int>(number));
    } else if (mode == "grandchild") {
        say("left behind");
        leaveGrandchild();
    } else if (mode == "family") {
        std::signal(SIGTERM, SIG_IGN);
        leaveGrandchild();
        linger();
    } else if (mode == "deaf-family") {
        std::signal(SIGTERM, SIG_IGN);
        leaveGrandchild();
        std::signal(SIGTERM, sayBye);
        linger();
    } else if (mode == "surroundings") {
        showSurroundings();
    } else if (mode == "streams") {
        sayOnBothStreams();
    } else if (mode == "wait") {
        ::usleep(static_cast<useconds_t>(number) * 1000);
        say("done");
    } else {
        return 99;
    }
    return 0;
}
