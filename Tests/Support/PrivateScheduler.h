#pragma once

#include "PrivateMachine.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace orvex::test {

/// A document that has been printed.
struct PrintedJob {
    QByteArray document; ///< the bytes that reached the printer
    QByteArray ticket;   ///< lines "job=", "title=", "copies=" and "options=", as the printer was told them
};

/// A real CUPS scheduler in a private machine, with no queues at first; the system's tools talk to it. There can be one
/// at a time. It ends with this object, or with the thread that made it, however that ends.
///
/// Everything here waits for its effect and throws std::runtime_error with the tool's words if there is none.
class PrivateScheduler {
public:
    enum class Kind {
        wide,          ///< a printer of 60 inches that takes PDF as it is
        widePdfFilter, ///< the same, behind the filter that prepares PDF
        missingFilter, ///< the same, behind a filter that is not installed
        raw            ///< a queue without a description of its printer
    };

    enum class Printer {
        prints, ///< at once, see printed()
        waits   ///< each job goes on until finishJob()
    };

    PrivateScheduler();
    PrivateScheduler(const PrivateScheduler&) = delete;
    PrivateScheduler& operator=(const PrivateScheduler&) = delete;
    ~PrivateScheduler();

    /// Starts it again after stop(), with the queues and jobs it had.
    void start();
    void stop();

    /// Adds a queue that is enabled and accepts jobs.
    void addQueue(const QString& queue, Kind kind = Kind::wide, Printer printer = Printer::prints);

    void deleteQueue(const QString& queue);

    void pause(const QString& queue, const QString& reason);
    void enable(const QString& queue);
    void reject(const QString& queue, const QString& reason);
    void accept(const QString& queue);

    /// Gives a document to a queue and returns the job's number. `options` are those of the tool lp.
    int submit(const QString& queue, const QByteArray& document = smallPdf(), const QStringList& options = {});
    /// A job that stays in the queue.
    int submitHeld(const QString& queue);

    /// Until a queue whose printer waits prints a job and shows that printer's message "Printing slowly" and its state
    /// reason "media-low-warning". Asks lpstat, so it needs the real one.
    void waitUntilProcessing(const QString& queue);
    /// Lets the job that such a queue prints come to its end.
    void finishJob(const QString& queue);

    /// What reached the printer of a queue; waits for it.
    PrintedJob printed(const QString& queue, int job);

    /// A document that counts as PDF for the scheduler.
    [[nodiscard]] static QByteArray smallPdf() { return QByteArrayLiteral("%PDF-1.4\n%%EOF\n"); }

private:
    [[nodiscard]] bool answers() const;
    [[nodiscard]] QByteArray complaints();

    EmptiedFolder settings_{"/etc/cups", 0755, "lp"};
    EmptiedFolder spool_{"/var/spool/cups", 0710, "lp"};
    EmptiedFolder cache_{"/var/cache/cups", 0770, "lp"};
    EmptiedFolder log_{"/var/log/cups", 0755, "root"};
    EmptiedFolder run_{"/run/cups", 0755, "lp"};
    QProcess process_;
};

} // namespace orvex::test
