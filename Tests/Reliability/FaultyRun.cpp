#include "FaultyRun.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <stdexcept>

namespace orvex::test {

namespace {

LoggedCall loggedCall(const QString& line) {
    const QStringList words = line.split(u' ');
    if (words.size() < 4) {
        throw std::runtime_error("a line of the log is none");
    }
    return {
        .name = words[0], .result = words[1].toInt(), .fault = words[2], .path = words[3], .newPath = words.value(4)};
}

QList<LoggedCall> takeLog(const QString& path) {
    QFile file(path);
    QList<LoggedCall> calls;
    if (file.open(QIODevice::ReadOnly)) {
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        std::ranges::transform(lines, std::back_inserter(calls), loggedCall);
        file.remove();
    }
    return calls;
}

void ask(const Fault& fault, const QString& folder, const QString& logPath) {
    qputenv("ORVEX_FAULT_LOG", logPath.toUtf8());
    qputenv("ORVEX_FAULT_CALL", QByteArray::number(fault.call));
    qputenv("ORVEX_FAULT_KIND", fault.kind);
    qputenv("ORVEX_FAULT_ERROR", QByteArray::number(fault.error));
    qputenv("ORVEX_FAULT_FOLDER", folder.toUtf8());
}

} // namespace

bool FaultyRun::hasFault() const {
    return std::ranges::any_of(calls, &LoggedCall::hasFault);
}

FaultyRun runWithFault(const Fault& fault, const QString& folder, const QString& logPath,
                       const std::function<void()>& work) {
    Outcome outcome = outcomeOf([&] {
        ask(fault, folder, logPath);
        work();
    });
    return {.outcome = std::move(outcome), .calls = takeLog(logPath)};
}

} // namespace orvex::test
