#include "Controls/LinkLabel.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace orvex {
namespace {

/// Stands in for the user's browser.
class Browser : public QObject {
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }

    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    QList<QUrl> opened;

    Q_INVOKABLE void open(const QUrl& url) { opened.append(url); }
};

class LinkLabelTest : public ::testing::Test {
protected:
    const QString address = QStringLiteral("https://example.com/a?b=1&c=2");
    Browser browser;
    LinkLabel link{QStringLiteral("Inks & <media>"), address};

    LinkLabelTest() {
        link.show();
        link.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&link));
    }

    void expectOpened() const { EXPECT_EQ(browser.opened, (QList<QUrl>{QUrl(address)})); }
};

TEST_F(LinkLabelTest, OpensItsPageByAClick) {
    QTest::mouseMove(&link, link.rect().center());
    QTest::mouseClick(&link, Qt::LeftButton, {}, link.rect().center());
    expectOpened();
}

TEST_F(LinkLabelTest, OpensItsPageByReturn) {
    link.setFocus();
    QTest::keyClick(&link, Qt::Key_Return);
    expectOpened();
}

TEST_F(LinkLabelTest, OpensItsPageBySpace) {
    link.setFocus();
    QTest::keyClick(&link, Qt::Key_Space);
    expectOpened();
}

TEST_F(LinkLabelTest, IsALinkForAssistantsWhichTheyCanOpen) {
    QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&link);
    EXPECT_EQ(node->role(), QAccessible::Link);
    EXPECT_EQ(node->text(QAccessible::Name).toStdString(), "Inks & <media>");
    EXPECT_TRUE(node->state().focusable);
    QAccessibleActionInterface* actions = node->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_EQ(actions->actionNames().first(), QAccessibleActionInterface::pressAction());
    actions->doAction(QAccessibleActionInterface::pressAction());
    expectOpened();
}

TEST_F(LinkLabelTest, ShowsThatItHasTheKeyboard) {
    link.clearFocus();
    const QImage before = link.grab().toImage();
    link.setFocus();
    EXPECT_NE(link.grab().toImage(), before);
}

} // namespace
} // namespace orvex

#include "LinkLabelTest.moc"
