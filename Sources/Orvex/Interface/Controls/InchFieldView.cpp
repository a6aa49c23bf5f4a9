#include "InchFieldView.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr int usualFieldWidth = 84;
constexpr int aroundNumber = 14; ///< the field's frame, and the room for the cursor

/// For the longest number, with larger letters than usual, too.
int fieldWidth(const QWidget& field) {
    return std::max(usualFieldWidth, field.fontMetrics().horizontalAdvance(QStringLiteral("1234.5678")) + aroundNumber);
}

int widestUnit(const QLabel& label) {
    const QFontMetricsF metrics(label.font());
    const qreal width = std::max(metrics.horizontalAdvance(spt("英寸", "in")), metrics.horizontalAdvance(u'%'));
    return static_cast<int>(std::ceil(width));
}

} // namespace

void CommittingField::commitEditingIn(const QWidget& window) {
    if (auto* field = qobject_cast<CommittingField*>(window.focusWidget())) {
        field->commitEditing();
    }
}

bool isAwayForAWhile(Qt::FocusReason reason) {
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}

class InchFieldView::Field : public CommittingField {
public:
    Field(RollInchField::Binding value, bool artworkSize)
        : artworkSize_(artworkSize),
          rules_(std::make_unique<RollInchField>(std::move(value), artworkSize)) {
        setFixedWidth(fieldWidth(*this));
        setAcceptDrops(false); // files that are dropped on it are meant for the canvas
        setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        connect(this, &QLineEdit::textEdited, this, [this](const QString& text) { rules_->type(text); });
        connect(this, &QLineEdit::returnPressed, this, &Field::commitEditing);
        showDraft();
    }

    void commitEditing() override {
        rules_->commit();
        showDraft();
    }

    void rebind(RollInchField::Binding value) {
        rules_->commit();
        const bool wasFocused = rules_->focused();
        rules_ = std::make_unique<RollInchField>(std::move(value), artworkSize_);
        if (wasFocused) {
            rules_->takeFocus();
        }
        showDraft();
    }

    void syncValue() {
        rules_->syncValue();
        showDraft();
    }

protected:
    /// The keyboard may have gone elsewhere while the window was without it.
    bool event(QEvent* event) override {
        if (event->type() == QEvent::WindowActivate && rules_->focused() && window()->focusWidget() != this) {
            rules_->leaveFocus();
            showDraft();
        }
        return CommittingField::event(event);
    }

    void focusInEvent(QFocusEvent* event) override {
        if (!isAwayForAWhile(event->reason())) {
            rules_->takeFocus();
            showDraft();
        }
        QLineEdit::focusInEvent(event);
    }

    void focusOutEvent(QFocusEvent* event) override {
        if (!isAwayForAWhile(event->reason())) {
            rules_->leaveFocus();
            showDraft();
        }
        QLineEdit::focusOutEvent(event);
    }

    /// Escape takes back what was typed.
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() != Qt::Key_Escape) {
            QLineEdit::keyPressEvent(event);
            return;
        }
        rules_->type(RollInchField::format(rules_->editBaseline(), artworkSize_));
        showDraft();
    }

private:
    void showDraft() {
        if (text() != rules_->draft()) {
            setText(rules_->draft());
        }
    }

    const bool artworkSize_;
    std::unique_ptr<RollInchField> rules_;
};

InchFieldView::InchFieldView(const Look& look, RollInchField::Binding value, QWidget* parent)
    : QWidget(parent),
      field_(new Field(std::move(value), look.artworkSize)) {
    field_->setObjectName(look.name);
    field_->setAccessibleName(look.label);
    field_->setAccessibleDescription(look.unit);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(controls::spacing);
    QLabel* label = controls::body(controls::literal(look.label));
    label->setBuddy(field_);
    layout->addWidget(label, 1);
    layout->addWidget(field_);
    QLabel* unit = controls::note(look.unit);
    unit->setMinimumWidth(widestUnit(*unit)); // fields below each other end at one edge
    layout->addWidget(unit);
}

InchFieldView::~InchFieldView() = default;

void InchFieldView::rebind(RollInchField::Binding value) {
    field_->rebind(std::move(value));
}

void InchFieldView::syncFromSession() {
    field_->syncValue();
}

void InchFieldView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) {
        field_->commitEditing();
    }
    QWidget::hideEvent(event);
}

} // namespace orvex
