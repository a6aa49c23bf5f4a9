#include "OutputButtons.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "QueueTexts.h"

namespace orvex {

OutputButtons::OutputButtons(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void OutputButtons::build() {
    using OrvexIcons::Symbol;
    auto* layout = controls::column(this);
    layout->addWidget(stage_ = controls::button(QStringLiteral("stageRollButton"),
                                                spt("将卷布加入待打印队列", "Add roll to print queue"), Symbol::tray));
    layout->addWidget(queueUnavailable_ = controls::named(QStringLiteral("queueUnavailable"),
                                                          controls::warning(QueueTexts::localQueueUnavailable())));
    layout->addWidget(
        print_ = controls::button(QStringLiteral("printRollButton"), spt("打印卷布…", "Print roll…"), Symbol::print));
    layout->addWidget(controls::note(
        spt("打开 macOS / 佳能打印窗口，按实际尺寸打印卷布。请核对纸张、画布、颜色和裁切设置，再自行点击“打印”。",
            "Open the macOS / Canon print window for the roll at actual size. Review paper, canvas, colour and cutting "
            "settings, then click Print yourself.")));
}

void OutputButtons::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &OutputButtons::syncFromSession);
    connect(stage_, &QPushButton::clicked, &session_, &OrvexModel::stageRollPDF);
    connect(print_, &QPushButton::clicked, &session_, &OrvexModel::printCurrentRoll);
}

void OutputButtons::syncFromSession() {
    stage_->setEnabled(session_.canStageRoll());
    queueUnavailable_->setVisible(!session_.queueAvailable());
    print_->setEnabled(session_.canPrintCurrent());
}

} // namespace orvex
