#include "InChinese.h"
#include "RollTest.h"

namespace orvex {
namespace {

/// A session with two jobs in its queue.
class JobTest : public test::RollTest {
protected:
    JobTest() {
        importTwo();
        for (int count = 0; count < 2; ++count) {
            model->stageRollPDF();
            settle();
        }
    }

    const QString place = folder.path(QStringLiteral("job.pdf"));

    [[nodiscard]] StagedJob job(qsizetype index = 0) const { return model->jobs().at(index); }

    [[nodiscard]] QString pdfOf(const StagedJob& job) const { return stored(job.pdfFileName()); }

    [[nodiscard]] QList<StagedJob> savedJobs() const { return LocalQueueStore(QUrl::fromLocalFile(stored({}))).load(); }

    /// A session without a queue.
    void startWithoutQueue() {
        folder.write(QStringLiteral("data/ORVEX/queue.json"), "damaged");
        start();
        model->dismissError();
    }

    [[nodiscard]] QString proposedName(const QString& title) {
        StagedJob titled = job();
        titled.title = title;
        model->exportJob(titled);
        return services.saveRequests.last().proposedName;
    }
};

// Export

class JobExport : public JobTest {
protected:
    void exportTo(const QString& path, const StagedJob& job) {
        services.chosenPlaces = {QUrl::fromLocalFile(path)};
        model->exportJob(job);
        settle();
    }
};

TEST_F(JobExport, CopiesThePdf) {
    const QByteArray pdf = test::TemporaryFolder::read(pdfOf(job(1)));
    const QList<StagedJob> jobs = model->jobs();
    exportTo(place, job(1));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), u"The queued PDF was exported.");
    EXPECT_EQ(test::TemporaryFolder::read(place), pdf);
    EXPECT_EQ(model->jobs(), jobs);
    EXPECT_EQ(savedJobs(), jobs);
    EXPECT_TRUE(services.revealed.isEmpty());
    EXPECT_FALSE(model->busy());
    const test::InChinese chinese;
    exportTo(place, job(0));
    EXPECT_EQ(model->message(), u"已导出队列中的 PDF。");
}

TEST_F(JobExport, ProposesTheJobsTitle) {
    model->exportJob(job());
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests.first().kind, FileKind::pdf);
    EXPECT_EQ(services.saveRequests.first().proposedName, u"Roll Layout · 2 Artworks-orvex.pdf");
    EXPECT_FALSE(model->busy()) << "it was cancelled";
}

TEST_F(JobExport, ProposesATitleWithoutItsExtension) {
    EXPECT_EQ(proposedName(QStringLiteral("poster.tiff")), u"poster-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("a.b.c")), u"a.b-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("No. 5")), u"No. 5-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("end.")), u"end.-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral(".hidden")), u".hidden-orvex.pdf");
    EXPECT_EQ(proposedName({}), u"-orvex.pdf");
}

TEST_F(JobExport, ProposesANameThatLeadsIntoNoFolder) {
    EXPECT_EQ(proposedName(QStringLiteral("a/b.png")), u"a-b-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("v1.5/final")), u"v1.5-final-orvex.pdf") << "which is no extension";
    EXPECT_EQ(proposedName(QStringLiteral("../../x")), u"..-..-x-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("two\nlines\u2028three\t")), u"two-lines-three--orvex.pdf");
}

TEST_F(JobExport, ProposesUnusualCharactersAsTheyAre) {
    EXPECT_EQ(proposedName(QStringLiteral("🎨 画布.png")), u"🎨 画布-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("\u200Fאמנות")), u"\u200Fאמנות-orvex.pdf");
    EXPECT_EQ(proposedName(QStringLiteral("100% %1")), u"100% %1-orvex.pdf");
}

TEST_F(JobExport, OfAPdfThatIsGoneIsToldAndKeepsTheJob) {
    const QList<StagedJob> jobs = model->jobs();
    ASSERT_TRUE(QFile::remove(pdfOf(job())));
    folder.write(QStringLiteral("job.pdf"), "old");
    const QString message = model->message();
    exportTo(place, job());
    EXPECT_EQ(model->errorMessage(), pdfOf(job()) + QStringLiteral(": No such file or directory"));
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->jobs(), jobs);
    EXPECT_EQ(test::TemporaryFolder::read(place), "old");
}

TEST_F(JobExport, ToAPlaceThatCannotBeWrittenIsTold) {
    const QString file = folder.write(QStringLiteral("file"), "x");
    exportTo(file + QStringLiteral("/job.pdf"), job());
    EXPECT_TRUE(model->errorMessage()->contains(u"Not a directory")) << model->errorMessage()->toStdString();
    model->dismissError();
    ASSERT_TRUE(QDir().mkdir(place));
    exportTo(place, job());
    EXPECT_TRUE(model->errorMessage());
    EXPECT_TRUE(QDir(place).isEmpty());
    EXPECT_FALSE(model->busy());
}

TEST_F(JobExport, OverTheProgramsOwnFilesIsRefused) {
    const QByteArray list = test::TemporaryFolder::read(stored(QStringLiteral("queue.json")));
    exportTo(stored(QStringLiteral("queue.json")), job());
    EXPECT_EQ(model->errorMessage(), u"A PDF cannot be exported over the program's own data. Choose another file.");
    EXPECT_EQ(test::TemporaryFolder::read(stored(QStringLiteral("queue.json"))), list);
}

TEST_F(JobExport, NeedsTheQueueAndNoOtherWork) {
    const StagedJob staged = job();
    {
        const test::Barrier barrier;
        model->changeRollWidth(50.0);
        model->exportJob(staged);
    }
    settle();
    startWithoutQueue();
    model->exportJob(staged);
    EXPECT_TRUE(services.saveRequests.isEmpty());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(JobExport, CanBeCancelledAndThenKeepsWhatIsThere) {
    QStringList shown;
    expectCancelled(QStringLiteral("job.pdf"), [&] {
        model->exportJob(job());
        EXPECT_TRUE(model->busy());
        SessionProgress expected = SessionProgress::of(0, 1, model->progress()->what);
        expected.isCancellable = true;
        EXPECT_EQ(model->progress(), expected);
        shown.append(expected.what);
    });
    EXPECT_EQ(shown, QStringList({QStringLiteral("Exporting the PDF"), QStringLiteral("导出 PDF")}));
}

// Removal

class JobRemoval : public JobTest {};

TEST_F(JobRemoval, TakesTheRecordAndThePdf) {
    const StagedJob removed = job(0);
    const StagedJob other = job(1);
    model->removeJob(removed);
    EXPECT_EQ(model->jobs(), QList{other});
    EXPECT_EQ(savedJobs(), QList{other});
    EXPECT_EQ(pdfNames(), QStringList{other.pdfFileName()});
    EXPECT_EQ(model->message(), u"The local job was removed.");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    const test::InChinese chinese;
    model->removeJob(other);
    EXPECT_EQ(model->message(), u"已移除本地作业。");
    EXPECT_TRUE(savedJobs().isEmpty());
}

TEST_F(JobRemoval, IsByTheIdWhateverTheRestOfTheRecordSays) {
    const StagedJob other = job(1);
    StagedJob renamed = job(0);
    renamed.title = QStringLiteral("renamed");
    model->removeJob(renamed);
    EXPECT_EQ(model->jobs(), QList{other});
}

TEST_F(JobRemoval, TellsIfThePdfStays) {
    const StagedJob first = job(0);
    const StagedJob second = job(1);
    for (const StagedJob& each : {first, second}) {
        ASSERT_TRUE(QFile::remove(pdfOf(each)));
        ASSERT_TRUE(QDir().mkpath(pdfOf(each) + QStringLiteral("/full")));
    }
    model->removeJob(first);
    EXPECT_EQ(model->jobs(), QList{second});
    EXPECT_EQ(savedJobs(), QList{second});
    EXPECT_EQ(model->message(), u"The job record was removed, but its PDF could not be deleted. Check permissions for "
                                u"the app data folder.");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    const test::InChinese chinese;
    model->removeJob(second);
    EXPECT_EQ(model->message(), u"作业记录已移除，但无法删除其 PDF。请检查应用数据文件夹的权限。");
}

TEST_F(JobRemoval, WhoseListCannotBeWrittenChangesNothing) {
    const QList<StagedJob> jobs = model->jobs();
    ASSERT_TRUE(QFile::remove(stored(QStringLiteral("queue.json"))));
    ASSERT_TRUE(QDir().mkpath(stored(QStringLiteral("queue.json/full"))));
    const QString message = model->message();
    model->removeJob(job());
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->jobs(), jobs);
    EXPECT_EQ(pdfNames().size(), 2);
}

TEST_F(JobRemoval, NeedsTheQueueAndNoOtherWork) {
    const QList<StagedJob> jobs = model->jobs();
    {
        const test::Barrier barrier;
        model->changeRollWidth(50.0);
        model->removeJob(jobs.first());
        EXPECT_EQ(model->jobs(), jobs);
    }
    settle();
    startWithoutQueue();
    const QString message = model->message();
    model->removeJob(jobs.first());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(pdfNames().size(), 2);
}

// Showing the PDF

class JobReveal : public JobTest {};

TEST_F(JobReveal, ShowsThePdfOfTheJob) {
    const QString message = model->message();
    model->revealJob(job(1));
    EXPECT_EQ(services.revealed, QList{QUrl::fromLocalFile(pdfOf(job(1)))});
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(JobReveal, NeedsTheQueueAndNoOtherWork) {
    const StagedJob staged = job();
    {
        const test::Barrier barrier;
        model->changeRollWidth(50.0);
        model->revealJob(staged);
    }
    settle();
    startWithoutQueue();
    model->revealJob(staged);
    EXPECT_TRUE(services.revealed.isEmpty());
}

TEST_F(JobExport, OverAnOriginalIsRefused) {
    const QString original = item(0).sourceURL.toLocalFile();
    const QByteArray picture = test::TemporaryFolder::read(original);
    exportTo(original, job());
    EXPECT_EQ(model->errorMessage(),
              u"The chosen location cannot overwrite the original of an artwork. Choose a separate file.");
    EXPECT_EQ(test::TemporaryFolder::read(original), picture);
}

TEST_F(JobExport, OverAnOriginalThatIsNoLongerOnTheCanvasIsRefused) {
    const StagedJob exported = job();
    const QString original = item(0).sourceURL.toLocalFile();
    const QByteArray picture = test::TemporaryFolder::read(original);
    SessionBackdoor::set(model->rollLayout, RollLayout());
    exportTo(original, exported);
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(test::TemporaryFolder::read(original), picture);
}

} // namespace
} // namespace orvex
