#include "Shell/HeaderBar.h"

#include "PanelTest.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class HeaderBarTest : public test::PanelTest<HeaderBar> {
protected:
    HeaderBarTest() {
        readings.readTelemetry = [](const QString& name, const std::stop_token&) {
            return QtFuture::makeReadyFuture(test::readyState(name));
        };
    }

    /// With an artwork on the canvas.
    void openWithArtwork() {
        start();
        import({picture(QStringLiteral("a.png"), 120, 80)});
        open();
    }
};

TEST_F(HeaderBarTest, NamesTheProgramItsVersionAndTheCanvas) {
    open();
    EXPECT_THAT(shownTexts(), ElementsAre("orvex", "Canon iPF9400 · ORVEX 18K · 0.8.4 · 60-inch canvas"));
    model->changeRollWidth(44.5);
    settle();
    turn();
    EXPECT_EQ(labelText("versionLabel"), "Canon iPF9400 · ORVEX 18K · 0.8.4 · 44.5-inch canvas");
}

TEST_F(HeaderBarTest, NamesItsActions) {
    open();
    EXPECT_EQ(buttonText("addArtworksButton"), "Add artworks");
    EXPECT_EQ(buttonText("exportPdfButton"), "Export PDF");
    EXPECT_EQ(buttonText("printRollButton"), "Print roll");
    EXPECT_EQ(find("printRollButton")->toolTip(), u"Open the system print window to print the roll at actual size.");
}

TEST_F(HeaderBarTest, SpeaksChinese) {
    openInChinese();
    EXPECT_THAT(shownTexts(), Contains("佳能 iPF9400 · ORVEX 18K · 0.8.4 · 60 英寸画布"));
    EXPECT_EQ(buttonText("addArtworksButton"), "添加作品");
    EXPECT_EQ(buttonText("exportPdfButton"), "导出 PDF");
    EXPECT_EQ(buttonText("printRollButton"), "打印卷布");
    EXPECT_EQ(find("printRollButton")->toolTip(), u"打开系统打印窗口，按实际尺寸打印卷布。");
}

TEST_F(HeaderBarTest, AddsArtworks) {
    open();
    EXPECT_TRUE(isEnabled("addArtworksButton"));
    click("addArtworksButton");
    ASSERT_EQ(services.openRequests.size(), 1);
    EXPECT_EQ(services.openRequests.first().kind, FileKind::image);
}

TEST_F(HeaderBarTest, AddsAndExportsNothingWhileBusy) {
    openWithArtwork();
    have(model->busy, true);
    EXPECT_FALSE(isEnabled("addArtworksButton"));
    EXPECT_FALSE(isEnabled("exportPdfButton"));
    EXPECT_FALSE(isEnabled("printRollButton"));
    have(model->busy, false);
    EXPECT_TRUE(isEnabled("addArtworksButton"));
    EXPECT_TRUE(isEnabled("exportPdfButton"));
}

TEST_F(HeaderBarTest, ExportsARollWithoutAnIssue) {
    open();
    EXPECT_TRUE(model->rollExportIssue());
    EXPECT_FALSE(isEnabled("exportPdfButton")) << "the canvas is empty";
    import({picture(QStringLiteral("a.png"), 120, 80)});
    turn();
    EXPECT_TRUE(isEnabled("exportPdfButton"));
    click("exportPdfButton");
    ASSERT_EQ(services.saveRequests.size(), 1);
    EXPECT_EQ(services.saveRequests.first().kind, FileKind::pdf);
}

TEST_F(HeaderBarTest, PrintsWhatCanBePrinted) {
    openWithArtwork();
    EXPECT_FALSE(isEnabled("printRollButton")) << "no printer is selected";
    refresh();
    turn();
    EXPECT_TRUE(isEnabled("printRollButton"));
    click("printRollButton");
    test::waitFor([this] { return !services.prints.isEmpty() || model->errorMessage(); });
    settle();
    ASSERT_EQ(services.prints.size(), 1);
}

} // namespace
} // namespace orvex
