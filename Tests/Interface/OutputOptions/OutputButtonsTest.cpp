#include "OutputOptions/OutputButtons.h"

#include "InChinese.h"
#include "OutputPanelFixture.h"

namespace orvex {
namespace {

class OutputButtonsTest : public test::OutputPanelTest<OutputButtons> {
protected:
    void importOne() {
        import({picture(QStringLiteral("a.png"), 120, 80)});
        announced();
    }
};

TEST_F(OutputButtonsTest, NameWhatTheyDo) {
    EXPECT_EQ(textOf("stageRollButton"), QStringLiteral("Add roll to print queue"));
    EXPECT_EQ(textOf("printRollButton"), QStringLiteral("Print roll…"));
    EXPECT_TRUE(shows("Open the macOS / Canon print window for the roll at actual size. Review paper, canvas, colour "
                      "and cutting settings, then click Print yourself."));
    const test::InChinese chinese;
    open();
    EXPECT_EQ(textOf("stageRollButton"), QStringLiteral("将卷布加入待打印队列"));
    EXPECT_EQ(textOf("printRollButton"), QStringLiteral("打印卷布…"));
    EXPECT_TRUE(
        shows("打开 macOS / 佳能打印窗口，按实际尺寸打印卷布。请核对纸张、画布、颜色和裁切设置，再自行点击“打印”。"));
}

TEST_F(OutputButtonsTest, PutTheRollIntoTheQueue) {
    EXPECT_FALSE(isEnabled("stageRollButton"));
    importOne();
    EXPECT_TRUE(isEnabled("stageRollButton"));
    click("stageRollButton");
    settle();
    EXPECT_EQ(model->jobs().size(), 1);
    put(model->busy, true);
    EXPECT_FALSE(isEnabled("stageRollButton"));
    put(model->busy, false);
}

TEST_F(OutputButtonsTest, SayThatThereIsNoQueue) {
    importOne();
    EXPECT_FALSE(isShown("queueUnavailable"));
    put(model->queueAvailable, false);
    EXPECT_FALSE(isEnabled("stageRollButton"));
    EXPECT_TRUE(shows("The local queue is unavailable. You can still export a PDF; existing jobs are preserved."));
    const test::InChinese chinese;
    open();
    EXPECT_TRUE(shows("本地待打印队列不可用。仍可导出 PDF；现有作业已保留。"));
}

TEST_F(OutputButtonsTest, PrintTheRoll) {
    EXPECT_FALSE(isEnabled("printRollButton"));
    importOne();
    EXPECT_TRUE(isEnabled("printRollButton"));
    put(model->printerReadings, PrinterReadings());
    EXPECT_FALSE(isEnabled("printRollButton"));
}

TEST_F(OutputButtonsTest, OpenThePrintWindow) {
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(test::readyState(name));
    };
    panel.reset();
    start();
    model->refresh();
    settle();
    open();
    importOne();
    click("printRollButton");
    test::waitFor([this] { return !services.prints.isEmpty() || model->errorMessage(); });
    settle();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(services.prints.size(), 1);
}

} // namespace
} // namespace orvex
