#include "Panels/DiagnosticsPanel.h"

#include "PanelTest.h"

#include <QScrollBar>

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

class DiagnosticsPanelTest : public test::PanelTest<DiagnosticsPanel> {
protected:
    [[nodiscard]] QPlainTextEdit* report() const { return find<QPlainTextEdit>("diagnosticReport"); }

    /// Long enough to scroll.
    void openWithLongReport() {
        start();
        QList<PrintObservation> observations;
        for (int number = 1; number <= 200; ++number) {
            PrintObservation observation;
            observation.sequenceNumber = number;
            observations.append(observation);
        }
        SessionBackdoor::set(model->observations, observations);
        open();
    }

    void select(int from, int to) {
        QTextCursor cursor = report()->textCursor();
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        report()->setTextCursor(cursor);
    }
};

TEST_F(DiagnosticsPanelTest, SaysWhatIsKnownOfCutting) {
    open();
    EXPECT_THAT(
        shownTexts(),
        IsSupersetOf(
            {"Cutting is disabled on the printer panel. The app does not guess Canon’s private options. Print opens "
             "the native Canon window for you to review and submit the job. Public interfaces cannot verify panel "
             "values; unattended submission remains disabled.",
             "Canon’s manual distinguishes driver Automatic Cutting, panel Cutting Mode and Trim Edge First. Eject may "
             "still use the internal cutter after a button press. Resolve prior hardware faults using the panel and "
             "Canon maintenance workflow first.",
             "Driver capabilities & safety details",
             "Current queue readings follow. They include the device URI; review before sharing."}));
}

TEST_F(DiagnosticsPanelTest, ShowsTheReport) {
    open();
    EXPECT_EQ(report()->toPlainText(), model->diagnosticText());
    refresh();
    turn();
    EXPECT_EQ(report()->toPlainText(), model->diagnosticText());
    EXPECT_TRUE(report()->toPlainText().contains(u"socket://10.0.0.9"));
}

TEST_F(DiagnosticsPanelTest, LetsTheReportBeSelectedAndNotChanged) {
    open();
    EXPECT_TRUE(report()->isReadOnly());
    EXPECT_TRUE(report()->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_TRUE(report()->textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
    const QString before = report()->toPlainText();
    QTest::keyClicks(report(), QStringLiteral("x"));
    EXPECT_EQ(report()->toPlainText(), before);
}

TEST_F(DiagnosticsPanelTest, MakesNoReportThatNobodySees) {
    start();
    panel = std::make_unique<DiagnosticsPanel>(*model);
    EXPECT_EQ(report()->toPlainText(), u"");
    have(model->message, QStringLiteral("something"));
    EXPECT_EQ(report()->toPlainText(), u"");
    panel->show();
    EXPECT_EQ(report()->toPlainText(), model->diagnosticText());
    panel->hide();
    const QString before = report()->toPlainText();
    refresh();
    turn();
    EXPECT_EQ(report()->toPlainText(), before);
    panel->show();
    EXPECT_EQ(report()->toPlainText(), model->diagnosticText());
}

TEST_F(DiagnosticsPanelTest, LeavesTheReadersPlaceAndSelection) {
    openWithLongReport();
    report()->verticalScrollBar()->setValue(40);
    select(5, 20);
    report()->verticalScrollBar()->setValue(40);
    const QString selected = report()->textCursor().selectedText();
    const QString before = report()->toPlainText();
    services.clock = {900'000'000.0};
    have(model->message, QStringLiteral("another state"));
    EXPECT_NE(report()->toPlainText(), before);
    EXPECT_EQ(report()->verticalScrollBar()->value(), 40);
    EXPECT_EQ(report()->textCursor().selectedText(), selected);
}

TEST_F(DiagnosticsPanelTest, SelectsNothingElseInPlaceOfWhatHasChanged) {
    openWithLongReport();
    report()->selectAll();
    services.clock = {900'000'000.0};
    have(model->message, QStringLiteral("another state"));
    EXPECT_FALSE(report()->textCursor().hasSelection());
}

TEST_F(DiagnosticsPanelTest, ExportsTheReport) {
    open();
    EXPECT_EQ(buttonText("exportDiagnosticsButton"), "Export diagnostics…");
    click("exportDiagnosticsButton");
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests.first().kind, FileKind::plainText);
}

TEST_F(DiagnosticsPanelTest, LeadsToTheManuals) {
    open();
    expectLink("canonManualLink", QStringLiteral("Canon iPF9400 original manual ↗"),
               QStringLiteral("https://www.usa.canon.com/support"));
    expectLink("cupsOptionsLink", QStringLiteral("CUPS options guide ↗"),
               QStringLiteral("https://www.cups.org/doc/options.html"));
}

TEST_F(DiagnosticsPanelTest, SpeaksChinese) {
    openInChinese();
    EXPECT_THAT(
        shownTexts(),
        IsSupersetOf({"打印机面板上的裁切已停用。本应用不猜测佳能的私有选项。“打印”会打开佳能原生窗口，由您核对并"
                      "提交作业。公开接口无法核实面板上的值；无人值守自动发送保持停用。",
                      "佳能说明书区分驱动中的 Automatic Cutting（自动裁切）、面板上的 Cutting Mode（裁切模式）和 Trim "
                      "Edge "
                      "First（先裁切前端）。按键后，Eject（退纸）仍可能使用内置刀具。如曾出现硬件故障，请先通过面板和佳"
                      "能维护流程解决。",
                      "驱动能力与安全详情", "以下为当前队列的读取结果，其中包含设备 URI，分享前请先检查。"}));
    EXPECT_EQ(buttonText("exportDiagnosticsButton"), "导出诊断信息…");
    EXPECT_EQ(find("canonManualLink")->accessibleName(), u"佳能 iPF9400 原版说明书 ↗");
    EXPECT_EQ(find("cupsOptionsLink")->accessibleName(), u"CUPS 选项指南 ↗");
    EXPECT_EQ(report()->toPlainText(), model->diagnosticText());
}

} // namespace
} // namespace orvex
