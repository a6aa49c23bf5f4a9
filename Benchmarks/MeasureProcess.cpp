// measure-process REPORT COMMAND [ARGUMENT...]: runs a command, writes its wall time in seconds and its peak resident
// memory in KiB to the file REPORT, and ends with the command's exit status (128 + signal if it was killed).

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

constexpr int wrongUsage = 2;
constexpr int cannotRun = 127;

bool writeReport(const char* path, double seconds, long peakKiB) {
    std::FILE* report = std::fopen(path, "w");
    if (report == nullptr) {
        return false;
    }
    const bool isWritten = std::fprintf(report, "%.3f %ld\n", seconds, peakKiB) > 0;
    return std::fclose(report) == 0 && isWritten;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: measure-process REPORT COMMAND [ARGUMENT...]\n", stderr);
        return wrongUsage;
    }
    // The peak that the kernel keeps for a child starts at this small process's own, so there is no shell in between.
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (const int error = posix_spawnp(&child, argv[2], nullptr, nullptr, argv + 2, environ); error != 0) {
        std::fprintf(stderr, "%s: %s\n", argv[2], std::strerror(error));
        return cannotRun;
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child) {
        std::perror("wait4");
        return cannotRun;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (!writeReport(argv[1], elapsed.count(), usage.ru_maxrss)) {
        std::perror(argv[1]);
        return cannotRun;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
