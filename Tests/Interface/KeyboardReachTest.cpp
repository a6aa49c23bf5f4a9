#include "Board/RollKeyboardInput.h"
#include "Controls/LinkLabel.h"
#include "Shell/FullWindowTest.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>

namespace orvex::test {

namespace {

class KeyboardReachTest : public FullWindowTest {
protected:
    static QString nameOf(const QWidget* widget) {
        return widget == nullptr ? QStringLiteral("(none)")
                                 : QStringLiteral("%1 (%2)").arg(widget->objectName(),
                                                                 QLatin1String(widget->metaObject()->className()));
    }

    static std::string text(const QWidget* widget) { return nameOf(widget).toStdString(); }

    /// All that can be used now and takes the keyboard by Tab.
    [[nodiscard]] static QList<QWidget*> usable(QWidget& view) {
        QList<QWidget*> found;
        for (QWidget* each : view.findChildren<QWidget*>()) {
            const bool takesTab = (each->focusPolicy() & Qt::TabFocus) != 0 && each->focusProxy() == nullptr;
            if (each->window() == &view && each->isVisibleTo(&view) && each->isEnabled() && takesTab) {
                found.append(each);
            }
        }
        return found;
    }

    /// Presses Tab from the given widget until it has the keyboard again; each that had it, once.
    [[nodiscard]] QList<QWidget*> tour(QWidget& view, QWidget* first, Qt::Key key = Qt::Key_Tab) const {
        first->setFocus(Qt::TabFocusReason);
        QList<QWidget*> reached{first};
        for (int presses = 0; presses < 300; ++presses) {
            press(view, key);
            QWidget* focused = view.focusWidget();
            if (focused == first) {
                return reached;
            }
            reached.append(focused);
        }
        ADD_FAILURE() << "the keyboard does not come back";
        return reached;
    }

    static void press(QWidget& view, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* focused = view.focusWidget();
        QTest::keyClick(focused != nullptr ? focused : &view, key, modifiers);
        turn();
    }

    /// The first that Tab gives the keyboard to.
    [[nodiscard]] static QWidget* firstOf(QWidget& view) {
        QWidget* each = view.nextInFocusChain();
        while (!usable(view).contains(each)) {
            each = each->nextInFocusChain();
        }
        return each;
    }

    /// In all states in which something can be done by the keyboard.
    void forEachView(const std::function<void(QWidget& view, const std::string& name)>& look) {
        openFull({}, Size::smallest);
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            look(*window, "tab " + std::to_string(tab));
        }
        QDialog& panel = openBatchPanel();
        panel.findChild<QAbstractButton*>(QStringLiteral("batchPasteToggle"))->click();
        settleLayout();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&panel));
        look(panel, "batch panel");
        panel.findChild<QAbstractButton*>(QStringLiteral("batchCalculateButton"))->click();
        waitFor([&] { return panel.findChild<QAbstractButton*>(QStringLiteral("batchApplyButton"))->isEnabled(); });
        settleLayout();
        look(panel, "batch panel with its result");
        panel.close();
        settleLayout();
        QDialog& alert = openAlert(QStringLiteral("No."));
        EXPECT_TRUE(QTest::qWaitForWindowActive(&alert));
        look(alert, "alert");
    }

    /// The part of the window in which a control stands: its widgets are passed through before those of the next.
    [[nodiscard]] static const QWidget* partOf(const QWidget* widget) {
        static const QStringList parts{
            QStringLiteral("orvex::HeaderBar"),       QStringLiteral("orvex::SafetyBanner"),
            QStringLiteral("orvex::PrinterSidebar"),  QStringLiteral("QTabBar"),
            QStringLiteral("orvex::QueuePanel"),      QStringLiteral("orvex::DiagnosticsPanel"),
            QStringLiteral("orvex::RollToolBar"),     QStringLiteral("orvex::RollBoardView"),
            QStringLiteral("orvex::StatusLine"),      QStringLiteral("orvex::BatchSizeEntry"),
            QStringLiteral("orvex::BatchPreviewPane")};
        for (const QWidget* above = widget; above != nullptr; above = above->parentWidget()) {
            const bool isPart = parts.contains(QLatin1String(above->metaObject()->className()));
            if (isPart || qobject_cast<const QScrollArea*>(above) != nullptr) {
                return above;
            }
        }
        return widget->window();
    }

    /// Where it stands in its part.
    [[nodiscard]] static QRect placeOf(const QWidget* widget) {
        return {widget->mapTo(partOf(widget), QPoint()), widget->size()};
    }

    [[nodiscard]] static bool comesAfter(const QWidget* one, const QWidget* other) {
        const QRect place = placeOf(one);
        const QRect next = placeOf(other);
        const bool isSameLine = place.top() < next.center().y() && next.top() < place.center().y();
        return isSameLine ? place.left() < next.left() : place.top() < next.top();
    }

    /// What is seen of a widget and close around it.
    [[nodiscard]] static QImage look(const QWidget& view, const QWidget* widget) {
        constexpr int around = 3;
        const QRect place(widget->mapTo(&view, QPoint()), widget->size());
        return const_cast<QWidget&>(view).grab(place.adjusted(-around, -around, around, around)).toImage();
    }

    /// Whether the whole of a widget lies within all that it stands in, or the most of what is higher than there is
    /// room.
    [[nodiscard]] static bool isInView(const QWidget* widget) {
        QRect seen = widget->rect();
        const QWidget* each = widget;
        for (; each->parentWidget() != nullptr && !each->isWindow(); each = each->parentWidget()) {
            seen = seen.translated(each->pos()) & each->parentWidget()->rect();
        }
        const bool isHigh = widget->height() > 200;
        return seen.width() == widget->width() && seen.height() >= (isHigh ? 150 : widget->height());
    }
};

} // namespace

TEST_P(KeyboardReachTest, TabReachesAllThatCanBeUsed) {
    forEachView([this](QWidget& view, const std::string& name) {
        const QList<QWidget*> reached = tour(view, firstOf(view));
        for (const QWidget* each : usable(view)) {
            EXPECT_TRUE(reached.contains(each)) << name << ": " << text(each);
        }
        for (const QWidget* each : reached) {
            EXPECT_EQ(reached.count(each), 1) << name << ": " << text(each) << " is reached more than once";
        }
    });
}

TEST_P(KeyboardReachTest, ShiftTabGoesTheSameWayBack) {
    forEachView([this](QWidget& view, const std::string& name) {
        QList<QWidget*> forth = tour(view, firstOf(view));
        QList<QWidget*> back = tour(view, firstOf(view), Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        for (qsizetype index = 0; index < std::min(forth.size(), back.size()); ++index) {
            EXPECT_EQ(forth[index], back[index]) << name << ": " << text(forth[index]) << ", " << text(back[index]);
        }
        EXPECT_EQ(forth.size(), back.size()) << name;
    });
}

TEST_P(KeyboardReachTest, TabGoesInTheOrderOfReading) {
    forEachView([this](QWidget& view, const std::string& name) {
        const QList<QWidget*> reached = tour(view, firstOf(view));
        QList<const QWidget*> parts;
        for (qsizetype index = 0; index < reached.size(); ++index) {
            const QWidget* part = partOf(reached[index]);
            if (!parts.isEmpty() && part == parts.last()) {
                EXPECT_TRUE(comesAfter(reached[index - 1], reached[index]))
                    << name << ": " << text(reached[index - 1]) << " before " << text(reached[index]);
                continue;
            }
            const bool isBackInLargerPart = !parts.isEmpty() && part->isAncestorOf(parts.last());
            EXPECT_TRUE(isBackInLargerPart || !parts.contains(part))
                << name << ": back to " << text(part) << " for " << text(reached[index]);
            parts.append(part);
        }
    });
}

TEST_P(KeyboardReachTest, ThePartsOfTheWindowComeFromTopToBottom) {
    openFull({}, Size::smallest);
    QStringList order;
    const QStringList marks{QStringLiteral("addArtworksButton"),     QStringLiteral("panelSettingsButton"),
                            QStringLiteral("refreshPrintersButton"), QStringLiteral("tabSelector"),
                            QStringLiteral("rollWidthField"),        QStringLiteral("rollKeyboard"),
                            QStringLiteral("rollGapField"),          QStringLiteral("artworkTable"),
                            QStringLiteral("mediaNameField")};
    for (const QWidget* each : tour(*window, firstOf(*window))) {
        if (marks.contains(each->objectName())) {
            order.append(each->objectName());
        }
    }
    EXPECT_EQ(order, marks);
}

TEST_P(KeyboardReachTest, WhatHasTheKeyboardShowsIt) {
    forEachView([this](QWidget& view, const std::string& name) {
        for (QWidget* each : tour(view, firstOf(view))) {
            each->setFocus(Qt::TabFocusReason); // scrolls to it
            turn();
            const QImage with = look(view, each);
            each->clearFocus();
            turn();
            EXPECT_TRUE(look(view, each) != with) << name << ": " << text(each);
        }
    });
}

TEST_P(KeyboardReachTest, WhatTakesTheKeyboardScrollsIntoView) {
    forEachView([this](QWidget& view, const std::string& name) {
        QWidget* first = firstOf(view);
        first->setFocus(Qt::TabFocusReason);
        for (qsizetype left = tour(view, first).size(); left > 0; --left) {
            EXPECT_TRUE(isInView(view.focusWidget())) << name << ": " << text(view.focusWidget());
            press(view, Qt::Key_Tab);
        }
        for (qsizetype left = tour(view, first).size(); left > 0; --left) {
            press(view, Qt::Key_Backtab);
            EXPECT_TRUE(isInView(view.focusWidget())) << name << ": backwards: " << text(view.focusWidget());
        }
    });
}

TEST_P(KeyboardReachTest, SpaceAndReturnPressButtons) {
    openFull();
    auto* zoomIn = find<QAbstractButton>("zoomInButton");
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        const double before = model->rollZoom();
        zoomIn->setFocus();
        press(*window, key);
        EXPECT_GT(model->rollZoom(), before) << key;
    }
}

TEST_P(KeyboardReachTest, AHeldReturnPressesOnce) {
    openFull();
    auto* zoomIn = find<QAbstractButton>("zoomInButton");
    zoomIn->setFocus();
    press(*window, Qt::Key_Return);
    const double once = model->rollZoom();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
    QCoreApplication::sendEvent(zoomIn, &held);
    turn();
    EXPECT_EQ(model->rollZoom(), once);
}

TEST_P(KeyboardReachTest, SpaceTicksBoxes) {
    openFull();
    auto* snap = find<QCheckBox>("snapToggle");
    const bool before = model->rollSnapToQuarter();
    snap->setFocus();
    press(*window, Qt::Key_Space);
    EXPECT_EQ(model->rollSnapToQuarter(), !before);
}

TEST_P(KeyboardReachTest, ReturnOpensTheMenuOfAButton) {
    openFull();
    auto* button = find<QPushButton>("layoutFileButton");
    button->setFocus();
    bool isShown = false;
    QObject::connect(button->menu(), &QMenu::aboutToShow, button, [&] {
        isShown = true;
        QMetaObject::invokeMethod(button->menu(), &QMenu::close, Qt::QueuedConnection); // it waits for that
    });
    press(*window, Qt::Key_Return);
    EXPECT_TRUE(isShown);
}

TEST_P(KeyboardReachTest, ArrowsChangeTabs) {
    openFull();
    find<QTabBar>("tabSelector")->setFocus();
    press(*window, Qt::Key_Right);
    EXPECT_EQ(model->tab(), 1);
    press(*window, Qt::Key_Left);
    EXPECT_EQ(model->tab(), 0);
}

TEST_P(KeyboardReachTest, TextsBetweenControlsAreReachedByScrolling) {
    openFull({}, Size::smallest);
    auto* button = find<QAbstractButton>("arrangeWithGapButton");
    button->setFocus(Qt::TabFocusReason);
    const QPoint before = button->mapTo(window.get(), QPoint());
    press(*window, Qt::Key_PageDown);
    EXPECT_LT(button->mapTo(window.get(), QPoint()).y(), before.y());
    EXPECT_EQ(window->focusWidget(), button);
    press(*window, Qt::Key_PageUp);
    EXPECT_EQ(button->mapTo(window.get(), QPoint()), before);
}

TEST_P(KeyboardReachTest, TheSelectedArtworkIsReachedAndMovedByArrows) {
    openFull();
    find<QAbstractButton>("snapToggle")->setFocus();
    press(*window, Qt::Key_Tab);
    EXPECT_EQ(window->focusWidget(), find<RollKeyboardResponderView>("rollKeyboard"));
    const double before = model->selectedArtwork()->xInches;
    press(*window, Qt::Key_Right);
    EXPECT_NEAR(model->selectedArtwork()->xInches, before + 0.01, 1e-9);
}

IN_BOTH_LANGUAGES(KeyboardReachTest);

} // namespace orvex::test
