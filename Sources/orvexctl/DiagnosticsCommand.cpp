#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Interrupted.h"
#include "NoDesktop.h"
#include "OrvexModel.h"

#include <QEventLoop>

namespace orvex {

namespace {

/// One look at the printers, to its end or until a stop is requested.
void lookAtPrinters(OrvexModel& session, const std::stop_token& stop) {
    QEventLoop loop;
    const auto quit = [&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); };
    const std::stop_callback onStop(stop, quit);
    QObject::connect(&session, &OrvexModel::changed, &loop, [&] {
        if (!session.refreshing()) {
            loop.quit();
        }
    });
    const QCoro::Task<> pass = session.refresh();
    if (session.refreshing()) {
        loop.exec();
    }
    platform::throwIfStopped(stop);
}

void runDiagnostics(const CommandContext& context) {
    NoDesktop desktop;
    OrvexModel session(desktop, SessionAccess::readOnly);
    lookAtPrinters(session, context.stop);
    if (const auto& error = session.errorMessage()) {
        printError(*error);
    }
    writeOutput(QStringLiteral("-"), session.diagnosticText().toUtf8() + '\n');
}

} // namespace

void addDiagnosticsCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "diagnostics", description("输出本机的诊断信息，其中包含设备 URI 和路径",
                                   "print the diagnostics of this machine; they hold device URIs and paths"));
    command->callback([&context] { runDiagnostics(context); });
}

} // namespace orvex
