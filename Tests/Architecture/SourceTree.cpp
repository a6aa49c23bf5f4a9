#include "SourceTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <stdexcept>

namespace orvex::architecture {

namespace {

QString contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("Cannot read " + path.toStdString());
    }
    return QString::fromUtf8(file.readAll());
}

/// Where the literal or comment that starts at `start` ends (past its last character), or nothing if none starts there.
std::optional<qsizetype> endOfSpan(const QString& text, qsizetype start) {
    const auto past = [&](const QString& mark, qsizetype from) {
        const qsizetype found = text.indexOf(mark, from);
        return found < 0 ? text.size() : found + mark.size();
    };
    const QStringView rest = QStringView(text).mid(start);
    if (rest.startsWith(u"//")) {
        return std::max(start + 2, past(QStringLiteral("\n"), start) - 1);
    }
    if (rest.startsWith(u"/*")) {
        return past(QStringLiteral("*/"), start + 2);
    }
    if (rest.startsWith(u"R\"")) {
        const qsizetype bracket = text.indexOf(u'(', start);
        const QString delimiter = text.mid(start + 2, bracket - start - 2);
        return past(u')' + delimiter + u'"', bracket);
    }
    const bool isDigitSeparator = start > 0 && text[start] == u'\'' && text[start - 1].isDigit();
    if ((text[start] != u'"' && text[start] != u'\'') || isDigitSeparator) {
        return std::nullopt;
    }
    qsizetype end = start + 1;
    while (end < text.size() && text[end] != text[start] && text[end] != u'\n') {
        end += text[end] == u'\\' ? 2 : 1;
    }
    return std::min(end + 1, text.size());
}

} // namespace

std::vector<SourceFile> sourceFiles(const QString& folder) {
    const QDir root(QStringLiteral(ORVEX_SOURCE_ROOT));
    std::vector<SourceFile> files;
    QDirIterator entries(root.filePath(folder), {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        files.push_back({root.relativeFilePath(path), contentOf(path)});
    }
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
    return files;
}

std::vector<Include> includesOf(const SourceFile& file) {
    static const QRegularExpression form(QStringLiteral(R"(^\s*#\s*include\s*[<"]([^>"]+)[>"])"));
    std::vector<Include> includes;
    const QStringList lines = file.text.split(u'\n');
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (const QRegularExpressionMatch match = form.match(lines[index]); match.hasMatch()) {
            includes.push_back({match.captured(1), static_cast<int>(index) + 1});
        }
    }
    return includes;
}

QString codeOnly(const QString& text) {
    QString code = text;
    for (qsizetype position = 0; position < text.size();) {
        const std::optional<qsizetype> end = endOfSpan(text, position);
        for (qsizetype blank = position; end && blank < *end; ++blank) {
            code[blank] = text[blank] == u'\n' ? u'\n' : u' ';
        }
        position = end.value_or(position + 1);
    }
    return code;
}

QString moduleOf(const QString& path) {
    const QStringList parts = path.split(u'/');
    const QString module = parts.value(1);
    return module == QStringLiteral("Orvex") ? module + u'/' + parts.value(2) : module;
}

} // namespace orvex::architecture
