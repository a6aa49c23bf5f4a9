#include "Process/ChildProcess.h"

#include "TemporaryFolder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace orvex::platform {

namespace {

using namespace std::chrono_literals;

const QByteArray tool = ORVEX_BAD_TOOL;

ChildCommand command(const QByteArrayList& arguments) {
    return {.executable = tool, .arguments = arguments, .environment = {"LC_ALL=C"}};
}

ChildRules patientRules() {
    return {.pipes = ChildPipes::shared,
            .overflow = ChildOverflow::discarded,
            .outputLimitBytes = 4096,
            .readsPerTurn = 32,
            .timeout = 120s,
            .pollStep = 2ms,
            .terminationGrace = 60s,
            .killGrace = 60s,
            .graceStep = 2ms};
}

/// A child that never ends by itself is given up, but not before it has begun to misbehave on a busy machine.
ChildRules impatientRules() {
    ChildRules rules = patientRules();
    rules.timeout = 2s;
    return rules;
}

ChildRules separateRules(qsizetype limitBytes) {
    ChildRules rules = patientRules();
    rules.pipes = ChildPipes::separate;
    rules.overflow = ChildOverflow::stopsChild;
    rules.outputLimitBytes = limitBytes;
    return rules;
}

QStringList openDescriptors() {
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

/// Whether this process has a child, running or dead, that nobody has waited for.
bool hasChildren() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Whether a process runs that was started as the bad tool with this argument.
bool isRunning(const QByteArray& argument) {
    const QByteArray commandLine = tool + '\0' + argument + '\0';
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    return std::ranges::any_of(processes, [&](const QString& process) {
        QFile file(QStringLiteral("/proc/%1/cmdline").arg(process));
        return file.open(QIODevice::ReadOnly) && file.readAll() == commandLine;
    });
}

void awaitEndOf(const QByteArray& argument) {
    for (int look = 0; look < 6000 && isRunning(argument); ++look) {
        QThread::msleep(10);
    }
    EXPECT_FALSE(isRunning(argument));
}

} // namespace

TEST(ChildProcess, GivesTheOutputAndTheStatus) {
    const ChildResult result = runChild(command({"echo", "a b", "", "\"$HOME\"", "-p"}), patientRules());
    EXPECT_EQ(result.output, "[a b][][\"$HOME\"][-p]");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.end, ChildEnd::ended);
    EXPECT_FALSE(result.isOutputTooLarge);
}

TEST(ChildProcess, GivesTheStatusOfAFailure) {
    EXPECT_EQ(runChild(command({"exit", "3"}), patientRules()).status, 3);
}

TEST(ChildProcess, GivesTheNumberOfTheSignalThatEndedIt) {
    const ChildResult result = runChild(command({"signal", "15"}), patientRules());
    EXPECT_EQ(result.status, SIGTERM);
    EXPECT_EQ(result.end, ChildEnd::ended);
}

TEST(ChildProcess, KeepsBothStreamsInTheOrderOfTheirArrivalInASharedPipe) {
    EXPECT_EQ(runChild(command({"streams"}), patientRules()).output, "one two three four");
}

TEST(ChildProcess, KeepsStandardOutputAloneWithSeparatePipes) {
    EXPECT_EQ(runChild(command({"streams"}), separateRules(4096)).output, "one three ");
}

TEST(ChildProcess, HasNothingOfThisProcessButItsPipes) {
    // A file that whoever wrote it forgot to close on exec, and signals that this process does not want.
    const int forgotten = ::open("/dev/null", O_RDONLY);
    ASSERT_GT(forgotten, 2);
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &term, nullptr);

    const QByteArray shown = runChild(command({"surroundings"}), patientRules()).output;

    pthread_sigmask(SIG_UNBLOCK, &term, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    ::close(forgotten);
    EXPECT_EQ(shown, "environment LC_ALL=C\n"
                     "descriptor 0 /dev/\n"
                     "descriptor 1 pipe:\n"
                     "descriptor 2 pipe:\n"
                     "leads its session\n");
}

TEST(ChildProcess, KeepsTheFirstBytesOfAFloodAndLetsItEnd) {
    const ChildResult result = runChild(command({"flood", "10000000"}), patientRules());
    EXPECT_EQ(result.output, QByteArray(4096, 'x'));
    EXPECT_TRUE(result.isOutputTooLarge);
    EXPECT_EQ(result.end, ChildEnd::ended);
    EXPECT_EQ(result.status, 0);
}

TEST(ChildProcess, TakesAsMuchAsTheLimitAllows) {
    const ChildResult result = runChild(command({"flood", "4096"}), patientRules());
    EXPECT_EQ(result.output.size(), 4096);
    EXPECT_FALSE(result.isOutputTooLarge);
}

TEST(ChildProcess, TellsOfOneByteTooMuch) {
    const ChildResult result = runChild(command({"flood", "4097"}), patientRules());
    EXPECT_EQ(result.output.size(), 4096);
    EXPECT_TRUE(result.isOutputTooLarge);
}

TEST(ChildProcess, StopsAFloodThatIsNotToBeEndured) {
    const ChildResult result = runChild(command({"flood", "100000000000"}), separateRules(1048576));
    EXPECT_TRUE(result.isOutputTooLarge);
    EXPECT_EQ(result.end, ChildEnd::outputTooLarge);
    EXPECT_EQ(result.status, SIGTERM);
    EXPECT_LE(result.output.size(), 1048576);
}

TEST(ChildProcess, CountsAFloodOnStandardErrorToo) {
    const ChildResult result = runChild(command({"flood-errors", "100000000000"}), separateRules(1048576));
    EXPECT_TRUE(result.isOutputTooLarge);
    EXPECT_EQ(result.end, ChildEnd::outputTooLarge);
    EXPECT_EQ(result.output, "");
}

TEST(ChildProcess, TakesExactlyTheLimitFromSeparatePipes) {
    const ChildResult result = runChild(command({"flood", "1048576"}), separateRules(1048576));
    EXPECT_EQ(result.output.size(), 1048576);
    EXPECT_FALSE(result.isOutputTooLarge);
    EXPECT_EQ(result.status, 0);
}

TEST(ChildProcess, LeavesBytesAsTheyAre) {
    EXPECT_EQ(runChild(command({"invalid-utf8"}), patientRules()).output, "a\xFF\xFE z\xC3");
}

TEST(ChildProcess, IsAskedToStopAtTheDeadline) {
    const ChildResult result = runChild(command({"say-bye"}), impatientRules());
    EXPECT_EQ(result.output, "waiting bye");
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.end, ChildEnd::timedOut);
}

TEST(ChildProcess, IsKilledIfItDoesNotListen) {
    ChildRules rules = impatientRules();
    rules.terminationGrace = 350ms;
    QElapsedTimer timer;
    timer.start();
    const ChildResult result = runChild(command({"ignore-term"}), rules);
    EXPECT_GE(timer.elapsed(), 2350);
    EXPECT_EQ(result.output, "deaf");
    EXPECT_EQ(result.status, SIGKILL);
    EXPECT_EQ(result.end, ChildEnd::timedOut);
}

TEST(ChildProcess, IsKilledInTheMiddleOfAnEndlessFlood) {
    ChildRules rules = impatientRules();
    rules.terminationGrace = 50ms;
    const ChildResult result = runChild(command({"flood-for-ever"}), rules);
    EXPECT_EQ(result.output.size(), 4096);
    EXPECT_TRUE(result.isOutputTooLarge);
    EXPECT_EQ(result.status, SIGKILL);
    EXPECT_EQ(result.end, ChildEnd::timedOut);
}

TEST(ChildProcess, IsAwaitedThoughItClosesItsStreams) {
    const ChildResult result = runChild(command({"close-and-linger"}), impatientRules());
    EXPECT_EQ(result.end, ChildEnd::timedOut);
    EXPECT_EQ(result.status, SIGTERM);
}

TEST(ChildProcess, IsEndedWithWhatItHasStarted) {
    ChildRules rules = impatientRules();
    rules.terminationGrace = 50ms;
    EXPECT_EQ(runChild(command({"family"}), rules).status, SIGKILL);
    awaitEndOf("family");
}

TEST(ChildProcess, TakesWhatItHasStartedWithItThoughItEndsOnRequest) {
    const ChildResult result = runChild(command({"deaf-family"}), impatientRules());
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.end, ChildEnd::timedOut);
    awaitEndOf("deaf-family");
}

TEST(ChildProcess, IsNotAwaitedBeyondItsOwnEnd) {
    ChildRules rules = patientRules();
    const ChildResult result = runChild(command({"grandchild"}), rules);
    EXPECT_EQ(result.output, "left behind");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.end, ChildEnd::ended);
}

TEST(ChildProcess, IsStoppedOnRequest) {
    std::stop_source source;
    std::jthread requester([&source] {
        QThread::msleep(100);
        source.request_stop();
    });
    const ChildResult result = runChild(command({"say-bye"}), patientRules(), source.get_token());
    EXPECT_EQ(result.end, ChildEnd::cancelled);
    EXPECT_EQ(result.status, 7);
}

TEST(ChildProcess, IsStoppedByARequestOfEarlier) {
    std::stop_source source;
    source.request_stop();
    const ChildResult result = runChild(command({"ignore-term"}), impatientRules(), source.get_token());
    EXPECT_EQ(result.end, ChildEnd::cancelled);
    EXPECT_TRUE(result.status == SIGTERM || result.status == SIGKILL);
}

TEST(ChildProcess, CostsNothingWhileItIsAwaited) {
    const auto spentMilliseconds = [] {
        struct rusage usage {};

        ::getrusage(RUSAGE_SELF, &usage);
        const timeval& user = usage.ru_utime;
        const timeval& system = usage.ru_stime;
        return (user.tv_sec + system.tv_sec) * 1000 + (user.tv_usec + system.tv_usec) / 1000;
    };
    ChildRules rules = patientRules();
    rules.pollStep = 20ms;
    const auto before = spentMilliseconds();
    const ChildResult result = runChild(command({"wait", "3000"}), rules);
    const auto spent = spentMilliseconds() - before;
    EXPECT_EQ(result.output, "done");
    EXPECT_LT(spent, 300) << "a wait that is busy would take 3000 ms";
}

TEST(ChildProcess, LeavesNoDescriptorsAndNoZombies) {
    const QStringList before = openDescriptors();
    for (int run = 0; run < 100; ++run) {
        ASSERT_EQ(runChild(command({"exit", "0"}), run % 2 == 0 ? patientRules() : separateRules(4096)).status, 0);
    }
    ChildRules rules = impatientRules();
    rules.timeout = 50ms;
    rules.terminationGrace = 50ms;
    for (int run = 0; run < 4; ++run) {
        ASSERT_EQ(runChild(command({"ignore-term"}), rules).end, ChildEnd::timedOut);
    }
    EXPECT_THROW(static_cast<void>(runChild({.executable = "/nowhere", .arguments = {}, .environment = {}}, rules)),
                 ChildStartError);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, IsReapedEvenIfItIsGivenUp) {
    ChildRules rules = impatientRules();
    rules.timeout = 50ms;
    rules.terminationGrace = 0ms;
    rules.killGrace = 0ms; // nobody waits for the effect of SIGKILL
    for (int run = 0; run < 20; ++run) {
        const ChildResult result = runChild(command({"ignore-term"}), rules);
        EXPECT_EQ(result.end, ChildEnd::timedOut);
    }
    for (int look = 0; look < 6000 && hasChildren(); ++look) {
        QThread::msleep(10);
    }
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, DoesNotMindACallerWhoIgnoresItsChildren) {
    std::signal(SIGCHLD, SIG_IGN);
    const ChildResult result = runChild(command({"exit", "0"}), patientRules());
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(result.status, std::nullopt); // the system has thrown it away
    EXPECT_EQ(result.end, ChildEnd::ended);
}

struct StartCase {
    const char* name;
    QByteArray executable;
    QByteArray argument;
    const char* message;
};

void PrintTo(const StartCase& row, std::ostream* out) {
    *out << row.name;
}

class ChildStart : public ::testing::TestWithParam<StartCase> {};

TEST_P(ChildStart, IsRefused) {
    const StartCase& row = GetParam();
    try {
        static_cast<void>(
            runChild({.executable = row.executable, .arguments = {row.argument}, .environment = {}}, patientRules()));
        FAIL() << "it was started";
    } catch (const ChildStartError& error) {
        EXPECT_EQ(error.stage(), ChildStartError::Stage::launch);
        EXPECT_EQ(error.message().toStdString(), row.message);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ChildProcess, ChildStart,
    ::testing::Values(StartCase{"Missing", "/nowhere/tool", "", "/nowhere/tool: No such file or directory"},
                      StartCase{"NoProgram", "/etc/passwd", "", "/etc/passwd: Permission denied"},
                      StartCase{"Folder", "/usr", "", "/usr: Permission denied"},
                      StartCase{"SearchedFor", "true", "", "true: No such file or directory"},
                      StartCase{"ArgumentCutByNul", "/bin/true", QByteArray("a\0b", 3), "/bin/true: Invalid argument"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ChildProcess, TellsThatItHasNoPipes) {
    // The sanitizers look at the first error of a kind through a pipe of their own, which there must still be.
    EXPECT_THROW(
        static_cast<void>(runChild({.executable = "/nowhere", .arguments = {}, .environment = {}}, patientRules())),
        ChildStartError);

    struct rlimit before {};

    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const int lowestFree = ::dup(STDIN_FILENO);
    ::close(lowestFree);

    // One more file can be opened, and a pipe has two ends.
    const struct rlimit one { .rlim_cur = static_cast<rlim_t>(lowestFree) + 1, .rlim_max = before.rlim_max };

    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &one), 0);
    std::optional<ChildStartError::Stage> stage;
    try {
        static_cast<void>(runChild(command({"exit", "0"}), patientRules()));
    } catch (const ChildStartError& error) {
        stage = error.stage();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(stage, ChildStartError::Stage::pipes);
}

} // namespace orvex::platform
