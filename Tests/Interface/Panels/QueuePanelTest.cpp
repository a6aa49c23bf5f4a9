#include "Panels/QueuePanel.h"

#include "PanelTest.h"
#include "PanelTexts.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;

const QStringList actions{QStringLiteral("printJobButton"), QStringLiteral("exportJobButton"),
                          QStringLiteral("revealJobButton"), QStringLiteral("removeJobButton")};

StagedJob job(const QString& title) {
    RollLayout layout;
    layout.items = {RollArtwork()};
    return {.id = QUuid::createUuid(),
            .title = title,
            .printerName = QStringLiteral("W9400"),
            .createdAt = {816937500.0},
            .sourceProfile = {},
            .colorWorkflow = ColorWorkflow(),
            .canvasMediaName = QStringLiteral("Matte canvas"),
            .rollLayout = layout};
}

/// A record of an early version.
StagedJob oldJob() {
    StagedJob old = job(QStringLiteral("Old"));
    old.printerName.clear();
    old.colorWorkflow.reset();
    old.canvasMediaName.reset();
    old.rollLayout.reset();
    return old;
}

class QueuePanelTest : public test::PanelTest<QueuePanel> {
protected:
    void openWith(const QList<StagedJob>& jobs) {
        start();
        SessionBackdoor::set(model->jobs, jobs);
        open();
    }

    /// With a job that was really staged.
    void openWithStagedJob() {
        start();
        import({picture(QStringLiteral("a.png"), 120, 80)});
        model->stageRollPDF();
        settle();
        ASSERT_EQ(model->jobs().size(), 1);
        open();
    }

    /// From top to bottom.
    [[nodiscard]] QList<JobCard*> cards() const {
        QList<JobCard*> cards = panel->findChildren<JobCard*>();
        std::ranges::sort(cards, {}, [](const JobCard* card) { return card->y(); });
        return cards;
    }

    [[nodiscard]] std::vector<std::string> shownTitles() const {
        std::vector<std::string> titles;
        for (const JobCard* card : cards()) {
            titles.push_back(card->findChild<QLabel*>(QStringLiteral("jobTitle"))->text().toStdString());
        }
        return titles;
    }

    [[nodiscard]] static QPushButton* buttonOf(const JobCard* card, const QString& name) {
        return card->findChild<QPushButton*>(name);
    }
};

TEST_F(QueuePanelTest, SaysWhatTheQueueIs) {
    open();
    EXPECT_THAT(shownTexts(), IsSupersetOf({"Local print queue",
                                            "Each job keeps an original-resolution PDF and preparation settings across "
                                            "restarts. Check print quality in the Canon workflow before printing.",
                                            "System print queue · Read-only"}));
}

TEST_F(QueuePanelTest, SaysThatThereAreNoJobs) {
    open();
    EXPECT_TRUE(isShown("noJobsLabel"));
    EXPECT_EQ(labelText("noJobsLabel"), "No local jobs yet. Finish your layout, then choose Add roll to print queue.");
    have(model->jobs, {job(QStringLiteral("A"))});
    EXPECT_FALSE(isShown("noJobsLabel"));
}

TEST_F(QueuePanelTest, SaysThatTheQueueIsUnavailable) {
    open();
    EXPECT_FALSE(isShown("queueUnavailableLabel"));
    have(model->queueAvailable, false);
    EXPECT_TRUE(isShown("queueUnavailableLabel"));
    EXPECT_EQ(labelText("queueUnavailableLabel"),
              "The local queue is unavailable. You can still export a PDF; existing jobs are preserved.");
}

TEST_F(QueuePanelTest, ShowsTheJobsInTheSessionsOrder) {
    openWith({job(QStringLiteral("Newest")), job(QStringLiteral("Middle")), oldJob()});
    EXPECT_THAT(shownTitles(), ElementsAre("Newest", "Middle", "Old"));
}

TEST_F(QueuePanelTest, ShowsWhatIsKnownOfAJob) {
    openWith({job(QStringLiteral("Roll"))});
    EXPECT_THAT(
        shownTexts(),
        IsSupersetOf({"Roll", "W9400", "1 artworks · 2.5-inch border on each side · Outer trim guides included in PDF",
                      "Matte canvas", "Use Canon quality settings"}));
}

TEST_F(QueuePanelTest, ShowsTheFallbacksOfAnOldJob) {
    openWith({oldJob()});
    EXPECT_THAT(shownTexts(),
                IsSupersetOf({"No printer specified", "Actual PDF margin: 0.394 in. The saved file is unchanged.",
                              "No media recorded in this older job", "Legacy default workflow"}));
    EXPECT_THAT(shownTexts(), Not(Contains("Matte canvas")));
}

TEST_F(QueuePanelTest, ShowsTitlesAsTheyAreInThePanelsWidth) {
    const QString title = QStringLiteral("<b>A && B</b>\n") + QString(500, u'x');
    openWith({job(title)});
    EXPECT_THAT(shownTitles(), ElementsAre(title.toStdString()));
    EXPECT_LE(cards().first()->width(), panel->width());
}

TEST_F(QueuePanelTest, NamesWhatCanBeDoneWithAJob) {
    openWith({job(QStringLiteral("Roll"))});
    EXPECT_EQ(buttonText("printJobButton"), "Print this PDF…");
    EXPECT_EQ(buttonText("exportJobButton"), "Export this PDF…");
    EXPECT_EQ(buttonText("revealJobButton"), "Show in Finder");
    EXPECT_EQ(buttonText("removeJobButton"), "Remove local job");
}

TEST_F(QueuePanelTest, TellsJobsOfOneTitleApartByTheirMoments) {
    StagedJob later = job(QStringLiteral("Roll"));
    later.createdAt.secondsSince2001 += 3600.0;
    openWith({later, job(QStringLiteral("Roll"))});
    for (const JobCard* card : cards()) {
        const QString which = QStringLiteral("Roll, ") + orvexDateTime(card->job().createdAt);
        EXPECT_EQ(card->accessibleName().toStdString(), which.toStdString());
        EXPECT_EQ(buttonOf(card, QStringLiteral("removeJobButton"))->accessibleDescription().toStdString(),
                  which.toStdString());
    }
}

TEST_F(QueuePanelTest, DoesNothingWithJobsWhileBusy) {
    openWith({job(QStringLiteral("A")), oldJob()});
    for (const bool isBusy : {true, false}) {
        have(model->busy, isBusy);
        for (const JobCard* card : cards()) {
            for (const QString& name : actions) {
                EXPECT_EQ(buttonOf(card, name)->isEnabled(), !isBusy) << name.toStdString();
            }
        }
    }
}

TEST_F(QueuePanelTest, ShowsAJobThatComesWhileBusyWithoutItsActions) {
    openWith({});
    SessionBackdoor::set(model->busy, true);
    have(model->jobs, {job(QStringLiteral("A"))});
    EXPECT_FALSE(isEnabled("printJobButton"));
}

TEST_F(QueuePanelTest, PrintsTheJobOfTheCard) {
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(test::readyState(name));
    };
    openWithStagedJob();
    refresh();
    click("printJobButton");
    test::waitFor([this] { return !services.prints.isEmpty() || model->errorMessage(); });
    settle();
    EXPECT_EQ(services.prints.size(), 1);
}

TEST_F(QueuePanelTest, ExportsTheJobOfTheCard) {
    openWith({job(QStringLiteral("A")), job(QStringLiteral("B"))});
    clickOn(*buttonOf(cards().at(1), QStringLiteral("exportJobButton")));
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests.first().proposedName, u"B-orvex.pdf");
}

TEST_F(QueuePanelTest, ShowsThePdfOfTheCardInTheFileManager) {
    openWith({job(QStringLiteral("A")), job(QStringLiteral("B"))});
    clickOn(*buttonOf(cards().at(1), QStringLiteral("revealJobButton")));
    EXPECT_EQ(services.revealed, QList{QUrl::fromLocalFile(stored(model->jobs().at(1).pdfFileName()))});
}

TEST_F(QueuePanelTest, RemovesTheJobOfTheCard) {
    openWith({job(QStringLiteral("A")), job(QStringLiteral("B")), job(QStringLiteral("C"))});
    clickOn(*buttonOf(cards().at(1), QStringLiteral("removeJobButton")));
    EXPECT_THAT(shownTitles(), ElementsAre("A", "C"));
    EXPECT_EQ(model->jobs().size(), 2);
}

TEST_F(QueuePanelTest, KeepsTheCardsOfJobsThatStay) {
    const QList<StagedJob> jobs{job(QStringLiteral("A")), job(QStringLiteral("B"))};
    openWith(jobs);
    const QList<JobCard*> before = cards();
    have(model->message, QStringLiteral("something else"));
    EXPECT_EQ(cards(), before);
    have(model->jobs, QList{job(QStringLiteral("New"))} + jobs);
    EXPECT_THAT(shownTitles(), ElementsAre("New", "A", "B"));
    EXPECT_EQ(cards().sliced(1), before);
    have(model->jobs, {jobs.at(1), jobs.at(0)});
    EXPECT_EQ(cards(), (QList{before.at(1), before.at(0)}));
}

TEST_F(QueuePanelTest, ShowsJobsOfOneIdEachWithItsOwnTexts) {
    StagedJob first = job(QStringLiteral("A"));
    StagedJob second = first;
    second.title = QStringLiteral("B");
    openWith({first, second});
    EXPECT_THAT(shownTitles(), ElementsAre("A", "B"));
    have(model->jobs, {second, first});
    EXPECT_THAT(shownTitles(), ElementsAre("B", "A"));
}

TEST_F(QueuePanelTest, ShowsTheSystemsJobsOfTheSelectedPrinter) {
    open();
    EXPECT_EQ(labelText("systemJobsLabel"), "No printer selected.");
    refresh();
    turn();
    EXPECT_EQ(labelText("systemJobsLabel"),
              "No unfinished jobs were found in this reading. Also check diagnostics for read errors.");
    haveReadings([](PrinterReadings& printers) {
        printers.printers[1].jobs = {{QStringLiteral("W9400-1"), QStringLiteral("W9400-1   ann  <b>1&2")},
                                     {QStringLiteral("W9400-2"), QStringLiteral("W9400-2   bob")}};
    });
    EXPECT_EQ(labelText("systemJobsLabel"), "W9400-1   ann  <b>1&2\nW9400-2   bob");
}

TEST_F(QueuePanelTest, SpeaksChinese) {
    start();
    SessionBackdoor::set(model->queueAvailable, false);
    openInChinese();
    EXPECT_THAT(shownTexts(),
                ElementsAre("本地待打印队列",
                            "每个作业都保存一份原始分辨率的 PDF 和制作设置，重新启动后仍会保留。打印前请在"
                            "佳能打印流程中核对打印质量。",
                            "本地待打印队列不可用。仍可导出 PDF；现有作业已保留。",
                            "还没有本地作业。请先完成排版，再选择“将卷布加入待打印队列”。", "系统打印队列 · 只读",
                            "未选择打印机。"));
    have(model->jobs, {job(QStringLiteral("A"))});
    EXPECT_EQ(buttonText("printJobButton"), "打印此 PDF…");
    EXPECT_EQ(buttonText("exportJobButton"), "导出此 PDF…");
    EXPECT_EQ(buttonText("revealJobButton"), "在访达中显示");
    EXPECT_EQ(buttonText("removeJobButton"), "移除本地作业");
}

} // namespace
} // namespace orvex
