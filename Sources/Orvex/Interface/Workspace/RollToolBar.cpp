#include "RollToolBar.h"

#include "BoardZoom.h"
#include "Controls/Controls.h"
#include "Controls/FlowLayout.h"
#include "Controls/InchFieldView.h"
#include "OrvexLanguage.h"

#include <QMenu>

namespace orvex {

namespace {

constexpr int zoomTextWidth = 44;

RollInchField::Binding rollWidth(OrvexModel& session) {
    return {.read = [&session] { return session.rollLayout().widthInches; },
            .write = [&session](double inches) { session.changeRollWidth(inches); }};
}

} // namespace

RollToolBar::RollToolBar(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void RollToolBar::build() {
    auto* layout = controls::column(this);
    layout->addWidget(titleLine());
    layout->addWidget(widthRow());
    layout->addWidget(commands());
}

QWidget* RollToolBar::titleLine() {
    auto* line = new QWidget;
    auto* layout = new FlowLayout(line);
    layout->addWidget(title_ = controls::named(QStringLiteral("rollTitleLine"), controls::heading({})));
    layout->addWidget(count_ = controls::named(QStringLiteral("rollArtworkCount"), controls::note()));
    return line;
}

QWidget* RollToolBar::widthRow() {
    auto* part = new QWidget;
    auto* layout = controls::column(part);
    layout->setSpacing(controls::spacing / 2);
    width_ = new InchFieldView(
        {.name = QStringLiteral("rollWidthField"), .label = spt("画布宽度", "Canvas width"), .unit = spt("英寸", "in")},
        rollWidth(session_));
    layout->addWidget(width_, 0, Qt::AlignLeft);
    layout->addWidget(controls::named(
        QStringLiteral("rollWidthHelp"),
        controls::note(spt("修改卷布宽度后，按回车键或离开输入框即自动重新排版。作品尺寸和 2.5 英寸白边保持不变。",
                           "After changing roll width, press Return or leave the field to rearrange automatically. "
                           "Artwork sizes and 2.5-inch borders are preserved."))));
    return part;
}

QWidget* RollToolBar::commands() {
    using OrvexIcons::Symbol;
    auto* part = new QWidget;
    auto* layout = new FlowLayout(part);
    layout->addWidget(batch_ = controls::button(QStringLiteral("batchSizesButton"),
                                                spt("批量尺寸与省布排版…", "Batch Sizes & Optimization…")));
    layout->addWidget(rotate_ = controls::button(QStringLiteral("rotateButton"), spt("旋转 90°", "Rotate 90°")));
    rotate_->setToolTip(spt("将所选作品顺时针旋转，保持宽高比例和实际缩放率，宽高互换",
                            "Rotate the selected artwork clockwise, keeping proportions and physical scale while "
                            "swapping width and height"));
    layout->addWidget(pack_ = controls::button(QStringLiteral("autoPackButton"), spt("自动紧凑排列", "Auto Pack")));
    layout->addWidget(
        undo_ = controls::iconButton(QStringLiteral("undoLayoutButton"), spt("撤销排版", "Undo Layout"), Symbol::undo));
    layout->addWidget(
        redo_ = controls::iconButton(QStringLiteral("redoLayoutButton"), spt("重做排版", "Redo Layout"), Symbol::redo));
    layout->addWidget(layoutFile_ = layoutFileMenu());
    layout->addWidget(zoomControls());
    layout->addWidget(snap_ = new QCheckBox(spt("吸附到 0.25 英寸", "Snap to 0.25 in")));
    snap_->setObjectName(QStringLiteral("snapToggle"));
    return part;
}

QPushButton* RollToolBar::layoutFileMenu() {
    auto* button = controls::button(QStringLiteral("layoutFileButton"), spt("排版文件", "Layout File"));
    auto* menu = new QMenu(button);
    menu->addAction(spt("保存排版…", "Save Layout…"), &session_, &OrvexModel::saveRollProject)
        ->setObjectName(QStringLiteral("saveLayoutFileAction"));
    menu->addAction(spt("打开排版…", "Open Layout…"), &session_, &OrvexModel::openRollProject)
        ->setObjectName(QStringLiteral("openLayoutFileAction"));
    button->setMenu(menu);
    return button;
}

/// One part that keeps together, whatever row it comes into.
QWidget* RollToolBar::zoomControls() {
    using OrvexIcons::Symbol;
    auto* part = new QWidget;
    auto* layout = new QHBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(controls::spacing / 2);
    layout->addWidget(zoomOut_ = controls::iconButton(QStringLiteral("zoomOutButton"),
                                                      spt("缩小画布", "Zoom out canvas"), Symbol::zoomOut));
    layout->addWidget(zoom_ = controls::named(QStringLiteral("zoomText"), controls::body()));
    zoom_->setAlignment(Qt::AlignCenter);
    const int widestText = zoom_->fontMetrics().horizontalAdvance(BoardZoom::text(BoardZoom::most));
    zoom_->setFixedWidth(std::max(zoomTextWidth, widestText));
    layout->addWidget(zoomIn_ = controls::iconButton(QStringLiteral("zoomInButton"), spt("放大画布", "Zoom in canvas"),
                                                     Symbol::zoomIn));
    layout->addWidget(fitWidth_ = controls::button(QStringLiteral("fitWidthButton"), spt("适合宽度", "Fit Width")));
    return part;
}

void RollToolBar::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &RollToolBar::syncFromSession);
    connect(batch_, &QPushButton::clicked, &session_, &OrvexModel::presentBatchSizing);
    connect(rotate_, &QPushButton::clicked, &session_, &OrvexModel::rotateSelectedArtwork);
    connect(pack_, &QPushButton::clicked, &session_, [this] { session_.arrangeRoll(true); });
    connect(undo_, &QPushButton::clicked, &session_, &OrvexModel::undoRollEdit);
    connect(redo_, &QPushButton::clicked, &session_, &OrvexModel::redoRollEdit);
    connect(zoomOut_, &QPushButton::clicked, &session_, &OrvexModel::zoomOut);
    connect(zoomIn_, &QPushButton::clicked, &session_, &OrvexModel::zoomIn);
    connect(fitWidth_, &QPushButton::clicked, &session_, &OrvexModel::fitWidth);
    connect(snap_, &QCheckBox::clicked, &session_, &OrvexModel::setRollSnapToQuarter);
}

void RollToolBar::syncFromSession() {
    const bool isFree = !session_.busy();
    const auto count = session_.rollLayout().items.size();
    title_->setText(spt("宽 %1 英寸 × 长 %2 英寸", "%1 in wide × %2 in long")
                        .arg(session_.rollWidthLabel(), session_.rollLengthLabel()));
    count_->setText(spt("%1 幅作品", "%1 artworks").arg(count));
    width_->syncFromSession();
    width_->setEnabled(isFree && !session_.arrangingGesture());
    batch_->setEnabled(session_.canArrangeRoll());
    rotate_->setEnabled(isFree && session_.selectedArtwork());
    pack_->setEnabled(session_.canArrangeRoll());
    undo_->setEnabled(session_.canUndoRollEdit());
    redo_->setEnabled(session_.canRedoRollEdit());
    layoutFile_->setEnabled(isFree);
    zoom_->setText(BoardZoom::text(session_.rollZoom()));
    snap_->setChecked(session_.rollSnapToQuarter());
}

} // namespace orvex
