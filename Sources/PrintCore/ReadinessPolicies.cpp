#include "ReadinessPolicies.h"

#include "OrvexLanguage.h"
#include "Text.h"

#include <algorithm>

namespace orvex {

namespace {

// The values of IPP's printer-state (RFC 8011, 5.4.11).
constexpr qint64 idleState = 3;
constexpr qint64 processingState = 4;
constexpr qint64 stoppedState = 5;

constexpr qsizetype longestDetailCharacters = 600;

/// Whether one of IPP's printer-state-reasons means that nothing can be printed now.
bool isBlocking(const QString& reason) {
    static const QStringList blocking{QStringLiteral("paused"), QStringLiteral("moving-to-paused"),
                                      QStringLiteral("shutdown"), QStringLiteral("cups-missing-filter"),
                                      QStringLiteral("cups-insecure-filter")};
    return blocking.contains(reason) || reason.endsWith(QStringLiteral("-error"));
}

bool isStopped(const PrinterTelemetrySnapshot& telemetry) {
    return std::ranges::any_of(telemetry.queueReasons, isBlocking) || telemetry.queueState == stoppedState;
}

bool isReady(const PrinterTelemetrySnapshot& telemetry) {
    const bool isWorking = telemetry.queueState == idleState || telemetry.queueState == processingState;
    return isWorking && telemetry.isAcceptingJobs == true;
}

NativePrintReadinessAssessment unavailable(const QString& reason) {
    return {.state = NativePrintReadinessState::unavailable, .blockingReason = reason};
}

NativePrintReadinessAssessment unknown(const QString& reason) {
    return {.state = NativePrintReadinessState::unknown, .blockingReason = reason};
}

/// The text with a blank for every control character, so that it stays on one line.
QString onOneLine(QString text) {
    std::ranges::replace_if(
        text, [](QChar character) { return character.category() == QChar::Other_Control; }, u' ');
    return text.trimmed();
}

QString lettersAndDigits(const QString& text) {
    QString kept;
    for (const uint scalar : text.toUcs4()) {
        if (platform::isLetterOrDigit(scalar)) {
            kept.append(QChar::fromUcs4(scalar));
        }
    }
    return kept;
}

} // namespace

QString rawText(NativePrintReadinessState state) {
    switch (state) {
    case NativePrintReadinessState::ready:
        return QStringLiteral("ready");
    case NativePrintReadinessState::unavailable:
        return QStringLiteral("unavailable");
    case NativePrintReadinessState::unknown:
        break;
    }
    return QStringLiteral("unknown");
}

NativePrintReadinessAssessment
NativePrintReadinessPolicy::evaluate(const std::optional<PrinterTelemetrySnapshot>& telemetry,
                                     const QString& queueName) {
    if (queueName.isEmpty()) {
        return unknown(spt("请先选择一台系统中已配置好的打印机。", "Select an existing configured printer first."));
    }
    if (!telemetry || telemetry->queueName != queueName) {
        return unknown(spt("无法确认所选系统打印队列的状态，未打开打印。请刷新打印机后重试。",
                           "The selected system queue status could not be confirmed. Print was not opened. Refresh "
                           "printers and try again."));
    }
    const QString detail = backendDetail(*telemetry);
    if (isStopped(*telemetry)) {
        return unavailable(
            spt("系统打印队列已停止、已停用或正在报告错误，无法直接打印。请先在佳能软件或系统打印队列中解决问题；"
                "本应用不会自动启用队列。",
                "The system print queue is stopped, disabled or reporting an error. Direct printing is unavailable. "
                "Resolve the issue in Canon or the system queue first; the app will not enable the queue "
                "automatically.") +
            detail);
    }
    if (telemetry->isAcceptingJobs == false) {
        return unavailable(
            spt("系统打印队列目前不接受作业，无法直接打印。请先检查系统打印队列；本应用不会更改队列设置。",
                "The system queue is not accepting jobs. Direct printing is unavailable. Check the "
                "system queue first; the app will not change queue settings.") +
            detail);
    }
    if (isReady(*telemetry)) {
        return {.state = NativePrintReadinessState::ready, .blockingReason = std::nullopt};
    }
    return unknown(
        spt("无法确认系统打印队列已准备好接受作业，未打开打印。请刷新打印机，并在佳能软件或系统打印队列中查看。",
            "The system queue could not be confirmed ready to accept jobs. Print was not opened. Refresh "
            "printers and check Canon or the system queue.") +
        detail);
}

QString NativePrintReadinessPolicy::backendDetail(const PrinterTelemetrySnapshot& telemetry) {
    QStringList reasons = telemetry.queueReasons;
    reasons.removeAll(QStringLiteral("none"));
    QStringList parts{onOneLine(telemetry.queueMessage), reasons.join(QStringLiteral(", "))};
    parts.removeAll(QString());
    if (parts.isEmpty()) {
        return {};
    }
    // The full-width semicolon stands in both languages.
    const QString detail = platform::firstCharacters(parts.join(u'；'), longestDetailCharacters);
    return spt("\n系统报告：%1", "\nSystem report: %1").arg(detail);
}

bool ManualCuttingPolicy::isCutterCandidate(const DriverOption& option) {
    static const QStringList cutterWords{
        QStringLiteral("cutter"),    QStringLiteral("cutting"),  QStringLiteral("autocut"),  QStringLiteral("cutmode"),
        QStringLiteral("cutmethod"), QStringLiteral("cutmedia"), QStringLiteral("cutpolicy")};
    const QString text = lettersAndDigits((option.keyword + u' ' + option.label).toLower());
    return std::ranges::any_of(cutterWords, [&](const QString& word) { return text.contains(word); });
}

ManualCuttingAssessment ManualCuttingPolicy::evaluate(const std::optional<PrinterSnapshot>& snapshot) {
    if (!snapshot) {
        return {.blockingReason = spt("未选择打印机。Manual Cutting 未经核实，无人值守自动发送已锁定。",
                                      "No printer is selected. Manual Cutting is unverified; unattended automatic "
                                      "submission is locked."),
                .candidateOptions = {}};
    }
    QList<DriverOption> candidates;
    QStringList keywords;
    for (const DriverOption& option : snapshot->options) {
        if (isCutterCandidate(option)) {
            candidates.append(option);
            keywords.append(option.keyword);
        }
    }
    if (candidates.isEmpty()) {
        return {.blockingReason =
                    spt("CUPS 或驱动没有提供可识别的裁切控制选项。PageSize 中的 _CUT 表示单页纸，不表示刀具"
                        "已停用。无法核实 Manual Cutting，无人值守自动发送已锁定。",
                        "CUPS/the driver exposes no recognized cutting control. _CUT in PageSize means "
                        "cut-sheet paper, not a disabled cutter. Manual Cutting cannot be verified; "
                        "unattended automatic submission is locked."),
                .candidateOptions = {}};
    }
    return {.blockingReason =
                spt("可能与裁切有关的驱动选项：%1。目前没有经核实的 iPF9400 对应关系，也没有经过设备验证。选项名称"
                    "和 Manual 一词都不能证明刀具已停用。无人值守自动发送已锁定。",
                    "Possible cutting-related driver options: %1. No verified iPF9400 mapping or device "
                    "validation is available. Option names and the word Manual do not prove the cutter "
                    "is disabled. Unattended automatic submission is locked.")
                    .arg(keywords.join(QStringLiteral(", "))),
            .candidateOptions = candidates};
}

} // namespace orvex
