#include "Shell/FullWindowTest.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>

namespace orvex::test {

namespace {

class AmpersandTest : public FullWindowTest {
protected:
    static constexpr auto name = "&File && R&D &Print";

    static bool makesMnemonic(const QString& text) { return !QKeySequence::mnemonic(text).isEmpty(); }

    void openWithAmpersands() {
        const QString text = QString::fromLatin1(name);
        openFull({.artwork = text, .printer = text, .preset = text, .ink = text, .note = text, .failure = text});
    }
};

} // namespace

TEST_P(AmpersandTest, NoTextMakesAKeyThatNobodyChose) {
    openWithAmpersands();
    openBatchPanel();
    for (const QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        EXPECT_TRUE(button->shortcut().isEmpty()) << button->text().toStdString();
    }
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        EXPECT_FALSE(label->buddy() != nullptr && makesMnemonic(label->text())) << label->text().toStdString();
    }
    for (const QAction* action : window->findChildren<QAction*>()) {
        EXPECT_FALSE(makesMnemonic(action->text())) << action->text().toStdString();
    }
    const auto* tabBar = find<QTabBar>("tabSelector");
    for (int tab = 0; tab < tabBar->count(); ++tab) {
        EXPECT_FALSE(makesMnemonic(tabBar->tabText(tab))) << tabBar->tabText(tab).toStdString();
    }
}

TEST_P(AmpersandTest, NamesAreShownWithAllTheirAmpersands) {
    openWithAmpersands();
    int shown = 0;
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        if (label->text().contains(QStringLiteral("R&D"))) {
            EXPECT_TRUE(label->text().contains(QString::fromLatin1(name))) << label->text().toStdString();
            EXPECT_EQ(label->buddy(), nullptr) << "which would take them for keys";
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
            ++shown;
        }
    }
    EXPECT_GE(shown, 8);
    EXPECT_EQ(find<QComboBox>("presetBox")->currentText().toStdString(), name);
}

TEST_P(AmpersandTest, TheProgramsOwnTextsShowOne) {
    openFull();
    const bool isChinese = language() == "zh";
    EXPECT_EQ(find<QTabBar>("tabSelector")->tabText(3).toStdString(),
              isChinese ? "设备与颜色记录" : "Device && colour log");
    EXPECT_EQ(find<QPushButton>("batchSizesButton")->text().toStdString(),
              isChinese ? "批量尺寸与省布排版…" : "Batch Sizes && Optimization…");
    EXPECT_EQ(find<QPushButton>("exportObservationsButton")->text().toStdString(),
              isChinese ? "导出诊断与观察记录…" : "Export diagnostics && observations…");
    EXPECT_EQ(openBatchPanel().windowTitle().toStdString(),
              isChinese ? "批量尺寸与省布排版" : "Batch Sizes & Canvas Optimization");
}

IN_BOTH_LANGUAGES(AmpersandTest);

} // namespace orvex::test
