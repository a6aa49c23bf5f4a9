#include "PrivateScheduler.h"

#include "Tool.h"

#include <QDir>
#include <QRegularExpression>

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <stdexcept>

namespace orvex::test {

namespace {

constexpr const char* socketPath = "/run/cups/cups.sock";
const QString printedFolder = QStringLiteral("/run/cups/printed");
const QString backendFolder = QStringLiteral("/usr/lib/cups/backend");

/// The socket comes last: once it takes connections, the port does.
constexpr const char* schedulerSettings = R"(ServerName localhost
Listen localhost:631
Listen /run/cups/cups.sock
LogLevel warn
Browsing No
BrowseLocalProtocols none
DefaultAuthType None
WebInterface No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateAccess all
  JobPrivateValues none
  SubscriptionPrivateAccess all
  SubscriptionPrivateValues none
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
)";

/// The filters may not be installed; a queue behind them can then have jobs all the same.
constexpr const char* conversions = "application/pdf application/vnd.cups-pdf 100 -\n";

/// Writes a job's document and its ticket, the ticket last and whole.
constexpr const char* printingBackend = R"(#!/bin/sh
[ $# -eq 0 ] && { echo 'direct printing "Unknown" "Prints into a folder"'; exit 0; }
job=${DEVICE_URI#printing:}/$PRINTER-$1
if [ -n "$6" ]; then cat -- "$6"; else cat; fi >"$job.document" || exit 1
printf 'job=%s\ntitle=%s\ncopies=%s\noptions=%s\n' "$1" "$3" "$4" "$5" >"$job.part" || exit 1
mv "$job.part" "$job.ticket"
)";

/// Goes on until a file tells it to finish, or the scheduler is gone.
constexpr const char* waitingBackend = R"(#!/bin/sh
[ $# -eq 0 ] && { echo 'direct waiting "Unknown" "Prints until it is told to finish"'; exit 0; }
finish=${DEVICE_URI#waiting:}/$PRINTER.finish
echo 'STATE: +media-low-warning' >&2
echo 'INFO: Printing slowly' >&2
until [ -e "$finish" ]; do
    kill -0 "$PPID" || exit 1
    sleep 0.05
done
rm "$finish"
)";

void writeFile(const QString& path, const QByteArray& bytes, mode_t mode) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        ::chmod(QFile::encodeName(path).constData(), mode) != 0) {
        throw std::runtime_error(path.toStdString() + " cannot be written");
    }
}

/// The scheduler must not outlive the thread that starts it. For its process alone, before the program is there.
void endWithTest() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

QByteArray fixture(const QString& name) {
    return TemporaryFolder::read(QStringLiteral(ORVEX_FIXTURES "/Cups/") + name);
}

/// The description of a queue's printer.
QByteArray printerDescription(PrivateScheduler::Kind kind) {
    switch (kind) {
    case PrivateScheduler::Kind::widePdfFilter:
        return fixture(QStringLiteral("widef.ppd"));
    case PrivateScheduler::Kind::missingFilter:
        return fixture(QStringLiteral("wide.ppd"))
            .replace("application/pdf application/pdf 0 -",
                     "application/pdf application/pdf 0 filter-that-is-not-installed");
    default:
        return fixture(QStringLiteral("wide.ppd"));
    }
}

} // namespace

PrivateScheduler::PrivateScheduler() {
    writeFile(QStringLiteral("/etc/cups/cupsd.conf"), schedulerSettings, 0644);
    writeFile(QStringLiteral("/etc/cups/cups-files.conf"), "SystemGroup root\n", 0644);
    writeFile(QStringLiteral("/etc/cups/orvex.convs"), conversions, 0644);
    // Backends that nobody else may read are run with the rights of the superuser, who alone can write here.
    writeFile(backendFolder + QStringLiteral("/printing"), printingBackend, 0700);
    writeFile(backendFolder + QStringLiteral("/waiting"), waitingBackend, 0700);
    QDir().mkpath(printedFolder);
    process_.setChildProcessModifier(endWithTest);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardInputFile(QProcess::nullDevice());
    start();
}

PrivateScheduler::~PrivateScheduler() {
    try {
        stop();
    } catch (const std::exception& error) {
        qCritical("%s", error.what());
    }
}

void PrivateScheduler::start() {
    process_.start(QStringLiteral("/usr/sbin/cupsd"), {QStringLiteral("-f")});
    waitUntil("the scheduler answers", [this] {
        if (process_.waitForFinished(0) || process_.error() == QProcess::FailedToStart) {
            throw std::runtime_error("the scheduler does not run: " + complaints().toStdString());
        }
        return answers();
    });
}

void PrivateScheduler::stop() {
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.terminate();
    constexpr int patienceMilliseconds = 60'000;
    if (!process_.waitForFinished(patienceMilliseconds)) {
        process_.kill();
        process_.waitForFinished(patienceMilliseconds);
        throw std::runtime_error("the scheduler had to be killed: " + complaints().toStdString());
    }
}

void PrivateScheduler::addQueue(const QString& queue, Kind kind, Printer printer) {
    const QString device =
        (printer == Printer::prints ? QStringLiteral("printing:") : QStringLiteral("waiting:")) + printedFolder;
    const TemporaryFolder folder;
    QStringList model{QStringLiteral("-m"), QStringLiteral("raw")};
    if (kind != Kind::raw) {
        model = {QStringLiteral("-P"), folder.write(QStringLiteral("printer.ppd"), printerDescription(kind))};
    }
    outputOfTool(QStringLiteral("/usr/sbin/lpadmin"),
                 QStringList{QStringLiteral("-p"), queue, QStringLiteral("-E"), QStringLiteral("-v"), device} + model);
}

void PrivateScheduler::deleteQueue(const QString& queue) {
    outputOfTool(QStringLiteral("/usr/sbin/lpadmin"), {QStringLiteral("-x"), queue});
}

void PrivateScheduler::pause(const QString& queue, const QString& reason) {
    outputOfTool(QStringLiteral("/usr/sbin/cupsdisable"), {QStringLiteral("-r"), reason, queue});
}

void PrivateScheduler::enable(const QString& queue) {
    outputOfTool(QStringLiteral("/usr/sbin/cupsenable"), {queue});
}

void PrivateScheduler::reject(const QString& queue, const QString& reason) {
    outputOfTool(QStringLiteral("/usr/sbin/cupsreject"), {QStringLiteral("-r"), reason, queue});
}

void PrivateScheduler::accept(const QString& queue) {
    outputOfTool(QStringLiteral("/usr/sbin/cupsaccept"), {queue});
}

int PrivateScheduler::submit(const QString& queue, const QByteArray& document, const QStringList& options) {
    const TemporaryFolder folder;
    const QStringList arguments = QStringList{QStringLiteral("-d"), queue} + options +
                                  QStringList{folder.write(QStringLiteral("document.pdf"), document)};
    const QString answer = QString::fromUtf8(outputOfTool(QStringLiteral("/usr/bin/lp"), arguments));
    static const QRegularExpression form(QStringLiteral("-(\\d+) \\(1 file"));
    const QRegularExpressionMatch match = form.match(answer);
    if (!match.hasMatch()) {
        throw std::runtime_error("lp names no job: " + answer.toStdString());
    }
    return match.captured(1).toInt();
}

int PrivateScheduler::submitHeld(const QString& queue) {
    return submit(queue, smallPdf(), {QStringLiteral("-H"), QStringLiteral("hold")});
}

void PrivateScheduler::waitUntilProcessing(const QString& queue) {
    waitUntil("the queue prints a job", [&queue] {
        const QByteArray state = outputOfTool(QStringLiteral("/usr/bin/lpstat"), {QStringLiteral("-p"), queue});
        return state.contains(" now printing ") && state.contains("Printing slowly");
    });
}

void PrivateScheduler::finishJob(const QString& queue) {
    const QString finish = printedFolder + u'/' + queue + QStringLiteral(".finish");
    writeFile(finish, {}, 0600);
    waitUntil("the printer finishes its job", [&finish] { return !QFile::exists(finish); });
}

PrintedJob PrivateScheduler::printed(const QString& queue, int job) {
    const QString stem = printedFolder + u'/' + queue + u'-' + QString::number(job);
    const QString ticket = stem + QStringLiteral(".ticket");
    waitUntil("the job is printed", [&ticket] { return QFile::exists(ticket); });
    return {.document = TemporaryFolder::read(stem + QStringLiteral(".document")),
            .ticket = TemporaryFolder::read(ticket)};
}

bool PrivateScheduler::answers() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isConnected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(socket);
    return isConnected;
}

QByteArray PrivateScheduler::complaints() {
    QByteArray text = process_.errorString().toUtf8() + '\n' + process_.readAll();
    QFile log(QStringLiteral("/var/log/cups/error_log"));
    if (log.open(QIODevice::ReadOnly)) {
        text += log.readAll();
    }
    return text;
}

} // namespace orvex::test
