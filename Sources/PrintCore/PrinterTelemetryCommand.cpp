#include "PrinterTelemetryCommand.h"

#include "PrinterTelemetryError.h"
#include "Text.h"

#include <QUrl>

#include <algorithm>

namespace orvex {

namespace {

constexpr qsizetype longestQueueNameBytes = 127;

const QStringList& readOnlyDirectives() {
    static const QStringList directives{
        QStringLiteral("{"),
        QStringLiteral("NAME \"Get printer attributes using get-printer-attributes\""),
        QStringLiteral("OPERATION get-printer-attributes"),
        QStringLiteral("VERSION 2.0"),
        QStringLiteral("GROUP operation"),
        QStringLiteral("ATTR charset attributes-charset utf-8"),
        QStringLiteral("ATTR language attributes-natural-language en"),
        QStringLiteral("ATTR uri printer-uri $uri"),
        QStringLiteral("ATTR keyword requested-attributes all,media-col-database"),
        QStringLiteral("STATUS successful-ok"),
        QStringLiteral("EXPECT charset-configured"),
        QStringLiteral("EXPECT charset-supported"),
        QStringLiteral("EXPECT compression-supported"),
        QStringLiteral("EXPECT document-format-default"),
        QStringLiteral("EXPECT document-format-supported"),
        QStringLiteral("EXPECT generated-natural-language-supported"),
        QStringLiteral("EXPECT ipp-versions-supported"),
        QStringLiteral("EXPECT media-col-default"),
        QStringLiteral("EXPECT natural-language-configured"),
        QStringLiteral("EXPECT operations-supported"),
        QStringLiteral("EXPECT printer-info"),
        QStringLiteral("EXPECT printer-is-accepting-jobs"),
        QStringLiteral("EXPECT printer-location"),
        QStringLiteral("EXPECT printer-make-and-model"),
        QStringLiteral("EXPECT printer-more-info"),
        QStringLiteral("EXPECT printer-name"),
        QStringLiteral("EXPECT printer-state"),
        QStringLiteral("EXPECT printer-state-reasons"),
        QStringLiteral("EXPECT printer-up-time"),
        QStringLiteral("EXPECT printer-uri-supported"),
        QStringLiteral("EXPECT uri-authentication-supported"),
        QStringLiteral("EXPECT uri-security-supported"),
        QStringLiteral("}"),
    };
    return directives;
}

/// What a line of a test file says, its words parted by single blanks; empty for a comment.
QString directive(const QString& line) {
    return platform::words(line.left(line.indexOf(u'#'))).join(u' ');
}

bool isQueueNameScalar(char32_t scalar) {
    return platform::isLetterOrDigit(scalar) || scalar == U'.' || scalar == U'_' || scalar == U'-';
}

/// Every byte but ASCII letters, digits and ".", "_", "-" as %XX.
QString percentEncoded(const QString& queueName) {
    return QString::fromLatin1(QUrl::toPercentEncoding(queueName, {}, "~"));
}

} // namespace

bool PrinterTelemetryCommand::isValidQueueName(const QString& text) {
    const bool isSized = !text.isEmpty() && text.size() <= longestQueueNameBytes && //
                         text.toUtf8().size() <= longestQueueNameBytes;
    if (!isSized || text == u"." || text == u".." || !text.isValidUtf16()) {
        return false;
    }
    return std::ranges::all_of(text.toUcs4(), isQueueNameScalar);
}

bool PrinterTelemetryCommand::isReadOnlyTestScript(const QString& text) {
    if (text.toUtf8().size() > largestTestScriptBytes) {
        return false;
    }
    QStringList directives;
    for (const QString& line : platform::filledLines(text)) {
        if (const QString said = directive(line); !said.isEmpty()) {
            directives.append(said);
        }
    }
    return directives == readOnlyDirectives();
}

PrinterTelemetryCommand::PrinterTelemetryCommand(const QString& queueName) : executable_("/usr/bin/ipptool") {
    if (!isValidQueueName(queueName)) {
        throw PrinterTelemetryError::invalidQueueName();
    }
    arguments_ = {QStringLiteral("-X"), QStringLiteral("-T"), QStringLiteral("3"),
                  QStringLiteral("ipp://localhost/printers/") + percentEncoded(queueName),
                  QString::fromLatin1(testFile)};
}

} // namespace orvex
