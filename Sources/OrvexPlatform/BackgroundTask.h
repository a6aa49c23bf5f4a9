#pragma once

#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace orvex::platform {

/// Lets the system prefer other threads, and their children to this one's, from now on. For a thread of the pool.
void lowerThreadPriority();

/// The threads for work of low priority that may sit in a wait, such as that for a child process: never fewer than
/// four, so that a fresh reading does not queue behind a long pass. Any thread.
[[nodiscard]] QThreadPool& utilityPool();

/// The threads for work that somebody waits for: never fewer than two, so that one long computation does not hold up
/// the next. Any thread.
[[nodiscard]] QThreadPool& userInitiatedPool();

/// Starts `work` on a pool. The future gives what it returns, or raises what it raised, with its type: an exception
/// that crosses QtConcurrent::run would lose it. Any thread.
template <typename Work>
[[nodiscard]] auto startTask(QThreadPool& pool, Work work) -> QFuture<std::invoke_result_t<Work>> {
    using Result = std::invoke_result_t<Work>;
    const auto promise = std::make_shared<QPromise<Result>>(); // a task of the pool has to be copyable
    QFuture<Result> future = promise->future();
    promise->start();
    pool.start([promise, work = std::move(work)] {
        try {
            if constexpr (std::is_void_v<Result>) {
                work();
            } else {
                promise->addResult(work());
            }
        } catch (...) {
            promise->setException(std::current_exception());
        }
        promise->finish();
    });
    return future;
}

/// Starts work that somebody waits for. Any thread.
template <typename Work>
[[nodiscard]] auto startUserInitiatedTask(Work work) -> QFuture<std::invoke_result_t<Work>> {
    return startTask(userInitiatedPool(), std::move(work));
}

/// Starts work of low priority. Any thread.
template <typename Work>
[[nodiscard]] auto startUtilityTask(Work work) -> QFuture<std::invoke_result_t<Work>> {
    return startTask(utilityPool(), [work = std::move(work)] {
        lowerThreadPriority();
        return work();
    });
}

} // namespace orvex::platform
