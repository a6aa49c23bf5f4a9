#include "ProgressBar.h"

#include <sys/ioctl.h>

#include <algorithm>

namespace orvex {

namespace {

constexpr std::chrono::milliseconds redrawInterval{100};
constexpr int columnsIfUnknown = 80;
constexpr int shortestBar = 5;
constexpr int longestBar = 50;
constexpr char16_t firstWideCharacter = 0x1100; // Unicode, annex 11: of the characters in use here, all from there on

int columnsOfTerminal(int terminal) {
    struct winsize size {};

    const bool isKnown = ::ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : columnsIfUnknown;
}

void write(int terminal, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    // A terminal that is gone is no reason to end the work.
    [[maybe_unused]] const auto written = ::write(terminal, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace

int columnsOf(const QString& text) {
    return static_cast<int>(text.size() + std::count_if(text.begin(), text.end(), [](QChar character) {
                                return character.unicode() >= firstWideCharacter;
                            }));
}

QString progressLine(const QString& label, double fraction, int columns) {
    const double part = std::clamp(fraction, 0.0, 1.0);
    const int room = columns - 1;
    const QString percent = QStringLiteral("%1%").arg(static_cast<int>(part * 100), 3);
    const int labelled = columnsOf(label) + 1 + columnsOf(percent);
    const int barLength = std::min(room - labelled - columnsOf(QStringLiteral("[] ")), longestBar);
    if (barLength >= shortestBar) {
        const int filled = static_cast<int>(part * barLength);
        return label + QStringLiteral(" [") + QString(filled, u'#') + QString(barLength - filled, u'-') +
               QStringLiteral("] ") + percent;
    }
    if (labelled <= room) {
        return label + u' ' + percent;
    }
    return columnsOf(percent) <= room ? percent : QString();
}

ProgressBar::ProgressBar(int terminal, Clock clock)
    : terminal_(terminal),
      clock_(std::move(clock)),
      isShown_(::isatty(terminal) == 1),
      lastDrawn_(clock_()) {}

ProgressBar::~ProgressBar() {
    erase();
}

void ProgressBar::show(const QString& label, double fraction) {
    const auto now = clock_();
    if (!isShown_ || now - lastDrawn_ < redrawInterval) {
        return;
    }
    lastDrawn_ = now;
    const QString line = progressLine(label, fraction, columnsOfTerminal(terminal_));
    const int columns = columnsOf(line);
    // What a longer line before has left is covered by blanks.
    write(terminal_, u'\r' + line + QString(std::max(drawnColumns_ - columns, 0), u' '));
    drawnColumns_ = columns;
}

void ProgressBar::erase() {
    if (drawnColumns_ > 0) {
        write(terminal_, u'\r' + QString(std::min(drawnColumns_, columnsOfTerminal(terminal_) - 1), u' ') + u'\r');
    }
}

} // namespace orvex
