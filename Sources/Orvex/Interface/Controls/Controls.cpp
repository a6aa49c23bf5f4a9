#include "Controls.h"

#include "Controls/LinkLabel.h"
#include "Controls/WrappingLabel.h"
#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace orvex {

namespace {

constexpr qreal cornerRadius = 6.0;
constexpr int fewestCharacters = 12; // of a choice that are shown in the narrowest place

QLabel* label(const QString& text, const QColor& color) {
    auto* label = new WrappingLabel(text);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

class Picture : public QWidget {
public:
    Picture(const QIcon& icon, int side) : icon_(icon) { setFixedSize(side, side); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        icon_.paint(&painter, rect());
    }

private:
    QIcon icon_;
};

/// Keeps the wheel from a control, always or as long as it is without the keyboard.
class WheelGuard : public QObject {
public:
    enum class Duty { always, unlessFocused };

    WheelGuard(QWidget& guarded, Duty duty) : QObject(&guarded), guarded_(guarded), duty_(duty) {
        guarded_.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool passes = duty_ == Duty::unlessFocused && guarded_.hasFocus();
        if (event->type() != QEvent::Wheel || passes) {
            return QObject::eventFilter(watched, event);
        }
        event->ignore(); // so that what the field stands in gets it
        return true;
    }

private:
    QWidget& guarded_;
    const Duty duty_;
};

/// Never narrower than its content, which scrolls in height only, and always to where the keyboard is.
class ColumnArea : public QScrollArea {
public:
    ColumnArea() { connect(qApp, &QApplication::focusChanged, this, &ColumnArea::follow); }

    [[nodiscard]] QSize minimumSizeHint() const override {
        const int content = std::max(widget()->minimumSizeHint().width(), widget()->minimumWidth());
        const int bar = verticalScrollBar()->sizeHint().width();
        return {content + bar, QScrollArea::minimumSizeHint().height()};
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == widget() && event->type() == QEvent::LayoutRequest) {
            updateGeometry();
        }
        return QScrollArea::eventFilter(watched, event);
    }

private:
    /// What is clicked stays below the pointer.
    void follow(const QWidget*, const QWidget* focused) {
        if (focused == nullptr || !widget()->isAncestorOf(focused) || QApplication::mouseButtons() != Qt::NoButton) {
            return;
        }
        const QPoint middle = focused->mapTo(widget(), focused->rect().center());
        ensureVisible(middle.x(), middle.y(), 0, focused->height() / 2 + controls::spacing);
    }
};

QList<controls::Choice> choicesOf(const QComboBox& box) {
    QList<controls::Choice> choices;
    for (int index = 0; index < box.count(); ++index) {
        choices.append({box.itemText(index), box.itemData(index).toString()});
    }
    return choices;
}

} // namespace

QString controls::literal(const QString& text) {
    return QString(text).replace(u'&', QStringLiteral("&&"));
}

QString controls::toolTip(const QString& text) {
    return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

QFont controls::resized(const QFont& font, double factor) {
    QFont other = font;
    other.setPointSizeF(QFontInfo(font).pointSizeF() * factor); // a font given in pixels does not know its points
    return other;
}

// Texts

QLabel* controls::heading(const QString& text) {
    QLabel* heading = label(text, OrvexTheme::text);
    QFont font = resized(heading->font(), 1.15);
    font.setBold(true);
    heading->setFont(font);
    return heading;
}

QLabel* controls::body(const QString& text) {
    return label(text, OrvexTheme::text);
}

QLabel* controls::note(const QString& text) {
    return label(text, OrvexTheme::muted);
}

QLabel* controls::warning(const QString& text) {
    return label(text, OrvexTheme::danger);
}

void controls::makeStrong(QLabel& label) {
    QFont font = label.font();
    font.setBold(true);
    label.setFont(font);
}

void controls::setOptionalText(QLabel& label, const std::optional<QString>& text) {
    label.setText(text.value_or(QString()));
    label.setVisible(text && !text->isEmpty());
}

// Controls

QPushButton* controls::button(const QString& name, const QString& text) {
    auto* button = new QPushButton(literal(text));
    button->setObjectName(name);
    button->setAccessibleName(text);
    button->setAutoDefault(false);
    return button;
}

QPushButton* controls::button(const QString& name, const QString& text, OrvexIcons::Symbol symbol) {
    QPushButton* made = button(name, text);
    made->setIcon(OrvexIcons::icon(symbol));
    return made;
}

QPushButton* controls::iconButton(const QString& name, const QString& label, OrvexIcons::Symbol symbol) {
    QPushButton* made = button(name, QString());
    made->setIcon(OrvexIcons::icon(symbol));
    made->setAccessibleName(label);
    made->setToolTip(label);
    return made;
}

void controls::makePrimary(QPushButton& button) {
    QPalette palette = button.palette();
    palette.setColor(QPalette::Active, QPalette::Button, OrvexTheme::accent);
    palette.setColor(QPalette::Inactive, QPalette::Button, OrvexTheme::accent);
    palette.setColor(QPalette::Active, QPalette::ButtonText, OrvexTheme::onAccent);
    palette.setColor(QPalette::Inactive, QPalette::ButtonText, OrvexTheme::onAccent);
    button.setPalette(palette);
}

void controls::makePrimary(QPushButton& button, OrvexIcons::Symbol symbol) {
    makePrimary(button);
    button.setIcon(OrvexIcons::icon(symbol, OrvexTheme::onAccent));
}

void controls::makeDestructive(QPushButton& button) {
    QPalette palette = button.palette();
    palette.setColor(QPalette::Active, QPalette::ButtonText, OrvexTheme::danger);
    palette.setColor(QPalette::Inactive, QPalette::ButtonText, OrvexTheme::danger);
    button.setPalette(palette);
}

QComboBox* controls::choiceBox(const QString& name) {
    auto* box = named(name, new QComboBox);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(fewestCharacters);
    ignoreWheelUnlessFocused(*box);
    return box;
}

QLineEdit* controls::textField(const QString& name) {
    QLineEdit* field = named(name, new QLineEdit);
    field->setAcceptDrops(false); // files that are dropped on it are meant for the canvas
    return field;
}

QWidget* controls::labelled(const QString& label, QWidget* control) {
    auto* pair = new QWidget;
    auto* layout = column(pair);
    layout->setSpacing(2);
    QLabel* name = note(literal(label));
    name->setBuddy(control);
    control->setAccessibleName(label);
    layout->addWidget(name);
    layout->addWidget(control);
    return pair;
}

QLabel* controls::link(const QString& name, const QString& text, const QString& address) {
    return named(name, new LinkLabel(text, address));
}

QWidget* controls::picture(const QIcon& icon, int side) {
    return new Picture(icon, side);
}

void controls::ignoreWheelUnlessFocused(QWidget& field) {
    field.setFocusPolicy(Qt::StrongFocus);
    new WheelGuard(field, WheelGuard::Duty::unlessFocused);
}

void controls::ignoreWheel(QWidget& control) {
    new WheelGuard(control, WheelGuard::Duty::always);
}

void controls::setChoices(QComboBox& box, const QList<Choice>& choices, const QString& current) {
    const QSignalBlocker blocker(box);
    if (choicesOf(box) != choices) {
        box.clear();
        for (const Choice& choice : choices) {
            box.addItem(choice.text, choice.value);
        }
    }
    box.setCurrentIndex(box.findData(current));
}

void controls::setFieldText(QLineEdit& field, const QString& text) {
    if (field.text() == text) {
        return;
    }
    const QSignalBlocker blocker(field);
    field.setText(text);
}

// Arrangement

QVBoxLayout* controls::column(QWidget* owner) {
    auto* layout = new QVBoxLayout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QHBoxLayout* controls::row() {
    auto* layout = new QHBoxLayout;
    layout->setSpacing(spacing);
    return layout;
}

QScrollArea* controls::scrolling(QWidget* content) {
    auto* area = new ColumnArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // it scrolls by the keys that its content leaves to it
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(content);
    return area;
}

// Card

Card::Card(QWidget* parent) : QWidget(parent), content_(controls::column(this)) {
    content_->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(OrvexTheme::line);
    painter.setBrush(OrvexTheme::surface);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

} // namespace orvex
