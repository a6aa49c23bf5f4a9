#pragma once

#include "ForkedWork.h"

#include <QList>
#include <QString>

#include <functional>

namespace orvex::test {

/// What is to go wrong in a run: which call, from 1, and how, as Support/FaultyCalls.c has it. 0 is none.
struct Fault {
    int call = 0;
    const char* kind = "once";
    int error = 0; ///< an errno value
};

/// A call of the system that concerned the folder.
struct LoggedCall {
    QString name;
    int result = 0;
    QString fault; ///< "-" if it was none
    QString path;
    QString newPath; ///< of a renaming

    [[nodiscard]] bool hasFault() const { return fault != u"-"; }

    /// Whether it was carried out, and well.
    [[nodiscard]] bool isDone() const { return result >= 0; }
};

struct FaultyRun {
    Outcome outcome;
    QList<LoggedCall> calls;

    /// Whether the fault has happened.
    [[nodiscard]] bool hasFault() const;
};

/// Runs work in a child process where the calls that concern a folder go wrong in one way, and notes them in a file.
[[nodiscard]] FaultyRun runWithFault(const Fault& fault, const QString& folder, const QString& logPath,
                                     const std::function<void()>& work);

} // namespace orvex::test
