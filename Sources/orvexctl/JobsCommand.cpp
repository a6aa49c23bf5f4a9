#include "CommandText.h"
#include "Commands.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexQAWorkspace.h"
#include "ProgressBar.h"
#include "StoreAnswers.h"
#include "StoreChange.h"
#include "Stores/LocalQueue.h"

#include <algorithm>

namespace orvex {

namespace {

struct JobsOptions {
    std::string id;
    std::string file;
};

LocalQueueStore openQueue() {
    return LocalQueueStore(OrvexQAWorkspace::directory());
}

qsizetype indexOf(const QUuid& id, const QList<StagedJob>& jobs) {
    const auto found = std::ranges::find(jobs, id, &StagedJob::id);
    if (found == jobs.end()) {
        throw OrvexError::invalid(
            spt("本地待打印队列中没有此 ID 的作业。", "The local print queue has no job with this ID."));
    }
    return found - jobs.begin();
}

/// The originals that the job was made of.
QList<QUrl> sourcesOf(const StagedJob& job) {
    QList<QUrl> sources;
    for (const RollArtwork& item : job.rollLayout.value_or(RollLayout()).items) {
        sources.append(item.sourceURL);
    }
    return sources;
}

void exportWithProgress(const LocalQueueStore& queue, const StagedJob& job, const QUrl& to,
                        const std::stop_token& stop) {
    ProgressBar bar;
    queue.exportPDF(
        job, to, [&bar](double fraction) { bar.show(spt("导出", "Exporting"), fraction); }, stop);
}

void runExport(const JobsOptions& options, const CommandContext& context) {
    const QUuid id = idArgument(options.id);
    const LocalQueueStore queue = openQueue();
    const QList<StagedJob> jobs = queue.load();
    const StagedJob& job = jobs[indexOf(id, jobs)];
    const QString file = fileArgument(options.file);
    if (isStandardStream(file)) {
        printFile(platform::localPath(queue.pdfURL(job)), context.stop);
        return;
    }
    refuseOverwriting(file, sourcesOf(job));
    exportWithProgress(queue, job, platform::fileUrl(file), context.stop);
    printResult(job.toJson());
}

void runRemove(const JobsOptions& options) {
    const QUuid id = idArgument(options.id);
    const StoreChange change;
    const LocalQueueStore queue = openQueue();
    QList<StagedJob> jobs = queue.load();
    const StagedJob job = jobs[indexOf(id, jobs)];
    jobs.removeIf([&](const StagedJob& each) { return each.id == id; });
    if (!queue.remove(job, jobs)) {
        throw OrvexError::invalid(LocalQueueStore::pdfNotDeleted());
    }
    printRecords(jobs);
}

} // namespace

void addJobsCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand("jobs", description("查看本地待打印队列，导出或移除作业",
                                                               "look at the local print queue; export or remove jobs"));
    command->require_subcommand(0, 1);
    command->add_subcommand("list", description("列出作业（默认）", "list the jobs; so does `jobs` alone"));
    const auto options = std::make_shared<JobsOptions>();
    const auto addID = [&options](CLI::App* to) {
        to->add_option("ID", options->id, description("作业的 ID", "the job's id"))->required()->type_name("");
    };
    CLI::App* exporting =
        command->add_subcommand("export", description("导出作业的 PDF", "copy a job's PDF to a file"));
    addID(exporting);
    exporting
        ->add_option("FILE", options->file,
                     description("目标文件；“-”表示标准输出", "the copy; - writes it to standard output"))
        ->required()
        ->type_name("");
    CLI::App* removing =
        command->add_subcommand("remove", description("移除作业及其 PDF", "remove a job and its PDF from the queue"));
    addID(removing);
    exporting->callback([options, &context] { runExport(*options, context); });
    removing->callback([options] { runRemove(*options); });
    command->callback([command, exporting, removing] {
        if (!command->got_subcommand(exporting) && !command->got_subcommand(removing)) {
            printRecords(openQueue().load());
        }
    });
}

} // namespace orvex
