#include "BoardTexts.h"
#include "Shell/AccessibleTree.h"
#include "Shell/FullWindowTest.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSpinBox>

#include <map>

namespace orvex::test {

namespace {

class AccessibilityTest : public FullWindowTest {
protected:
    /// Looks at all that there is to hear in each tab, in the panel for many sizes and in the alert.
    void forEachView(const std::function<void(QWidget& view, const std::string& name)>& look) {
        openFull();
        for (int tab = 0; tab < tabs; ++tab) {
            showTab(tab);
            look(*window, "tab " + std::to_string(tab));
        }
        beBusyWith(QStringLiteral("Reading originals"));
        look(*window, "work");
        beFree();
        QDialog& panel = openBatchPanel();
        panel.findChild<QAbstractButton*>(QStringLiteral("batchPasteToggle"))->click();
        settleLayout();
        look(panel, "batch panel");
        panel.close();
        settleLayout();
        look(openAlert(QStringLiteral("<b>a&b</b>")), "alert");
    }

    /// The nodes of one role that are to be heard.
    [[nodiscard]] static QList<AccessibleNode> nodesOf(QWidget& view, QAccessible::Role role) {
        QList<AccessibleNode> nodes = accessible::treeOf(view);
        nodes.removeIf([role](const AccessibleNode& each) { return each.role() != role; });
        return nodes;
    }

    [[nodiscard]] static std::string textOf(QAccessibleInterface* node) {
        return node->text(QAccessible::Name).toStdString();
    }

    /// What tells a node from others: what it says of itself, and which thing its part of the window is about.
    [[nodiscard]] static QString identity(const AccessibleNode& node) {
        QString identity =
            QString::number(node.role()) + u'|' + node.name() + u'|' + node.text(QAccessible::Description);
        for (const QAccessibleInterface* above : node.ancestors) {
            const QString name = above->text(QAccessible::Name);
            identity += name.isEmpty() ? QString() : u'|' + name;
        }
        return identity;
    }
};

} // namespace

TEST_P(AccessibilityTest, AllThatCanBeUsedHasAName) {
    forEachView([](QWidget& view, const std::string& name) {
        int interactive = 0;
        for (const AccessibleNode& each : accessible::treeOf(view)) {
            if (accessible::isInteractive(each.role())) {
                ++interactive;
                EXPECT_FALSE(each.name().trimmed().isEmpty()) << name << ": " << each.place();
            }
        }
        EXPECT_GT(interactive, 0) << name;
    });
}

TEST_P(AccessibilityTest, NoNameShowsMarkupOrDoubledAmpersands) {
    forEachView([](QWidget& view, const std::string& name) {
        for (const AccessibleNode& each : accessible::treeOf(view)) {
            EXPECT_FALSE(each.name().contains(QStringLiteral("&&"))) << name << ": " << each.place();
            EXPECT_FALSE(each.name().contains(QStringLiteral("href"))) << name << ": " << each.place();
            EXPECT_FALSE(each.name().contains(QStringLiteral("&amp;"))) << name << ": " << each.place();
        }
    });
}

TEST_P(AccessibilityTest, ControlsOfOneNameAreToldApart) {
    forEachView([](QWidget& view, const std::string& name) {
        std::map<QString, std::string> known;
        for (const AccessibleNode& each : accessible::treeOf(view)) {
            if (!accessible::isInteractive(each.role())) {
                continue;
            }
            const auto [before, isNew] = known.emplace(identity(each), each.place());
            EXPECT_TRUE(isNew) << name << ": " << each.place() << "\n is said like " << before->second;
        }
    });
}

TEST_P(AccessibilityTest, ControlsHaveTheRoleOfTheirKind) {
    forEachView([](QWidget& view, const std::string&) {
        for (const AccessibleNode& each : accessible::treeOf(view)) {
            const QWidget* widget = each.widget();
            const std::string place = each.place();
            if (qobject_cast<const QLineEdit*>(widget) != nullptr ||
                qobject_cast<const QPlainTextEdit*>(widget) != nullptr) {
                EXPECT_EQ(each.role(), QAccessible::EditableText) << place;
            } else if (qobject_cast<const QComboBox*>(widget) != nullptr) {
                EXPECT_EQ(each.role(), QAccessible::ComboBox) << place;
            } else if (qobject_cast<const QProgressBar*>(widget) != nullptr) {
                EXPECT_EQ(each.role(), QAccessible::ProgressBar) << place;
            } else if (qobject_cast<const QSpinBox*>(widget) != nullptr) {
                EXPECT_EQ(each.role(), QAccessible::SpinBox) << place;
            } else if (widget != nullptr && widget->objectName().endsWith(QStringLiteral("Link"))) {
                EXPECT_EQ(each.role(), QAccessible::Link) << place;
            }
        }
    });
}

TEST_P(AccessibilityTest, FieldsAndChoicesHaveTheirContentAsValue) {
    forEachView([](QWidget& view, const std::string&) {
        for (const AccessibleNode& each : accessible::treeOf(view)) {
            if (const auto* field = qobject_cast<QLineEdit*>(each.widget())) {
                EXPECT_EQ(each.text(QAccessible::Value), field->text()) << each.place();
            } else if (const auto* box = qobject_cast<QComboBox*>(each.widget())) {
                EXPECT_EQ(each.text(QAccessible::Value), box->currentText()) << each.place();
            } else if (const auto* button = qobject_cast<QAbstractButton*>(each.widget())) {
                EXPECT_EQ(static_cast<bool>(each.node->state().checked), button->isChecked()) << each.place();
                EXPECT_EQ(static_cast<bool>(each.node->state().checkable), button->isCheckable()) << each.place();
            }
        }
    });
}

TEST_P(AccessibilityTest, ChoicesFromAListAreLabelled) {
    int boxes = 0;
    forEachView([&boxes](QWidget& view, const std::string&) {
        for (const AccessibleNode& each : nodesOf(view, QAccessible::ComboBox)) {
            ++boxes;
            const auto labels = each.node->relations(QAccessible::Label);
            ASSERT_EQ(labels.size(), 1) << each.place();
            EXPECT_EQ(textOf(labels.first().first), each.widget()->accessibleName().toStdString());
        }
    });
    EXPECT_GE(boxes, 5);
}

TEST_P(AccessibilityTest, FieldsAreLabelledOrStandInAColumn) {
    forEachView([](QWidget& view, const std::string&) {
        for (const AccessibleNode& each : nodesOf(view, QAccessible::EditableText)) {
            const auto* field = qobject_cast<QLineEdit*>(each.widget());
            const bool explainsItself = field == nullptr || !field->placeholderText().isEmpty() ||
                                        qobject_cast<QSpinBox*>(field->parentWidget()) != nullptr;
            EXPECT_TRUE(explainsItself || !each.node->relations(QAccessible::Label).isEmpty()) << each.place();
        }
    });
}

TEST_P(AccessibilityTest, EachArtworkIsANodeOfTheCanvas) {
    openFull();
    const QList<AccessibleNode> canvases = nodesOf(*window, QAccessible::Canvas);
    ASSERT_EQ(canvases.size(), 1);
    EXPECT_EQ(canvases.first().name(), BoardTexts::accessibilityLabel(model->rollLayout()));
    QStringList names;
    for (const AccessibleNode& each : nodesOf(*window, QAccessible::Graphic)) {
        if (each.ancestors.last() == canvases.first().node) {
            names.append(each.name());
        }
    }
    QStringList expected;
    for (const RollArtwork& each : model->rollLayout().items) {
        expected.append(BoardTexts::accessibilityLabel(each));
    }
    EXPECT_EQ(names, expected);
}

TEST_P(AccessibilityTest, TheRowsOfAllArtworksNameArtworkAndRemoval) {
    openFull();
    QSet<QString> names;
    for (const AccessibleNode& each : nodesOf(*window, QAccessible::Cell)) {
        names.insert(each.name());
    }
    EXPECT_EQ(names.size(), 6); // three rows of two cells, each called otherwise
}

TEST_P(AccessibilityTest, ProgressIsNamedAfterTheWorkAndSaysHowFarItIs) {
    openFull();
    beBusyWith(QStringLiteral("Reading originals"));
    const QList<AccessibleNode> bars = nodesOf(*window, QAccessible::ProgressBar);
    ASSERT_EQ(bars.size(), 1);
    EXPECT_EQ(bars.first().name(), QStringLiteral("Reading originals"));
    ASSERT_NE(bars.first().node->valueInterface(), nullptr);
    EXPECT_EQ(bars.first().node->valueInterface()->currentValue().toInt(), 300);
}

TEST_P(AccessibilityTest, TheTabsAreNamedWithoutDoubledAmpersands) {
    openFull();
    QStringList names;
    for (const AccessibleNode& each : nodesOf(*window, QAccessible::PageTab)) {
        names.append(each.name());
    }
    const QStringList english{QStringLiteral("Roll layout"), QStringLiteral("Print queue · 2"),
                              QStringLiteral("Driver diagnostics"), QStringLiteral("Device & colour log")};
    const QStringList chinese{QStringLiteral("卷布排版"), QStringLiteral("待打印队列 · 2"), QStringLiteral("驱动诊断"),
                              QStringLiteral("设备与颜色记录")};
    EXPECT_EQ(names, language() == "zh" ? chinese : english);
}

TEST_P(AccessibilityTest, WhatTheAlertSaysIsRead) {
    openFull();
    QWidget& alert = openAlert(QStringLiteral("The disk is full."));
    QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&alert);
    EXPECT_EQ(node->role(), QAccessible::Dialog);
    EXPECT_EQ(textOf(node), language() == "zh" ? "无法完成操作" : "Could not complete action");
    EXPECT_EQ(node->text(QAccessible::Description).toStdString(), "The disk is full.");
    const QList<AccessibleNode> fields = nodesOf(alert, QAccessible::EditableText);
    ASSERT_EQ(fields.size(), 1);
    EXPECT_TRUE(fields.first().node->state().readOnly);
    EXPECT_EQ(fields.first().text(QAccessible::Value).toStdString(), "The disk is full.");
}

TEST_P(AccessibilityTest, TheItemsOfMenusAreNamedWithOneAmpersand) {
    openFull();
    QStringList names;
    for (QMenu* menu : window->findChildren<QMenu*>()) {
        menu->popup(window->mapToGlobal(QPoint(100, 100)));
        for (const AccessibleNode& item : nodesOf(*menu, QAccessible::MenuItem)) {
            EXPECT_FALSE(item.name().isEmpty()) << item.place();
            EXPECT_FALSE(item.name().contains(QStringLiteral("&&"))) << item.place();
            names.append(item.name());
        }
        menu->close();
    }
    EXPECT_GE(names.size(), 15);
    EXPECT_TRUE(language() == "zh" || names.contains(QStringLiteral("Batch sizes & compact layout…")));
}

TEST_P(AccessibilityTest, ThePartsOfTheWindowAreReadFromLeftToRight) {
    openFull();
    QStringList order;
    const QStringList marks{QStringLiteral("headerBar"),    QStringLiteral("printerSidebar"),
                            QStringLiteral("tabSelector"),  QStringLiteral("rollBoardView"),
                            QStringLiteral("rollGapField"), QStringLiteral("stageRollButton"),
                            QStringLiteral("statusMessage")};
    for (const AccessibleNode& each : accessible::treeOf(*window)) {
        const QString name = each.node->object() != nullptr ? each.node->object()->objectName() : QString();
        if (marks.contains(name)) {
            order.append(name);
        }
    }
    EXPECT_EQ(order, marks);
}

IN_BOTH_LANGUAGES(AccessibilityTest);

} // namespace orvex::test
