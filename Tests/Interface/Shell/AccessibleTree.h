#pragma once

#include <QAccessible>
#include <QList>
#include <QMetaEnum>
#include <QString>
#include <QWidget>

namespace orvex::test {

/// A node of what those who hear the screen are told, with the nodes above it, the nearest last.
struct AccessibleNode {
    QAccessibleInterface* node = nullptr;
    QList<QAccessibleInterface*> ancestors;

    [[nodiscard]] QAccessible::Role role() const { return node->role(); }

    [[nodiscard]] QString text(QAccessible::Text kind) const { return node->text(kind); }

    [[nodiscard]] QString name() const { return text(QAccessible::Name); }

    [[nodiscard]] QWidget* widget() const { return qobject_cast<QWidget*>(node->object()); }

    /// Where it is, for messages of tests.
    [[nodiscard]] std::string place() const {
        QString place;
        for (const QAccessibleInterface* each : ancestors) {
            const QString name = each->object() ? each->object()->objectName() : QString();
            place += name.isEmpty() ? QString() : name + u'/';
        }
        const QString own = node->object() ? node->object()->objectName() : QString();
        return (place + own + QStringLiteral(" role %1 named \"%2\"").arg(role()).arg(name())).toStdString();
    }
};

namespace accessible {

/// All nodes that are not hidden, parents before their children.
inline void collect(QAccessibleInterface* node, const QList<QAccessibleInterface*>& ancestors,
                    QList<AccessibleNode>& into) {
    if (node == nullptr || !node->isValid() || node->state().invisible) {
        return;
    }
    into.append({node, ancestors});
    const QList<QAccessibleInterface*> above = ancestors + QList<QAccessibleInterface*>{node};
    for (int index = 0; index < node->childCount(); ++index) {
        collect(node->child(index), above, into);
    }
}

[[nodiscard]] inline QList<AccessibleNode> treeOf(QWidget& root) {
    QList<AccessibleNode> nodes;
    collect(QAccessible::queryAccessibleInterface(&root), {}, nodes);
    return nodes;
}

/// Whether something can be done, chosen, typed or awaited there.
[[nodiscard]] inline bool isInteractive(QAccessible::Role role) {
    switch (role) {
    case QAccessible::Button:
    case QAccessible::ButtonMenu:
    case QAccessible::ButtonDropDown:
    case QAccessible::Canvas:
    case QAccessible::Cell:
    case QAccessible::CheckBox:
    case QAccessible::ComboBox:
    case QAccessible::EditableText:
    case QAccessible::Graphic:
    case QAccessible::Link:
    case QAccessible::List:
    case QAccessible::ListItem:
    case QAccessible::MenuItem:
    case QAccessible::PageTab:
    case QAccessible::PageTabList:
    case QAccessible::PopupMenu:
    case QAccessible::ProgressBar:
    case QAccessible::RadioButton:
    case QAccessible::SpinBox:
    case QAccessible::Table:
        return true;
    default:
        return false;
    }
}

} // namespace accessible

} // namespace orvex::test
