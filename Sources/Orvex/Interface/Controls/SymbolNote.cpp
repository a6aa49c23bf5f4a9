#include "SymbolNote.h"

#include "Controls/Controls.h"

#include <QHBoxLayout>

namespace orvex {

namespace {

constexpr int pictureSide = 20;

} // namespace

SymbolNote::SymbolNote(const Look& look, QWidget* parent) : QWidget(parent), text_(controls::note(look.text)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(controls::spacing);
    layout->addWidget(controls::picture(OrvexIcons::icon(look.symbol, look.color), pictureSide), 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    QLabel* title = controls::body(look.title);
    controls::makeStrong(*title);
    texts->addWidget(title);
    texts->addWidget(text_);
    layout->addLayout(texts, 1);
}

void SymbolNote::setText(const QString& text) {
    text_->setText(text);
}

} // namespace orvex
