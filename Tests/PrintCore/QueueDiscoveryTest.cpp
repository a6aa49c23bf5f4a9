#include "QueueDiscovery.h"

#include "CUPSInspectionError.h"
#include "InChinese.h"
#include "Interrupted.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::clean;
using test::text;
using test::toolText;

constexpr auto wellSentence = "Local CUPS was inspected read-only. Confirm device connectivity, hardware errors and "
                              "cutting behavior on the printer panel.";
constexpr auto noAddressSentence = "This queue did not return a device address.";
constexpr auto noOptionsSentence = "The driver returned no readable options. This does not establish media or cutting "
                                   "capabilities.";

InspectionResult failed(const char* output, qint32 status = 1) {
    return {.output = text(output), .status = status};
}

InspectionResult timedOut(const char* output) {
    return {.output = text(output), .status = 15, .timedOut = true};
}

InspectionResult truncated(const char* output) {
    return {.output = text(output), .status = 0, .truncated = true};
}

/// How a tool ends that cannot be started.
InspectionResult notStarted() {
    return {.output = text("No such file or directory"), .status = std::nullopt};
}

/// What the tools answer: two queues without trouble, unless a test says otherwise.
struct Answers {
    InspectionResult statuses = clean(text("printer A is idle.\nprinter A-B disabled -\n\tout of canvas\n"));
    InspectionResult devices = clean(text("device for A: usb://Canon/a\ndevice for A-B: ipp://host:631/ipp/print\n"));
    InspectionResult jobs = clean(text("A-B-12 root 1024\nA-7 root 2048\nA-B-13 root 1\n"));
    InspectionResult optionsOfA = clean(text("PageSize/Media Size: *A4 Roll60\n"));
    InspectionResult optionsOfAB = clean(text("CutMedia/Cutting: None *Auto\n"));
};

/// Tools that give the scripted answers and remember what they were asked.
class Tools {
public:
    explicit Tools(Answers answers) : answers_(std::move(answers)) {}

    InspectionResult run(const InspectionCommand& command) {
        asked_.append(command);
        if (command == InspectionCommand::printerStatuses()) {
            return answers_.statuses;
        }
        if (command == InspectionCommand::deviceURIs()) {
            return answers_.devices;
        }
        if (command == InspectionCommand::pendingJobs()) {
            return answers_.jobs;
        }
        return command == InspectionCommand::driverOptions(text("A")) ? answers_.optionsOfA : answers_.optionsOfAB;
    }

    [[nodiscard]] const QList<InspectionCommand>& asked() const { return asked_; }

private:
    Answers answers_;
    QList<InspectionCommand> asked_;
};

QList<PrinterSnapshot> discovered(Tools& tools, const std::stop_token& stop = {}) {
    return QueueDiscovery([&tools](const InspectionCommand& command) { return tools.run(command); }, stop).snapshots();
}

QList<PrinterSnapshot> discovered(const Answers& answers) {
    Tools tools(answers);
    return discovered(tools);
}

/// The message that a pass fails with, or "(none)".
QString failureOf(const Answers& answers) {
    try {
        (void)discovered(answers);
    } catch (const CUPSInspectionError& error) {
        return error.message();
    }
    return text("(none)");
}

QStringList lines(std::initializer_list<const char*> sentences) {
    QStringList list;
    for (const char* sentence : sentences) {
        list.append(text(sentence));
    }
    return list;
}

/// One way in which the tools fail, and what becomes of the queue A.
struct Trouble {
    const char* name;
    std::function<void(Answers&)> happen;
    QStringList diagnostic; ///< of the queue A, line by line
    QString deviceURI = text("usb://Canon/a");
    qsizetype options = 1;
    qsizetype jobs = 1;
};

void PrintTo(const Trouble& row, std::ostream* out) {
    *out << row.name;
}

class QueueDiscoveryTrouble : public ::testing::TestWithParam<Trouble> {};

struct NoQueue {
    const char* name;
    InspectionResult statuses;
    const char* failure; ///< or null: an empty list
};

void PrintTo(const NoQueue& row, std::ostream* out) {
    *out << row.name;
}

class QueueDiscoveryWithoutQueues : public ::testing::TestWithParam<NoQueue> {};

class QueueDiscoveryStop : public ::testing::TestWithParam<qsizetype> {};

} // namespace

// A pass without trouble

TEST(QueueDiscovery, FoldsTheAnswersIntoOneSnapshotOfEachQueue) {
    const QList<PrinterSnapshot> queues = discovered(Answers{});
    ASSERT_EQ(queues.size(), 2);

    EXPECT_EQ(queues[0].name, text("A"));
    EXPECT_EQ(queues[0].summary, text("is idle."));
    EXPECT_EQ(queues[0].deviceURI, text("usb://Canon/a"));
    EXPECT_EQ(queues[0].options, (QList<DriverOption>{{.keyword = text("PageSize"),
                                                       .label = text("Media Size"),
                                                       .choices = {text("A4"), text("Roll60")},
                                                       .defaultChoice = text("A4")}}));
    EXPECT_EQ(queues[0].diagnostic, text(wellSentence));

    EXPECT_EQ(queues[1].name, text("A-B"));
    EXPECT_EQ(queues[1].summary, text("disabled -\nout of canvas"));
    EXPECT_EQ(queues[1].deviceURI, text("ipp://host:631/ipp/print"));
    EXPECT_EQ(queues[1].options, (QList<DriverOption>{{.keyword = text("CutMedia"),
                                                       .label = text("Cutting"),
                                                       .choices = {text("None"), text("Auto")},
                                                       .defaultChoice = text("Auto")}}));
    EXPECT_EQ(queues[1].diagnostic, text(wellSentence));
}

TEST(QueueDiscovery, AsksInAFixedOrder) {
    Tools tools(Answers{});
    (void)discovered(tools);
    EXPECT_EQ(tools.asked(),
              (QList<InspectionCommand>{InspectionCommand::printerStatuses(), InspectionCommand::deviceURIs(),
                                        InspectionCommand::pendingJobs(), InspectionCommand::driverOptions(text("A")),
                                        InspectionCommand::driverOptions(text("A-B"))}));
}

TEST(QueueDiscovery, GivesAQueueItsOwnJobsOnly) {
    const QList<PrinterSnapshot> queues = discovered(Answers{});
    ASSERT_EQ(queues.size(), 2);
    EXPECT_EQ(queues[0].jobs, (QList<SystemPrintJob>{{.id = text("A-7"), .rawLine = text("A-7 root 2048")}}));
    EXPECT_EQ(queues[1].jobs, (QList<SystemPrintJob>{{.id = text("A-B-12"), .rawLine = text("A-B-12 root 1024")},
                                                     {.id = text("A-B-13"), .rawLine = text("A-B-13 root 1")}}));
}

TEST(QueueDiscovery, KeepsTheOrderOfTheStatusTool) {
    Answers answers;
    answers.statuses = clean(text("printer Z one\nprinter a two\nprinter B three\nprinter Z four\n"));
    QStringList names;
    for (const PrinterSnapshot& queue : discovered(answers)) {
        names.append(queue.name);
    }
    EXPECT_EQ(names, lines({"Z", "a", "B"}));
}

TEST(QueueDiscovery, ReadsTheToolsOfARealSystem) {
    Answers answers;
    answers.statuses = clean(toolText("lpstat_p_paused.txt"));
    answers.devices = clean(toolText("lpstat_v.txt"));
    answers.jobs = clean(toolText("lpstat_jobs_waiting.txt"));
    answers.optionsOfAB = clean(toolText("lpoptions_W9400.txt"));
    const QList<PrinterSnapshot> queues = discovered(answers);
    ASSERT_EQ(queues.size(), 7);
    EXPECT_EQ(queues[0].name, text("W9400"));
    EXPECT_EQ(queues[0].summary, text("disabled since Sat Nov 21 06:40:15 2026 -\nOut of canvas; load roll"));
    EXPECT_EQ(queues[0].deviceURI, text("capture:/var/spool/capture"));
    EXPECT_EQ(queues[0].options.size(), 3);
    EXPECT_EQ(queues[0].jobs.size(), 2);
    EXPECT_EQ(queues[0].diagnostic, text(wellSentence));
    EXPECT_EQ(queues[1].jobs.size(), 1);
    EXPECT_EQ(queues[5].deviceURI, text("ipp://localhost:8631/ipp/print"));
    EXPECT_EQ(queues[6].jobs.size(), 0);
}

TEST(QueueDiscovery, TakesOneInstantForAllQueuesBeforeItAsksForOptions) {
    Tools tools(Answers{});
    double afterJobs = 0;
    double beforeOptions = 0;
    const auto run = [&](const InspectionCommand& command) {
        const double now = platform::Timestamp::now().secondsSince2001;
        const InspectionResult result = tools.run(command);
        if (command == InspectionCommand::pendingJobs()) {
            afterJobs = now;
        }
        if (command == InspectionCommand::driverOptions(text("A"))) {
            beforeOptions = now;
        }
        return result;
    };
    const QList<PrinterSnapshot> queues = QueueDiscovery(run, {}).snapshots();
    ASSERT_EQ(queues.size(), 2);
    EXPECT_EQ(queues[0].capturedAt, queues[1].capturedAt);
    EXPECT_GE(queues[0].capturedAt.secondsSince2001, afterJobs);
    EXPECT_LE(queues[0].capturedAt.secondsSince2001, beforeOptions);
}

// No queues

TEST_P(QueueDiscoveryWithoutQueues, TellsThatThereAreNoneFromThatTheyCannotBeRead) {
    Answers answers;
    answers.statuses = GetParam().statuses;
    if (GetParam().failure == nullptr) {
        EXPECT_EQ(failureOf(answers), text("(none)"));
        EXPECT_EQ(discovered(answers), QList<PrinterSnapshot>());
    } else {
        EXPECT_EQ(failureOf(answers), text(GetParam().failure));
    }
}

TEST_P(QueueDiscoveryWithoutQueues, AsksNothingMore) {
    Answers answers;
    answers.statuses = GetParam().statuses;
    Tools tools(answers);
    try {
        (void)discovered(tools);
    } catch (const CUPSInspectionError&) {
        EXPECT_NE(GetParam().failure, nullptr);
    }
    EXPECT_EQ(tools.asked(), QList<InspectionCommand>{InspectionCommand::printerStatuses()});
}

INSTANTIATE_TEST_SUITE_P(
    QueueDiscovery, QueueDiscoveryWithoutQueues,
    ::testing::Values(
        NoQueue{"SaidByTheTool", failed("lpstat: No destinations added.\n"), nullptr},
        NoQueue{"SaidInAnyCase", failed("LPSTAT: NO DESTINATIONS ADDED.", 7), nullptr},
        NoQueue{"SaidWithStatusZero", clean(text("x no destinations added y")), nullptr},
        NoQueue{"SaidWithoutAStatus", {.output = text("No destinations added"), .status = std::nullopt}, nullptr},
        NoQueue{"NothingWithStatusZero", clean(QString()), nullptr},
        NoQueue{"WhiteSpaceWithStatusZero", clean(text(" \t\r\n\u00A0\u2028")), nullptr},
        NoQueue{"UnreadableWithStatusZero", clean(text("something else\n")),
                "Cannot read local CUPS printers something else"},
        NoQueue{"BareNameWithStatusZero", clean(text("printer A\n")), "Cannot read local CUPS printers printer A"},
        NoQueue{"SchedulerDown", failed("lpstat: Scheduler is not running.\n"),
                "Cannot read local CUPS printers Exit status 1. lpstat: Scheduler is not running."},
        NoQueue{"NothingWithAnotherStatus", failed(""), "Cannot read local CUPS printers Exit status 1."},
        NoQueue{
            "NothingWithoutAStatus", {.output = QString(), .status = std::nullopt}, "Cannot read local CUPS printers"},
        NoQueue{"NotStarted", notStarted(), "Cannot read local CUPS printers No such file or directory"},
        NoQueue{"TimedOut", timedOut(""),
                "Cannot read local CUPS printers The command timed out and was stopped. Exit status 15."},
        NoQueue{"TimedOutThoughSaid", timedOut("lpstat: No destinations added.\n"),
                "Cannot read local CUPS printers The command timed out and was stopped. Exit status 15. lpstat: No "
                "destinations added."},
        NoQueue{"TimedOutWithStatusZero",
                {.output = QString(), .status = 0, .timedOut = true},
                "Cannot read local CUPS printers The command timed out and was stopped."},
        NoQueue{"TruncatedThoughSaid", truncated("lpstat: No destinations added.\n"),
                "Cannot read local CUPS printers Output exceeded the safe length limit. Results are incomplete. "
                "lpstat: No destinations added."},
        NoQueue{"TruncatedWithNothing", truncated(" \n"),
                "Cannot read local CUPS printers Output exceeded the safe length limit. Results are incomplete."}),
    test::RowName());

TEST(QueueDiscovery, FailsInChineseToo) {
    const test::InChinese chinese;
    Answers answers;
    answers.statuses = failed("lpstat: Scheduler is not running.\n");
    EXPECT_EQ(failureOf(answers), text("无法读取本机 CUPS 打印机。 退出状态为 1。 lpstat: Scheduler is not running."));
}

TEST(QueueDiscovery, KeepsQueuesThoughTheStatusToolSpeaksOfNone) {
    Answers answers;
    answers.statuses = clean(text("printer A is idle.\nlpstat: No destinations added.\n"));
    EXPECT_EQ(discovered(answers).size(), 1);
}

// Trouble with later questions

TEST_P(QueueDiscoveryTrouble, IsToldInTheDiagnostic) {
    Answers answers;
    GetParam().happen(answers);
    const QList<PrinterSnapshot> queues = discovered(answers);
    ASSERT_EQ(queues.size(), 2);
    EXPECT_EQ(queues[0].name, text("A"));
    EXPECT_EQ(queues[0].diagnostic.split(u'\n'), GetParam().diagnostic);
    EXPECT_EQ(queues[0].deviceURI, GetParam().deviceURI);
    EXPECT_EQ(queues[0].options.size(), GetParam().options);
    EXPECT_EQ(queues[0].jobs.size(), GetParam().jobs);
}

INSTANTIATE_TEST_SUITE_P(
    QueueDiscovery, QueueDiscoveryTrouble,
    ::testing::Values(
        Trouble{.name = "None", .happen = [](Answers&) {}, .diagnostic = lines({wellSentence})},
        Trouble{.name = "StatusesFailed",
                .happen = [](Answers& answers) { answers.statuses.status = 1; },
                .diagnostic = lines({"Queue status is incomplete Exit status 1. printer A is idle.",
                                     "printer A-B disabled -", "\tout of canvas"})},
        Trouble{.name = "StatusesTruncated",
                .happen = [](Answers& answers) { answers.statuses.truncated = true; },
                .diagnostic = lines({"Queue status is incomplete Output exceeded the safe length limit. Results are "
                                     "incomplete. printer A is idle.",
                                     "printer A-B disabled -", "\tout of canvas"})},
        Trouble{.name = "StatusesTimedOut",
                .happen =
                    [](Answers& answers) {
                        answers.statuses.timedOut = true;
                        answers.statuses.status = std::nullopt;
                    },
                .diagnostic = lines({"Queue status is incomplete The command timed out and was stopped. printer A is "
                                     "idle.",
                                     "printer A-B disabled -", "\tout of canvas"})},
        Trouble{
            .name = "DevicesFailed",
            .happen = [](Answers& answers) { answers.devices = failed("lpstat: trouble\n"); },
            .diagnostic = lines({"Cannot read the device address Exit status 1. lpstat: trouble", noAddressSentence}),
            .deviceURI = QString()},
        Trouble{.name = "DevicesNotStarted",
                .happen = [](Answers& answers) { answers.devices = notStarted(); },
                .diagnostic = lines({"Cannot read the device address No such file or directory", noAddressSentence}),
                .deviceURI = QString()},
        Trouble{.name = "DevicesFailedThoughNamed",
                .happen = [](Answers& answers) { answers.devices = failed("device for A: usb:x\n"); },
                .diagnostic = lines({"Cannot read the device address Exit status 1. device for A: usb:x"}),
                .deviceURI = text("usb:x")},
        Trouble{.name = "DevicesTruncatedThoughNamed",
                .happen = [](Answers& answers) { answers.devices = truncated("device for A: usb:x"); },
                .diagnostic = lines({"Cannot read the device address Output exceeded the safe length limit. Results "
                                     "are incomplete. device for A: usb:x"}),
                .deviceURI = text("usb:x")},
        Trouble{.name = "DeviceMissing",
                .happen = [](Answers& answers) { answers.devices = clean(text("device for A-B: usb:x\n")); },
                .diagnostic = lines({noAddressSentence}),
                .deviceURI = QString()},
        Trouble{.name = "DeviceEmpty",
                .happen = [](Answers& answers) { answers.devices = clean(text("device for A:\n")); },
                .diagnostic = lines({wellSentence}),
                .deviceURI = QString()},
        Trouble{.name = "JobsFailed",
                .happen = [](Answers& answers) { answers.jobs.status = 1; },
                .diagnostic = lines({"Cannot read the system job list Exit status 1. A-B-12 root 1024", "A-7 root 2048",
                                     "A-B-13 root 1"}),
                .jobs = 0},
        Trouble{.name = "JobsTimedOut",
                .happen = [](Answers& answers) { answers.jobs = timedOut("A-7 root 2048"); },
                .diagnostic = lines({"Cannot read the system job list The command timed out and was stopped. Exit "
                                     "status 15. A-7 root 2048"}),
                .jobs = 0},
        Trouble{.name = "JobsTruncated",
                .happen = [](Answers& answers) { answers.jobs = truncated("A-7 root 2048"); },
                .diagnostic = lines({"Cannot read the system job list Output exceeded the safe length limit. Results "
                                     "are incomplete. A-7 root 2048"}),
                .jobs = 0},
        Trouble{.name = "NoJobs",
                .happen = [](Answers& answers) { answers.jobs = clean(QString()); },
                .diagnostic = lines({wellSentence}),
                .jobs = 0},
        Trouble{.name = "OptionsFailed",
                .happen = [](Answers& answers) { answers.optionsOfA.status = 1; },
                .diagnostic = lines({"Cannot read driver options Exit status 1. PageSize/Media Size: *A4 Roll60"}),
                .options = 0},
        Trouble{.name = "OptionsTimedOut",
                .happen = [](Answers& answers) { answers.optionsOfA = timedOut(""); },
                .diagnostic = lines({"Cannot read driver options The command timed out and was stopped. Exit status "
                                     "15."}),
                .options = 0},
        Trouble{.name = "OptionsTruncated",
                .happen = [](Answers& answers) { answers.optionsOfA = truncated("PageSize: A4"); },
                .diagnostic = lines({"Cannot read driver options Output exceeded the safe length limit. Results are "
                                     "incomplete. PageSize: A4"}),
                .options = 0},
        Trouble{.name = "OptionsNotStarted",
                .happen = [](Answers& answers) { answers.optionsOfA = notStarted(); },
                .diagnostic = lines({"Cannot read driver options No such file or directory"}),
                .options = 0},
        Trouble{.name = "OptionsEmpty",
                .happen = [](Answers& answers) { answers.optionsOfA = clean(QString()); },
                .diagnostic = lines({noOptionsSentence}),
                .options = 0},
        Trouble{.name = "OptionsUnreadable",
                .happen = [](Answers& answers) { answers.optionsOfA = clean(toolText("lpoptions_WRAW.txt")); },
                .diagnostic = lines({noOptionsSentence}),
                .options = 0},
        Trouble{.name = "NoAddressAndNoOptions",
                .happen =
                    [](Answers& answers) {
                        answers.devices = clean(QString());
                        answers.optionsOfA = clean(QString());
                    },
                .diagnostic = lines({noAddressSentence, noOptionsSentence}),
                .deviceURI = QString(),
                .options = 0},
        Trouble{.name = "Everything",
                .happen =
                    [](Answers& answers) {
                        answers.statuses = failed("printer A one\nprinter A-B two");
                        answers.devices = failed("no devices", 2);
                        answers.jobs = failed("no jobs", 3);
                        answers.optionsOfA = failed("no options", 4);
                    },
                .diagnostic = lines({"Queue status is incomplete Exit status 1. printer A one", "printer A-B two",
                                     "Cannot read the device address Exit status 2. no devices", noAddressSentence,
                                     "Cannot read the system job list Exit status 3. no jobs",
                                     "Cannot read driver options Exit status 4. no options"}),
                .deviceURI = QString(),
                .options = 0,
                .jobs = 0}),
    test::RowName());

TEST(QueueDiscovery, LeavesOtherQueuesTheirOptionsIfOneHasNone) {
    Answers answers;
    answers.optionsOfA = failed("lpoptions: trouble\n");
    const QList<PrinterSnapshot> queues = discovered(answers);
    ASSERT_EQ(queues.size(), 2);
    EXPECT_EQ(queues[0].options, QList<DriverOption>());
    EXPECT_EQ(queues[1].options.size(), 1);
    EXPECT_EQ(queues[1].diagnostic, text(wellSentence));
}

TEST(QueueDiscovery, TellsEveryQueueOfTroubleThatConcernsAll) {
    Answers answers;
    answers.jobs = failed("lpstat: trouble\n");
    for (const PrinterSnapshot& queue : discovered(answers)) {
        SCOPED_TRACE(queue.name.toStdString());
        EXPECT_EQ(queue.diagnostic, text("Cannot read the system job list Exit status 1. lpstat: trouble"));
        EXPECT_EQ(queue.jobs, QList<SystemPrintJob>());
    }
}

TEST(QueueDiscovery, TellsOnlyTheQueueWithoutAnAddressOfIt) {
    Answers answers;
    answers.devices = clean(text("device for A: usb:x\n"));
    const QList<PrinterSnapshot> queues = discovered(answers);
    ASSERT_EQ(queues.size(), 2);
    EXPECT_EQ(queues[0].diagnostic, text(wellSentence));
    EXPECT_EQ(queues[1].diagnostic, text(noAddressSentence));
}

TEST(QueueDiscovery, DiagnosesInChineseToo) {
    const test::InChinese chinese;
    Answers answers;
    EXPECT_EQ(discovered(answers).at(0).diagnostic,
              text("已只读检查本机 CUPS。请在打印机面板上确认设备连接、硬件错误和裁切行为。"));
    answers.optionsOfA = clean(QString());
    EXPECT_EQ(discovered(answers).at(0).diagnostic, text("驱动没有返回可读取的驱动选项，不能据此认定介质或裁切能力。"));
    answers = {.statuses = failed("printer A one"),
               .devices = failed("no devices", 2),
               .jobs = failed("no jobs", 3),
               .optionsOfA = failed("no options", 4)};
    EXPECT_EQ(discovered(answers).at(0).diagnostic, text("队列状态不完整。 退出状态为 1。 printer A one\n"
                                                         "无法读取设备地址。 退出状态为 2。 no devices\n"
                                                         "此队列没有返回设备地址。\n"
                                                         "无法读取系统作业列表。 退出状态为 3。 no jobs\n"
                                                         "无法读取驱动选项。 退出状态为 4。 no options"));
}

// Stopping

TEST_P(QueueDiscoveryStop, EndsThePassBehindTheCommandThatRan) {
    Tools tools(Answers{});
    std::stop_source source;
    const auto run = [&](const InspectionCommand& command) {
        const InspectionResult result = tools.run(command);
        if (tools.asked().size() == GetParam()) {
            source.request_stop();
        }
        return result;
    };
    EXPECT_THROW((void)QueueDiscovery(run, source.get_token()).snapshots(), platform::Interrupted);
    EXPECT_EQ(tools.asked().size(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(QueueDiscovery, QueueDiscoveryStop, ::testing::Range<qsizetype>(1, 6));

TEST(QueueDiscovery, IsStoppedRatherThanFailedByACommandThatWasStopped) {
    for (const InspectionResult& result : {timedOut(""), failed("No destinations added."), clean(QString())}) {
        SCOPED_TRACE(result.output.toStdString());
        std::stop_source source;
        const auto run = [&](const InspectionCommand&) {
            source.request_stop();
            return result;
        };
        EXPECT_THROW((void)QueueDiscovery(run, source.get_token()).snapshots(), platform::Interrupted);
    }
}

TEST(QueueDiscovery, GivesNothingIfItIsStoppedBeforeItBegins) {
    Tools tools(Answers{});
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW((void)discovered(tools, source.get_token()), platform::Interrupted);
    EXPECT_LE(tools.asked().size(), 1);
}

TEST(QueueDiscovery, EndsWellIfNobodyStopsIt) {
    Tools tools(Answers{});
    const std::stop_source source;
    EXPECT_EQ(discovered(tools, source.get_token()).size(), 2);
}

} // namespace orvex
