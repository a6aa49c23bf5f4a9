#include "Program.h"

#include "Eventually.h"

#include <sys/prctl.h>

#include <stdexcept>

namespace orvex::test {

Program::Program(const QString& name, const QStringList& arguments, const QProcessEnvironment& environment) {
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start(name, arguments);
    if (!process_.waitForStarted()) {
        throw std::runtime_error(name.toStdString() + ": " + process_.errorString().toStdString());
    }
}

Program::~Program() {
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
}

bool Program::isRunning() {
    QCoreApplication::processEvents();
    return process_.state() != QProcess::NotRunning;
}

void Program::signal(int number) {
    if (process_.state() != QProcess::Running || ::kill(static_cast<pid_t>(id()), number) != 0) {
        throw std::runtime_error("the program has ended already, with " + output().toStdString());
    }
}

int Program::exitStatus() {
    eventually("a program ends", [this] { return !isRunning(); });
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QByteArray Program::output() {
    output_ += process_.readAll();
    return output_;
}

QString Program::firstLine() {
    eventually("a program says something", [this] { return output().contains('\n'); });
    return QString::fromUtf8(output_.left(output_.indexOf('\n')));
}

QByteArray outputOf(const QString& name, const QStringList& arguments, const QProcessEnvironment& environment) {
    Program program(name, arguments, environment);
    const int status = program.exitStatus();
    QByteArray output = program.output();
    if (status != 0) {
        throw std::runtime_error((QStringList{name} + arguments).join(u' ').toStdString() + " ended with " +
                                 std::to_string(status) + ": " + output.toStdString());
    }
    return output;
}

} // namespace orvex::test
