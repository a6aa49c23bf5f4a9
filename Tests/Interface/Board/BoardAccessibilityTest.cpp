#include "BoardTest.h"
#include "BoardTexts.h"

#include <QAccessible>

namespace orvex::test {

namespace {

class BoardAccessibilityTest : public BoardTest {
protected:
    [[nodiscard]] QAccessibleInterface& node() const { return *QAccessible::queryAccessibleInterface(board.get()); }
};

} // namespace

TEST_F(BoardAccessibilityTest, TheBoardIsNamedAfterTheRoll) {
    startWith(1);
    show();
    EXPECT_EQ(node().text(QAccessible::Name), QStringLiteral("60-inch roll canvas, export length 13 inches"));
}

TEST_F(BoardAccessibilityTest, EachArtworkIsANodeWithItsSizeAndPlace) {
    startWith(2);
    show();
    QAccessibleInterface* second = node().child(1);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->text(QAccessible::Name), BoardTexts::accessibilityLabel(item(1)));
    EXPECT_EQ(second->role(), QAccessible::Graphic);
    EXPECT_EQ(second->parent(), &node());
    EXPECT_EQ(node().indexOfChild(second), 1);
    EXPECT_EQ(second->rect().size(), QSize(170, 130));
    EXPECT_EQ(node().childAt(second->rect().center().x(), second->rect().center().y()), second);
}

TEST_F(BoardAccessibilityTest, TheSelectedArtworkSaysSo) {
    startWith(2);
    show();
    EXPECT_FALSE(node().child(0)->state().selected);
    EXPECT_TRUE(node().child(1)->state().selected);
    board->tap(item(0).id);
    turn();
    EXPECT_TRUE(node().child(0)->state().selected);
    EXPECT_TRUE(node().child(0)->state().focused);
}

TEST_F(BoardAccessibilityTest, PressingANodeSelectsItsArtwork) {
    startWith(2);
    show();
    auto* action = node().child(0)->actionInterface();
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
    action->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(model->selectedArtworkID(), item(0).id);
}

TEST_F(BoardAccessibilityTest, ARemovedArtworkIsNoLongerThere) {
    startWith(2);
    show();
    QAccessibleInterface* first = node().child(0);
    const int count = node().childCount();
    RollLayout shorter = model->rollLayout();
    shorter.items.removeFirst();
    SessionBackdoor::set(model->rollLayout, shorter);
    turn();
    EXPECT_EQ(node().childCount(), count - 1);
    EXPECT_FALSE(first->isValid());
    EXPECT_TRUE(first->text(QAccessible::Name).isEmpty());
}

TEST_F(BoardAccessibilityTest, TheWidgetsOfTheBoardFollowItsArtworks) {
    startWith(1);
    show();
    for (int index = 0; index < node().childCount(); ++index) {
        ASSERT_NE(node().child(index), nullptr) << index;
        EXPECT_EQ(node().indexOfChild(node().child(index)), index);
    }
}

} // namespace orvex::test
