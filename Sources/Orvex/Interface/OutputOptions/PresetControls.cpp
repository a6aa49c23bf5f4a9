#include "PresetControls.h"

#include "Controls/Controls.h"
#include "Controls/FlowLayout.h"
#include "OrvexLanguage.h"
#include "OutputChoices.h"

namespace orvex {

PresetControls::PresetControls(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void PresetControls::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    QVBoxLayout& layout = card->content();
    const QString title = spt("打印预设", "Print presets");
    QLabel* heading = controls::heading(title);
    layout.addWidget(heading);
    layout.addWidget(presets_ = controls::choiceBox(QStringLiteral("presetBox")));
    heading->setBuddy(presets_);
    presets_->setAccessibleName(title);
    name_ = controls::textField(QStringLiteral("presetNameField"));
    layout.addWidget(controls::labelled(spt("预设名称", "Preset name"), name_));
    layout.addWidget(buttons());
    layout.addWidget(canvasDefault_ = controls::named(QStringLiteral("canvasDefaultLine"), controls::note()));
    layout.addWidget(unavailable_ = controls::named(
                         QStringLiteral("presetsUnavailable"),
                         controls::warning(spt("预设存储不可用；现有文件已保留。",
                                               "Preset storage is unavailable; existing files are preserved."))));
    layout.addWidget(controls::note(
        spt("载入预设会将其尺寸应用到所选作品。卷布宽度单独控制。保存排版时会保留卷布宽度、作品尺寸和位置。",
            "Loading a preset applies its dimensions to the selected artwork. Roll width is controlled separately. "
            "Saving a layout keeps its roll width, artwork sizes and positions.")));
}

QWidget* PresetControls::buttons() {
    auto* part = new QWidget;
    auto* flow = new FlowLayout(part);
    flow->addWidget(save_ =
                        controls::button(QStringLiteral("savePresetButton"), spt("保存为新预设", "Save new preset")));
    flow->addWidget(update_ = controls::button(QStringLiteral("updatePresetButton"), spt("更新", "Update")));
    flow->addWidget(delete_ = controls::button(QStringLiteral("deletePresetButton"), spt("删除", "Delete")));
    controls::makeDestructive(*delete_);
    flow->addWidget(makeDefault_ = controls::button(
                        QStringLiteral("makeDefaultButton"),
                        spt("设为此打印机的默认画布预设", "Use as this printer’s default canvas preset")));
    return part;
}

void PresetControls::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &PresetControls::syncFromSession);
    connect(presets_, &QComboBox::activated, &session_,
            [this] { session_.choosePreset(presets_->currentData().toString()); });
    connect(name_, &QLineEdit::textEdited, &session_, &OrvexModel::setPresetName);
    connect(save_, &QPushButton::clicked, &session_, [this] { session_.savePreset(true); });
    connect(update_, &QPushButton::clicked, &session_, [this] { session_.savePreset(false); });
    connect(delete_, &QPushButton::clicked, &session_, &OrvexModel::deletePreset);
    connect(makeDefault_, &QPushButton::clicked, &session_, &OrvexModel::bindCanvasDefault);
}

void PresetControls::syncFromSession() {
    const PresetForm& form = session_.presetForm();
    controls::setChoices(*presets_, OutputChoices::presets(session_.presets()), form.selectedPresetID);
    controls::setFieldText(*name_, form.presetName);
    save_->setEnabled(session_.canSavePreset());
    update_->setEnabled(session_.canChangePreset());
    delete_->setEnabled(session_.canChangePreset());
    makeDefault_->setEnabled(session_.canBindCanvasDefault());
    canvasDefault_->setText(OutputChoices::canvasDefault(session_.canvasDefaultName()));
    unavailable_->setVisible(!session_.presetsAvailable());
}

} // namespace orvex
