#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDir>
#include <QString>

#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <functional>
#include <map>
#include <stdexcept>
#include <thread>

namespace orvex::test {

/// Whether a process has a file open. The path must be free of links.
inline bool hasOpen(const QString& process, const QString& path) {
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QString& name : descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        char target[PATH_MAX];
        const ssize_t size = ::readlink(descriptors.filePath(name).toUtf8().constData(), target, sizeof target);
        if (size > 0 && QByteArrayView(target, size) == path.toUtf8()) {
            return true;
        }
    }
    return false;
}

/// Does something once, on another thread, as soon as this process has opened a file.
class OnceOpen {
public:
    OnceOpen(const QString& path, const std::function<void()>& act)
        : thread_([path, act](const std::stop_token& stop) {
              while (!hasOpen(QStringLiteral("self"), path)) {
                  if (stop.stop_requested()) {
                      return;
                  }
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
              act();
          }) {}

private:
    std::jthread thread_;
};

/// Tells who has been opened, read, written or touched since it was asked to look.
class AccessWatch {
public:
    AccessWatch() : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

    AccessWatch(const AccessWatch&) = delete;
    AccessWatch& operator=(const AccessWatch&) = delete;

    ~AccessWatch() { ::close(inotify_); }

    void add(const QByteArray& path) {
        const int watch = ::inotify_add_watch(inotify_, path.constData(), IN_ALL_EVENTS | IN_DONT_FOLLOW);
        if (watch < 0) {
            throw std::runtime_error("a test file cannot be watched");
        }
        paths_[watch] = path;
    }

    /// The paths of all that was accessed, each time that it was.
    [[nodiscard]] QByteArrayList accessed() const {
        QByteArrayList found;
        alignas(struct inotify_event) char events[65536];
        for (ssize_t size = 0; (size = ::read(inotify_, events, sizeof events)) > 0;) {
            for (ssize_t offset = 0; offset < size;) {
                const auto* event = reinterpret_cast<const struct inotify_event*>(events + offset);
                found.append(paths_.at(event->wd));
                offset += static_cast<ssize_t>(sizeof(struct inotify_event)) + event->len;
            }
        }
        return found;
    }

private:
    int inotify_;
    std::map<int, QByteArray> paths_;
};

} // namespace orvex::test
