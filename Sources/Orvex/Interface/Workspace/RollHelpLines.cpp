#include "RollHelpLines.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"

namespace orvex {

RollHelpLines::RollHelpLines(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void RollHelpLines::build() {
    auto* layout = controls::column(this);
    layout->setSpacing(controls::spacing / 2);
    layout->addWidget(controls::named(
        QStringLiteral("mouseHelp"),
        controls::note(
            spt("拖动白边外框可移动作品，拖动右下角可朝任意方向等比例缩放。移动不会加长卷布；放大只按需要加长，并保留底"
                "部 2.5 "
                "英寸白边。外沿的裁剪虚线包含在 PDF 中。",
                "Drag the border frame to move an artwork; drag its lower-right corner to scale proportionally in any "
                "direction. Moving does not extend the roll. Enlarging extends it only as needed, leaving a 2.5-inch "
                "bottom border. Outer trim dashes are included in the PDF."))));
    layout->addWidget(controls::named(
        QStringLiteral("keyboardHelp"),
        controls::note(
            spt("选中作品后，用方向键每次移动 0.01 英寸，用 Shift + 方向键每次移动 0.1 "
                "英寸。按住可连续移动，松开后记为一个可撤销的步骤。0.25 英寸吸附不影响键盘移动。",
                "Select an artwork, then use arrow keys to move it 0.01 in, or Shift + arrow keys for 0.1 in. Hold to "
                "move continuously; release to create one undo step. Quarter-inch snapping does not affect keyboard "
                "moves."))));
    layout->addWidget(issue_ = controls::named(QStringLiteral("rollExportIssue"), controls::warning()));
}

void RollHelpLines::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &RollHelpLines::syncFromSession);
}

void RollHelpLines::syncFromSession() {
    controls::setOptionalText(*issue_, session_.rollExportIssue());
}

} // namespace orvex
