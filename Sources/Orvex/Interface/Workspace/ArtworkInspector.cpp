#include "ArtworkInspector.h"

#include "ArtworkTexts.h"
#include "Controls/Controls.h"
#include "Controls/FlowLayout.h"
#include "Controls/InchFieldView.h"
#include "OrvexLanguage.h"

#include <algorithm>

namespace orvex {

namespace {

/// A number of an artwork that may be gone by the time it is asked for: 0 then.
std::function<double()> numberOf(const OrvexModel& session, const QUuid& id,
                                 const std::function<double(const RollArtwork&)>& number) {
    return [&session, id, number] {
        const QList<RollArtwork>& items = session.rollLayout().items;
        const auto found = std::ranges::find(items, id, &RollArtwork::id);
        return found != items.end() ? number(*found) : 0.0;
    };
}

RollInchField::Binding widthOf(OrvexModel& session, const QUuid& id) {
    return {.read = numberOf(session, id, &RollArtwork::widthInches), .write = [&session, id](double inches) {
                session.resizeArtwork(id, inches, QuarterInchArtworkSizing::Dimension::width);
            }};
}

RollInchField::Binding heightOf(OrvexModel& session, const QUuid& id) {
    return {.read = numberOf(session, id, &RollArtwork::heightInches), .write = [&session, id](double inches) {
                session.resizeArtwork(id, inches, QuarterInchArtworkSizing::Dimension::height);
            }};
}

RollInchField::Binding scaleOf(OrvexModel& session, const QUuid& id) {
    return {.read = numberOf(session, id, &RollArtwork::scalePercent),
            .write = [&session, id](double percent) { session.scaleArtwork(id, percent); }};
}

RollInchField::Binding leftOf(OrvexModel& session, const QUuid& id) {
    return {.read = numberOf(session, id, &RollArtwork::xInches),
            .write = [&session, id](double inches) { session.moveArtwork(id, inches, std::nullopt); }};
}

RollInchField::Binding topOf(OrvexModel& session, const QUuid& id) {
    return {.read = numberOf(session, id, &RollArtwork::yInches),
            .write = [&session, id](double inches) { session.moveArtwork(id, std::nullopt, inches); }};
}

/// A field that stands for nothing yet.
InchFieldView* field(const QString& name, const QString& label, const QString& unit, bool artworkSize = false) {
    return new InchFieldView({.name = name, .label = label, .unit = unit, .artworkSize = artworkSize},
                             {.read = [] { return 0.0; }, .write = [](double) {}});
}

} // namespace

ArtworkInspector::ArtworkInspector(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void ArtworkInspector::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    card->content().addWidget(empty_ = emptyState());
    card->content().addWidget(selected_ = selectedState());
}

QWidget* ArtworkInspector::emptyState() {
    auto* state = new QWidget;
    state->setObjectName(QStringLiteral("inspectorEmptyState"));
    auto* layout = controls::column(state);
    layout->addWidget(controls::heading(spt("添加第一幅作品", "Add Your First Artwork")));
    layout->addWidget(controls::note(
        spt("可一次选择多个 JPEG、PNG、TIFF 或 HEIC 文件，再逐一选中作品，设置尺寸并拖动到位。",
            "Select multiple JPEG, PNG, TIFF, or HEIC files at once. Then select each artwork to set its size and drag "
            "it into place.")));
    return state;
}

QWidget* ArtworkInspector::selectedState() {
    auto* state = new QWidget;
    state->setObjectName(QStringLiteral("inspectorSelectedState"));
    auto* layout = controls::column(state);
    layout->addWidget(controls::heading(spt("所选作品", "Selected Artwork")));
    layout->addWidget(title_ = controls::named(QStringLiteral("inspectorTitle"), controls::body()));
    layout->addWidget(pixelSize_ = controls::named(QStringLiteral("inspectorPixelSize"), controls::note()));
    addSizes(*layout);
    addPosition(*layout);
    layout->addWidget(resolution_ = controls::named(QStringLiteral("inspectorResolution"), controls::body()));
    layout->addWidget(missing_ = controls::named(
                          QStringLiteral("inspectorMissingOriginal"),
                          controls::warning(spt("原图不可用。导出前请重新关联。",
                                                "The original file is unavailable. Relink it before exporting."))));
    addButtons(*layout);
    return state;
}

void ArtworkInspector::addSizes(QLayout& layout) {
    const QString inches = spt("英寸", "in");
    layout.addWidget(width_ =
                         field(QStringLiteral("artworkWidthField"), spt("作品宽度", "Artwork width"), inches, true));
    layout.addWidget(height_ =
                         field(QStringLiteral("artworkHeightField"), spt("作品高度", "Artwork height"), inches, true));
    layout.addWidget(controls::note(
        spt("宽和高都取最接近的等比 0.25 英寸尺寸。旋转后仍可缩放。按回车键或离开输入框即生效。",
            "Both dimensions use the nearest proportional quarter-inch size. Scaling is still available after "
            "rotation. Press Return or leave the field to apply.")));
    layout.addWidget(reference_ = controls::named(QStringLiteral("inspectorReference"), controls::body()));
    layout.addWidget(sizeSource_ = controls::named(QStringLiteral("inspectorSizeSource"), controls::note()));
    layout.addWidget(scale_ = field(QStringLiteral("artworkScaleField"), spt("缩放", "Scale"), QStringLiteral("%")));
}

void ArtworkInspector::addPosition(QLayout& layout) {
    const QString inches = spt("英寸", "in");
    layout.addWidget(frame_ = controls::named(QStringLiteral("inspectorBorderFrame"), controls::body()));
    layout.addWidget(left_ = field(QStringLiteral("artworkLeftField"), spt("距卷布左侧", "From roll left"), inches));
    layout.addWidget(top_ = field(QStringLiteral("artworkTopField"), spt("距卷布起点", "From roll start"), inches));
}

void ArtworkInspector::addButtons(QLayout& layout) {
    auto* part = new QWidget;
    auto* flow = new FlowLayout(part);
    addButton(*flow, QStringLiteral("inspectorRotateButton"), spt("旋转 90°", "Rotate 90°"),
              &OrvexModel::rotateSelectedArtwork);
    addButton(*flow, QStringLiteral("duplicateButton"), spt("复制一份", "Duplicate"),
              &OrvexModel::duplicateSelectedArtwork);
    addButton(*flow, QStringLiteral("fitRollWidthButton"), spt("适合卷布宽度", "Fit Roll Width"),
              &OrvexModel::fitSelectedArtwork);
    addButton(*flow, QStringLiteral("referenceSizeButton"), spt("参考尺寸", "Reference Size"),
              &OrvexModel::restoreSelectedNaturalSize);
    addButton(*flow, QStringLiteral("relinkButton"), spt("重新关联原图…", "Relink Original…"),
              &OrvexModel::relinkSelectedArtwork);
    buttons_.append(controls::button(QStringLiteral("removeArtworkButton"), spt("移除作品", "Remove Artwork")));
    controls::makeDestructive(*buttons_.last());
    connect(buttons_.last(), &QPushButton::clicked, this, &ArtworkInspector::removeSelected);
    flow->addWidget(buttons_.last());
    layout.addWidget(part);
}

void ArtworkInspector::addButton(QLayout& layout, const QString& name, const QString& text,
                                 void (OrvexModel::*command)()) {
    QPushButton* button = controls::button(name, text);
    connect(button, &QPushButton::clicked, &session_, command);
    layout.addWidget(button);
    buttons_.append(button);
}

void ArtworkInspector::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &ArtworkInspector::syncFromSession);
}

void ArtworkInspector::syncFromSession() {
    const auto artwork = session_.selectedArtwork();
    if (artwork) {
        showArtwork(*artwork);
    }
    // The fields of an artwork that is gone give up what was typed as they disappear.
    empty_->setVisible(!artwork);
    selected_->setVisible(artwork.has_value());
}

void ArtworkInspector::showArtwork(const RollArtwork& artwork) {
    bindFields(artwork.id);
    title_->setText(artwork.title);
    pixelSize_->setText(ArtworkTexts::pixelSize(artwork));
    reference_->setText(ArtworkTexts::originalReference(artwork));
    sizeSource_->setText(ArtworkTexts::sizeSource(session_.sizingDescriptions(), artwork.id));
    frame_->setText(ArtworkTexts::borderFrame(artwork));
    resolution_->setText(ArtworkTexts::resolutionAndRotation(artwork));
    missing_->setVisible(!session_.metadataFor(artwork));
    for (QPushButton* button : std::as_const(buttons_)) {
        button->setEnabled(!session_.busy());
    }
}

/// What was typed for another artwork goes to that one first.
void ArtworkInspector::bindFields(const QUuid& id) {
    if (boundID_ != id) {
        boundID_ = id;
        width_->rebind(widthOf(session_, id));
        height_->rebind(heightOf(session_, id));
        scale_->rebind(scaleOf(session_, id));
        left_->rebind(leftOf(session_, id));
        top_->rebind(topOf(session_, id));
        return;
    }
    for (InchFieldView* each : {width_, height_, scale_, left_, top_}) {
        each->syncFromSession();
    }
}

void ArtworkInspector::removeSelected() {
    if (const auto id = session_.selectedArtworkID()) {
        session_.removeArtwork(*id);
    }
}

} // namespace orvex
