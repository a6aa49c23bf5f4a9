#include "Panels/MonitorPanel.h"

#include "PanelTest.h"
#include "PanelTexts.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QSpinBox>
#include <QWheelEvent>

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;

PrintObservation observation(int number, const QString& note = {}) {
    PrintObservation observation;
    observation.sequenceNumber = number;
    observation.note = note;
    return observation;
}

class MonitorPanelTest : public test::PanelTest<MonitorPanel> {
protected:
    void haveState(const PrinterTelemetrySnapshot& state) {
        haveReadings([&](PrinterReadings& printers) { printers.telemetry = state; });
    }

    /// The texts of the table, line by line.
    [[nodiscard]] std::vector<std::string> table() const {
        std::vector<std::string> texts;
        for (const QLabel* label : find("telemetryTable")->findChildren<QLabel*>()) {
            texts.push_back(label->text().toStdString());
        }
        return texts;
    }

    [[nodiscard]] QSpinBox* sequence() const { return find<QSpinBox>("observationSequenceBox"); }

    [[nodiscard]] QComboBox* result() const { return find<QComboBox>("observationResultBox"); }

    [[nodiscard]] QLineEdit* note() const { return find<QLineEdit>("observationNoteField"); }

    [[nodiscard]] std::vector<std::string> listed() const {
        const QAbstractItemModel* entries = find<QListView>("observationList")->model();
        std::vector<std::string> texts;
        for (int row = 0; row < entries->rowCount(); ++row) {
            texts.push_back(entries->index(row, 0).data().toString().toStdString());
        }
        return texts;
    }

    /// Turns the wheel over a widget that has not the keyboard.
    static void turnWheel(QWidget* over) {
        QWheelEvent event(QPointF(5, 5), over->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(over, &event);
    }
};

// The device

TEST_F(MonitorPanelTest, SaysWhereItsReadingsComeFrom) {
    open();
    EXPECT_THAT(shownTexts(), IsSupersetOf({"Device monitor",
                                            "Read the status supplied by the local macOS queue. It may be cached; "
                                            "check the printer panel and Canon monitor for complete information."}));
}

TEST_F(MonitorPanelTest, RefreshesUnlessItDoes) {
    open();
    EXPECT_EQ(buttonText("refreshDeviceButton"), "Refresh");
    have(model->refreshing, true);
    EXPECT_FALSE(isEnabled("refreshDeviceButton"));
    have(model->refreshing, false);
    EXPECT_TRUE(isEnabled("refreshDeviceButton"));
    click("refreshDeviceButton");
    settle();
    EXPECT_EQ(model->printerReadings().printers.size(), 2);
}

TEST_F(MonitorPanelTest, OpensTheVendorsMonitor) {
    open();
    EXPECT_EQ(buttonText("openPrintmonitorButton"), "Open Canon Printmonitor");
    click("openPrintmonitorButton");
    EXPECT_EQ(model->errorMessage(), u"Canon Printmonitor was not found.");
}

TEST_F(MonitorPanelTest, SaysThatNothingWasReadYet) {
    open();
    EXPECT_TRUE(isShown("telemetryUnavailableLabel"));
    EXPECT_EQ(labelText("telemetryUnavailableLabel"), "Device information has not been read.");
    EXPECT_FALSE(isShown("telemetryTable"));
    EXPECT_FALSE(isShown("sampledLabel"));
    EXPECT_FALSE(isShown("missingLevelsLabel"));
}

TEST_F(MonitorPanelTest, SaysWhyNothingCouldBeRead) {
    open();
    haveReadings([](PrinterReadings& printers) { printers.telemetryError = QStringLiteral("It timed out."); });
    EXPECT_TRUE(isShown("telemetryUnavailableLabel"));
    EXPECT_EQ(labelText("telemetryUnavailableLabel"), "Could not read status: It timed out.");
    EXPECT_FALSE(isShown("telemetryTable"));
}

TEST_F(MonitorPanelTest, ShowsAReadingAndWhatItLacks) {
    open();
    haveState(test::readyState(queue));
    EXPECT_FALSE(isShown("telemetryUnavailableLabel"));
    EXPECT_EQ(labelText("sampledLabel"), "Sampled: " + orvexDateTime({800'000'000.0}).toStdString());
    EXPECT_THAT(table(), ElementsAre("Queue state", "Idle", "Queued jobs", "Not provided", "Maintenance cartridge",
                                     "Not provided", "Printhead", "Not provided"));
    EXPECT_TRUE(isShown("missingLevelsLabel"));
    EXPECT_EQ(labelText("missingLevelsLabel"), "This interface did not provide ink or maintenance cartridge levels. "
                                               "Missing information is not shown as normal.");
    EXPECT_FALSE(isShown("queueReportsLabel"));
}

TEST_F(MonitorPanelTest, ShowsSuppliesAndReports) {
    open();
    PrinterTelemetrySnapshot state = test::stoppedState(queue);
    state.queueReasons = {QStringLiteral("paused")};
    state.markers = {{.index = 0, .name = QStringLiteral("<b>Ink</b> && more"), .level = 64},
                     {.index = 1, .level = -1}};
    haveState(state);
    EXPECT_THAT(table(), IsSupersetOf({"Stopped", "<b>Ink</b> && more", "64%", "Supply 1", "Unknown (-1)"}));
    EXPECT_FALSE(isShown("missingLevelsLabel"));
    EXPECT_TRUE(isShown("queueReportsLabel"));
    EXPECT_EQ(labelText("queueReportsLabel"), "Queue reports: paused\nOut of canvas");
    haveState(test::readyState(queue));
    EXPECT_THAT(table(), Not(Contains("64%")));
    EXPECT_FALSE(isShown("queueReportsLabel"));
}

TEST_F(MonitorPanelTest, TellsAScreenReaderWhatAValueIsOf) {
    open();
    haveState(test::readyState(queue));
    EXPECT_EQ(find("telemetryTable")->findChildren<QLabel*>().at(1)->accessibleName(), u"Queue state: Idle");
}

TEST_F(MonitorPanelTest, KeepsTheTableWhileItsValuesAreTheSame) {
    open();
    haveState(test::readyState(queue));
    const QPointer<QLabel> value = find("telemetryTable")->findChildren<QLabel*>().at(1);
    haveState(test::readyState(queue, 800'000'030.0));
    EXPECT_TRUE(value);
}

// The form

TEST_F(MonitorPanelTest, SaysWhatTheJournalIsFor) {
    open();
    EXPECT_THAT(
        shownTexts(),
        IsSupersetOf({"Continuous printing · Colour observations",
                      "Reported issue: purple patches appear after several prints, in varying positions. Compare "
                      "using the same artwork, media, ICC and quality. If issues appear, follow Canon’s nozzle "
                      "and ink-supply checks. An ICC cannot diagnose or repair hardware faults.",
                      "Observation",
                      "Manual records do not trigger printing, cleaning or calibration, and do not mark a local "
                      "PDF as physically printed."}));
    EXPECT_EQ(buttonText("recordObservationButton"), "Record physical observation");
    EXPECT_EQ(buttonText("exportObservationsButton"), "Export diagnostics & observations…");
    EXPECT_EQ(note()->placeholderText(), u"Position, nozzle-check results, intervals and other notes");
}

TEST_F(MonitorPanelTest, LeadsToTheVendorsGuides) {
    open();
    expectLink("nozzleCheckLink", QStringLiteral("Canon nozzle-check guide ↗"),
               QStringLiteral("https://www.usa.canon.com/support"));
    expectLink("colourCalibrationLink", QStringLiteral("Canon colour-calibration guide ↗"),
               QStringLiteral("https://www.usa.canon.com/support"));
}

TEST_F(MonitorPanelTest, BeginsWithTheSessionsForm) {
    open();
    EXPECT_EQ(sequence()->text(), u"Physical print 1 in this run");
    EXPECT_EQ(result()->currentText(), u"Local purple shift");
    EXPECT_EQ(note()->text(), model->observationForm().observationNote);
}

TEST_F(MonitorPanelTest, StepsThroughTheNumbersFromOne) {
    open();
    sequence()->stepUp();
    EXPECT_EQ(model->observationForm().observationSequence, 2);
    EXPECT_EQ(sequence()->text(), u"Physical print 2 in this run");
    sequence()->stepDown();
    sequence()->stepDown();
    EXPECT_EQ(model->observationForm().observationSequence, 1);
    sequence()->selectAll();
    QTest::keyClicks(sequence(), QStringLiteral("37"));
    EXPECT_EQ(model->observationForm().observationSequence, 37);
}

TEST_F(MonitorPanelTest, ShowsANumberBeyondThoseThatAreTyped) {
    open();
    have(model->observationForm, {.observationSequence = 1'000'000});
    EXPECT_EQ(sequence()->text(), u"Physical print 1000000 in this run");
    EXPECT_EQ(model->observationForm().observationSequence, 1'000'000) << "what is shown is not written back";
    have(model->observationForm, {.observationSequence = 9'000'000'000});
    EXPECT_EQ(model->observationForm().observationSequence, 9'000'000'000);
}

TEST_F(MonitorPanelTest, OffersEveryResult) {
    open();
    std::vector<std::string> offered;
    for (int index = 0; index < result()->count(); ++index) {
        offered.push_back(result()->itemText(index).toStdString());
    }
    EXPECT_THAT(offered, ElementsAre("Color normal", "Local purple shift", "Other issue"));
    result()->setFocus();
    QTest::keyClick(result(), Qt::Key_Down);
    EXPECT_EQ(model->observationForm().observationResult, PrintObservationResult::other);
    ObservationForm form = model->observationForm();
    form.observationResult = PrintObservationResult::normal;
    have(model->observationForm, form);
    EXPECT_EQ(result()->currentText(), u"Color normal");
}

TEST_F(MonitorPanelTest, TakesTheNoteAsItIsTyped) {
    open();
    note()->clear();
    QTest::keyClicks(note(), QStringLiteral("left <b> edge"));
    EXPECT_EQ(model->observationForm().observationNote, u"left <b> edge");
    note()->setCursorPosition(4);
    turn();
    EXPECT_EQ(note()->cursorPosition(), 4);
    have(model->observationForm, {.observationNote = QStringLiteral("other")});
    EXPECT_EQ(note()->text(), u"other");
}

TEST_F(MonitorPanelTest, KeepsTheRestOfTheFormWhenOneFieldChanges) {
    open();
    const ObservationForm form{PrintObservationResult::other, 5, QStringLiteral("note")};
    have(model->observationForm, form);
    sequence()->stepUp();
    EXPECT_EQ(model->observationForm(), (ObservationForm{PrintObservationResult::other, 6, QStringLiteral("note")}));
}

TEST_F(MonitorPanelTest, ChangesNothingByTheWheelInPassing) {
    open();
    const ObservationForm before = model->observationForm();
    note()->setFocus();
    turnWheel(sequence());
    turnWheel(result());
    EXPECT_EQ(model->observationForm(), before);
    EXPECT_EQ(result()->currentText(), u"Local purple shift");
    sequence()->setFocus();
    have(model->observationForm, {.observationSequence = 5});
    turnWheel(sequence());
    EXPECT_EQ(model->observationForm().observationSequence, 4) << "the keyboard is in it";
}

TEST_F(MonitorPanelTest, RecordsAnObservationOnTopOfTheOthers) {
    open();
    EXPECT_THAT(listed(), IsEmpty());
    note()->clear();
    QTest::keyClicks(note(), QStringLiteral("first"));
    click("recordObservationButton");
    sequence()->stepUp();
    click("recordObservationButton");
    const std::string date = orvexDateTime(services.clock).toStdString();
    EXPECT_THAT(listed(), ElementsAre(date + " · Print 3 · Local purple shift\nfirst",
                                      date + " · Print 1 · Local purple shift\nfirst"));
    EXPECT_EQ(sequence()->text(), u"Physical print 4 in this run");
}

TEST_F(MonitorPanelTest, ExportsTheReportWithTheObservations) {
    open();
    click("exportObservationsButton");
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests.first().kind, FileKind::plainText);
}

TEST_F(MonitorPanelTest, ShowsThousandsOfObservationsWithoutAWidgetForEach) {
    open();
    const qsizetype widgets = panel->findChildren<QWidget*>().size();
    QList<PrintObservation> many;
    for (int number = 5000; number > 0; --number) {
        many.append(observation(number, QString(number % 100, u'x')));
    }
    have(model->observations, many);
    EXPECT_EQ(listed().size(), 5000U);
    EXPECT_EQ(panel->findChildren<QWidget*>().size(), widgets);
}

TEST_F(MonitorPanelTest, KeepsTheReadersPlaceInTheList) {
    open();
    const PrintObservation shown = observation(1);
    have(model->observations, {shown});
    auto* list = find<QListView>("observationList");
    list->setCurrentIndex(list->model()->index(0, 0));
    have(model->observations, {observation(2), shown});
    EXPECT_EQ(list->currentIndex().row(), 1);
    have(model->observations, {});
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(MonitorPanelTest, GivesALongNoteTheLinesItNeeds) {
    open();
    have(model->observations, {observation(2, QString(2000, u'x') + QStringLiteral(" end")), observation(1)});
    auto* list = find<QListView>("observationList");
    test::waitFor([list] { return list->visualRect(list->model()->index(1, 0)).isValid(); });
    const int line = list->fontMetrics().height();
    EXPECT_GT(list->visualRect(list->model()->index(0, 0)).height(), 10 * line);
    EXPECT_LT(list->visualRect(list->model()->index(1, 0)).height(), 3 * line);
}

TEST_F(MonitorPanelTest, SpeaksChinese) {
    openInChinese();
    EXPECT_THAT(
        shownTexts(),
        IsSupersetOf(
            {"设备监视", "读取本机 macOS 队列提供的状态。内容可能来自缓存；完整信息请查看打印机面板和佳能监视器。",
             "尚未读取设备信息。", "连续打印 · 颜色观察",
             "已报告问题：连续打印数张后，在不固定的位置出现紫色斑块。请用相同的作品、介质、ICC 和质量进行对比。"
             "如问题重现，请按佳能的喷嘴和供墨检查步骤处理。ICC 无法诊断或修复硬件故障。",
             "观察结果", "手动记录不会触发打印、清洗或校准，也不会将本地 PDF 标记为已实物打印。"}));
    EXPECT_EQ(buttonText("refreshDeviceButton"), "刷新");
    EXPECT_EQ(buttonText("openPrintmonitorButton"), "打开佳能 Printmonitor");
    EXPECT_EQ(buttonText("recordObservationButton"), "记录实物观察");
    EXPECT_EQ(buttonText("exportObservationsButton"), "导出诊断与观察记录…");
    EXPECT_EQ(sequence()->text(), u"本轮第 1 次实物打印");
    EXPECT_EQ(result()->currentText(), u"局部偏紫");
    EXPECT_EQ(note()->placeholderText(), u"位置、喷嘴检查结果、间隔时间和其他备注");
    EXPECT_EQ(find("nozzleCheckLink")->accessibleName(), u"佳能喷嘴检查指南 ↗");
    EXPECT_EQ(find("colourCalibrationLink")->accessibleName(), u"佳能颜色校准指南 ↗");
    haveState(test::readyState(queue));
    EXPECT_EQ(labelText("sampledLabel"), "读取时间：" + orvexDateTime({800'000'000.0}).toStdString());
    EXPECT_THAT(table(), Contains("空闲"));
}

} // namespace
} // namespace orvex
