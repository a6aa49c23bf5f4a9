#include "CUPSParsers.h"

#include "Text.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace orvex {

namespace {

bool isASCIILetter(QChar character) {
    const char16_t lower = character.unicode() | 0x20;
    return lower >= u'a' && lower <= u'z';
}

bool isASCIIDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

/// The first position where a text has white space, or its size.
qsizetype endOfWord(QStringView text) {
    return std::ranges::find_if(text, [](QChar character) { return character.isSpace(); }) - text.begin();
}

/// A queue's status behind "printer "; absent for a name and nothing else.
std::optional<PrinterStatus> printerStatus(QStringView rest) {
    const qsizetype nameSize = endOfWord(rest);
    if (nameSize == 0 || nameSize == rest.size()) {
        return std::nullopt;
    }
    return PrinterStatus{.name = rest.first(nameSize).toString(),
                         .summary = rest.sliced(nameSize).trimmed().toString()};
}

/// Whether a text has not been seen before; it is remembered. A list would be searched anew for every hostile line.
bool isNew(const QString& text, QSet<QString>& seen) {
    const qsizetype before = seen.size();
    seen.insert(text);
    return seen.size() > before;
}

/// The guard against taking an error message, which may be in any language, for an option.
bool isOptionKeyword(QStringView text) {
    const auto isAllowed = [](QChar character) {
        return isASCIILetter(character) || isASCIIDigit(character) || QStringView(u"_.-").contains(character);
    };
    return !text.isEmpty() && isASCIILetter(text.front()) && std::ranges::all_of(text, isAllowed);
}

/// Adds the choices of a text such as "Letter *A4".
void readChoices(QStringView body, DriverOption& option) {
    QSet<QString> seen;
    for (const QString& word : platform::words(body)) {
        const bool isDefault = word.startsWith(u'*');
        const QString choice = isDefault ? word.sliced(1) : word;
        if (choice.isEmpty()) {
            continue;
        }
        if (isNew(choice, seen)) {
            option.choices.append(choice);
        }
        if (isDefault) {
            option.defaultChoice = choice;
        }
    }
}

/// The option of a line such as "PageSize/Media Size: Letter *A4".
std::optional<DriverOption> driverOption(QStringView line) {
    const qsizetype colon = line.indexOf(u':');
    if (colon < 0 || line.startsWith(QStringLiteral("lpoptions:"))) {
        return std::nullopt;
    }
    const QStringView head = line.first(colon);
    const qsizetype slash = head.indexOf(u'/');
    const QStringView keyword = slash < 0 ? head : head.first(slash);
    const QStringView label = slash < 0 ? QStringView() : head.sliced(slash + 1);
    if (!isOptionKeyword(keyword)) {
        return std::nullopt;
    }
    DriverOption option{.keyword = keyword.toString(),
                        .label = (label.isEmpty() ? keyword : label).toString(),
                        .choices = {},
                        .defaultChoice = std::nullopt};
    readChoices(line.sliced(colon + 1), option);
    return option.choices.isEmpty() ? std::nullopt : std::optional(option);
}

/// Whether a word such as "QUEUE-12" is the id of a job of that queue.
bool isJobID(QStringView word, const QString& queueName) {
    const qsizetype dash = queueName.size();
    if (!word.startsWith(queueName) || word.size() == dash || word[dash] != u'-') {
        return false;
    }
    const QStringView number = word.sliced(dash + 1);
    return !number.isEmpty() && std::ranges::all_of(number, isASCIIDigit);
}

} // namespace

QList<PrinterStatus> CUPSParsers::printerStatuses(const QString& text) {
    const QString prefix = QStringLiteral("printer ");
    QList<PrinterStatus> statuses;
    QSet<QString> names;
    for (const QString& line : platform::filledLines(text)) {
        if (line.startsWith(prefix)) {
            const auto status = printerStatus(QStringView(line).sliced(prefix.size()));
            if (status && isNew(status->name, names)) {
                statuses.append(*status);
            }
            continue;
        }
        const QString reason = line.trimmed();
        if (line.front().isSpace() && !statuses.isEmpty() && !reason.isEmpty()) {
            statuses.back().summary += u'\n' + reason;
        }
    }
    return statuses;
}

QMap<QString, QString> CUPSParsers::deviceURIs(const QString& text) {
    const QString prefix = QStringLiteral("device for ");
    QMap<QString, QString> uris;
    for (const QString& line : platform::filledLines(text)) {
        const qsizetype colon = line.indexOf(u':', prefix.size());
        if (!line.startsWith(prefix) || colon < 0) {
            continue;
        }
        const QString name = line.sliced(prefix.size(), colon - prefix.size()).trimmed();
        if (!name.isEmpty()) {
            uris.insert(name, line.sliced(colon + 1).trimmed());
        }
    }
    return uris;
}

QList<DriverOption> CUPSParsers::driverOptions(const QString& text) {
    QList<DriverOption> options;
    QSet<QString> keywords;
    for (const QString& line : platform::filledLines(text)) {
        const auto option = driverOption(QStringView(line).trimmed());
        if (option && isNew(option->keyword, keywords)) {
            options.append(*option);
        }
    }
    return options;
}

QList<SystemPrintJob> CUPSParsers::jobs(const QString& text, const QString& queueName) {
    QList<SystemPrintJob> jobs;
    for (const QString& line : platform::filledLines(text)) {
        const QString rawLine = line.trimmed();
        const QString id = rawLine.first(endOfWord(rawLine));
        if (isJobID(id, queueName)) {
            jobs.append({.id = id, .rawLine = rawLine});
        }
    }
    return jobs;
}

} // namespace orvex
