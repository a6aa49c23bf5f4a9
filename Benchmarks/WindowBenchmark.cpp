// window-benchmark FOLDER: measures the window over a canvas with five hundred artworks and prints a table. Makes its
// pictures in FOLDER, about 600 MB, unless they are there, and saves its canvas there.

#include "Board/RollBoardView.h"
#include "Figures.h"
#include "LargeBlocks.h"
#include "NoDesktop.h"
#include "OrvexModel.h"
#include "Shell/DesktopServices.h"
#include "Shell/MainWindow.h"
#include "Theme/OrvexTheme.h"
#include "WindowWorkspace.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>

#include <cmath>
#include <numbers>

using namespace orvex;
using namespace orvex::benchmarks;

namespace {

constexpr int artworkCount = 500;
constexpr double frame = 16.0; // milliseconds of a screen of 60 pictures a second
constexpr double longestGap = 100.0;

/// Counts what a widget paints.
class Paints : public QObject {
public:
    explicit Paints(QWidget& widget) { widget.installEventFilter(this); }

    [[nodiscard]] int count() const { return count_; }

private:
    bool eventFilter(QObject*, QEvent* event) override {
        count_ += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count_ = 0;
};

/// The longest time for which the event loop did not come round.
class Gaps : public QObject {
public:
    Gaps() {
        connect(&timer_, &QTimer::timeout, this, &Gaps::take);
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(1);
        since_.start();
    }

    [[nodiscard]] double longest() {
        take();
        return longest_;
    }

private:
    void take() {
        longest_ = std::max(longest_, static_cast<double>(since_.nsecsElapsed()) / 1e6);
        since_.start();
    }

    QTimer timer_;
    QElapsedTimer since_;
    double longest_ = 0.0;
};

/// The window over a session, and what a user does there.
class WindowBenchmark {
public:
    WindowBenchmark()
        : session_(services_),
          window_(session_, desktop_),
          board_(*window_.findChild<RollBoardView*>()),
          pictures_(*window_.findChild<BoardPictures*>()),
          paints_(*board_.viewport()) {}

    int run(const QList<QUrl>& largeFiles) {
        window_.show();
        settle();
        restore();
        drag("drag of an artwork", false);
        drag("scaling of an artwork by its handle", true);
        scroll();
        zoom();
        narrow();
        figures_.add("peak of resident memory so far", "memory", memoryMiB("VmHWM:"), 600, "MiB");
        import(largeFiles);
        stage();
        Figures::note("peak of resident memory", "memory", memoryMiB("VmHWM:"), "MiB");
        return figures_.isMissed() ? 1 : 0;
    }

private:
    /// Turns the event loop until the condition holds.
    static void waitFor(const std::function<bool()>& condition) {
        while (!condition()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    /// Until the board has been painted again.
    void paint() {
        for (const int before = paints_.count(); paints_.count() == before;) {
            QCoreApplication::processEvents();
        }
    }

    /// Until everything on the board is drawn as it stays.
    void settle() {
        for (int before = -1; pictures_.isMaking() || paints_.count() != before;) {
            before = paints_.count();
            QCoreApplication::processEvents(pictures_.isMaking() ? QEventLoop::WaitForMoreEvents
                                                                 : QEventLoop::AllEvents);
        }
    }

    void requireArtworks() const {
        if (session_.artworkPreviews().size() != artworkCount || !session_.rollLoadWarnings().isEmpty()) {
            throw std::runtime_error("the session did not take the canvas");
        }
    }

    void restore() {
        QElapsedTimer sinceLast;
        QObject::connect(&session_, &OrvexModel::changed, &paints_, [&] {
            if (!sinceLast.isValid() && session_.artworkPreviews().size() == artworkCount) {
                sinceLast.start();
            }
        });
        Gaps gaps;
        const double all = millisecondsOf([&] {
            session_.restoreRollPreviews(false);
            waitFor([&] { return sinceLast.isValid(); });
        });
        settle();
        figures_.add("complete paint of the board after the last preview", "time",
                     static_cast<double>(sinceLast.nsecsElapsed()) / 1e6, 300, "ms");
        QObject::disconnect(&session_, nullptr, &paints_, nullptr);
        requireArtworks();
        Figures::note("restoring all previews", "time", all, "ms");
        figures_.add("restoring all previews", "longest gap", gaps.longest(), longestGap, "ms");
    }

    void send(QEvent::Type type, const QPointF& place, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, board_.viewport()->mapToGlobal(place), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(board_.viewport(), &event);
    }

    /// An artwork in view, near the middle: there may be a gap between two.
    [[nodiscard]] QUuid artworkInView() const {
        const QRectF view(board_.viewport()->rect());
        for (double y = view.center().y(); y < view.bottom(); y += 8.0) {
            for (double x = view.center().x(); x > view.left(); x -= 8.0) {
                if (const auto hit = board_.hitAt({x, y})) {
                    return hit->id;
                }
            }
        }
        throw std::runtime_error("no artwork in view");
    }

    /// Moves the mouse along circles with the button down; from the event to the end of the painting.
    void drag(const char* task, bool isByHandle) {
        session_.setRollSnapToQuarter(false);
        const QUuid id = artworkInView();
        session_.selectArtwork(id);
        settle();
        const QRectF shown = board_.frameOf(id);
        const QPointF start = isByHandle ? BoardGeometry::handleOf(shown).center() : shown.center();
        send(QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
        std::vector<double> steps;
        for (int step = 1; step <= 300; ++step) {
            const double angle = 2.0 * std::numbers::pi * step / 100.0;
            const double reach = isByHandle ? -60.0 : 60.0; // inwards: it may be as wide as the roll
            const QPointF place = start + reach * QPointF(1.0 - std::cos(angle), std::sin(angle));
            const RollLayout before = session_.rollLayout();
            const double time = millisecondsOf([&] { send(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton); });
            if (session_.rollLayout() != before) { // scaling goes by quarter inches
                steps.push_back(time + millisecondsOf([&] { paint(); }));
            }
            settle();
        }
        send(QEvent::MouseButtonRelease, start, Qt::LeftButton, Qt::NoButton);
        session_.undoRollEdit();
        settle();
        addSteps(task, steps, 16.0);
    }

    void addSteps(const char* task, const std::vector<double>& steps, double most) {
        figures_.add(task, "95th percentile", percentile(steps, 0.95), most, "ms");
        Figures::note("", "median", percentile(steps, 0.5), "ms");
        Figures::note("", "worst", percentile(steps, 1.0), "ms");
    }

    /// Through the whole board and back, by turns of the wheel.
    void scroll() {
        QScrollBar& bar = *board_.verticalScrollBar();
        std::vector<double> painted;
        std::vector<double> complete;
        const auto scrollTo = [&](int place) {
            bar.setValue(place);
            painted.push_back(millisecondsOf([&] { paint(); }));
            complete.push_back(painted.back() + millisecondsOf([&] { settle(); }));
        };
        for (int place = 72; place < bar.maximum(); place += 72) {
            scrollTo(place);
        }
        for (int place = bar.maximum() - 500; place > 0; place -= 500) {
            scrollTo(place);
        }
        addSteps("step of scrolling", painted, frame);
        Figures::note("until all its pictures are sharp", "95th percentile", percentile(complete, 0.95), "ms");
        Figures::note("", "worst", percentile(complete, 1.0), "ms");
    }

    void zoom() {
        std::vector<double> painted;
        std::vector<double> complete;
        const auto step = [&](void (OrvexModel::*change)()) {
            const double before = session_.rollZoom();
            (session_.*change)();
            if (session_.rollZoom() == before) {
                return false;
            }
            painted.push_back(millisecondsOf([&] { paint(); }));
            complete.push_back(painted.back() + millisecondsOf([&] { settle(); }));
            return true;
        };
        board_.verticalScrollBar()->setValue(board_.verticalScrollBar()->maximum() / 2);
        while (session_.rollZoom() < 3.0 && step(&OrvexModel::zoomIn)) {
        }
        if (session_.rollZoom() != 3.0) {
            throw std::runtime_error("the board does not zoom to 300 %");
        }
        QScrollBar& bar = *board_.verticalScrollBar();
        for (int place = 0; place < bar.maximum(); place += 1000) {
            bar.setValue(place);
            settle();
        }
        drag("drag at 300 %", false);
        drag("scaling by the handle at 300 %", true);
        while (session_.rollZoom() > 1.0 && step(&OrvexModel::zoomOut)) {
        }
        addSteps("step of zooming", painted, 2.0 * frame);
        Figures::note("until all its pictures are sharp", "median", percentile(complete, 0.5), "ms");
        Figures::note("", "worst", percentile(complete, 1.0), "ms");
    }

    /// On a narrow roll every artwork is many times as large on the screen.
    void narrow() {
        session_.changeRollWidth(24.0);
        waitFor([this] { return !session_.busy() && session_.rollLayout().widthInches == 24.0; });
        while (session_.rollZoom() < 3.0) {
            session_.zoomIn();
        }
        QScrollBar& bar = *board_.verticalScrollBar();
        bar.setValue(0);
        for (int place = 0; place < bar.maximum(); place += 5000) {
            bar.setValue(place);
            settle();
        }
        std::vector<double> painted;
        for (int place = 72; place < 20'000; place += 72) {
            bar.setValue(place);
            painted.push_back(millisecondsOf([&] { paint(); }));
            settle();
        }
        addSteps("step of scrolling on a roll of 24 in at 300 %", painted, frame);
        drag("drag on a roll of 24 in at 300 %", false);
        drag("scaling on a roll of 24 in at 300 %", true);
        session_.undoRollEdit();
        settle();
        while (session_.rollZoom() > 1.0) {
            session_.zoomOut();
        }
    }

    void import(const QList<QUrl>& files) {
        Gaps gaps;
        session_.importFiles(files);
        waitFor([this] { return !session_.busy(); });
        figures_.add("importing ten large files", "longest gap", gaps.longest(), longestGap, "ms");
        if (session_.rollLayout().items.size() != artworkCount + files.size()) {
            throw std::runtime_error("the files were not imported");
        }
    }

    void stage() {
        Gaps gaps;
        session_.stageRollPDF();
        waitFor([this] { return !session_.busy(); });
        figures_.add("staging the roll", "longest gap", gaps.longest(), longestGap, "ms");
        if (session_.jobs().size() != 1) {
            throw std::runtime_error(session_.errorMessage().value_or(QString()).toStdString());
        }
    }

    NoDesktop services_;
    DesktopServices desktop_;
    OrvexModel session_;
    MainWindow window_;
    RollBoardView& board_;
    BoardPictures& pictures_;
    Paints paints_;
    Figures figures_{"task, with 500 artworks"};
};

int run(QApplication& application, const QString& folder) {
    makePictures(folder);
    qputenv("XDG_DATA_HOME", writeAutosave(folder, artworkCount).toUtf8());
    OrvexTheme::apply(application);
    return WindowBenchmark().run(largePictures(folder));
}

} // namespace

int main(int argc, char** argv) {
    platform::returnLargeBlocks();
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: window-benchmark FOLDER\n", stderr);
        return 2;
    }
    try {
        return run(application, QDir::current().absoluteFilePath(QString::fromLocal8Bit(argv[1])));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
