#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>

namespace orvex::test {

/// A short name for what the arguments of commands and the keys of JSON need all the time.
inline QString q(const char* text) {
    return QString::fromUtf8(text);
}

/// What a run of orvexctl left.
struct CommandResult {
    int status = 0; ///< -1 if the process ended by a signal
    QByteArray output;
    QString errors;

    [[nodiscard]] QJsonDocument json() const { return QJsonDocument::fromJson(output); }
};

/// Runs the built orvexctl in English and waits for its end. `prepare` is called in the child process, which must not
/// allocate memory there.
inline CommandResult runCommand(const QStringList& arguments, const QByteArray& input = {},
                                const QString& language = QStringLiteral("en"),
                                const std::function<void()>& prepare = {}) {
    QProcess process;
    if (prepare) {
        process.setChildProcessModifier(prepare);
    }
    process.start(QStringLiteral(ORVEXCTL), QStringList{QStringLiteral("--language"), language} + arguments);
    process.write(input);
    process.closeWriteChannel();
    constexpr int patienceMilliseconds = 240'000;
    if (!process.waitForFinished(patienceMilliseconds)) {
        throw std::runtime_error("orvexctl did not end");
    }
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            .output = process.readAllStandardOutput(),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

} // namespace orvex::test
