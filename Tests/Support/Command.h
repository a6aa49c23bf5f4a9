#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStringList>

#include <stdexcept>

namespace orvex::test {

/// What a run of orvexctl left.
struct CommandResult {
    int status = 0; ///< -1 if the process ended by a signal
    QByteArray output;
    QString errors;

    [[nodiscard]] QJsonDocument json() const { return QJsonDocument::fromJson(output); }
};

/// Runs the built orvexctl in English and waits for its end.
inline CommandResult runCommand(const QStringList& arguments, const QByteArray& input = {},
                                const QString& language = QStringLiteral("en")) {
    QProcess process;
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
