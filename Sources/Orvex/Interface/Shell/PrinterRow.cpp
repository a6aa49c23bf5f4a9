#include "PrinterRow.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"

#include <QKeyEvent>
#include <QPainter>

namespace orvex {

namespace {

constexpr qreal cornerRadius = 5.0;
constexpr int edge = 8;          ///< around the texts
constexpr int markWidth = 3;     ///< of the bar that marks the selected row
constexpr int selectedTint = 46; ///< of 255

} // namespace

PrinterRow::PrinterRow(const PrinterSnapshot& printer, QWidget* parent)
    : QRadioButton(parent),
      name_(printer.name),
      summary_(controls::note()) {
    setObjectName(QStringLiteral("printerRow"));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred); // as narrow as its texts allow
    auto* layout = controls::column(this);
    layout->setContentsMargins(edge + markWidth, edge, edge, edge);
    layout->setSpacing(2);
    QLabel* name = controls::body(name_);
    controls::makeStrong(*name);
    layout->addWidget(name);
    layout->addWidget(summary_);
    for (QLabel* text : {name, summary_}) {
        text->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    setSummary(printer.summary);
}

void PrinterRow::setSummary(const QString& summary) {
    summary_->setText(summary);
    setAccessibleName(spt("%1，%2", "%1, %2").arg(name_, summary));
}

/// Beside its neighbours a row could not lose its mark: there is always one. Here there may be none.
void PrinterRow::setSelected(bool selected) {
    setAutoExclusive(false);
    setChecked(selected);
    setAutoExclusive(true);
}

QSize PrinterRow::sizeHint() const {
    return layout()->sizeHint();
}

QSize PrinterRow::minimumSizeHint() const {
    return layout()->minimumSize();
}

void PrinterRow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
        Q_EMIT stepped(-1);
        return;
    case Qt::Key_Down:
        Q_EMIT stepped(1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        return;
    default:
        QRadioButton::keyPressEvent(event);
    }
}

void PrinterRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor tint = OrvexTheme::accent;
    tint.setAlpha(selectedTint);
    const QColor ground = isChecked() ? tint : underMouse() ? OrvexTheme::surface : QColor(Qt::transparent);
    painter.setPen(hasFocus() ? QPen(OrvexTheme::accent) : QPen(Qt::NoPen));
    painter.setBrush(ground);
    painter.drawRoundedRect(face, cornerRadius, cornerRadius);
    if (isChecked()) {
        const QRectF mark(face.left() + 1.0, face.top() + edge, markWidth, face.height() - 2.0 * edge);
        painter.setPen(Qt::NoPen);
        painter.setBrush(OrvexTheme::accent);
        painter.drawRoundedRect(mark, markWidth / 2.0, markWidth / 2.0);
    }
}

} // namespace orvex
