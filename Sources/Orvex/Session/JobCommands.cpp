// The jobs of the local queue.

#include "BackgroundTask.h"
#include "FileGuard.h"
#include "Interrupted.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "RollRendering.h"
#include "SessionOperation.h"
#include "Text.h"

namespace orvex {

namespace {

/// A text as part of a file name: what would lead into a folder, or cannot be seen, is replaced.
QString inFileName(QString text) {
    for (QChar& each : text) {
        const bool isControl = each.category() == QChar::Other_Control || platform::isNewline(each);
        each = each == u'/' || isControl ? QChar(u'-') : each;
    }
    return text;
}

/// A file name without what stands behind its last full stop, if there is something on both sides of it.
QString withoutExtension(const QString& name) {
    const qsizetype point = name.lastIndexOf(u'.');
    const QStringView extension = point > 0 ? QStringView(name).sliced(point + 1) : QStringView();
    const bool isExtension = !extension.isEmpty() && !extension.contains(u' ') && !extension.contains(u'/');
    return isExtension ? name.left(point) : name;
}

} // namespace

void OrvexModel::exportJob(const StagedJob& job) {
    if (busy() || !store) {
        return;
    }
    const auto file =
        services_.saveFile({.proposedName = inFileName(withoutExtension(job.title)) + QStringLiteral("-orvex.pdf"),
                            .kind = FileKind::pdf});
    if (file && !busy()) {
        runJobExport(job, *file);
    }
}

QCoro::Task<> OrvexModel::runJobExport(StagedJob job, QUrl file) {
    SessionOperation operation(*this, SessionOperation::Cancelling::possible);
    const QString what = spt("导出 PDF", "Exporting the PDF");
    operation.show(SessionProgress::of(0, 1, what));
    const auto show = [what, report = operation.report()](double fraction) {
        report({.done = 0, .total = 1, .what = what, .fraction = fraction});
    };
    try {
        refuseOverwritingSources(file, rollLayout());
        refuseOverwritingSources(file, job.rollLayout.value_or(RollLayout()));
        const QFuture<void> copying =
            platform::startUserInitiatedTask([store = *store, job, file, show, stop = operation.stopToken()] {
                store.exportPDF(job, file, show, stop);
            });
        co_await copying;
        message.set(spt("已导出队列中的 PDF。", "The queued PDF was exported."));
    } catch (const platform::Interrupted&) {
        message.set(exportCancelled());
    } catch (const std::exception& exception) {
        errorMessage.set(failureMessage(exception));
    }
}

void OrvexModel::removeJob(const StagedJob& job) {
    if (busy() || !store) {
        return;
    }
    QList<StagedJob> remaining = jobs();
    remaining.removeIf([&](const StagedJob& each) { return each.id == job.id; });
    bool isPDFDeleted = false;
    if (const auto failure = failureMessageOf([&] { isPDFDeleted = store->remove(job, remaining); })) {
        errorMessage.set(failure);
        return;
    }
    jobs.set(remaining);
    message.set(isPDFDeleted ? spt("已移除本地作业。", "The local job was removed.")
                             : LocalQueueStore::pdfNotDeleted());
}

void OrvexModel::revealJob(const StagedJob& job) {
    if (busy() || !store) {
        return;
    }
    services_.revealFile(store->pdfURL(job));
}

} // namespace orvex
