#include "Shell/TextFit.h"

#include "Board/BoardPainter.h"
#include "Board/RollBoardView.h"
#include "Shell/FullWindowTest.h"

namespace orvex::test {

namespace {

class TextFitTest : public FullWindowTest {
protected:
    static void expectFits(QWidget& view, const std::string& name) {
        EXPECT_GT(TextFit::texts(view), 0) << name;
        for (const std::string& finding : TextFit::findings(view)) {
            ADD_FAILURE() << name << ": " << finding;
        }
    }

    void expectAllTabsFit(FullWindowTest::Size size) {
        openFull({}, size);
        if (size == Size::smallest) {
            EXPECT_EQ(window->centralWidget()->size(), MainWindow::minimumContentSize);
        }
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            expectFits(*window, "tab " + std::to_string(tab));
        }
        beBusyWith(language() == "zh" ? QStringLiteral("正在准备 PDF") : QStringLiteral("Preparing the PDF"));
        expectFits(*window, "work");
    }

    void expectEmptyWindowFits() {
        start();
        open().resize(window->minimumSizeHint());
        settleLayout();
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            expectFits(*window, "empty tab " + std::to_string(tab));
        }
    }

    void expectBatchPanelFits() {
        openFull();
        QDialog& panel = openBatchPanel();
        expectFits(panel, "panel");
        panel.findChild<QAbstractButton*>(QStringLiteral("batchPasteToggle"))->click();
        settleLayout();
        expectFits(panel, "panel with pasted sizes");
        panel.findChild<QAbstractButton*>(QStringLiteral("batchCalculateButton"))->click();
        settleLayout();
        expectFits(panel, "panel that calculates");
        waitFor([&panel] {
            return panel.findChild<QAbstractButton*>(QStringLiteral("batchCalculateButton"))->isEnabled();
        });
        settleLayout();
        expectFits(panel, "panel with its result");
    }

    void expectMenusFit() {
        openFull();
        for (QMenu* menu : window->findChildren<QMenu*>()) {
            menu->popup(window->mapToGlobal(QPoint(50, 50)));
            for (QAction* action : menu->actions()) {
                const QStringList columns{QString(action->text()).replace(QStringLiteral("&&"), QStringLiteral("&")),
                                          action->shortcut().toString(QKeySequence::NativeText)};
                const double needed = QFontMetricsF(menu->font()).horizontalAdvance(columns.join(QString()));
                EXPECT_LE(needed, menu->actionGeometry(action).width()) << action->text().toStdString();
                EXPECT_TRUE(menu->rect().contains(menu->actionGeometry(action))) << action->text().toStdString();
            }
            menu->close();
        }
    }

    /// What is written below the end of the roll, in the narrowest board.
    void expectRollEndFits() {
        openFull({}, Size::smallest);
        const auto* board = find<RollBoardView>("rollBoardView");
        const QRectF canvas = board->geometryOfBoard().canvas();
        const QRectF needed =
            QFontMetricsF(board->font())
                .boundingRect(QRectF(0, 0, canvas.width(), 1000), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                              BoardPainter::rollEndText(*model));
        EXPECT_LE(needed.height(), BoardPainter::rollEndHeight);
        EXPECT_LE(needed.width(), canvas.width());
    }
};

/// The same with letters a fifth larger, as for someone who has set their desktop so.
class LargeTextFitTest : public TextFitTest {
protected:
    LargeTextFitTest() { enlargeLetters(1.2); }
};

} // namespace

#define TEXT_FIT_TESTS(Fixture)                                                                                        \
    TEST_P(Fixture, AllTextsFitIntoTheSmallestWindow) {                                                                \
        expectAllTabsFit(Size::smallest);                                                                              \
    }                                                                                                                  \
    TEST_P(Fixture, AllTextsFitIntoTheWindowAsItOpens) {                                                               \
        expectAllTabsFit(Size::byDefault);                                                                             \
    }                                                                                                                  \
    TEST_P(Fixture, AllTextsFitIntoAWindowWithoutArtworks) {                                                           \
        expectEmptyWindowFits();                                                                                       \
    }                                                                                                                  \
    TEST_P(Fixture, AllTextsFitIntoTheSmallestPanelForManySizes) {                                                     \
        expectBatchPanelFits();                                                                                        \
    }                                                                                                                  \
    TEST_P(Fixture, MenusAreAsWideAsTheirItems) {                                                                      \
        expectMenusFit();                                                                                              \
    }                                                                                                                  \
    TEST_P(Fixture, TheTextAtTheEndOfTheRollFits) {                                                                    \
        expectRollEndFits();                                                                                           \
    }                                                                                                                  \
    TEST_P(Fixture, ALongMessageFitsIntoTheAlert) {                                                                    \
        openFull({}, Size::smallest);                                                                                  \
        QDialog& alert = openAlert(QStringLiteral("A long sentence about what is wrong. ").repeated(200));             \
        expectFits(alert, "alert");                                                                                    \
        EXPECT_LT(alert.width(), window->width());                                                                     \
        EXPECT_LT(alert.height(), window->height());                                                                   \
    }                                                                                                                  \
    IN_BOTH_LANGUAGES(Fixture)

TEST(TextFit, FindsWhatIsCutOffAndWhatIsCovered) {
    QWidget root;
    auto* narrow = new QPushButton(QStringLiteral("A long text"), &root);
    auto* over = new QPushButton(QStringLiteral("B"), &root);
    auto* low = new WrappingLabel(QStringLiteral("A text in many lines"), &root);
    narrow->setGeometry(0, 0, 40, 30);
    over->setGeometry(30, 0, 60, 30);
    low->setGeometry(0, 40, 50, 20);
    root.show();
    const std::vector<std::string> findings = TextFit::findings(root);
    ASSERT_EQ(findings.size(), 3U);
    EXPECT_TRUE(std::ranges::any_of(findings, [](const auto& each) { return each.find("A long text") == 2; }));
    EXPECT_TRUE(
        std::ranges::any_of(findings, [](const auto& each) { return each.find("needs a height") != each.npos; }));
    EXPECT_TRUE(std::ranges::any_of(findings, [](const auto& each) { return each.find("overlaps") != each.npos; }));
}

TEXT_FIT_TESTS(TextFitTest);
TEXT_FIT_TESTS(LargeTextFitTest);

} // namespace orvex::test
