#include "RollSummaryView.h"

#include "ArtworkTexts.h"
#include "Controls/Controls.h"
#include "Controls/InchFieldView.h"
#include "OrvexLanguage.h"

namespace orvex {

namespace {

RollInchField::Binding gapBinding(OrvexModel& session) {
    return {.read = [&session] { return session.arrangementGap(); },
            .write = [&session](double inches) { session.setRollGap(inches); }};
}

QString sizeText(const OrvexModel& session) {
    return spt("卷布宽度：%1 英寸 · 长度随排版变化\n作品白边：四边各 2.5 英寸\n裁剪虚线：印在白边外沿",
               "Roll width: %1 in · Length adjusts to the layout\nArtwork borders: 2.5 in on every side\nTrim dashes: "
               "printed at the outer border edge")
        .arg(session.rollWidthLabel());
}

} // namespace

RollSummaryView::RollSummaryView(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void RollSummaryView::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    QVBoxLayout& layout = card->content();
    layout.addWidget(controls::heading(spt("卷布排版", "Roll Layout")));
    layout.addWidget(size_ = controls::named(QStringLiteral("rollSummarySize"), controls::body()));
    layout.addWidget(controls::note(
        spt("自动紧凑排列时手裁框之间不留间距，优先填补空位。每幅作品保留各自的白边。",
            "Auto Pack uses no gap between frames and prioritizes filling empty space. Each artwork keeps its own "
            "border.")));
    addGap(layout);
    addNews(layout);
    layout.addWidget(controls::note(
        spt("紧贴卷布边缘的裁剪虚线可能落在驱动的不可打印区域内。如需完整的边线，请缩小作品并向内移动。",
            "Trim dashes at the roll edge may fall within the driver’s unprintable area. For a complete edge line, "
            "reduce the artwork size and move it inward.")));
}

void RollSummaryView::addGap(QLayout& layout) {
    gap_ = new InchFieldView({.name = QStringLiteral("rollGapField"),
                              .label = spt("自定义手裁框间距", "Custom frame gap"),
                              .unit = spt("英寸", "in")},
                             gapBinding(session_));
    arrange_ =
        controls::button(QStringLiteral("arrangeWithGapButton"), spt("按自定义间距排列", "Arrange with Custom Gap"));
    layout.addWidget(gap_);
    layout.addWidget(arrange_);
    layout.addWidget(controls::note(
        spt("自定义间距加在手裁框之间。自动紧凑排列始终使用零间距，并保持作品尺寸。",
            "The custom gap goes between trim frames. Auto Pack always uses zero gap and keeps artwork sizes.")));
}

void RollSummaryView::addNews(QLayout& layout) {
    layout.addWidget(controls::note(
        spt("排版文件保存作品尺寸、位置和原图引用。介质和 ICC 选择由打印预设保存。",
            "Layout files save artwork sizes, positions, and original-file references. Media and ICC choices use print "
            "presets.")));
    layout.addWidget(saveMessage_ = controls::named(QStringLiteral("rollSaveMessage"), controls::body()));
    layout.addWidget(loadWarnings_ = controls::named(QStringLiteral("rollLoadWarnings"), controls::warning()));
    layout.addWidget(advisory_ = controls::named(QStringLiteral("rollAdvisory"), controls::warning()));
}

void RollSummaryView::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &RollSummaryView::syncFromSession);
    connect(arrange_, &QPushButton::clicked, &session_, [this] { session_.arrangeRoll(false); });
}

void RollSummaryView::syncFromSession() {
    size_->setText(sizeText(session_));
    gap_->syncFromSession();
    gap_->setEnabled(!session_.busy());
    arrange_->setEnabled(session_.canArrangeRoll());
    controls::setOptionalText(*saveMessage_, session_.rollSaveMessage());
    controls::setOptionalText(
        *loadWarnings_,
        ArtworkTexts::loadWarnings(session_.rollLayout().items, session_.rollLoadWarnings()).join(u'\n'));
    controls::setOptionalText(*advisory_, session_.rollAdvisory());
}

} // namespace orvex
