#include "CUPSParsers.h"
#include "InspectionResult.h"
#include "PrinterTelemetryCommand.h"
#include "Text.h"

#include <QSet>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// Whatever the print system's tools print: the parsers keep what has the form that they promise, and nothing else.

using namespace orvex;

namespace {

constexpr qsizetype mostQueues = 8; // more would only take time

void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool isWord(const QString& text) {
    return platform::words(text) == QStringList{text};
}

template <typename Record, typename Text>
void mustDiffer(const QList<Record>& records, Text Record::*text) {
    QSet<QString> texts;
    for (const Record& record : records) {
        texts.insert(record.*text);
    }
    mustHold(texts.size() == records.size());
}

void exerciseOptions(const QString& text) {
    const QList<DriverOption> options = CUPSParsers::driverOptions(text);
    mustDiffer(options, &DriverOption::keyword);
    for (const DriverOption& option : options) {
        mustHold(isWord(option.keyword) && !option.keyword.contains(u'/') && !option.label.isEmpty());
        mustHold(!option.choices.isEmpty() && std::ranges::all_of(option.choices, isWord));
        mustHold(QSet<QString>(option.choices.begin(), option.choices.end()).size() == option.choices.size());
        mustHold(!option.defaultChoice || option.choices.contains(*option.defaultChoice));
    }
}

void exerciseJobs(const QString& text, const QString& queue) {
    const QString prefix = queue + u'-';
    for (const SystemPrintJob& job : CUPSParsers::jobs(text, queue)) {
        mustHold(job.id.startsWith(prefix) && job.id.size() > prefix.size());
        const QStringView number = QStringView(job.id).sliced(prefix.size());
        mustHold(std::ranges::all_of(number, [](QChar digit) { return digit >= u'0' && digit <= u'9'; }));
        mustHold(platform::words(job.rawLine).first() == job.id && platform::filledLines(job.rawLine).size() == 1);
    }
}

void exerciseQueues(const QString& text) {
    const QList<PrinterStatus> queues = CUPSParsers::printerStatuses(text);
    mustDiffer(queues, &PrinterStatus::name);
    for (const PrinterStatus& queue : queues) {
        const QStringList lines = platform::filledLines(queue.summary);
        mustHold(isWord(queue.name));
        mustHold(std::ranges::all_of(lines, [](const QString& line) { return line == line.trimmed(); }));
    }
    for (const PrinterStatus& queue : queues.first(std::min(queues.size(), mostQueues))) {
        exerciseJobs(text, queue.name);
    }
    const QMap<QString, QString> uris = CUPSParsers::deviceURIs(text);
    for (auto each = uris.begin(); each != uris.end(); ++each) {
        mustHold(!each.key().isEmpty() && each.key() == each.key().trimmed() && !each.key().contains(u':'));
        mustHold(each.value() == each.value().trimmed() && platform::filledLines(each.value()).size() <= 1);
    }
}

/// A script that is believed says one operation, to the one address that the program gives it.
void exerciseScript(const QString& text) {
    if (!PrinterTelemetryCommand::isReadOnlyTestScript(text)) {
        return;
    }
    QStringList words;
    for (const QString& line : platform::filledLines(text)) {
        words += platform::words(line.left(line.indexOf(u'#')));
    }
    const qsizetype operation = words.indexOf(QStringLiteral("OPERATION"));
    mustHold(words.value(operation + 1) == QStringLiteral("get-printer-attributes"));
    mustHold(words.count(QStringLiteral("OPERATION")) == 1 && words.count(QStringLiteral("{")) == 1);
    mustHold(words.filter(QStringLiteral("$")) == QStringList{QStringLiteral("$uri")});
}

void exerciseName(const QString& text) {
    if (PrinterTelemetryCommand::isValidQueueName(text)) {
        const QString address = PrinterTelemetryCommand(text).arguments().at(3);
        mustHold(isWord(text) && !text.contains(u'/') && address.count(u'/') == 4 && address.size() <= 25 + 3 * 127);
    }
}

void exerciseDiagnostic(const QString& text) {
    for (const qint32 status : {0, 1}) {
        const InspectionResult result{.output = text, .status = status, .timedOut = status != 0};
        mustHold(result.isClean() == (status == 0));
        mustHold(result.diagnostic(QStringLiteral("Context")).startsWith(QStringLiteral("Context")));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = platform::textWithReplacements({data, static_cast<qsizetype>(size)});
    exerciseQueues(text);
    exerciseOptions(text);
    exerciseScript(text);
    exerciseName(text);
    exerciseDiagnostic(text);
    return 0;
}
