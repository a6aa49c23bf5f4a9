#include "Tool.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <stdexcept>

namespace orvex::test {

namespace {

constexpr int patienceMilliseconds = 60'000;

QProcessEnvironment bareEnvironment() {
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("C"));
    return environment;
}

} // namespace

ToolResult runTool(const QString& path, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(bareEnvironment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(path, arguments);
    if (!process.waitForFinished(patienceMilliseconds)) {
        throw std::runtime_error(path.toStdString() + ": " + process.errorString().toStdString());
    }
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            .output = process.readAllStandardOutput(),
            .errors = process.readAllStandardError()};
}

QByteArray outputOfTool(const QString& path, const QStringList& arguments) {
    ToolResult result = runTool(path, arguments);
    if (result.status != 0) {
        const QByteArray command = (QStringList{path} + arguments).join(u' ').toUtf8();
        throw std::runtime_error(command.toStdString() + " ended with " + std::to_string(result.status) + ": " +
                                 (result.errors + result.output).toStdString());
    }
    return result.output;
}

void waitUntil(const char* awaited, const std::function<bool()>& condition) {
    QElapsedTimer patience;
    patience.start();
    while (!condition()) {
        if (patience.elapsed() > patienceMilliseconds) {
            throw std::runtime_error(std::string("waited in vain until ") + awaited);
        }
        QThread::msleep(10);
    }
}

} // namespace orvex::test
