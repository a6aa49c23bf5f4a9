#include "BatchPreviewPane.h"

#include "BatchSizingModel.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexIcons.h"
#include "Theme/OrvexTheme.h"

#include <QCheckBox>
#include <QProgressBar>
#include <QStackedWidget>

namespace orvex {

namespace {

enum Page { emptyPage, calculatingPage, resultPage };

constexpr int symbolSize = 48;
constexpr int progressWidth = 180;

/// A page with something in its middle and a text below that.
QWidget* messagePage(QWidget* centre, QLabel* text) {
    text->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    auto* page = new QWidget;
    QVBoxLayout* column = controls::column(page);
    column->addStretch(1);
    column->addWidget(centre, 0, Qt::AlignHCenter);
    column->addWidget(text);
    column->addStretch(1);
    return page;
}

} // namespace

BatchPreviewPane::BatchPreviewPane(BatchSizingModel& model, const BatchRollPreview::Pictures& pictures, QWidget* parent)
    : QWidget(parent),
      model_(model) {
    build(pictures);
    connect(&model_, &BatchSizingModel::changed, this, &BatchPreviewPane::syncFromModel);
    connect(rotation_, &QCheckBox::clicked, this, [this](bool checked) { model_.setAllowRotation(checked); });
    syncFromModel();
}

void BatchPreviewPane::build(const BatchRollPreview::Pictures& pictures) {
    const QString rotation = spt("允许旋转 90° 以节省画布", "Allow 90° rotation to save canvas");
    rotation_ = new QCheckBox(rotation);
    rotation_->setObjectName(QStringLiteral("batchRotationSwitch"));
    rotation_->setAccessibleName(rotation);
    pages_ = new QStackedWidget;
    pages_->setObjectName(QStringLiteral("batchPreviewPages"));
    pages_->insertWidget(emptyPage, makeEmptyPage());
    pages_->insertWidget(calculatingPage, makeCalculatingPage());
    pages_->insertWidget(resultPage, makeResultPage(pictures));
    auto* card = new Card;
    card->content().addWidget(pages_);
    QVBoxLayout* column = controls::column(this);
    column->addWidget(rotation_);
    column->addWidget(controls::note(
        spt("只修改已选作品的尺寸；全部作品会一起重新排版。每幅作品四周保留 2.5 英寸白边，手裁框之间不留额外间隙。",
            "Only selected artworks are resized; all artworks are rearranged together. Each keeps a 2.5-inch border on "
            "every side, with no extra gap between trim frames.")));
    column->addWidget(card, 1);
}

QWidget* BatchPreviewPane::makeEmptyPage() {
    QWidget* symbol =
        controls::picture(OrvexIcons::icon(OrvexIcons::Symbol::arrangement, OrvexTheme::muted), symbolSize);
    QLabel* text = controls::note(spt("请输入尺寸，然后点击“计算预览”", "Enter sizes, then click “Calculate Preview”"));
    text->setObjectName(QStringLiteral("batchEmptyLabel"));
    return messagePage(symbol, text);
}

QWidget* BatchPreviewPane::makeCalculatingPage() {
    const QString calculating = spt("正在比较省布排版方案…", "Comparing canvas-saving layouts…");
    auto* progress = new QProgressBar;
    progress->setObjectName(QStringLiteral("batchCalculatingProgress"));
    progress->setAccessibleName(calculating);
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setFixedWidth(progressWidth);
    QLabel* text = controls::note(calculating);
    text->setObjectName(QStringLiteral("batchCalculatingLabel"));
    return messagePage(progress, text);
}

QWidget* BatchPreviewPane::makeResultPage(const BatchRollPreview::Pictures& pictures) {
    drawing_ = new BatchRollPreview(pictures);
    headline_ = controls::heading({});
    headline_->setObjectName(QStringLiteral("batchPreviewHeadline"));
    comparison_ = controls::body();
    comparison_->setObjectName(QStringLiteral("batchPreviewComparison"));
    auto* page = new QWidget;
    QVBoxLayout* column = controls::column(page);
    column->addWidget(drawing_, 1);
    column->addWidget(headline_);
    column->addWidget(comparison_);
    column->addWidget(controls::note(
        spt("比较多种排列方式，选用更短的排版。保持所填的尺寸，不会为了填满画布而缩小作品。",
            "Compares multiple arrangements and chooses a shorter layout. Keeps the requested sizes without shrinking "
            "artworks to fill the canvas.")));
    return page;
}

void BatchPreviewPane::syncFromModel() {
    rotation_->setChecked(model_.allowRotation());
    if (model_.calculating()) {
        pages_->setCurrentIndex(calculatingPage);
        return;
    }
    if (!model_.preview()) {
        pages_->setCurrentIndex(emptyPage);
        return;
    }
    showResult(*model_.preview());
    pages_->setCurrentIndex(resultPage);
}

void BatchPreviewPane::showResult(const BatchArrangementPreview& preview) {
    if (shown_ == preview) {
        return;
    }
    shown_ = preview;
    drawing_->setPreview(preview);
    headline_->setText(preview.headline());
    comparison_->setText(preview.comparison());
}

} // namespace orvex
