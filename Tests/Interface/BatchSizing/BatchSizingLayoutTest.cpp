#include "BatchView.h"
#include "Controls/Controls.h"

#include <QLayout>
#include <QPlainTextEdit>

namespace orvex::test {
namespace {

/// Whether the panel has room for all its texts. A window of its least size is the hardest.
class BatchSizingLayout : public BatchView {
protected:
    void shrink() {
        view->resize(view->minimumSize());
        settleView();
    }

    /// What is cut off, by name or text.
    [[nodiscard]] QStringList cutOff() const {
        QStringList found;
        for (const QLabel* label : view->findChildren<QLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty() && !fits(*label)) {
                found.append(label->text());
            }
        }
        for (const QAbstractButton* button : view->findChildren<QAbstractButton*>()) {
            if (button->isVisible() && button->width() < button->sizeHint().width()) {
                found.append(button->objectName());
            }
        }
        return found;
    }

    void expectRoom() {
        EXPECT_EQ(view->size(), QSize(900, 620));
        EXPECT_LE(view->layout()->totalMinimumHeightForWidth(900), 620);
        EXPECT_EQ(cutOff().join(u'\n').toStdString(), "");
    }

    /// The space between a part and the one below it.
    [[nodiscard]] int below(const char* upper, const char* lower) const {
        return widget(lower)->y() - widget(upper)->geometry().bottom() - 1;
    }

    /// Goes through all that the panel can show.
    void tryEverything() {
        openWithBadRow();
        shrink();
        expectRoom();
        click("batchPasteToggle");
        click("batchCalculateButton");
        EXPECT_STRNE(issueText(), "(none)");
        expectRoom();
        EXPECT_EQ(below("batchPasteEditor", "batchPasteFillButton"), controls::spacing);
        click("batchTick1");
        calculate();
        EXPECT_TRUE(widget("batchRollPreview")->isVisible());
        expectRoom();
        const Barrier barrier;
        click("batchCalculateButton");
        expectRoom();
    }

private:
    static bool fits(const QLabel& label) {
        if (label.hasHeightForWidth()) {
            return label.height() >= label.heightForWidth(label.width());
        }
        return label.width() >= label.sizeHint().width();
    }
};

TEST_F(BatchSizingLayout, sizeFieldsAreOfOneWidthAndHaveRoomForTheirPlaceholders) {
    openTwo();
    for (const char* name : {"batchWidthField0", "batchHeightField0", "batchHeightField1"}) {
        const auto* field = part<QLineEdit>(name);
        EXPECT_EQ(field->width(), 100) << name;
        EXPECT_LE(field->fontMetrics().horizontalAdvance(field->placeholderText()), 90) << name;
    }
}

TEST_F(BatchSizingLayout, hasRoomForItsTexts) {
    tryEverything();
}

TEST_F(BatchSizingLayout, hasRoomForItsChineseTexts) {
    const InChinese chinese;
    tryEverything();
}

TEST_F(BatchSizingLayout, namesEveryControlAndSaysItsName) {
    openTwo();
    click("batchPasteToggle");
    calculate();
    int count = 0;
    for (const QWidget* control : view->findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()) {
            continue;
        }
        ++count;
        EXPECT_TRUE(control->objectName().startsWith(QStringLiteral("batch"))) << control->objectName().toStdString();
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    }
    EXPECT_EQ(count, 19); // all that Tab and the arrows reach
}

} // namespace
} // namespace orvex::test
