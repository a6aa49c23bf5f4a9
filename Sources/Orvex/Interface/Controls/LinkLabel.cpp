#include "LinkLabel.h"

#include "Theme/OrvexTheme.h"

#include <QAccessibleWidget>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QPainter>
#include <QUrl>

namespace orvex {

namespace {

constexpr int focusRoom = 2; ///< around the text, for the frame that shows where the keyboard is

/// What assistants are told; the toolkit takes a label for a plain text.
class LinkNode : public QAccessibleWidget {
public:
    explicit LinkNode(LinkLabel& link) : QAccessibleWidget(&link, QAccessible::Link), link_(link) {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.linked = true;
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override {
        if (name == pressAction()) {
            link_.open();
            return;
        }
        QAccessibleWidget::doAction(name);
    }

private:
    LinkLabel& link_;
};

QAccessibleInterface* makeNode(const QString&, QObject* object) {
    auto* link = qobject_cast<LinkLabel*>(object);
    return link != nullptr ? new LinkNode(*link) : nullptr;
}

void installNodes() {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeNode);
        return true;
    }();
    (void)isInstalled;
}

} // namespace

LinkLabel::LinkLabel(const QString& text, const QString& address) : address_(address) {
    installNodes();
    setTextFormat(Qt::RichText);
    setText(QStringLiteral("<a href=\"%1\">%2</a>").arg(address.toHtmlEscaped(), text.toHtmlEscaped()));
    setTextInteractionFlags(Qt::LinksAccessibleByMouse); // the keyboard is the label's, not the text's
    setFocusPolicy(Qt::StrongFocus);
    setOpenExternalLinks(true);
    setAccessibleName(text);
    setToolTip(address);
    setMargin(focusRoom);
}

void LinkLabel::open() const {
    QDesktopServices::openUrl(QUrl(address_));
}

void LinkLabel::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat()) {
            open();
        }
        return;
    default:
        QLabel::keyPressEvent(event);
    }
}

void LinkLabel::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    update();
}

void LinkLabel::focusOutEvent(QFocusEvent* event) {
    QLabel::focusOutEvent(event);
    update();
}

void LinkLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (hasFocus()) {
        QPainter painter(this);
        painter.setPen(OrvexTheme::accent);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

} // namespace orvex
