#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

#include <csignal>

namespace orvex::test {

/// A program that runs at most as long as this object, and never longer than the test.
class Program {
public:
    /// Throws std::runtime_error if it cannot be started.
    Program(const QString& name, const QStringList& arguments, const QProcessEnvironment& environment);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    [[nodiscard]] qint64 id() const { return process_.processId(); }

    [[nodiscard]] bool isRunning();

    /// Sends it a signal, such as SIGTERM.
    void signal(int number);

    /// Waits for its end and gives its exit status; -1 after a crash. Throws std::runtime_error if it does not end.
    [[nodiscard]] int exitStatus();

    /// All that it has said so far, on either stream.
    [[nodiscard]] QByteArray output();

    /// Its first whole line, without the line feed; waits for it.
    [[nodiscard]] QString firstLine();

private:
    QProcess process_;
    QByteArray output_;
};

/// What a program that ends by itself says. Throws std::runtime_error with all that it said if it fails.
QByteArray outputOf(const QString& name, const QStringList& arguments, const QProcessEnvironment& environment);

} // namespace orvex::test
