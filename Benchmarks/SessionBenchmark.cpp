// session-benchmark FOLDER: measures a session with a thousand artworks and prints a table. Saves its canvas in FOLDER.

#include "Figures.h"
#include "Json/JsonWriter.h"
#include "Layout/RollWorkspaceFile.h"
#include "NoDesktop.h"
#include "OrvexModel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <functional>
#include <random>
#include <vector>

using namespace orvex;
using namespace orvex::benchmarks;

namespace {

constexpr int artworkCount = 1000;
constexpr int rounds = 200;

Figures& figures() {
    static Figures table("task, with 1,000 artworks");
    return table;
}

/// The median and the worst of many calls; the median has to be below `most`.
void printTimes(const char* task, const std::vector<double>& milliseconds, double most) {
    figures().add(task, "median", percentile(milliseconds, 0.5), most, "ms");
    Figures::note("", "worst", percentile(milliseconds, 1.0), "ms");
}

std::vector<double> timesOf(int count, const std::function<void(int)>& call) {
    std::vector<double> milliseconds;
    for (int number = 0; number < count; ++number) {
        milliseconds.push_back(millisecondsOf([&] { call(number); }));
    }
    return milliseconds;
}

/// A roll as a year's work would fill it: sizes of quarter inches, packed in rows.
RollLayout bigLayout() {
    std::mt19937 random(7);
    RollLayout layout;
    double y = 0;
    for (int number = 0; number < artworkCount; ++number) {
        const double width = 6.0 + 0.25 * static_cast<double>(random() % 20);
        layout.items.append(RollArtwork::make(
            {.id = QUuid::createUuidV5(QUuid(), QByteArray::number(number)),
             .sourceURL =
                 QUrl::fromLocalFile(QStringLiteral("/home/shop/画布 Orders/客户 %1/final artwork %1.tif").arg(number)),
             .pixelWidth = static_cast<qint64>(width * 300),
             .pixelHeight = static_cast<qint64>(width * 200),
             .originalWidthInches = width,
             .originalHeightInches = width * 2 / 3,
             .widthInches = width,
             .xInches = number % 3 * 18.0,
             .yInches = y}));
        y += number % 3 == 2 ? 14.0 : 0.0;
    }
    return layout;
}

void writeAutosave(const QString& folder) {
    const RollLayout layout = bigLayout();
    RollWorkspaceFile file{
        .layout = layout, .selection = layout.items[500].id, .sizingDescriptions = {}, .gapInches = 0.0};
    for (const RollArtwork& item : layout.items) {
        file.sizingDescriptions.insert(platform::uuidText(item.id), QStringLiteral("文件中的密度"));
    }
    QDir().mkpath(folder);
    QFile target(folder + QStringLiteral("/roll-layout.json"));
    const QByteArray bytes = file.encode();
    if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size() || !target.flush()) {
        throw std::runtime_error("the canvas cannot be saved");
    }
}

void measureGestures(OrvexModel& session) {
    const QUuid id = session.rollLayout().items[500].id;
    session.beginArrangeGesture();
    printTimes("dragArtwork", timesOf(rounds, [&](int number) { session.dragArtwork(id, 0.25 * number / 10, 2300); }),
               1.0);
    session.endArrangeGesture();
    printTimes("nudgeSelectedArtwork",
               timesOf(rounds,
                       [&](int number) {
                           session.nudgeSelectedArtwork(
                               number % 2 == 0 ? RollNudgeDirection::up : RollNudgeDirection::down, false);
                       }),
               2.0);
    session.endKeyboardNudge();
}

/// Eighty steps, each with another artwork moved; then back through them.
void measureHistory(OrvexModel& session) {
    const double before = memoryMiB("VmRSS:");
    const QList<RollArtwork> items = session.rollLayout().items;
    for (int step = 0; step < RollHistory::mostSteps; ++step) {
        session.moveArtwork(items[step * 12].id, 1.0 + step * 0.1, std::nullopt);
    }
    figures().add("80 steps of undo", "memory", memoryMiB("VmRSS:") - before, 100.0, "MiB");
    printTimes("undoRollEdit, without its autosave",
               timesOf(RollHistory::mostSteps, [&](int) { session.undoRollEdit(); }), 5.0);
}

int run(const QString& folder) {
    writeAutosave(folder + QStringLiteral("/ORVEX"));
    NoDesktop desktop;
    printTimes("start to the end of init", timesOf(20, [&](int) { const OrvexModel session(desktop); }), 150.0);
    OrvexModel session(desktop);
    if (session.rollLayout().items.size() != artworkCount) {
        throw std::runtime_error("the session did not take the canvas");
    }
    measureGestures(session);
    printTimes("autosave, without its synchronising", timesOf(rounds, [&](int) { session.persistRollLayout(); }), 30.0);
    OrvexModel unsaved(desktop, SessionAccess::readOnly);
    measureHistory(unsaved);
    return figures().isMissed() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: session-benchmark FOLDER\n", stderr);
        return 2;
    }
    try {
        const QString folder = QDir::current().absoluteFilePath(QString::fromLocal8Bit(argv[1]));
        qputenv("XDG_DATA_HOME", folder.toLocal8Bit());
        return run(folder);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
