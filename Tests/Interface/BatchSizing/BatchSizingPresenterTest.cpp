#include "BatchSizing/BatchSizingPresenter.h"

#include "BatchSizing/BatchSizingView.h"
#include "SessionFixture.h"

#include <QAbstractButton>
#include <QMainWindow>
#include <QTest>

namespace orvex::test {
namespace {

class BatchSizingPresenterTest : public SessionTest {
protected:
    BatchSizingPresenterTest() {
        start();
        settle();
        place({artwork(30.0, 20.0), artwork(30.0, 20.0)});
        window = std::make_unique<QMainWindow>();
        new BatchSizingPresenter(*model, window.get());
        window->show();
    }

    ~BatchSizingPresenterTest() override { window.reset(); }

    void settlePanels() {
        settle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    [[nodiscard]] QList<BatchSizingView*> panels() const {
        return window->findChildren<BatchSizingView*>(QStringLiteral("batchSizingView"));
    }

    void present() {
        model->presentBatchSizing();
        settlePanels();
        ASSERT_EQ(panels().size(), 1);
    }

    void click(const char* name) {
        auto* button = panels().first()->findChild<QAbstractButton*>(QString::fromLatin1(name));
        QTest::mouseClick(button, Qt::LeftButton);
        settlePanels();
    }

    std::unique_ptr<QMainWindow> window;
};

TEST_F(BatchSizingPresenterTest, showsNothingUntilItIsAsked) {
    settlePanels();
    EXPECT_TRUE(panels().isEmpty());
}

TEST_F(BatchSizingPresenterTest, opensOnePanelOverItsWindow) {
    present();
    EXPECT_TRUE(panels().first()->isVisible());
    EXPECT_EQ(panels().first()->parentWidget(), window.get());
    EXPECT_EQ(panels().first()->windowModality(), Qt::WindowModal);
    model->setTab(1);
    settlePanels();
    EXPECT_EQ(panels().size(), 1);
}

TEST_F(BatchSizingPresenterTest, opensAPanelThatWasAskedForBefore) {
    model->presentBatchSizing();
    QMainWindow second;
    new BatchSizingPresenter(*model, &second);
    EXPECT_EQ(second.findChildren<BatchSizingView*>().size(), 1);
}

TEST_F(BatchSizingPresenterTest, tellsTheSessionThatThePanelWasCancelled) {
    present();
    const RollLayout before = model->rollLayout();
    click("batchCancelButton");
    EXPECT_FALSE(model->batchSizingPresented());
    EXPECT_TRUE(panels().isEmpty());
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(BatchSizingPresenterTest, tellsTheSessionThatThePanelWasClosedByItsFrame) {
    present();
    panels().first()->close();
    settlePanels();
    EXPECT_FALSE(model->batchSizingPresented());
    EXPECT_TRUE(panels().isEmpty());
}

TEST_F(BatchSizingPresenterTest, tellsTheSessionThatThePanelWasApplied) {
    present();
    const RollLayout before = model->rollLayout();
    click("batchCalculateButton");
    const auto* apply = panels().first()->findChild<QAbstractButton*>(QStringLiteral("batchApplyButton"));
    waitFor([apply] { return apply->isEnabled(); });
    click("batchApplyButton");
    EXPECT_FALSE(model->batchSizingPresented());
    EXPECT_TRUE(panels().isEmpty());
    EXPECT_NE(model->rollLayout(), before);
}

TEST_F(BatchSizingPresenterTest, closesThePanelThatTheSessionNoLongerShows) {
    present();
    model->setBatchSizingPresented(false);
    settlePanels();
    EXPECT_TRUE(panels().isEmpty());
}

TEST_F(BatchSizingPresenterTest, opensAgainOverTheLayoutOfThatTime) {
    present();
    click("batchCancelButton");
    model->removeArtwork(model->rollLayout().items.first().id);
    settlePanels();
    present();
    EXPECT_EQ(panels().first()->findChildren<QWidget*>(QStringLiteral("batchRow0")).size(), 1);
    EXPECT_TRUE(panels().first()->findChildren<QWidget*>(QStringLiteral("batchRow1")).isEmpty());
}

TEST_F(BatchSizingPresenterTest, mayGoWithItsWindowWhileThePanelIsOpen) {
    present();
    window.reset();
    settle();
    EXPECT_TRUE(QApplication::focusWidget() == nullptr);
}

} // namespace
} // namespace orvex::test
