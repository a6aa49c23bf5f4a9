#include "Controls/WrappingLabel.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

int lineHeight(const WrappingLabel& label) {
    return label.fontMetrics().lineSpacing();
}

TEST(WrappingLabel, IsAsWideAsAShortText) {
    const WrappingLabel label(QStringLiteral("short"));
    EXPECT_NEAR(label.sizeHint().width(), label.fontMetrics().horizontalAdvance(QStringLiteral("short")), 2);
    EXPECT_NEAR(label.sizeHint().height(), lineHeight(label), 1);
}

TEST(WrappingLabel, BreaksAWordThatIsLongerThanALine) {
    const QString word(400, u'm');
    const WrappingLabel label(word);
    const int width = 200;
    const int lines = label.fontMetrics().horizontalAdvance(word) / width;
    EXPECT_GE(label.heightForWidth(width), lines * lineHeight(label));
    EXPECT_LT(label.minimumSizeHint().width(), width);
}

TEST(WrappingLabel, BreaksBetweenWordsWhereItCan) {
    WrappingLabel label(QStringLiteral("first second"));
    const int widest = label.fontMetrics().horizontalAdvance(QStringLiteral("second")) + 4;
    EXPECT_NEAR(label.heightForWidth(widest), 2 * lineHeight(label), 2);
}

TEST(WrappingLabel, KeepsTheLinesOfItsText) {
    EXPECT_NEAR(WrappingLabel(QStringLiteral("a\nb\r\nc")).heightForWidth(500),
                3 * lineHeight(WrappingLabel(QStringLiteral("a"))), 2);
}

TEST(WrappingLabel, ShowsMarkupAsText) {
    const WrappingLabel label(QStringLiteral("<b>bold</b>"));
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_NEAR(label.sizeHint().width(), label.fontMetrics().horizontalAdvance(label.text()), 2);
}

TEST(WrappingLabel, ShowsADoubledAmpersandOnceBesideABuddy) {
    QLabel buddy;
    WrappingLabel label(QStringLiteral("A && B"));
    const int plain = label.sizeHint().width();
    label.setBuddy(&buddy);
    EXPECT_LT(label.sizeHint().width(), plain);
}

TEST(WrappingLabel, PaintsAllOfItsText) {
    WrappingLabel label(QString(60, u'm'));
    label.resize(120, label.heightForWidth(120));
    const QImage shown = label.grab().toImage();
    const QColor ground = shown.pixelColor(0, 0);
    const int lastLine = shown.height() - lineHeight(label) / 2;
    bool isPainted = false;
    for (int x = 0; x < shown.width(); ++x) {
        isPainted = isPainted || shown.pixelColor(x, lastLine) != ground;
    }
    EXPECT_TRUE(isPainted);
}

} // namespace
} // namespace orvex
