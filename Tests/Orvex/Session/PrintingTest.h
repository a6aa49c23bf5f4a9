#pragma once

#include "HeldReading.h"
#include "PrinterFixtures.h"
#include "SessionFixture.h"

namespace orvex::test {

/// A session with an artwork of 12 x 8 inches on the canvas, and a queue that can take a job.
class PrintingTest : public SessionTest {
protected:
    static inline const QString queue = QStringLiteral("W9400");
    static inline const QString other = QStringLiteral("Other");
    static inline const QString notSubmitted = QStringLiteral("Printing has not been submitted.");
    static inline const QString unchanged =
        QStringLiteral("Printing has not been submitted; the saved PDF is unchanged.");
    static inline const QString review = QStringLiteral(
        "Review paper, 100% actual size, canvas, colour and cutting settings in the system print window, then "
        "click Print.");
    static inline const QString finished = QStringLiteral(
        "The system print workflow has finished. Check job status in the system queue and confirm physical "
        "completion at the printer.");
    static inline const QString stopped = QStringLiteral(
        "The system print queue is stopped, disabled or reporting an error. Direct printing is unavailable. "
        "Resolve the issue in Canon or the system queue first; the app will not enable the queue "
        "automatically.\nSystem report: Out of canvas");
    static inline const QString unconfirmed = QStringLiteral(
        "Could not confirm, without changing settings, that the system print queue can accept jobs. Printing "
        "was not opened. Refresh printers and check the system queue.\nNo answer.");

    PrintingTest() {
        readings.readTelemetry = [](const QString& name, const std::stop_token&) {
            return QtFuture::makeReadyFuture(readyState(name));
        };
        readings.discoverQueues = findingQueues({queue, other});
    }

    /// Starts the session and brings it to where the roll can be printed.
    void prepare() {
        start();
        import({picture(QStringLiteral("a.png"), 120, 80)});
        select(queue);
        ASSERT_EQ(model->rollExportIssue(), std::nullopt);
    }

    void select(const QString& name) {
        PrinterReadings printers = model->printerReadings();
        printers.selectedPrinterName = name;
        SessionBackdoor::set(model->printerReadings, printers);
    }

    void print() {
        model->printCurrentRoll();
        waitFor([this] { return model->busy() || model->errorMessage() || !services.prints.isEmpty(); });
        settle();
    }

    using HeldStates = std::shared_ptr<HeldReading<PrinterTelemetrySnapshot>>;

    /// Starts the session and prints the roll up to where the queue is asked for its state, which the test answers.
    [[nodiscard]] HeldStates printUntilAsked() {
        HeldStates states = hold(readings.readTelemetry);
        prepare();
        model->printCurrentRoll();
        waitFor([&] { return states->isAwaited(); });
        return states;
    }

    /// The queue is ready; waits until it is asked again, after the rendering.
    void answerUntilAskedAgain(const HeldStates& states) const {
        states->answer(readyState(queue));
        waitFor([&] { return states->isAwaited(); });
    }

    [[nodiscard]] QStringList temporaryFolders() const {
        return QDir(folder.path(QStringLiteral("tmp"))).entryList({QStringLiteral("orvex-print-*")}, QDir::Dirs);
    }

    /// Nothing was printed, for this reason, and nothing is left.
    void expectRefused(const std::string& reason, const QString& message = notSubmitted) const {
        EXPECT_EQ(model->errorMessage().value_or(QString()).toStdString(), reason);
        EXPECT_EQ(model->message(), message);
        EXPECT_FALSE(model->busy());
        EXPECT_EQ(windows, 0);
        EXPECT_TRUE(temporaryFolders().isEmpty());
    }

    int windows = 0; ///< that have been opened

    /// What the operator does in the print window.
    void inWindow(const std::function<bool()>& act) {
        services.printWindow = [this, act] {
            ++windows;
            return act();
        };
    }
};

} // namespace orvex::test
