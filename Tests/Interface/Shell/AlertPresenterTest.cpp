#include "Shell/AlertPresenter.h"

#include "WindowTest.h"

#include <QClipboard>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>

namespace orvex::test {

namespace {

class AlertPresenterTest : public WindowTest {
protected:
    void fail(const QString& message) {
        SessionBackdoor::set(model->errorMessage, std::optional(message));
        turn();
    }

    void failRefresh(const QString& reason) {
        PrinterReadings failed = model->printerReadings();
        failed.lastRefreshError = reason;
        SessionBackdoor::set(model->printerReadings, failed);
        fail(QStringLiteral("Could not read printer status: ") + reason);
    }

    void recover() {
        PrinterReadings sound = model->printerReadings();
        sound.lastRefreshError.reset();
        SessionBackdoor::set(model->printerReadings, sound);
        turn();
    }

    [[nodiscard]] QList<AlertView*> alerts() const { return window->findChildren<AlertView*>(); }

    void dismiss() const {
        ASSERT_EQ(alerts().size(), 1);
        QTest::mouseClick(alerts().first()->findChild<QPushButton*>(), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        turn();
    }
};

} // namespace

TEST_F(AlertPresenterTest, AnErrorIsShownUnderItsTitleUntilItIsDismissed) {
    start();
    open();
    fail(QStringLiteral("The disk is full."));
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_EQ(alerts().first()->windowTitle(), QStringLiteral("Could not complete action"));
    EXPECT_EQ(alerts().first()->message(), QStringLiteral("The disk is full."));
    EXPECT_TRUE(alerts().first()->isVisible());
    dismiss();
    EXPECT_FALSE(model->errorMessage());
    EXPECT_TRUE(alerts().isEmpty());
}

TEST_F(AlertPresenterTest, AMessageOfRareCharactersIsGoneOnceItIsDismissed) {
    start();
    open();
    const QString rare = QStringLiteral("Summer\u00A0sale\u2028and\u2029more\r\nof\rit.png");
    fail(rare);
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_EQ(alerts().first()->message(), rare);
    dismiss();
    EXPECT_FALSE(model->errorMessage());
    EXPECT_TRUE(alerts().isEmpty());
}

TEST_F(AlertPresenterTest, TheNextErrorTakesThePlaceOfTheOneThatIsShown) {
    start();
    open();
    fail(QStringLiteral("One."));
    fail(QStringLiteral("Two."));
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_EQ(alerts().first()->message(), QStringLiteral("Two."));
    dismiss();
    EXPECT_FALSE(model->errorMessage());
}

TEST_F(AlertPresenterTest, TheSameErrorIsShownAgainWhenACommandFailsAgain) {
    start();
    open();
    fail(QStringLiteral("No."));
    dismiss();
    fail(QStringLiteral("No."));
    EXPECT_EQ(alerts().size(), 1);
}

TEST_F(AlertPresenterTest, AFailingRefreshIsShownOnce) {
    start();
    open();
    failRefresh(QStringLiteral("no answer"));
    dismiss();
    failRefresh(QStringLiteral("no answer"));
    EXPECT_TRUE(alerts().isEmpty());
    EXPECT_FALSE(model->errorMessage());
    failRefresh(QStringLiteral("another reason"));
    EXPECT_EQ(alerts().size(), 1);
}

TEST_F(AlertPresenterTest, ARefreshThatFailsAgainAfterASuccessIsShownAgain) {
    start();
    open();
    failRefresh(QStringLiteral("no answer"));
    dismiss();
    recover();
    failRefresh(QStringLiteral("no answer"));
    EXPECT_EQ(alerts().size(), 1);
}

TEST_F(AlertPresenterTest, AKnownRefreshFailureTakesNoOtherAlertAway) {
    start();
    open();
    failRefresh(QStringLiteral("no answer"));
    dismiss();
    fail(QStringLiteral("The disk is full."));
    failRefresh(QStringLiteral("no answer"));
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_EQ(alerts().first()->message(), QStringLiteral("The disk is full."));
    turn();
    EXPECT_EQ(alerts().size(), 1);
}

TEST_F(AlertPresenterTest, WhatComesInTheMomentOfDismissalIsShownNext) {
    start();
    open();
    fail(QStringLiteral("One."));
    SessionBackdoor::set(model->errorMessage, std::optional(QStringLiteral("Two.")));
    alerts().first()->accept();
    waitFor([this] { return alerts().size() == 1 && alerts().first()->message() == QStringLiteral("Two."); });
}

TEST_F(AlertPresenterTest, AMovementIsNotBrokenOff) {
    startWith(1);
    open();
    ASSERT_TRUE(model->beginArrangeGesture());
    fail(QStringLiteral("No."));
    EXPECT_TRUE(alerts().isEmpty());
    model->endArrangeGesture();
    waitFor([this] { return alerts().size() == 1; });
}

TEST_F(AlertPresenterTest, AnotherDialogIsNotCovered) {
    start();
    open();
    QDialog dialog(window.get());
    dialog.open();
    fail(QStringLiteral("No."));
    EXPECT_TRUE(alerts().isEmpty());
    dialog.close();
    waitFor([this] { return alerts().size() == 1; });
}

TEST_F(AlertPresenterTest, AnErrorOfTheStartIsShownWhenTheWindowOpens) {
    start();
    SessionBackdoor::set(model->errorMessage, std::optional(QStringLiteral("Kept.")));
    open();
    waitFor([this] { return alerts().size() == 1; });
}

TEST_F(AlertPresenterTest, WhatAMessageQuotesIsNoMarkup) {
    start();
    open();
    const QString hostile = QStringLiteral("<b>a&b</b>.png：不能读取");
    fail(hostile);
    EXPECT_EQ(alerts().first()->message(), hostile);
    EXPECT_EQ(alerts().first()->findChild<QPlainTextEdit*>()->toPlainText(), hostile);
}

TEST_F(AlertPresenterTest, AMessageIsAsHighAsItsTextUntilItScrolls) {
    start();
    open();
    fail(QStringLiteral("No."));
    auto* text = alerts().first()->findChild<QPlainTextEdit*>();
    const int line = text->fontMetrics().lineSpacing();
    EXPECT_LT(text->height(), 3 * line);
    EXPECT_EQ(text->verticalScrollBar()->maximum(), 0);
    fail(QStringLiteral("No.\n").repeated(5) + QStringLiteral("No."));
    EXPECT_GE(text->height(), 6 * line);
    EXPECT_EQ(text->verticalScrollBar()->maximum(), 0);
    fail(QStringLiteral("No.\n").repeated(500));
    EXPECT_LT(alerts().first()->height(), window->height());
    EXPECT_GT(text->verticalScrollBar()->maximum(), 400);
}

TEST_F(AlertPresenterTest, AMessageCanBeCopied) {
    start();
    open();
    fail(QStringLiteral("/a/b.png"));
    auto* text = alerts().first()->findChild<QPlainTextEdit*>();
    text->selectAll();
    QTest::keyClick(text, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/a/b.png"));
}

TEST_F(AlertPresenterTest, ReturnAndEscapeCloseTheAlert) {
    start();
    open();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        fail(QStringLiteral("No."));
        ASSERT_EQ(alerts().size(), 1);
        QTest::keyClick(alerts().first()->focusWidget(), key);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        turn();
        EXPECT_TRUE(alerts().isEmpty());
        EXPECT_FALSE(model->errorMessage());
    }
}

} // namespace orvex::test
