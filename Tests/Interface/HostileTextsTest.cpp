#include "Shell/FullWindowTest.h"
#include "Shell/TextFit.h"

#include <QLayout>

namespace orvex::test {

namespace {

/// What a file, a printer or a preset may be called, and what a system may say.
QList<QString> hostileNames() {
    return {
        QString(255, u'W'),
        QStringLiteral("one\ntwo\r\nthree\n\n\nfour"),
        QStringLiteral("<b>bold</b><img src='/etc/passwd'><br>&amp;&lt;"),
        QStringLiteral("&File && &&&Print"),
        QStringLiteral("\u202Egnp.drowkcab\u202C \u2067\u05E9\u05DC\u05D5\u05DD\u2069 \u0645\u0631\u062D\u0628\u0627"),
        QStringLiteral("\t\u0001\u0007\u200B\uFEFF\u2028\u2029"),
        QString(85, QChar(0x6f22)), // 255 bytes
        QStringLiteral("%1 %2 %n %%")};
}

class HostileTextsTest : public FullWindowTest {
protected:
    void openWithHostile(const QString& text) {
        openFull({.artwork = text, .printer = text, .preset = text, .ink = text, .note = text, .failure = text},
                 Size::smallest);
    }

    /// Opens the window with each of the names in all places, and looks at it.
    void forEachName(const std::function<void(const QString& name)>& look) {
        for (const QString& name : hostileNames()) {
            SCOPED_TRACE(name.left(20).toStdString());
            openWithHostile(name);
            look(name);
            beFree();
            window.reset();
        }
    }

    /// The choice and the tip of a file's name may be longer than their place; what is around them must hold.
    void expectWhole(QWidget& view, const std::string& name) {
        for (const std::string& finding : TextFit::findings(view)) {
            const bool isChosenName = finding.find("/presetBox") != std::string::npos;
            EXPECT_TRUE(isChosenName) << name << ": " << finding;
        }
    }
};

} // namespace

TEST_P(HostileTextsTest, TheWindowStaysAsSmallAsItIs) {
    forEachName([this](const QString& name) {
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            EXPECT_EQ(window->centralWidget()->size(), MainWindow::minimumContentSize);
            EXPECT_EQ(window->minimumSizeHint().width(), MainWindow::minimumContentSize.width());
        }
        beBusyWith(name);
        EXPECT_EQ(window->centralWidget()->size(), MainWindow::minimumContentSize);
        EXPECT_LE(window->centralWidget()->layout()->minimumSize().width(), MainWindow::minimumContentSize.width());
    });
}

TEST_P(HostileTextsTest, NothingIsCutOffOrCoveredByThem) {
    forEachName([this](const QString& name) {
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            expectWhole(*window, "tab " + std::to_string(tab));
        }
        beBusyWith(name);
        expectWhole(*window, "work");
    });
}

TEST_P(HostileTextsTest, ThePanelForManySizesKeepsItsSize) {
    forEachName([this](const QString&) {
        QDialog& panel = openBatchPanel();
        EXPECT_EQ(panel.size(), panel.minimumSize());
        expectWhole(panel, "panel");
        panel.close();
        settleLayout();
    });
}

TEST_P(HostileTextsTest, TheAlertStaysWithinTheWindow) {
    forEachName([this](const QString& name) {
        QDialog& alert = openAlert(name);
        EXPECT_LT(alert.width(), window->width());
        EXPECT_LT(alert.height(), window->height());
        expectWhole(alert, "alert");
        alert.close();
        settleLayout();
    });
}

TEST_P(HostileTextsTest, NoLabelTakesThemForMarkup) {
    openWithHostile(QStringLiteral("<b>bold</b>"));
    int shown = 0;
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        if (label->text().contains(QStringLiteral("<b>"))) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
            ++shown;
        }
    }
    EXPECT_GE(shown, 8);
}

IN_BOTH_LANGUAGES(HostileTextsTest);

} // namespace orvex::test
