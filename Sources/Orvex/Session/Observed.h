#pragma once

#include "ChangeAnnouncer.h"

#include <utility>

namespace orvex {

/// A field of the session that others watch: it reads like a function, and only the session writes it. A write of
/// another value, by the type's own comparison, is announced. Main thread.
template <typename Value>
class Observed {
public:
    explicit Observed(ChangeAnnouncer& announcer, Value value = Value())
        : announcer_(announcer),
          value_(std::move(value)) {}

    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;

    [[nodiscard]] const Value& operator()() const { return value_; }

private:
    friend class OrvexModel;
    friend class SessionOperation;
    friend class SessionBackdoor; // of the tests, for states that no command leads to

    void set(Value value) {
        if (value_ == value) {
            return;
        }
        value_ = std::move(value);
        announcer_.announce();
    }

    /// Changes a copy of the value, and takes it.
    template <typename Change>
    void update(const Change& change) {
        Value changed = value_;
        change(changed);
        set(std::move(changed));
    }

    /// Removes entries of a map.
    template <typename Predicate>
    void removeIf(const Predicate& predicate) {
        if (value_.removeIf(predicate) > 0) {
            announcer_.announce();
        }
    }

    ChangeAnnouncer& announcer_;
    Value value_;
};

} // namespace orvex
