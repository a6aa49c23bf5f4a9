#include "Controls/WrappingCheckBox.h"
#include "Controls/WrappingLabel.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace orvex {
namespace {

int lineHeight(const QLabel& label) {
    return WrappingLabel(QStringLiteral("x")).heightForWidth(label.maximumWidth());
}

/// The columns in which something is drawn.
int drawnWidth(QWidget& widget) {
    const QImage image = widget.grab().toImage();
    int widest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = widest; x < image.width(); ++x) {
            widest = image.pixelColor(x, y) != image.pixelColor(image.width() - 1, image.height() - 1) ? x : widest;
        }
    }
    return widest;
}

TEST(WrappingLabelTest, BreaksAtWordsAndWithinAWordThatIsTooLong) {
    const WrappingLabel words(QStringLiteral("one two three four"));
    const int half = words.sizeHint().width() * 2 / 3;
    EXPECT_EQ(words.heightForWidth(half), 2 * lineHeight(words));
    const WrappingLabel word(QString(40, u'W'));
    EXPECT_EQ(word.heightForWidth(word.sizeHint().width() / 2 + 20), 2 * lineHeight(word));
    EXPECT_LT(word.minimumSizeHint().width(), 50);
}

TEST(WrappingLabelTest, KeepsLinesThatTheTextHas) {
    const WrappingLabel lines(QStringLiteral("one\ntwo\nthree"));
    EXPECT_EQ(lines.heightForWidth(1000), 3 * lineHeight(lines));
    EXPECT_EQ(lines.text(), QStringLiteral("one\ntwo\nthree"));
}

TEST(WrappingLabelTest, ShowsMarkupAsItStands) {
    const WrappingLabel markup(QStringLiteral("<b>x</b>"));
    EXPECT_EQ(markup.textFormat(), Qt::PlainText);
    EXPECT_GT(markup.sizeHint().width(), 2 * WrappingLabel(QStringLiteral("x")).sizeHint().width());
}

TEST(WrappingLabelTest, TakesADoubledAmpersandForOneWithABuddy) {
    QWidget owner;
    QWidget buddy(&owner);
    WrappingLabel label(QStringLiteral("a && b"), &owner);
    const int plain = label.sizeHint().width();
    label.setBuddy(&buddy);
    EXPECT_LT(label.sizeHint().width(), plain);
    EXPECT_EQ(label.sizeHint(), WrappingLabel(QStringLiteral("a & b")).sizeHint());
}

TEST(WrappingLabelTest, DrawsWithinItsWidth) {
    WrappingLabel label(QString(100, u'W'));
    label.resize(120, label.heightForWidth(120));
    const int drawn = drawnWidth(label);
    EXPECT_GT(drawn, 60);
    EXPECT_LT(drawn, 120);
}

TEST(WrappingCheckBoxTest, GoesOnInFurtherLines) {
    const WrappingCheckBox box(QStringLiteral("box"), QStringLiteral("one two three four five six seven"));
    const int width = box.sizeHint().width();
    EXPECT_GT(box.heightForWidth(width / 2), box.heightForWidth(width));
    EXPECT_EQ(box.accessibleName(), QStringLiteral("one two three four five six seven"));
}

TEST(WrappingCheckBoxTest, IsTurnedByAClickOnItsText) {
    WrappingCheckBox box(QStringLiteral("box"), QStringLiteral("one two three four five six seven"));
    box.resize(120, box.heightForWidth(120));
    box.show();
    const QSignalSpy clicks(&box, &QCheckBox::clicked);
    QTest::mouseClick(&box, Qt::LeftButton, {}, {100, box.height() - 3});
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_TRUE(box.isChecked());
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_FALSE(box.isChecked());
}

} // namespace
} // namespace orvex
