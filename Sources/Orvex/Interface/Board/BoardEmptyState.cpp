#include "BoardEmptyState.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"

#include <QPainter>

namespace orvex {

BoardEmptyState::BoardEmptyState(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      title_(controls::heading({})),
      add_(controls::button(QStringLiteral("addFirstArtworkButton"), spt("添加第一幅作品", "Add Your First Artwork"),
                            OrvexIcons::Symbol::addArtwork)) {
    setObjectName(QStringLiteral("boardEmptyState"));
    title_->setObjectName(QStringLiteral("emptyCanvasTitle"));
    title_->setAlignment(Qt::AlignHCenter);
    QLabel* text = controls::note(spt("添加作品后，画布只取所需的长度\n底部保留 2.5 英寸白边",
                                      "Add artworks to create only the canvas needed\nA 2.5-inch border remains at "
                                      "the bottom"));
    text->setAlignment(Qt::AlignHCenter);
    controls::makePrimary(*add_, OrvexIcons::Symbol::addArtwork);
    connect(add_, &QPushButton::clicked, &session_, &OrvexModel::importRollArtworks);

    QVBoxLayout* column = controls::column(this);
    column->setContentsMargins(controls::margin, 2, controls::margin, 2);
    column->setSpacing(4);
    column->addStretch();
    column->addWidget(title_);
    column->addWidget(text);
    column->addWidget(add_, 0, Qt::AlignHCenter);
    column->addStretch();
    syncFromSession();
}

void BoardEmptyState::syncFromSession() {
    title_->setText(spt("%1 英寸卷布画板", "%1-inch Roll Canvas").arg(session_.rollWidthLabel()));
    add_->setEnabled(!session_.busy());
}

/// A sheet that is not there yet.
void BoardEmptyState::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QPen pen(OrvexTheme::line, 1.0, Qt::DashLine);
    painter.setPen(pen);
    painter.setBrush(OrvexTheme::surface);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace orvex
