#include "Shell/PrinterSidebar.h"

#include "PanelTest.h"

#include <QAccessible>
#include <QScrollBar>

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Not;

class PrinterSidebarTest : public test::PanelTest<PrinterSidebar> {
protected:
    void openWithPrinters(const QStringList& names = {other, queue}) {
        readings.discoverQueues = test::findingQueues(names);
        start();
        refresh();
        open();
    }

    [[nodiscard]] QList<PrinterRow*> rows() const {
        return panel->findChild<QWidget*>(QStringLiteral("printerRows"))->findChildren<PrinterRow*>();
    }

    /// The names of all rows from top to bottom, the selected one with a star.
    [[nodiscard]] std::vector<std::string> shownRows() const {
        QList<PrinterRow*> sorted = rows();
        std::ranges::sort(sorted, {}, [](const PrinterRow* row) { return row->y(); });
        std::vector<std::string> names;
        for (const PrinterRow* row : sorted) {
            names.push_back(row->name().toStdString() + (row->isChecked() ? "*" : ""));
        }
        return names;
    }

    [[nodiscard]] PrinterRow* row(const QString& name) const {
        const QList<PrinterRow*> all = rows();
        const auto found = std::ranges::find_if(all, [&](const PrinterRow* each) { return each->name() == name; });
        return found != all.end() ? *found : throw std::runtime_error("there is no such row");
    }

    void haveState(const PrinterTelemetrySnapshot& state) {
        haveReadings([&](PrinterReadings& printers) { printers.telemetry = state; });
    }
};

TEST_F(PrinterSidebarTest, IsHeadedByARefreshThatSaysWhatItDoes) {
    open();
    EXPECT_EQ(shownTexts().front(), "Printers");
    EXPECT_EQ(find("refreshPrintersButton")->accessibleName(), u"Refresh printers");
    EXPECT_EQ(find("refreshPrintersButton")->toolTip(), u"Refresh local CUPS queues without changing settings");
}

TEST_F(PrinterSidebarTest, RefreshesTheQueues) {
    open();
    EXPECT_TRUE(model->printerReadings().printers.isEmpty());
    click("refreshPrintersButton");
    settle();
    turn();
    EXPECT_THAT(shownRows(), ElementsAre("Other", "W9400*"));
}

TEST_F(PrinterSidebarTest, SaysThatItReadsAndThenRefreshesNoFurther) {
    open();
    EXPECT_FALSE(isShown("readingLabel"));
    EXPECT_TRUE(isEnabled("refreshPrintersButton"));
    have(model->refreshing, true);
    EXPECT_TRUE(isShown("readingLabel"));
    EXPECT_EQ(labelText("readingLabel"), "Reading status…");
    EXPECT_FALSE(isEnabled("refreshPrintersButton"));
    have(model->refreshing, false);
    EXPECT_FALSE(isShown("readingLabel"));
}

TEST_F(PrinterSidebarTest, SaysThatTheRefreshFailed) {
    openWithPrinters();
    EXPECT_FALSE(isShown("refreshErrorLabel"));
    haveReadings([](PrinterReadings& printers) { printers.lastRefreshError = QStringLiteral("lpstat is gone"); });
    EXPECT_TRUE(isShown("refreshErrorLabel"));
    EXPECT_EQ(labelText("refreshErrorLabel"),
              "Refresh failed. Any queues shown below are from the last successful reading.");
    EXPECT_THAT(shownRows(), ElementsAre("Other", "W9400*"));
}

TEST_F(PrinterSidebarTest, SaysThatThereAreNoQueuesOnceItKnows) {
    open();
    EXPECT_TRUE(isShown("noPrintersLabel"));
    EXPECT_EQ(labelText("noPrintersLabel"),
              "No configured queues found. You can still import and arrange artwork. This app does not install drivers "
              "or add printers.");
    have(model->refreshing, true);
    EXPECT_FALSE(isShown("noPrintersLabel"));
    have(model->refreshing, false);
    refresh();
    turn();
    EXPECT_FALSE(isShown("noPrintersLabel"));
}

TEST_F(PrinterSidebarTest, ShowsEveryPrinterWithItsState) {
    openWithPrinters();
    EXPECT_THAT(shownRows(), ElementsAre("Other", "W9400*"));
    EXPECT_THAT(shownTexts(), Contains("W9400"));
    EXPECT_THAT(shownTexts(), Contains("is idle."));
    haveReadings(
        [](PrinterReadings& printers) { printers.printers[1].summary = QStringLiteral("is printing & busy"); });
    EXPECT_THAT(shownTexts(), Contains("is printing & busy"));
}

TEST_F(PrinterSidebarTest, SelectsThePrinterThatIsClicked) {
    openWithPrinters();
    clickOn(*row(other));
    settle();
    turn();
    EXPECT_EQ(model->printerReadings().selectedPrinterName, other);
    EXPECT_THAT(shownRows(), ElementsAre("Other*", "W9400"));
}

TEST_F(PrinterSidebarTest, SelectsWhereverTheRowIsClicked) {
    openWithPrinters();
    PrinterRow* clicked = row(other);
    QTest::mouseClick(clicked, Qt::LeftButton, {}, clicked->rect().bottomRight() - QPoint(2, 2));
    EXPECT_EQ(model->printerReadings().selectedPrinterName, other);
}

TEST_F(PrinterSidebarTest, MarksTheSelectedPrinterOnly) {
    openWithPrinters();
    clickOn(*row(queue));
    settle();
    turn();
    EXPECT_THAT(shownRows(), ElementsAre("Other", "W9400*")) << "a second click takes no mark away";
    haveReadings([](PrinterReadings& printers) { printers.selectedPrinterName.clear(); });
    EXPECT_THAT(shownRows(), ElementsAre("Other", "W9400"));
}

TEST_F(PrinterSidebarTest, IsUsableByKeys) {
    openWithPrinters({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    row(QStringLiteral("A"))->setFocus();
    QTest::keyClick(panel->focusWidget(), Qt::Key_Up);
    EXPECT_EQ(panel->focusWidget(), row(QStringLiteral("A")));
    QTest::keyClick(panel->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(panel->focusWidget(), row(QStringLiteral("B")));
    EXPECT_EQ(model->printerReadings().selectedPrinterName, u"A") << "moving on is no choice";
    QTest::keyClick(panel->focusWidget(), Qt::Key_Space);
    EXPECT_EQ(model->printerReadings().selectedPrinterName, u"B");
    settle();
    QTest::keyClick(panel->focusWidget(), Qt::Key_Down);
    QTest::keyClick(panel->focusWidget(), Qt::Key_Down);
    QTest::keyClick(panel->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(model->printerReadings().selectedPrinterName, u"C");
    settle();
    turn();
    EXPECT_THAT(shownRows(), ElementsAre("A", "B", "C*"));
}

TEST_F(PrinterSidebarTest, KeepsTheKeyboardOnAPrinterWhoseNeighboursChange) {
    openWithPrinters({QStringLiteral("B"), QStringLiteral("C")});
    QPointer<PrinterRow> focused = row(QStringLiteral("C"));
    focused->setFocus();
    readings.discoverQueues = {};
    haveReadings([](PrinterReadings& printers) {
        printers.printers = {test::printer(QStringLiteral("A")), test::printer(QStringLiteral("C")),
                             test::printer(QStringLiteral("D"))};
    });
    ASSERT_TRUE(focused);
    EXPECT_EQ(panel->focusWidget(), focused);
    EXPECT_THAT(shownRows(), ElementsAre("A", "C", "D"));
    haveReadings([](PrinterReadings& printers) { std::ranges::reverse(printers.printers); });
    EXPECT_THAT(shownRows(), ElementsAre("D", "C", "A"));
}

TEST_F(PrinterSidebarTest, TellsAScreenReaderWhichPrinterIsSelected) {
    openWithPrinters();
    QAccessibleInterface* selected = QAccessible::queryAccessibleInterface(row(queue));
    EXPECT_EQ(selected->role(), QAccessible::RadioButton);
    EXPECT_EQ(selected->text(QAccessible::Name), u"W9400, is idle.");
    EXPECT_TRUE(selected->state().checked);
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(row(other))->state().checked);
}

TEST_F(PrinterSidebarTest, ShowsNamesAsTheyAreWithoutGrowingWider) {
    const QString name = QStringLiteral("<b>A && B</b>") + QString(200, u'x');
    openWithPrinters({name});
    EXPECT_THAT(shownTexts(), Contains(name.toStdString()));
    EXPECT_EQ(panel->width(), PrinterSidebar::columnWidth);
    EXPECT_LE(row(name)->width(), PrinterSidebar::columnWidth);
    EXPECT_GT(row(name)->height(), 8 * panel->fontMetrics().height()) << "the name takes many lines";
}

TEST_F(PrinterSidebarTest, ScrollsThroughManyPrinters) {
    QStringList names;
    for (int number = 10; number < 60; ++number) {
        names.append(QStringLiteral("Q%1").arg(number));
    }
    openWithPrinters(names);
    PrinterRow* last = row(names.last());
    EXPECT_TRUE(last->visibleRegion().isEmpty());
    row(names.at(names.size() - 2))->setFocus();
    QTest::keyClick(panel->focusWidget(), Qt::Key_Down);
    EXPECT_FALSE(last->visibleRegion().isEmpty());
}

TEST_F(PrinterSidebarTest, WarnsOfAQueueThatIsNotReady) {
    openWithPrinters();
    EXPECT_FALSE(isShown("queueNotReady")) << "nothing is known of it";
    haveState(test::stoppedState(queue));
    EXPECT_TRUE(isShown("queueNotReady"));
    EXPECT_THAT(shownTexts(), Contains("Print queue not ready"));
    EXPECT_THAT(shownTexts(), Contains(model->cachedNativePrintReadiness()->blockingReason->toStdString()));
    haveState(test::readyState(queue));
    EXPECT_FALSE(isShown("queueNotReady"));
    EXPECT_THAT(shownTexts(), Not(Contains("Print queue not ready")));
}

TEST_F(PrinterSidebarTest, WarnsOfAQueueWhoseReadinessIsNotConfirmed) {
    openWithPrinters();
    PrinterTelemetrySnapshot state = test::readyState(queue);
    state.isAcceptingJobs.reset();
    haveState(state);
    EXPECT_TRUE(isShown("queueNotReady"));
}

TEST_F(PrinterSidebarTest, WarnsOfNothingThatIsTooOldToBeTold) {
    openWithPrinters();
    haveState(test::stoppedState(queue));
    services.clock = {800'000'046.0};
    panel->syncFromSession();
    EXPECT_FALSE(isShown("queueNotReady"));
}

TEST_F(PrinterSidebarTest, SaysHowLittleAQueueTells) {
    open();
    EXPECT_THAT(shownTexts(), Contains("Only reported hardware status is shown"));
    EXPECT_THAT(shownTexts(), Contains("A readable queue does not confirm printhead health. Ink, maintenance cartridge "
                                       "or printhead data that is not exposed appears as “Not provided”."));
    EXPECT_EQ(shownTexts().back(),
              "Read-only refresh every 30 seconds\nCanon drivers and system settings are unchanged");
}

TEST_F(PrinterSidebarTest, OpensTheVendorsMonitor) {
    open();
    EXPECT_EQ(buttonText("openMonitorButton"), "Open Canon monitor");
    click("openMonitorButton");
    EXPECT_EQ(model->errorMessage(), u"Canon Printmonitor was not found.");
}

TEST_F(PrinterSidebarTest, SpeaksChinese) {
    openInChinese();
    have(model->refreshing, true);
    haveReadings([](PrinterReadings& printers) {
        printers.lastRefreshError = QStringLiteral("x");
        printers.selectedPrinterName = queue;
        printers.telemetry = test::stoppedState(queue);
    });
    EXPECT_THAT(shownTexts(),
                testing::IsSupersetOf({"打印机", "正在读取状态…", "刷新失败。下方若列出队列，均来自上一次成功的读取。",
                                       "打印队列尚未就绪", "仅显示已上报的硬件状态",
                                       "能读取队列并不代表打印头正常。接口未公开的墨水、维护墨盒或打印头数据"
                                       "显示为“未提供”。",
                                       "每 30 秒只读刷新一次\n佳能驱动和系统设置保持不变"}));
    EXPECT_EQ(labelText("noPrintersLabel"),
              "未找到已配置的打印队列。您仍可导入和排版作品。本应用不会安装驱动或添加打印机。");
    EXPECT_EQ(find("refreshPrintersButton")->accessibleName(), u"刷新打印机");
    EXPECT_EQ(find("refreshPrintersButton")->toolTip(), u"刷新本机 CUPS 队列，不更改任何设置");
    EXPECT_EQ(buttonText("openMonitorButton"), "打开佳能监视器");
}

} // namespace
} // namespace orvex
