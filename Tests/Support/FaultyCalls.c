/* A library in front of the system's own: it counts the calls that concern one folder, writes them down, and lets one
   of them go wrong. A program gets it by being linked with it, or by LD_PRELOAD. Linked is what the tests do: the
   sanitizers' runtime then still comes first, as it insists on.

   ORVEX_FAULT_FOLDER  the absolute path of the folder, free of links; nothing is done without it
   ORVEX_FAULT_LOG     a file to which a line is appended for each call: NAME RESULT FAULT PATH [NEW PATH]
   ORVEX_FAULT_CALL    the call that goes wrong, from 1
   ORVEX_FAULT_KIND    what happens then:
                           once     it fails with the error, and is not carried out (save for close)
                           onwards  so do it and all calls after it
                           alike    so do it and all calls of the same name after it
                           short    it writes half of the bytes, if it is one that writes
                           full     the same, and all that write after it fail with the error
                           before   the process is killed before the call
                           after    the process is killed after the call
   ORVEX_FAULT_ERROR   the error's number

   Only one thread may make such calls. */

#define _GNU_SOURCE

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

enum Fault { none, failing, halving, killedBefore, killedAfter };

struct Call {
    const char *name;
    char path[PATH_MAX];
    char newPath[PATH_MAX];
    int concerns;
    enum Fault fault;
};

static int counter = 0;
static const char *chosenName = ""; /* of the call that goes wrong */

/* The next definition of a function, which is the system's own or the sanitizers'. */
#define REAL(name) \
    static __typeof__(name) *real = NULL; \
    if (real == NULL) { \
        real = (__typeof__(name) *)dlsym(RTLD_NEXT, #name); \
    }

static long realSyscall(long number, long a, long b, long c, long d, long e, long f) {
    static long (*real)(long, ...) = NULL;
    if (real == NULL) {
        real = (long (*)(long, ...))dlsym(RTLD_NEXT, "syscall");
    }
    return real(number, a, b, c, d, e, f);
}

static int isInFolder(const char *path) {
    const char *folder = getenv("ORVEX_FAULT_FOLDER");
    if (folder == NULL || folder[0] == '\0') {
        return 0;
    }
    const size_t size = strlen(folder);
    return strncmp(path, folder, size) == 0 && (path[size] == '/' || path[size] == '\0');
}

static int numberOf(const char *variable) {
    const char *text = getenv(variable);
    return text == NULL ? 0 : atoi(text);
}

/* The path that a descriptor was opened by, or what it is called now. */
static void pathOf(int descriptor, char *path) {
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const long size =
        realSyscall(SYS_readlinkat, AT_FDCWD, (long)link, (long)path, PATH_MAX - 1, 0, 0);
    path[size < 0 ? 0 : size] = '\0';
}

static void pathAt(int folder, const char *name, char *path) {
    if (name[0] == '/') {
        snprintf(path, PATH_MAX, "%s", name);
        return;
    }
    char start[PATH_MAX];
    if (folder == AT_FDCWD) {
        if (getcwd(start, sizeof start) == NULL) {
            start[0] = '\0';
        }
    } else {
        pathOf(folder, start);
    }
    if (snprintf(path, PATH_MAX, "%s/%s", start, name) >= PATH_MAX) {
        path[0] = '\0';
    }
}

static void put(const struct Call *call, long result, const char *fault) {
    const char *log = getenv("ORVEX_FAULT_LOG");
    if (log == NULL) {
        return;
    }
    char line[2 * PATH_MAX + 128];
    const int size = snprintf(line, sizeof line, "%s %ld %s %s%s%s\n", call->name, result, fault, call->path,
                              call->newPath[0] == '\0' ? "" : " ", call->newPath);
    const long file =
        realSyscall(SYS_openat, AT_FDCWD, (long)log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600, 0, 0);
    realSyscall(SYS_write, file, (long)line, size, 0, 0, 0);
    realSyscall(SYS_close, file, 0, 0, 0, 0, 0);
}

static void killThis(void) {
    realSyscall(SYS_kill, getpid(), SIGKILL, 0, 0, 0, 0);
    for (;;) {
        pause();
    }
}

static enum Fault faultOf(const char *name, int isWriting) {
    const char *kind = getenv("ORVEX_FAULT_KIND");
    const int chosen = numberOf("ORVEX_FAULT_CALL");
    if (kind == NULL || chosen == 0 || counter < chosen) {
        return none;
    }
    const int isFirst = counter == chosen;
    if (isFirst) {
        chosenName = name;
    }
    if (strcmp(kind, "alike") == 0 && strcmp(name, chosenName) == 0) {
        return failing;
    }
    if (strcmp(kind, "onwards") == 0 || (isFirst && strcmp(kind, "once") == 0)) {
        return failing;
    }
    if (isWriting && (strcmp(kind, "full") == 0 || strcmp(kind, "short") == 0)) {
        return isFirst ? halving : strcmp(kind, "full") == 0 ? failing : none;
    }
    if (isFirst && strcmp(kind, "before") == 0) {
        return killedBefore;
    }
    return isFirst && strcmp(kind, "after") == 0 ? killedAfter : none;
}

/* To be called with the path filled in, before the real function. */
static void begin(struct Call *call, const char *name, int isWriting) {
    const int error = errno;
    call->name = name;
    call->fault = none;
    call->concerns = isInFolder(call->path);
    if (call->concerns) {
        counter += 1;
        call->fault = faultOf(name, isWriting);
        if (call->fault == killedBefore) {
            put(call, -1, "killed-before");
            killThis();
        }
    }
    errno = error;
}

static void beginAt(struct Call *call, const char *name, int folder, const char *path) {
    call->newPath[0] = '\0';
    pathAt(folder, path, call->path);
    begin(call, name, 0);
}

static void beginOpen(struct Call *call, const char *name, int descriptor, int isWriting) {
    call->newPath[0] = '\0';
    call->path[0] = '\0';
    if (getenv("ORVEX_FAULT_FOLDER") != NULL) {
        const int error = errno;
        pathOf(descriptor, call->path);
        errno = error;
    }
    begin(call, name, isWriting);
}

static int fails(const struct Call *call) {
    return call->fault == failing;
}

static void end(struct Call *call, long result) {
    const int error = errno;
    if (call->concerns) {
        put(call, result,
            call->fault == failing       ? "failed"
            : call->fault == halving     ? "halved"
            : call->fault == killedAfter ? "killed-after"
                                         : "-");
        if (call->fault == killedAfter) {
            killThis();
        }
    }
    errno = fails(call) ? numberOf("ORVEX_FAULT_ERROR") : error;
}

static mode_t modeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

#define OPEN(function) \
    int function(const char *path, int flags, ...) { \
        REAL(function) \
        va_list arguments; \
        va_start(arguments, flags); \
        const mode_t mode = modeOf(flags, arguments); \
        va_end(arguments); \
        struct Call call; \
        beginAt(&call, (flags & O_CREAT) != 0 ? "create" : "open", AT_FDCWD, path); \
        const int result = fails(&call) ? -1 : real(path, flags, mode); \
        end(&call, result); \
        return result; \
    }

#define OPENAT(function) \
    int function(int folder, const char *path, int flags, ...) { \
        REAL(function) \
        va_list arguments; \
        va_start(arguments, flags); \
        const mode_t mode = modeOf(flags, arguments); \
        va_end(arguments); \
        struct Call call; \
        beginAt(&call, (flags & O_CREAT) != 0 ? "create" : "open", folder, path); \
        const int result = fails(&call) ? -1 : real(folder, path, flags, mode); \
        end(&call, result); \
        return result; \
    }

#define PREAD(function) \
    ssize_t function(int descriptor, void *bytes, size_t size, off_t offset) { \
        REAL(function) \
        struct Call call; \
        beginOpen(&call, "pread", descriptor, 0); \
        const ssize_t result = fails(&call) ? -1 : real(descriptor, bytes, size, offset); \
        end(&call, result); \
        return result; \
    }

#define PWRITE(function) \
    ssize_t function(int descriptor, const void *bytes, size_t size, off_t offset) { \
        REAL(function) \
        struct Call call; \
        beginOpen(&call, "pwrite", descriptor, 1); \
        const size_t count = call.fault == halving ? (size + 1) / 2 : size; \
        const ssize_t result = fails(&call) ? -1 : real(descriptor, bytes, count, offset); \
        end(&call, result); \
        return result; \
    }

/* A function of one path, or of a descriptor, and perhaps of one value more. */
#define OF_PATH(function, name, parameter, argument) \
    int function(const char *path parameter) { \
        REAL(function) \
        struct Call call; \
        beginAt(&call, name, AT_FDCWD, path); \
        const int result = fails(&call) ? -1 : real(path argument); \
        end(&call, result); \
        return result; \
    }

#define OF_DESCRIPTOR(function, name, parameter, argument) \
    int function(int descriptor parameter) { \
        REAL(function) \
        struct Call call; \
        beginOpen(&call, name, descriptor, 0); \
        const int result = fails(&call) ? -1 : real(descriptor argument); \
        end(&call, result); \
        return result; \
    }

#define AND ,

OPEN(open)
OPEN(open64)
OPENAT(openat)
OPENAT(openat64)
PREAD(pread)
PREAD(pread64)
PWRITE(pwrite)
PWRITE(pwrite64)
OF_PATH(mkdir, "mkdir", AND mode_t mode, AND mode)
OF_PATH(unlink, "unlink", , )
OF_PATH(access, "access", AND int mode, AND mode)
OF_PATH(stat, "stat", AND struct stat *restrict facts, AND facts)
OF_PATH(stat64, "stat", AND struct stat64 *restrict facts, AND facts)
OF_PATH(lstat, "lstat", AND struct stat *restrict facts, AND facts)
OF_PATH(lstat64, "lstat", AND struct stat64 *restrict facts, AND facts)
OF_DESCRIPTOR(fsync, "fsync", , )
OF_DESCRIPTOR(fdatasync, "fsync", , )
OF_DESCRIPTOR(fchmod, "fchmod", AND mode_t mode, AND mode)
OF_DESCRIPTOR(fstat, "fstat", AND struct stat *facts, AND facts)
OF_DESCRIPTOR(fstat64, "fstat", AND struct stat64 *facts, AND facts)
OF_DESCRIPTOR(flock, "flock", AND int operation, AND operation)

/* A descriptor is gone even if closing it fails. */
int close(int descriptor) {
    REAL(close)
    struct Call call;
    beginOpen(&call, "close", descriptor, 0);
    const int closed = real(descriptor);
    const int result = fails(&call) ? -1 : closed;
    end(&call, result);
    return result;
}

ssize_t write(int descriptor, const void *bytes, size_t size) {
    REAL(write)
    struct Call call;
    beginOpen(&call, "write", descriptor, 1);
    const size_t count = call.fault == halving ? (size + 1) / 2 : size;
    const ssize_t result = fails(&call) ? -1 : real(descriptor, bytes, count);
    end(&call, result);
    return result;
}

int rename(const char *from, const char *to) {
    REAL(rename)
    struct Call call;
    pathAt(AT_FDCWD, from, call.path);
    pathAt(AT_FDCWD, to, call.newPath);
    begin(&call, "rename", 0);
    const int result = fails(&call) ? -1 : real(from, to);
    end(&call, result);
    return result;
}

int renameat(int fromFolder, const char *from, int toFolder, const char *to) {
    REAL(renameat)
    struct Call call;
    pathAt(fromFolder, from, call.path);
    pathAt(toFolder, to, call.newPath);
    begin(&call, "rename", 0);
    const int result = fails(&call) ? -1 : real(fromFolder, from, toFolder, to);
    end(&call, result);
    return result;
}

int unlinkat(int folder, const char *path, int flags) {
    REAL(unlinkat)
    struct Call call;
    beginAt(&call, "unlink", folder, path);
    const int result = fails(&call) ? -1 : real(folder, path, flags);
    end(&call, result);
    return result;
}

DIR *opendir(const char *path) {
    REAL(opendir)
    struct Call call;
    beginAt(&call, "opendir", AT_FDCWD, path);
    DIR *result = fails(&call) ? NULL : real(path);
    end(&call, result == NULL ? -1 : 0);
    return result;
}

struct dirent *readdir(DIR *folder) {
    REAL(readdir)
    struct Call call;
    beginOpen(&call, "readdir", dirfd(folder), 0);
    struct dirent *result = fails(&call) ? NULL : real(folder);
    end(&call, result == NULL ? -1 : 0);
    return result;
}

/* For openat2, which the system's library does not have yet. */
long syscall(long number, ...) {
    va_list arguments;
    va_start(arguments, number);
    long values[6];
    for (int index = 0; index < 6; ++index) {
        values[index] = va_arg(arguments, long);
    }
    va_end(arguments);
    if (number != SYS_openat2) {
        return realSyscall(number, values[0], values[1], values[2], values[3], values[4], values[5]);
    }
    struct Call call;
    beginAt(&call, "open", (int)values[0], (const char *)values[1]);
    const long result = fails(&call) ? -1 : realSyscall(number, values[0], values[1], values[2], values[3], 0, 0);
    end(&call, result);
    return result;
}
