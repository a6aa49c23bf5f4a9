#include "LargeBlocks.h"
#include "OrvexLanguage.h"
#include "Shell/Arguments.h"
#include "Shell/EndingSignals.h"
#include "Shell/OrvexApp.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>

namespace {

QStringList textsOf(int argc, char** argv) {
    QStringList texts;
    for (int index = 0; index < argc; ++index) {
        texts.append(QFile::decodeName(argv[index]));
    }
    return texts;
}

int say(const orvex::Arguments::Answer& answer) {
    std::FILE* stream = answer.exitStatus == 0 ? stdout : stderr;
    std::fprintf(stream, "%s\n", qUtf8Printable(answer.text));
    return answer.exitStatus;
}

/// The toolkit ends the whole process with a crash where there is none.
bool hasDisplay() {
    return std::ranges::any_of(std::array{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"},
                               [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

} // namespace

int main(int argc, char** argv) {
    const orvex::Arguments arguments = orvex::Arguments::parse(textsOf(argc, argv));
    if (arguments.answer) {
        return say(*arguments.answer);
    }
    if (!hasDisplay()) {
        return say({.exitStatus = 1, .text = orvex::spt("没有显示器。", "There is no display.")});
    }
    orvex::platform::returnLargeBlocks();
    orvex::EndingSignals::block();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is a failed write, like any other
    std::signal(SIGXFSZ, SIG_IGN); // and so is a file that may grow no further
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it would take the tools' exit statuses away

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orvex"));
    QApplication::setDesktopFileName(QStringLiteral("orvex"));
    return orvex::OrvexApp(application, arguments).run();
}
