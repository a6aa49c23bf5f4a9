#include "InspectionResult.h"

#include "OrvexLanguage.h"
#include "Text.h"

#include <QStringList>

namespace orvex {

namespace {

constexpr qsizetype shownCharacters = 1500; // of the tool's own words

} // namespace

QString InspectionResult::diagnostic(const QString& context) const {
    QStringList sentences{context};
    if (timedOut) {
        sentences.append(spt("命令超时，已被停止。", "The command timed out and was stopped."));
    }
    if (truncated) {
        sentences.append(spt("输出超过安全长度上限，结果不完整。",
                             "Output exceeded the safe length limit. Results are incomplete."));
    }
    if (status && *status != 0) {
        sentences.append(spt("退出状态为 %1。", "Exit status %1.").arg(*status));
    }
    if (const QString words = platform::firstCharacters(output.trimmed(), shownCharacters); !words.isEmpty()) {
        sentences.append(words);
    }
    return sentences.join(u' ');
}

} // namespace orvex
