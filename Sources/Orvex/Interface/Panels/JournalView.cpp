#include "JournalView.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Shell/HelpLinks.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

#include <algorithm>
#include <limits>

namespace orvex {

namespace {

constexpr int longestRun = 999'999; ///< prints that can be typed
constexpr int leastListHeight = 160;

QSpinBox* sequenceBox() {
    const QStringList around = spt("本轮第 %1 次实物打印", "Physical print %1 in this run").split(QStringLiteral("%1"));
    auto* box = new QSpinBox;
    box->setObjectName(QStringLiteral("observationSequenceBox"));
    box->setAccessibleName(spt("实物打印序号", "Physical print number"));
    box->setPrefix(around.first());
    box->setSuffix(around.last());
    box->setRange(1, longestRun);
    box->findChild<QLineEdit*>()->setAcceptDrops(false); // a dropped file goes on to the canvas
    controls::ignoreWheelUnlessFocused(*box);
    return box;
}

QComboBox* resultBox() {
    QComboBox* box = controls::choiceBox(QStringLiteral("observationResultBox"));
    for (const PrintObservationResult result : allPrintObservationResults) {
        box->addItem(label(result), static_cast<int>(result));
    }
    return box;
}

QLineEdit* noteField() {
    QLineEdit* field = controls::textField(QStringLiteral("observationNoteField"));
    field->setPlaceholderText(
        spt("位置、喷嘴检查结果、间隔时间和其他备注", "Position, nozzle-check results, intervals and other notes"));
    field->setAccessibleName(field->placeholderText());
    return field;
}

QString reportedIssue() {
    return spt(
        "已报告问题：连续打印数张后，在不固定的位置出现紫色斑块。请用相同的作品、介质、ICC 和质量进行对比。如问题重现，"
        "请按佳能的喷嘴和供墨检查步骤处理。ICC 无法诊断或修复硬件故障。",
        "Reported issue: purple patches appear after several prints, in varying positions. Compare using the same "
        "artwork, media, ICC and quality. If issues appear, follow Canon’s nozzle and ink-supply checks. An ICC "
        "cannot diagnose or repair hardware faults.");
}

QString recordsNote() {
    return spt("手动记录不会触发打印、清洗或校准，也不会将本地 PDF 标记为已实物打印。",
               "Manual records do not trigger printing, cleaning or calibration, and do not mark a local PDF as "
               "physically printed.");
}

} // namespace

JournalView::JournalView(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      sequence_(sequenceBox()),
      result_(resultBox()),
      note_(noteField()),
      record_(controls::button(QStringLiteral("recordObservationButton"),
                               spt("记录实物观察", "Record physical observation"))),
      export_(controls::button(QStringLiteral("exportObservationsButton"),
                               spt("导出诊断与观察记录…", "Export diagnostics & observations…"),
                               OrvexIcons::Symbol::exportFile)),
      list_(new ObservationListView) {
    build();
    connectSignals();
    syncFromSession();
}

void JournalView::build() {
    list_->setObjectName(QStringLiteral("observationList"));
    list_->setAccessibleName(spt("实物观察", "Physical observations"));
    list_->setMinimumHeight(leastListHeight);
    auto* layout = controls::column(this);
    layout->addWidget(controls::heading(spt("连续打印 · 颜色观察", "Continuous printing · Colour observations")));
    layout->addWidget(controls::note(reportedIssue()));
    layout->addLayout(links());
    layout->addSpacing(controls::spacing);
    layout->addLayout(form());
    layout->addWidget(list_, 1);
}

QLayout* JournalView::links() {
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(controls::link(QStringLiteral("nozzleCheckLink"),
                                     spt("佳能喷嘴检查指南 ↗", "Canon nozzle-check guide ↗"),
                                     HelpLinks::canonNozzleCheck()));
    column->addWidget(controls::link(QStringLiteral("colourCalibrationLink"),
                                     spt("佳能颜色校准指南 ↗", "Canon colour-calibration guide ↗"),
                                     HelpLinks::canonColourCalibration()));
    return column;
}

QLayout* JournalView::form() {
    auto* form = new QVBoxLayout;
    form->setSpacing(controls::spacing);
    form->addWidget(sequence_);
    form->addWidget(controls::labelled(spt("观察结果", "Observation"), result_));
    form->addWidget(note_);
    form->addWidget(controls::note(recordsNote()));
    form->addWidget(record_);
    form->addWidget(export_);
    controls::makePrimary(*record_);
    return form;
}

void JournalView::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &JournalView::syncFromSession);
    connect(sequence_, &QSpinBox::valueChanged, this,
            [this](int value) { update([value](ObservationForm& form) { form.observationSequence = value; }); });
    connect(result_, &QComboBox::activated, this, [this] {
        const auto result = static_cast<PrintObservationResult>(result_->currentData().toInt());
        update([result](ObservationForm& form) { form.observationResult = result; });
    });
    connect(note_, &QLineEdit::textEdited, this,
            [this](const QString& note) { update([note](ObservationForm& form) { form.observationNote = note; }); });
    connect(record_, &QPushButton::clicked, &session_, &OrvexModel::recordObservation);
    connect(export_, &QPushButton::clicked, &session_, &OrvexModel::exportDiagnostics);
}

void JournalView::update(const std::function<void(ObservationForm&)>& change) {
    ObservationForm form = session_.observationForm();
    change(form);
    session_.setObservationForm(form);
}

void JournalView::syncFromSession() {
    const ObservationForm& form = session_.observationForm();
    syncSequence(form.observationSequence);
    const int result = result_->findData(static_cast<int>(form.observationResult));
    if (result_->currentIndex() != result) {
        result_->setCurrentIndex(result);
    }
    controls::setFieldText(*note_, form.observationNote);
    list_->setObservations(session_.observations());
}

/// The number grows by itself with each record, past what can be typed, too.
void JournalView::syncSequence(qint64 sequence) {
    if (sequence_->value() == sequence) {
        return;
    }
    const QSignalBlocker blocker(sequence_);
    const qint64 shown = std::clamp<qint64>(sequence, 1, std::numeric_limits<int>::max());
    sequence_->setMaximum(std::max(longestRun, static_cast<int>(shown)));
    sequence_->setValue(static_cast<int>(shown));
}

} // namespace orvex
