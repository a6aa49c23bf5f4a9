#include "ColorControls.h"

#include "Controls/Controls.h"
#include "Controls/FlowLayout.h"
#include "Controls/WrappingCheckBox.h"
#include "OrvexLanguage.h"
#include "OutputChoices.h"

namespace orvex {

namespace {

std::optional<QString> profileName(const PresetForm& form) {
    return form.icc ? std::optional(form.icc->name) : std::nullopt;
}

} // namespace

ColorControls::ColorControls(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void ColorControls::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    QVBoxLayout& layout = card->content();
    const QString title = spt("ICC 颜色管理", "ICC colour management");
    QLabel* heading = controls::heading(title);
    layout.addWidget(heading);
    layout.addWidget(mode_ = controls::choiceBox(QStringLiteral("colorModeBox")));
    heading->setBuddy(mode_);
    mode_->setAccessibleName(title);
    layout.addWidget(explanation_ = controls::named(QStringLiteral("colorModeExplanation"), controls::note()));
    layout.addWidget(conversion_ = conversion());
    layout.addWidget(preflight_ = controls::named(QStringLiteral("colorPreflight"), controls::warning()));
}

QWidget* ColorControls::conversion() {
    auto* part = new QWidget;
    auto* layout = controls::column(part);
    intent_ = controls::choiceBox(QStringLiteral("renderingIntentBox"));
    layout->addWidget(controls::labelled(spt("渲染意图", "Rendering intent"), intent_));
    layout->addWidget(profile_ = controls::named(QStringLiteral("outputProfileName"), controls::body()));
    auto* buttons = new QWidget;
    auto* flow = new FlowLayout(buttons);
    flow->addWidget(importProfile_ = controls::button(QStringLiteral("importProfileButton"),
                                                      spt("导入输出 ICC…", "Import output ICC…")));
    flow->addWidget(clearProfile_ =
                        controls::button(QStringLiteral("clearProfileButton"), spt("清除 ICC", "Clear ICC")));
    layout->addWidget(buttons);
    confirmation_ =
        new WrappingCheckBox(QStringLiteral("correctionOffToggle"),
                             spt("我已确认佳能颜色校正已关闭", "I confirmed that Canon colour correction is off"));
    layout->addWidget(confirmation_);
    layout->addWidget(controls::note(
        spt("这只是本次运行中的人工记录，不代表已核实或更改佳能设置。更换作品或预设后请重新检查。",
            "This is a manual record for this session, not a verification or change to Canon settings. Check again "
            "after changing artwork or presets.")));
    return part;
}

void ColorControls::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &ColorControls::syncFromSession);
    connect(mode_, &QComboBox::activated, this, &ColorControls::chooseMode);
    connect(intent_, &QComboBox::activated, this, &ColorControls::chooseIntent);
    connect(importProfile_, &QPushButton::clicked, &session_, &OrvexModel::inspectICC);
    connect(clearProfile_, &QPushButton::clicked, &session_, &OrvexModel::clearICC);
    connect(confirmation_, &QCheckBox::clicked, &session_, &OrvexModel::setDriverColorCorrectionDisabledConfirmed);
}

void ColorControls::chooseMode() {
    if (const auto mode = colorManagementMode(mode_->currentData().toString())) {
        session_.setColorManagementMode(*mode);
    }
}

void ColorControls::chooseIntent() {
    if (const auto intent = colorRenderingIntent(intent_->currentData().toString())) {
        session_.setColorRenderingIntent(*intent);
    }
}

void ColorControls::syncFromSession() {
    const PresetForm& form = session_.presetForm();
    const ColorWorkflow& workflow = form.colorWorkflow;
    controls::setChoices(*mode_, OutputChoices::colorManagementModes(), rawValue(workflow.mode));
    explanation_->setText(OutputChoices::explanation(workflow.mode));
    controls::setChoices(*intent_, OutputChoices::renderingIntents(), rawValue(workflow.intent));
    controls::setOptionalText(*profile_, profileName(form));
    importProfile_->setEnabled(session_.presetsAvailable());
    confirmation_->setChecked(workflow.driverColorCorrectionDisabledConfirmed);
    controls::setOptionalText(*preflight_, session_.colorPreflight());
    conversion_->setVisible(workflow.mode == ColorManagementMode::appManaged);
}

} // namespace orvex
