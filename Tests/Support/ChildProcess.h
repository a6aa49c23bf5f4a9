#pragma once

#include <QByteArray>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <functional>

namespace orvex::test {

/// What `work` returns, run in a child process, whose user, limits and mounts it may change without harm to others. An
/// exception comes back as its text.
inline QByteArray inChildProcess(const std::function<QByteArray()>& work) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) { // the end must not depend on programs that the work starts
        return "no pipe";
    }
    const pid_t child = ::fork();
    if (child == 0) {
        QByteArray answer;
        try {
            answer = work();
        } catch (const std::exception& error) {
            answer = QByteArray("exception: ") + error.what();
        }
        const bool isTold = ::write(ends[1], answer.constData(), static_cast<std::size_t>(answer.size())) ==
                            static_cast<ssize_t>(answer.size());
        ::_exit(isTold ? 0 : 1);
    }
    ::close(ends[1]);
    QByteArray answer;
    char piece[256];
    for (ssize_t count = 0; (count = ::read(ends[0], piece, sizeof piece)) > 0;) {
        answer.append(piece, count);
    }
    ::close(ends[0]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child process did not end as it should";
    return answer;
}

/// For a child process: gives up the rights of the superuser, if it has them.
inline bool becomeOrdinaryUser() {
    constexpr unsigned nobody = 65534;
    return ::geteuid() != 0 || (::setgroups(0, nullptr) == 0 && ::setresgid(nobody, nobody, nobody) == 0 &&
                                ::setresuid(nobody, nobody, nobody) == 0);
}

/// For a child process: no file may grow beyond this size; writing then fails with EFBIG.
inline bool limitFileSize(rlim_t bytes) {
    const struct rlimit limit { bytes, bytes };

    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// For a child process of the superuser: puts a file system of 64 KiB over a folder, for this process alone.
inline bool mountSmallDisk(const QByteArray& folder) {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=64k") == 0;
}

} // namespace orvex::test
