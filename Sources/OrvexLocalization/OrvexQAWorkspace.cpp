#include "OrvexQAWorkspace.h"

#include <QDir>
#include <QFile>

namespace orvex {

namespace {

// Read from the system, so that the answer does not depend on an application object.
QStringList processArguments() {
    QFile file(QStringLiteral("/proc/self/cmdline"));
    QStringList arguments;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& argument : file.readAll().split('\0')) {
            arguments.append(QFile::decodeName(argument));
        }
    }
    if (!arguments.isEmpty()) {
        arguments.removeLast(); // the empty piece behind the last terminator
    }
    return arguments;
}

} // namespace

std::optional<QUrl> OrvexQAWorkspace::directory() {
    return directory(processArguments());
}

std::optional<QUrl> OrvexQAWorkspace::directory(const QStringList& arguments) {
    const qsizetype flag = arguments.indexOf(QStringLiteral("--orvex-qa-workspace"));
    if (flag < 0 || flag + 1 >= arguments.size()) {
        return std::nullopt;
    }
    const QString& path = arguments[flag + 1];
    if (!path.startsWith(u'/') || path.contains(QChar(u'\0'))) {
        return std::nullopt;
    }
    QString standardised = QDir::cleanPath(path);
    while (standardised.startsWith(QStringLiteral("/../"))) {
        standardised.remove(0, 3); // nothing lies above the root
    }
    return QUrl::fromLocalFile(standardised == u"/.." ? QStringLiteral("/") : standardised);
}

} // namespace orvex
