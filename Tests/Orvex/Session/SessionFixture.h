#pragma once

#include "BackgroundTask.h"
#include "OrvexError.h"
#include "OrvexModel.h"
#include "SettingsPreservationService.h"
#include "TemporaryFolder.h"
#include "Writers.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QSemaphore>

#include <gtest/gtest.h>

#include <deque>
#include <memory>

namespace orvex {

/// Puts a session into states that no command leads to.
class SessionBackdoor {
public:
    explicit SessionBackdoor(OrvexModel& session) : session_(session) {}

    template <typename Value>
    static void set(Observed<Value>& field, Value value) {
        field.set(std::move(value));
    }

    [[nodiscard]] const std::optional<QUrl>& rollDocumentURL() const { return session_.rollDocumentURL; }

    [[nodiscard]] const RollHistory& history() const { return session_.rollHistory; }

    [[nodiscard]] const std::optional<CanvasPreference>& canvasPreference() const { return session_.canvasPreference; }

    [[nodiscard]] const std::optional<QUrl>& defaultsURL() const { return session_.defaultsURL; }

    [[nodiscard]] bool isCanvasApplied() const { return session_.canvasApplied; }

    /// Starts an application that stands in a place of no other kind of machine.
    void openMonitor(const QUrl& application) { session_.runMonitor(application); }

    /// Looks no more for requests of other processes, which it does at moments of its own.
    void ignoreOthers() { session_.raiseRequests_.reset(); }

    [[nodiscard]] bool hasBaseline() const { return session_.protectedBaseline.has_value(); }

private:
    OrvexModel& session_;
};

} // namespace orvex

namespace orvex::test {

/// A print that passed all checks, as far as the session is concerned.
class FakePrint : public NativePrintOperation {
public:
    explicit FakePrint(std::function<bool()> run) : run_(std::move(run)) {}

    [[nodiscard]] bool run() override { return run_(); }

private:
    std::function<bool()> run_;
};

/// A desktop whose user does what the test says.
class FakeServices : public SessionServices {
public:
    /// What the next dialogs are answered with; without an answer they are cancelled.
    std::deque<QList<QUrl>> chosenFiles;
    std::deque<QUrl> chosenPlaces;

    QList<OpenFilesRequest> openRequests;
    QList<SaveFileRequest> saveRequests;
    QList<QUrl> revealed;
    int raisedWindows = 0;
    QList<QUrl> opened;
    std::optional<QString> openingFailure;
    std::function<void()> onCommitEditing = [] {};
    QList<NativePrintRequest> prints;
    std::optional<QString> printRefusal;
    std::function<bool()> printWindow = [] { return true; };
    platform::Timestamp clock{800'000'000.0};
    QList<std::chrono::nanoseconds> sleeps;

    [[nodiscard]] QList<QUrl> openFiles(const OpenFilesRequest& request) override {
        openRequests.append(request);
        return next(chosenFiles).value_or(QList<QUrl>());
    }

    [[nodiscard]] std::optional<QUrl> saveFile(const SaveFileRequest& request) override {
        saveRequests.append(request);
        return next(chosenPlaces);
    }

    void revealFile(const QUrl& file) override { revealed.append(file); }

    [[nodiscard]] QCoro::Task<std::optional<QString>> openApplication(const QUrl& application) override {
        opened.append(application);
        co_return openingFailure;
    }

    void raiseWindow() override { ++raisedWindows; }

    void commitEditing() override { onCommitEditing(); }

    [[nodiscard]] std::unique_ptr<NativePrintOperation> prepareNativePrint(const NativePrintRequest& request) override {
        prints.append(request);
        if (printRefusal) {
            throw OrvexError::invalid(*printRefusal);
        }
        return std::make_unique<FakePrint>(printWindow);
    }

    [[nodiscard]] platform::Timestamp now() const override { return clock; }

    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration, std::stop_token stop) override {
        sleeps.append(duration);
        return SessionServices::sleep(duration, stop);
    }

private:
    template <typename Answer>
    static std::optional<Answer> next(std::deque<Answer>& answers) {
        if (answers.empty()) {
            return std::nullopt;
        }
        const Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

/// Readings of a machine without printers, until the test puts others in their place.
[[nodiscard]] inline MachineReadings quietReadings() {
    return {
        .discoverQueues = [](const std::stop_token&) { return QtFuture::makeReadyFuture(QList<PrinterSnapshot>()); },
        .readTelemetry =
            [](const QString& queueName, const std::stop_token&) {
                return QtFuture::makeReadyFuture(PrinterTelemetrySnapshot{.queueName = queueName});
            },
        .readPaperGeometry = [](const QString&) { return QtFuture::makeReadyFuture(QMap<QString, Size>()); },
        .captureSettings =
            [](const QList<QUrl>& paths, const std::stop_token& stop) {
                return QtFuture::makeReadyFuture(SettingsPreservationService::capture(paths, stop));
            }};
}

/// Holds up all background work that somebody waits for, until this is released or goes.
class Barrier {
public:
    Barrier() {
        for (int number = 0; number < platform::userInitiatedPool().maxThreadCount(); ++number) {
            held_.append(platform::startUserInitiatedTask([semaphore = semaphore_] { semaphore->acquire(); }));
        }
    }

    ~Barrier() { release(); }

    Barrier(const Barrier&) = delete;
    Barrier& operator=(const Barrier&) = delete;

    void release() {
        semaphore_->release(static_cast<int>(held_.size()));
        held_.clear();
    }

private:
    std::shared_ptr<QSemaphore> semaphore_ = std::make_shared<QSemaphore>();
    QList<QFuture<void>> held_;
};

/// Turns the event loop until the condition holds.
inline void waitFor(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(std::chrono::seconds(60));
    while (!condition()) {
        ASSERT_FALSE(deadline.hasExpired()) << "what was awaited did not happen";
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

/// A session in folders of its own, with a user and a machine that do what the test says. HOME and XDG_DATA_HOME are
/// such folders, too.
class SessionTest : public ::testing::Test {
protected:
    SessionTest() {
        qputenv("HOME", folder.path(QStringLiteral("home")).toUtf8());
        qputenv("XDG_DATA_HOME", folder.path(QStringLiteral("data")).toUtf8());
        qputenv("TMPDIR", folder.path(QStringLiteral("tmp")).toUtf8());
        for (const char* name : {"home", "data", "tmp", "pictures"}) {
            QDir(folder.path()).mkdir(QString::fromLatin1(name));
        }
    }

    TemporaryFolder folder;
    FakeServices services;
    MachineReadings readings = quietReadings();
    std::unique_ptr<OrvexModel> model;

    /// Starts the session, in place of one that runs.
    OrvexModel& start(SessionAccess access = SessionAccess::full) {
        model.reset();
        model = std::make_unique<OrvexModel>(services, access, readings);
        return *model;
    }

    /// Waits until the session holds still: nothing runs and nothing is posted.
    void settle() {
        waitFor([this] {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
            return !model->busy() && !model->refreshing();
        });
        QCoreApplication::processEvents();
        waitFor([this] { return !model->busy() && !model->refreshing(); });
    }

    /// The path of a file in the application folder.
    [[nodiscard]] QString stored(const QString& name) const {
        return folder.path(QStringLiteral("data/ORVEX/") + name);
    }

    /// Writes a small PNG of one colour profile or none, and gives its place.
    QUrl picture(const QString& name, int width, int height, int pixelsPerInch = 10,
                 const samples::Bytes& profile = {}) const {
        const QString path = folder.path(QStringLiteral("pictures/") + name);
        const auto pixel = [](int x, int y) {
            return samples::Pixel{static_cast<float>(x % 7) / 7.0F, static_cast<float>(y % 5) / 5.0F, 0.5F};
        };
        samples::writePng(samples::pictureOf(width, height, pixel),
                          {.pixelsPerInch = pixelsPerInch, .profile = profile}, path.toStdString());
        return QUrl::fromLocalFile(path);
    }

    /// Imports files and waits for the end.
    void import(const QList<QUrl>& files) {
        model->importFiles(files);
        settle();
    }

    /// An artwork of 12 x 8 inches of a source that need not exist.
    [[nodiscard]] static RollArtwork artwork(double widthInches = 12.0, double heightInches = 8.0) {
        return RollArtwork::make({.id = QUuid::createUuid(),
                                  .sourceURL = QUrl(QStringLiteral("file:///pictures/nowhere.png")),
                                  .pixelWidth = static_cast<qint64>(widthInches * 100),
                                  .pixelHeight = static_cast<qint64>(heightInches * 100),
                                  .originalWidthInches = widthInches,
                                  .originalHeightInches = heightInches,
                                  .widthInches = widthInches});
    }

    /// Puts artworks on the canvas without any of the session's commands.
    void place(const QList<RollArtwork>& artworks) {
        RollLayout layout = model->rollLayout();
        for (const RollArtwork& each : artworks) {
            layout.append(each, 0.0);
        }
        SessionBackdoor::set(model->rollLayout, layout);
        SessionBackdoor::set(model->selectedArtworkID, std::optional(layout.items.last().id));
    }
};

} // namespace orvex::test
