#include "MenuCommands.h"

#include "OrvexLanguage.h"

namespace orvex {

namespace {

bool always() {
    return true;
}

/// What neither work in the background nor the batch panel allows.
std::function<bool()> whenFree(OrvexModel& session) {
    return [&session] { return !session.busy() && !session.batchSizingPresented(); };
}

QKeySequence control(int key, Qt::KeyboardModifiers more = Qt::NoModifier) {
    return {QKeyCombination(Qt::ControlModifier | more, static_cast<Qt::Key>(key))};
}

} // namespace

QList<Command> MenuCommands::rollCommands(OrvexModel& session) {
    return {{.name = QStringLiteral("addArtworksAction"),
             .title = spt("添加作品…", "Add artworks…"),
             .shortcut = control(Qt::Key_O),
             .run = [&session] { session.importRollArtworks(); },
             .isEnabled = whenFree(session)},
            {.name = QStringLiteral("exportPDFAction"),
             .title = spt("导出 PDF…", "Export PDF…"),
             .shortcut = control(Qt::Key_E),
             .run = [&session] { session.exportRollPDF(); },
             .isEnabled = [&session] { return whenFree(session)() && !session.rollExportIssue(); }}};
}

QList<Command> MenuCommands::layoutCommands(OrvexModel& session) {
    return {{.name = QStringLiteral("saveLayoutAction"),
             .title = spt("保存排版…", "Save layout…"),
             .shortcut = control(Qt::Key_S),
             .run = [&session] { session.saveRollProject(); },
             .isEnabled = whenFree(session)},
            {.name = QStringLiteral("openLayoutAction"),
             .title = spt("打开排版…", "Open layout…"),
             .shortcut = control(Qt::Key_O, Qt::ShiftModifier),
             .run = [&session] { session.openRollProject(); },
             .isEnabled = whenFree(session)},
            {.name = QStringLiteral("batchSizesAction"),
             .title = spt("批量尺寸与省布排版…", "Batch sizes & compact layout…"),
             .shortcut = {},
             .run = [&session] { session.presentBatchSizing(); },
             .isEnabled = [&session] { return session.canPresentBatchSizing(); }}};
}

QList<Command> MenuCommands::printCommands(OrvexModel& session) {
    return {{.name = QStringLiteral("printRollAction"),
             .title = spt("打印卷布…", "Print roll…"),
             .shortcut = control(Qt::Key_P),
             .run = [&session] { session.printCurrentRoll(); },
             .isEnabled = [&session] { return session.canPrintCurrent(); }}};
}

QList<Command> MenuCommands::editCommands(OrvexModel& session) {
    return {{.name = QStringLiteral("undoLayoutAction"),
             .title = spt("撤销排版", "Undo Layout"),
             .shortcut = control(Qt::Key_Z),
             .run = [&session] { session.undoRollEdit(); },
             .isEnabled = [&session] { return session.canUndoRollEdit(); }},
            {.name = QStringLiteral("redoLayoutAction"),
             .title = spt("重做排版", "Redo Layout"),
             .shortcut = control(Qt::Key_Z, Qt::ShiftModifier),
             .run = [&session] { session.redoRollEdit(); },
             .isEnabled = [&session] { return session.canRedoRollEdit(); }}};
}

QList<Command> MenuCommands::viewCommands(OrvexModel& session) {
    return {{.name = QStringLiteral("zoomInAction"),
             .title = spt("放大画布", "Zoom in canvas"),
             .shortcut = control(Qt::Key_Plus),
             .run = [&session] { session.zoomIn(); },
             .isEnabled = always},
            {.name = QStringLiteral("zoomOutAction"),
             .title = spt("缩小画布", "Zoom out canvas"),
             .shortcut = control(Qt::Key_Minus),
             .run = [&session] { session.zoomOut(); },
             .isEnabled = always},
            {.name = QStringLiteral("fitWidthAction"),
             .title = spt("适合宽度", "Fit Width"),
             .shortcut = control(Qt::Key_0),
             .run = [&session] { session.fitWidth(); },
             .isEnabled = always}};
}

} // namespace orvex
