#include "CommandLine.h"
#include "Interruption.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>

namespace {

/// A standard stream that the caller has closed would be given to the next file that is opened, and what is said on it
/// would end in that file.
void openClosedStreams() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDONLY); // what is written there is refused, as it would be without
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    ::close(descriptor);
}

} // namespace

int main(int argc, char** argv) {
    openClosedStreams();
    orvex::Interruption::blockSignals();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is a failed write, like any other
    std::signal(SIGXFSZ, SIG_IGN); // and so is a file that may grow no further
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it would take the tools' exit statuses away

    const QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // numbers on the command line have a point in every locale
    return orvex::runCommandLine(argc, argv);
}
