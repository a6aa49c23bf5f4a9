#include "MediaControls.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "OutputChoices.h"

namespace orvex {

MediaControls::MediaControls(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void MediaControls::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    QVBoxLayout& layout = card->content();
    layout.addWidget(controls::heading(spt("画布介质", "Canvas media")));
    name_ = controls::textField(QStringLiteral("mediaNameField"));
    layout.addWidget(controls::labelled(spt("介质名称", "Media name"), name_));
    layout.addWidget(controls::note(
        spt("请使介质名称与实际装入的材料和打印机面板一致。\n沿用面板现有参数；未读取私有介质设置。",
            "Match the media name to the loaded material and printer panel.\nExisting panel parameters are retained; "
            "private media settings have not been read.")));
    layout.addWidget(source_ = controls::named(QStringLiteral("paperSourceLine"), controls::body()));
    note_ = controls::textField(QStringLiteral("mediaNoteField"));
    layout.addWidget(controls::labelled(spt("介质与卷布宽度备注", "Media / roll-width notes"), note_));
    quality_ = controls::choiceBox(QStringLiteral("qualityBox"));
    layout.addWidget(controls::labelled(spt("质量记录", "Quality record"), quality_));
    layout.addWidget(controls::note(
        spt("Resolution（分辨率）是驱动公开的质量参考值，并不表示已确认为佳能的最高质量模式。选择只记录在本地预设中，驱"
            "动和面板设置保持不变。",
            "Resolution is a quality reference exposed by the driver, not confirmation of Canon’s highest-quality "
            "mode. Choices are recorded only in local presets; driver and panel settings are unchanged.")));
}

void MediaControls::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &MediaControls::syncFromSession);
    connect(name_, &QLineEdit::textEdited, &session_, &OrvexModel::setMediaName);
    connect(note_, &QLineEdit::textEdited, &session_, &OrvexModel::setMediaNote);
    connect(quality_, &QComboBox::activated, &session_,
            [this] { session_.setQualityChoice(quality_->currentData().toString()); });
}

void MediaControls::syncFromSession() {
    const PresetForm& form = session_.presetForm();
    controls::setFieldText(*name_, form.mediaName);
    source_->setText(spt("纸张来源：卷纸 · 当前宽度 %1 英寸", "Paper source: roll · Current width %1 in")
                         .arg(session_.rollWidthLabel()));
    controls::setFieldText(*note_, form.settings.mediaNote);
    controls::setChoices(*quality_,
                         OutputChoices::qualities(session_.printerReadings().qualityChoices(), form.qualityChoice),
                         form.qualityChoice);
}

} // namespace orvex
