#pragma once

#include "Interrupted.h"
#include "OrvexError.h"

#include <QFuture>
#include <QPromise>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <vector>

namespace orvex::test {

/// A reading that is answered when the test says so. One that is asked to stop ends as the real ones do.
template <typename Answer>
class HeldReading {
public:
    /// What one that is asked to stop answers after all, as if the answer had just come.
    std::optional<Answer> partingAnswer;

    [[nodiscard]] QFuture<Answer> ask(const std::stop_token& stop = {}) {
        questions_.push_back(std::make_unique<Question>());
        Question& asked = *questions_.back();
        asked.promise.start();
        asked.onStop.emplace(stop, [this, &asked] { end(asked); });
        return asked.promise.future();
    }

    /// How often it was asked.
    [[nodiscard]] std::size_t count() const { return questions_.size(); }

    [[nodiscard]] bool isAwaited() const { return !questions_.empty() && questions_.back()->isOpen; }

    void answer(const Answer& answer) {
        Question& asked = open();
        asked.promise.addResult(answer);
        close(asked);
    }

    void fail(const QString& message) {
        Question& asked = open();
        asked.promise.setException(std::make_exception_ptr(OrvexError::invalid(message)));
        close(asked);
    }

private:
    struct Question {
        QPromise<Answer> promise;
        bool isOpen = true;
        std::optional<std::stop_callback<std::function<void()>>> onStop;
    };

    Question& open() {
        if (!isAwaited()) {
            throw std::logic_error("nobody waits for this reading");
        }
        return *questions_.back();
    }

    static void close(Question& question) {
        question.isOpen = false;
        question.promise.finish();
    }

    void end(Question& question) {
        if (!question.isOpen) {
            return;
        }
        if (partingAnswer) {
            question.promise.addResult(*partingAnswer);
        } else {
            question.promise.setException(std::make_exception_ptr(platform::Interrupted()));
        }
        close(question);
    }

    std::vector<std::unique_ptr<Question>> questions_;
};

inline std::stop_token stopOf(const std::stop_token& stop) {
    return stop;
}

inline std::stop_token stopOf(const QString&) {
    return {};
}

template <typename Subject>
std::stop_token stopOf(const Subject&, const std::stop_token& stop) {
    return stop;
}

/// Puts a reading under the test's control.
template <typename Answer, typename... Arguments>
[[nodiscard]] std::shared_ptr<HeldReading<Answer>> hold(std::function<QFuture<Answer>(Arguments...)>& reading) {
    const auto held = std::make_shared<HeldReading<Answer>>();
    reading = [held](Arguments... arguments) { return held->ask(stopOf(arguments...)); };
    return held;
}

} // namespace orvex::test
