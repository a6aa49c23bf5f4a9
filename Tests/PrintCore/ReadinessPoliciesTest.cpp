#include "ReadinessPolicies.h"

#include "InChinese.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::text;
using State = NativePrintReadinessState;

constexpr auto unselectedText = "Select an existing configured printer first.";
constexpr auto unconfirmedText = "The selected system queue status could not be confirmed. Print was not opened. "
                                 "Refresh printers and try again.";
constexpr auto stoppedText = "The system print queue is stopped, disabled or reporting an error. Direct printing is "
                             "unavailable. Resolve the issue in Canon or the system queue first; the app will not "
                             "enable the queue automatically.";
constexpr auto rejectingText = "The system queue is not accepting jobs. Direct printing is unavailable. Check the "
                               "system queue first; the app will not change queue settings.";
constexpr auto unreadyText = "The system queue could not be confirmed ready to accept jobs. Print was not opened. "
                             "Refresh printers and check Canon or the system queue.";
constexpr auto reportLabel = "\nSystem report: ";

/// An idle queue that takes jobs.
PrinterTelemetrySnapshot idle() {
    return {.queueName = text("W9400"), .queueState = 3, .isAcceptingJobs = true};
}

PrinterTelemetrySnapshot withReasons(const QStringList& reasons) {
    PrinterTelemetrySnapshot telemetry = idle();
    telemetry.queueReasons = reasons;
    return telemetry;
}

NativePrintReadinessAssessment evaluated(const PrinterTelemetrySnapshot& telemetry) {
    return NativePrintReadinessPolicy::evaluate(telemetry, text("W9400"));
}

/// What stands under the sentence on a stopped queue with that message and these reasons besides.
QString detail(const QString& message, const QStringList& reasons = {}) {
    PrinterTelemetrySnapshot telemetry = withReasons(reasons);
    telemetry.queueState = 5;
    telemetry.queueMessage = message;
    const QString reason = evaluated(telemetry).blockingReason.value_or(QString());
    EXPECT_TRUE(reason.startsWith(text(stoppedText)));
    return reason.sliced(text(stoppedText).size());
}

/// The system's words in such a detail.
QString report(const QString& message, const QStringList& reasons = {}) {
    const QString whole = detail(message, reasons);
    EXPECT_TRUE(whole.startsWith(text(reportLabel)));
    return whole.sliced(text(reportLabel).size());
}

struct Queue {
    const char* name;
    std::optional<qint64> state;
    std::optional<bool> isAccepting;
    QStringList reasons;
    State verdict;
    const char* sentence; ///< null for none
};

void PrintTo(const Queue& row, std::ostream* out) {
    *out << row.name;
}

class Readiness : public ::testing::TestWithParam<Queue> {
protected:
    static PrinterTelemetrySnapshot telemetry() {
        PrinterTelemetrySnapshot telemetry = withReasons(GetParam().reasons);
        telemetry.queueState = GetParam().state;
        telemetry.isAcceptingJobs = GetParam().isAccepting;
        return telemetry;
    }
};

struct Reason {
    const char* name;
    const char* reason;
};

void PrintTo(const Reason& row, std::ostream* out) {
    *out << row.name;
}

class BlockingReason : public ::testing::TestWithParam<Reason> {};

class HarmlessReason : public ::testing::TestWithParam<Reason> {};

struct Cutter {
    const char* name;
    const char* keyword;
    const char* label;
};

void PrintTo(const Cutter& row, std::ostream* out) {
    *out << row.name;
}

class CutterCandidate : public ::testing::TestWithParam<Cutter> {};

class NoCutterCandidate : public ::testing::TestWithParam<Cutter> {};

DriverOption option(const char* keyword, const char* label, const QStringList& choices = {QStringLiteral("None")}) {
    return {.keyword = text(keyword), .label = text(label), .choices = choices, .defaultChoice = std::nullopt};
}

PrinterSnapshot printer(const QList<DriverOption>& options) {
    return {.name = text("W9400"),
            .summary = text("cutter cutting autocut"),
            .deviceURI = text("usb:cutter"),
            .options = options,
            .jobs = {},
            .capturedAt = {},
            .diagnostic = text("cutter")};
}

} // namespace

// Readiness: what is asked for

TEST(NativePrintReadinessPolicy, WantsAPrinterSelectedBeforeAnythingElse) {
    for (const auto& telemetry : {std::optional<PrinterTelemetrySnapshot>(), std::optional(idle()),
                                  std::optional(PrinterTelemetrySnapshot{})}) {
        SCOPED_TRACE(telemetry ? telemetry->queueName.toStdString() : "absent");
        const auto assessment = NativePrintReadinessPolicy::evaluate(telemetry, QString());
        EXPECT_EQ(assessment.state, State::unknown);
        EXPECT_EQ(assessment.blockingReason, text(unselectedText));
        EXPECT_FALSE(assessment.isAllowed());
    }
}

TEST(NativePrintReadinessPolicy, DoesNotKnowAQueueWithoutTelemetry) {
    const auto assessment = NativePrintReadinessPolicy::evaluate(std::nullopt, text("W9400"));
    EXPECT_EQ(assessment.state, State::unknown);
    EXPECT_EQ(assessment.blockingReason, text(unconfirmedText));
    EXPECT_FALSE(assessment.isAllowed());
}

TEST(NativePrintReadinessPolicy, DoesNotTakeTheTelemetryOfAnotherQueue) {
    for (const char* other : {"W9400F", "w9400", "W9400 ", "W940"}) {
        SCOPED_TRACE(other);
        PrinterTelemetrySnapshot stopped = idle();
        stopped.queueState = 5;
        stopped.queueMessage = text("words");
        for (const PrinterTelemetrySnapshot& telemetry : {idle(), stopped}) {
            const auto assessment = NativePrintReadinessPolicy::evaluate(telemetry, text(other));
            EXPECT_EQ(assessment.state, State::unknown);
            EXPECT_EQ(assessment.blockingReason, text(unconfirmedText));
        }
    }
}

// Readiness: the queue's state

TEST_P(Readiness, IsDecidedByWhatTheQueueConfirms) {
    const auto assessment = evaluated(telemetry());
    EXPECT_EQ(assessment.state, GetParam().verdict);
    EXPECT_EQ(assessment.isAllowed(), GetParam().verdict == State::ready);
    if (GetParam().sentence == nullptr) {
        EXPECT_EQ(assessment.blockingReason, std::nullopt);
    } else {
        ASSERT_TRUE(assessment.blockingReason);
        EXPECT_EQ(assessment.blockingReason->section(u'\n', 0, 0), text(GetParam().sentence));
    }
}

TEST_P(Readiness, TellsTheSystemsWordsUnderItsOwnUnlessReady) {
    PrinterTelemetrySnapshot spoken = telemetry();
    spoken.queueMessage = text("system words");
    QString words = text("system words");
    if (!GetParam().reasons.isEmpty()) {
        words += text("；") + GetParam().reasons.join(text(", "));
    }
    const auto assessment = evaluated(spoken);
    EXPECT_EQ(assessment.state, GetParam().verdict);
    if (GetParam().sentence == nullptr) {
        EXPECT_EQ(assessment.blockingReason, std::nullopt);
    } else {
        EXPECT_EQ(assessment.blockingReason, text(GetParam().sentence) + text(reportLabel) + words);
    }
}

INSTANTIATE_TEST_SUITE_P(
    NativePrintReadinessPolicy, Readiness,
    ::testing::Values(
        Queue{"Idle", 3, true, {}, State::ready, nullptr}, Queue{"Processing", 4, true, {}, State::ready, nullptr},
        Queue{"IdleWithAWarning", 3, true, {text("media-low-warning")}, State::ready, nullptr},
        Queue{"ProcessingWithAReport", 4, true, {text("toner-low-report")}, State::ready, nullptr},
        Queue{"IdleWithAnError", 3, true, {text("media-jam-error")}, State::unavailable, stoppedText},
        Queue{"ProcessingWithAnError", 4, true, {text("media-jam-error")}, State::unavailable, stoppedText},
        Queue{"IdleAndPaused", 3, true, {text("paused")}, State::unavailable, stoppedText},
        Queue{"PausedAsTheLastReason",
              3,
              true,
              {text("a-warning"), text("b"), text("paused")},
              State::unavailable,
              stoppedText},
        Queue{"PausedAndRejecting", 3, false, {text("paused")}, State::unavailable, stoppedText},
        Queue{"PausedWithNothingElse", std::nullopt, std::nullopt, {text("paused")}, State::unavailable, stoppedText},
        Queue{"Stopped", 5, true, {}, State::unavailable, stoppedText},
        Queue{"StoppedAndRejecting", 5, false, {}, State::unavailable, stoppedText},
        Queue{"StoppedAndSilentOnJobs", 5, std::nullopt, {}, State::unavailable, stoppedText},
        Queue{"Rejecting", 3, false, {}, State::unavailable, rejectingText},
        Queue{"RejectingWhileProcessing", 4, false, {}, State::unavailable, rejectingText},
        Queue{"RejectingWithoutAState", std::nullopt, false, {}, State::unavailable, rejectingText},
        Queue{"RejectingInAnUnknownState", 7, false, {}, State::unavailable, rejectingText},
        Queue{"SilentOnJobs", 3, std::nullopt, {}, State::unknown, unreadyText},
        Queue{"ProcessingAndSilentOnJobs", 4, std::nullopt, {}, State::unknown, unreadyText},
        Queue{"WithoutAState", std::nullopt, true, {}, State::unknown, unreadyText},
        Queue{"Silent", std::nullopt, std::nullopt, {}, State::unknown, unreadyText},
        Queue{"StateZero", 0, true, {}, State::unknown, unreadyText},
        Queue{"StateBelowIdle", 2, true, {}, State::unknown, unreadyText},
        Queue{"StateAboveStopped", 6, true, {}, State::unknown, unreadyText},
        Queue{"NegativeState", -3, true, {}, State::unknown, unreadyText},
        Queue{"UnknownWithAWarning", std::nullopt, true, {text("media-low-warning")}, State::unknown, unreadyText}),
    test::RowName());

TEST_P(BlockingReason, MakesAnIdleQueueUnavailable) {
    const auto assessment = evaluated(withReasons({text(GetParam().reason)}));
    EXPECT_EQ(assessment.state, State::unavailable);
    EXPECT_EQ(assessment.blockingReason, text(stoppedText) + text(reportLabel) + text(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(NativePrintReadinessPolicy, BlockingReason,
                         ::testing::Values(Reason{"Paused", "paused"}, Reason{"MovingToPaused", "moving-to-paused"},
                                           Reason{"Shutdown", "shutdown"},
                                           Reason{"MissingFilter", "cups-missing-filter"},
                                           Reason{"InsecureFilter", "cups-insecure-filter"},
                                           Reason{"AnyError", "marker-supply-empty-error"},
                                           Reason{"PausedError", "paused-error"}, Reason{"BareError", "-error"}),
                         test::RowName());

TEST_P(HarmlessReason, LeavesAnIdleQueueReady) {
    const auto assessment = evaluated(withReasons({text(GetParam().reason)}));
    EXPECT_EQ(assessment.state, State::ready);
    EXPECT_EQ(assessment.blockingReason, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    NativePrintReadinessPolicy, HarmlessReason,
    ::testing::Values(Reason{"None", "none"}, Reason{"Empty", ""}, Reason{"BeginningWithPaused", "paused-soon"},
                      Reason{"EndingInPaused", "not-paused"}, Reason{"PausedWithABlank", "paused "},
                      Reason{"PausedInUpperCase", "PAUSED"}, Reason{"PausedWithACapital", "Paused"},
                      Reason{"MovingToPausedInUpperCase", "Moving-To-Paused"}, Reason{"Shutdowns", "shutdowns"},
                      Reason{"ShutdownWarning", "shutdown-warning"},
                      Reason{"MissingFilterWarning", "cups-missing-filter-warning"},
                      Reason{"InsecureFilterReport", "cups-insecure-filter-report"},
                      Reason{"WarningOfWhatWouldBeAnError", "media-jam-warning"}, Reason{"Report", "media-jam-report"},
                      Reason{"ErrorInside", "media-error-warning"}, Reason{"Errors", "media-errors"},
                      Reason{"ErrorInUpperCase", "media-jam-ERROR"}, Reason{"ErrorWithABlank", "media-jam-error "},
                      Reason{"ErrorWithoutItsHyphen", "error"}, Reason{"ErrorWithAnotherSign", "media_error"}),
    test::RowName());

// Readiness: the system's own words

TEST(NativePrintReadinessPolicy, AddsNothingIfTheSystemSaysNothing) {
    EXPECT_EQ(detail(QString()), QString());
    EXPECT_EQ(detail(QString(), {text("none")}), QString());
    EXPECT_EQ(detail(QString(), {text("none"), text("none")}), QString());
    EXPECT_EQ(detail(text(" \t\n\u00A0\u2028 "), {text("none")}), QString());
    EXPECT_EQ(detail(QString(), {QString()}), QString());
}

TEST(NativePrintReadinessPolicy, PutsTheSystemsWordsOnALineOfTheirOwn) {
    EXPECT_EQ(detail(text("Out of canvas; load roll")), text("\nSystem report: Out of canvas; load roll"));
}

TEST(NativePrintReadinessPolicy, JoinsMessageAndReasonsByAFullWidthSemicolon) {
    EXPECT_EQ(report(text("words"), {text("a"), text("b-warning")}), text("words；a, b-warning"));
    EXPECT_EQ(report(text("words")), text("words"));
    EXPECT_EQ(report(text("words"), {text("none")}), text("words"));
    EXPECT_EQ(report(QString(), {text("a"), text("b-warning")}), text("a, b-warning"));
}

TEST(NativePrintReadinessPolicy, LeavesOutTheReasonNoneAndNoOther) {
    EXPECT_EQ(report(QString(), {text("none"), text("a"), text("none"), text("None"), text("none-warning")}),
              text("a, None, none-warning"));
}

TEST(NativePrintReadinessPolicy, BringsAMessageOnOneLine) {
    EXPECT_EQ(report(text("one\ttwo\nthree\u0085four\u007Ffive\u0001six")), text("one two three four five six"));
    EXPECT_EQ(report(text("one\r\n\ttwo")), text("one   two"));
    EXPECT_EQ(report(text("one") + QChar(u'\0') + text("two")), text("one two"));
}

TEST(NativePrintReadinessPolicy, TrimsAMessage) {
    EXPECT_EQ(report(text("\n\t \u00A0one  two \u2028\r\n")), text("one  two"));
}

TEST(NativePrintReadinessPolicy, ShowsPlaceholdersAsTheyStand) {
    EXPECT_EQ(report(text("%1 %2"), {text("%1")}), text("%1 %2；%1"));
}

TEST(NativePrintReadinessPolicy, ShowsTheFirst600CharactersOfMessageAndReasonsTogether) {
    EXPECT_EQ(report(QString(600, u'm')), QString(600, u'm'));
    EXPECT_EQ(report(QString(601, u'm')), QString(600, u'm'));
    EXPECT_EQ(report(QString(2000, u'm'), {text("reason")}), QString(600, u'm'));
    EXPECT_EQ(report(QString(597, u'm'), {text("ab")}), QString(597, u'm') + text("；ab"));
    EXPECT_EQ(report(QString(597, u'm'), {text("abc")}), QString(597, u'm') + text("；ab"));
    EXPECT_EQ(report(QString(599, u'm'), {text("abc")}), QString(599, u'm') + text("；"));
    EXPECT_EQ(report(QString(600, u'm'), {text("abc")}), QString(600, u'm'));
    EXPECT_EQ(report(QString(), {QString(598, u'r'), text("ab")}), QString(598, u'r') + text(", "));
}

TEST(NativePrintReadinessPolicy, CutsBehindAWholeCharacter) {
    for (const char* one : {"e\u0301", "\U0001F600", "\U0001F44D\U0001F3FD", "纸"}) {
        SCOPED_TRACE(one);
        EXPECT_EQ(report(QString(599, u'm') + text(one) + u'x'), QString(599, u'm') + text(one));
        EXPECT_EQ(report(text(one).repeated(601)), text(one).repeated(600));
    }
}

TEST(NativePrintReadinessPolicy, CutsWhatIsTrimmed) {
    EXPECT_EQ(report(QString(700, u' ') + QString(600, u'm') + text("\n\n")), QString(600, u'm'));
}

TEST(NativePrintReadinessPolicy, LooksAtReasonsBeyondTheCut) {
    PrinterTelemetrySnapshot telemetry = withReasons({text("paused")});
    telemetry.queueMessage = QString(2000, u'm');
    EXPECT_EQ(evaluated(telemetry).state, State::unavailable);
}

TEST(NativePrintReadinessPolicy, SpeaksChineseToo) {
    const test::InChinese chinese;
    EXPECT_EQ(NativePrintReadinessPolicy::evaluate(idle(), QString()).blockingReason,
              text("请先选择一台系统中已配置好的打印机。"));
    EXPECT_EQ(NativePrintReadinessPolicy::evaluate(std::nullopt, text("W9400")).blockingReason,
              text("无法确认所选系统打印队列的状态，未打开打印。请刷新打印机后重试。"));

    PrinterTelemetrySnapshot telemetry = withReasons({text("paused"), text("none")});
    telemetry.queueMessage = text("words");
    EXPECT_EQ(evaluated(telemetry).blockingReason,
              text("系统打印队列已停止、已停用或正在报告错误，无法直接打印。请先在佳能软件或系统打印队列中解决问题；"
                   "本应用不会自动启用队列。\n系统报告：words；paused"));
    telemetry.queueReasons = {text("b-warning")};
    telemetry.isAcceptingJobs = false;
    EXPECT_EQ(evaluated(telemetry).blockingReason,
              text("系统打印队列目前不接受作业，无法直接打印。请先检查系统打印队列；本应用不会更改队列设置。"
                   "\n系统报告：words；b-warning"));
    telemetry.isAcceptingJobs = std::nullopt;
    EXPECT_EQ(evaluated(telemetry).blockingReason,
              text("无法确认系统打印队列已准备好接受作业，未打开打印。请刷新打印机，并在佳能软件或系统打印队列中查看。"
                   "\n系统报告：words；b-warning"));
}

TEST(NativePrintReadinessState, HasItsNamesInTheirOrder) {
    EXPECT_LT(State::ready, State::unavailable);
    EXPECT_LT(State::unavailable, State::unknown);
    EXPECT_EQ(rawText(State::ready), text("ready"));
    EXPECT_EQ(rawText(State::unavailable), text("unavailable"));
    EXPECT_EQ(rawText(State::unknown), text("unknown"));
}

TEST(NativePrintReadinessAssessment, AllowsNothingUnlessItIsMade) {
    EXPECT_FALSE(NativePrintReadinessAssessment().isAllowed());
}

// Cutting

TEST_P(CutterCandidate, IsToldByKeywordAndLabel) {
    const DriverOption cutter = option(GetParam().keyword, GetParam().label);
    const auto assessment = ManualCuttingPolicy::evaluate(printer({cutter}));
    EXPECT_FALSE(assessment.isAllowed);
    EXPECT_EQ(assessment.candidateOptions, QList<DriverOption>{cutter});
    EXPECT_EQ(assessment.blockingReason,
              text("Possible cutting-related driver options: ") + cutter.keyword +
                  text(". No verified iPF9400 mapping or device validation is available. Option names and the word "
                       "Manual do not prove the cutter is disabled. Unattended automatic submission is locked."));
}

INSTANTIATE_TEST_SUITE_P(
    ManualCuttingPolicy, CutterCandidate,
    ::testing::Values(
        Cutter{"Cutter", "Cutter", "x"}, Cutter{"Cutting", "Cutting", "x"}, Cutter{"AutoCut", "AutoCut", "x"},
        Cutter{"CutMode", "CutMode", "x"}, Cutter{"CutMethod", "CutMethod", "x"}, Cutter{"CutMedia", "CutMedia", "x"},
        Cutter{"CutPolicy", "CutPolicy", "x"}, Cutter{"InsideAWord", "CNIJXautocutter2", "x"},
        Cutter{"UpperCase", "CUTMODE", "x"}, Cutter{"MixedCase", "cUtMoDe", "x"}, Cutter{"Underscore", "Cut_Mode", "x"},
        Cutter{"Hyphen", "cut-mode", "x"}, Cutter{"Dot", "cut.mode", "x"},
        Cutter{"ManySeparators", "_c.u-t__mode_", "x"}, Cutter{"LabelOnly", "CNFinish", "Cut Mode"},
        Cutter{"LabelInLowerCase", "x", "cut mode"}, Cutter{"LabelWithSigns", "x", "Cut/Mode (Roll)"},
        Cutter{"LabelWithTabs", "x", "Auto\tCut"}, Cutter{"LabelWithADash", "x", "Auto\u2014Cut"},
        Cutter{"AcrossKeywordAndLabel", "Cut", "Mode"}, Cutter{"AcrossTheOtherWay", "Auto", "Cut"},
        Cutter{"LettersOfAnotherScriptAround", "x", "纸cutmode纸"}, Cutter{"EmojiBetween", "x", "Cut\U0001F600Mode"},
        Cutter{"CombiningMarkBetween", "x", "cut\u0301mode"}, Cutter{"WordsThatMeetByChance", "Cut", "Termination"}),
    test::RowName());

TEST_P(NoCutterCandidate, IsNoneByItsNames) {
    const auto assessment = ManualCuttingPolicy::evaluate(
        printer({option(GetParam().keyword, GetParam().label, {text("CutMode"), text("Letter_CUT")})}));
    EXPECT_FALSE(assessment.isAllowed);
    EXPECT_EQ(assessment.candidateOptions, QList<DriverOption>());
    EXPECT_EQ(assessment.blockingReason,
              text("CUPS/the driver exposes no recognized cutting control. _CUT in PageSize means cut-sheet paper, not "
                   "a disabled cutter. Manual Cutting cannot be verified; unattended automatic submission is locked."));
}

INSTANTIATE_TEST_SUITE_P(
    ManualCuttingPolicy, NoCutterCandidate,
    ::testing::Values(Cutter{"BareCut", "Cut", "Cut"}, Cutter{"BareCutWithALabel", "cut", "Sheet"},
                      Cutter{"PageSize", "PageSize", "Media Size"}, Cutter{"PageSizeCut", "PageSize_CUT", "A4_CUT"},
                      Cutter{"ModeCut", "ModeCut", "x"}, Cutter{"AutomaticCut", "AutomaticCut", "x"},
                      Cutter{"Manual", "Manual", "Manual"}, Cutter{"LetterBetween", "CutxMode", "x"},
                      Cutter{"DigitBetween", "Cut2Mode", "x"}, Cutter{"LetterOfAnotherScriptBetween", "x", "Cut纸Mode"},
                      Cutter{"LetterWithAnAccentBetween", "x", "cutémode"},
                      Cutter{"DigitOfAnotherScriptBetween", "x", "cut٣mode"},
                      Cutter{"LookAlikeLetters", "x", "сutmode"}, Cutter{"LetterWithAnAccent", "x", "cütmode"},
                      Cutter{"FullWidthLetters", "x", "ｃｕｔｍｏｄｅ"}, Cutter{"Chinese", "x", "裁切方式"}),
    test::RowName());

TEST(ManualCuttingPolicy, HasNoVerdictWithoutAPrinter) {
    const auto assessment = ManualCuttingPolicy::evaluate(std::nullopt);
    EXPECT_FALSE(assessment.isAllowed);
    EXPECT_EQ(assessment.blockingReason, text("No printer is selected. Manual Cutting is unverified; unattended "
                                              "automatic submission is locked."));
    EXPECT_EQ(assessment.candidateOptions, QList<DriverOption>());
}

TEST(ManualCuttingPolicy, FindsNothingWithoutOptions) {
    const auto assessment = ManualCuttingPolicy::evaluate(printer({}));
    EXPECT_FALSE(assessment.isAllowed);
    EXPECT_EQ(assessment.candidateOptions, QList<DriverOption>());
    EXPECT_TRUE(assessment.blockingReason.startsWith(text("CUPS/the driver exposes no recognized cutting control.")));
}

TEST(ManualCuttingPolicy, ListsTheCandidatesInTheOrderOfTheOptions) {
    const DriverOption first = option("Z_AutoCut", "One", {text("Off")});
    const DriverOption second = option("CNFinish", "Cut Mode %2");
    const DriverOption third = option("ACutter", "Three");
    const auto assessment = ManualCuttingPolicy::evaluate(
        printer({option("PageSize", "Media Size", {text("A4_CUT")}), first, option("Cut", "Cut"), second, third}));
    EXPECT_EQ(assessment.candidateOptions, (QList<DriverOption>{first, second, third}));
    EXPECT_EQ(assessment.blockingReason,
              text("Possible cutting-related driver options: Z_AutoCut, CNFinish, ACutter. No verified iPF9400 mapping "
                   "or device validation is available. Option names and the word Manual do not prove the cutter is "
                   "disabled. Unattended automatic submission is locked."));
}

TEST(ManualCuttingPolicy, FindsTheCutterOfARealDriver) {
    const auto assessment =
        ManualCuttingPolicy::evaluate(printer(CUPSParsers::driverOptions(test::toolText("lpoptions_W9400.txt"))));
    ASSERT_EQ(assessment.candidateOptions.size(), 1);
    EXPECT_EQ(assessment.candidateOptions.front().keyword, text("CutMedia"));
    EXPECT_FALSE(assessment.isAllowed);
}

TEST(ManualCuttingPolicy, SpeaksChineseToo) {
    const test::InChinese chinese;
    EXPECT_EQ(ManualCuttingPolicy::evaluate(std::nullopt).blockingReason,
              text("未选择打印机。Manual Cutting 未经核实，无人值守自动发送已锁定。"));
    EXPECT_EQ(ManualCuttingPolicy::evaluate(printer({})).blockingReason,
              text("CUPS 或驱动没有提供可识别的裁切控制选项。PageSize 中的 _CUT 表示单页纸，不表示刀具已停用。无法核实 "
                   "Manual Cutting，无人值守自动发送已锁定。"));
    EXPECT_EQ(ManualCuttingPolicy::evaluate(printer({option("CutMedia", "x"), option("Cutter", "y")})).blockingReason,
              text("可能与裁切有关的驱动选项：CutMedia, Cutter。目前没有经核实的 iPF9400 "
                   "对应关系，也没有经过设备验证。选项名称"
                   "和 Manual 一词都不能证明刀具已停用。无人值守自动发送已锁定。"));
}

} // namespace orvex
