#include "Controls/FlowLayout.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace orvex {
namespace {

/// Three parts of 100 x 20, 100 x 40 and 100 x 20.
class FlowLayoutTest : public ::testing::Test {
protected:
    QWidget owner;
    FlowLayout* layout = new FlowLayout(&owner);
    QList<QWidget*> parts;

    FlowLayoutTest() {
        for (const int height : {20, 40, 20}) {
            auto* part = new QWidget;
            part->setFixedSize(100, height);
            layout->addWidget(part);
            parts.append(part);
        }
        layout->setSpacing(10);
    }

    void lay(int width) {
        owner.resize(width, layout->heightForWidth(width));
        layout->setGeometry(owner.rect());
    }
};

TEST_F(FlowLayoutTest, PutsAllInOneRowIfTheyFit) {
    lay(320);
    EXPECT_EQ(owner.height(), 40);
    EXPECT_EQ(parts[0]->pos(), QPoint(0, 10));
    EXPECT_EQ(parts[1]->pos(), QPoint(110, 0));
    EXPECT_EQ(parts[2]->pos(), QPoint(220, 10));
    EXPECT_EQ(layout->sizeHint(), QSize(320, 40));
}

TEST_F(FlowLayoutTest, GoesOnInAFurtherRow) {
    lay(319);
    EXPECT_EQ(owner.height(), 70);
    EXPECT_EQ(parts[2]->pos(), QPoint(0, 50));
}

TEST_F(FlowLayoutTest, PutsAPartInARowOfItsOwnHoweverNarrow) {
    lay(50);
    EXPECT_EQ(owner.height(), 100);
    EXPECT_EQ(parts[1]->pos(), QPoint(0, 30));
    EXPECT_EQ(layout->minimumSize(), QSize(100, 40));
}

TEST_F(FlowLayoutTest, GivesAPartThatIsWiderThanTheRowTheHeightThatItNeedsThere) {
    /// As high as 4000 square points need.
    class Text : public QWidget {
    public:
        Text() {
            QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
            policy.setHeightForWidth(true);
            setSizePolicy(policy);
        }

        [[nodiscard]] QSize sizeHint() const override { return {200, 20}; }

        [[nodiscard]] int heightForWidth(int width) const override { return 4000 / width; }
    };

    auto* text = new Text;
    layout->addWidget(text);
    lay(100);
    EXPECT_EQ(text->geometry(), QRect(0, 110, 100, 40));
    EXPECT_EQ(owner.height(), 150);
}

TEST_F(FlowLayoutTest, LeavesNoRoomForWhatIsHidden) {
    parts[1]->hide();
    lay(320);
    EXPECT_EQ(owner.height(), 20);
    EXPECT_EQ(parts[2]->pos(), QPoint(110, 0));
}

TEST_F(FlowLayoutTest, GivesItsPartsBack) {
    EXPECT_EQ(layout->count(), 3);
    EXPECT_EQ(layout->itemAt(3), nullptr);
    EXPECT_EQ(layout->takeAt(3), nullptr);
    const std::unique_ptr<QLayoutItem> taken(layout->takeAt(0));
    EXPECT_EQ(taken->widget(), parts[0]);
    EXPECT_EQ(layout->count(), 2);
}

} // namespace
} // namespace orvex
