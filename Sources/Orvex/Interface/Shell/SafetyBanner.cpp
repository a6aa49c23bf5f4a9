#include "SafetyBanner.h"

#include "Controls/Controls.h"
#include "Controls/SymbolNote.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"

#include <QHBoxLayout>

namespace orvex {

namespace {

constexpr int diagnosticsTab = 2;

SymbolNote::Look promise() {
    return {.symbol = OrvexIcons::Symbol::shield,
            .color = OrvexTheme::accent,
            .title =
                spt("手动裁切（Manual Cutting）· 沿用现有面板设置", "Manual Cutting · Preserve current panel settings"),
            .text =
                spt("打印机上的裁切已停用。本应用不发送任何刀具参数，也不更改佳能默认设置。打印前，请在佳能窗口中确认"
                    "本作业使用 Printer Default（打印机默认），或已停用裁切。",
                    "Cutting is disabled on your printer. The app sends no cutter parameters and does not change "
                    "Canon defaults. Before printing, confirm that this job uses Printer Default or has cutting "
                    "disabled in the Canon window.")};
}

} // namespace

SafetyBanner::SafetyBanner(OrvexModel& session, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("safetyBanner"));
    auto* layout = controls::column(this);
    layout->setContentsMargins(controls::margin, 0, controls::margin, 0);
    auto* card = new Card;
    auto* row = controls::row();
    auto* details =
        controls::button(QStringLiteral("panelSettingsButton"), spt("已沿用面板设置", "Panel settings preserved"),
                         OrvexIcons::Symbol::information);
    row->addWidget(new SymbolNote(promise()), 1);
    row->addWidget(details, 0, Qt::AlignVCenter);
    card->content().addLayout(row);
    layout->addWidget(card);
    connect(details, &QPushButton::clicked, &session, [&session] { session.setTab(diagnosticsTab); });
}

} // namespace orvex
