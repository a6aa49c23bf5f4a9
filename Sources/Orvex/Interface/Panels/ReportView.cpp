#include "ReportView.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBlock>

namespace orvex {

ReportView::ReportView(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void ReportView::setReport(const QString& report) {
    if (shown_ == report) {
        return;
    }
    const int scrolled = verticalScrollBar()->value();
    const int topBlock = firstVisibleBlock().blockNumber();
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    const QString selected = textCursor().selectedText();
    shown_ = report;
    setPlainText(report);
    restoreSelection(anchor, position, selected);
    layOutLines(topBlock);
    verticalScrollBar()->setValue(scrolled);
}

/// The place of a line is known once all lines above it are broken into the view's width.
void ReportView::layOutLines(int lastBlock) {
    for (QTextBlock block = document()->firstBlock(); block.isValid() && block.blockNumber() <= lastBlock;
         block = block.next()) {
        blockBoundingRect(block);
    }
}

/// Selects the same part of the text, if it reads as before.
void ReportView::restoreSelection(int anchor, int position, const QString& selected) {
    const int end = document()->characterCount() - 1;
    if (selected.isEmpty() || anchor > end || position > end) {
        return;
    }
    QTextCursor cursor(document());
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    if (cursor.selectedText() == selected) {
        setTextCursor(cursor);
    }
}

} // namespace orvex
