#pragma once

#include <QPlainTextEdit>

#include <optional>

namespace orvex {

/// A long text to read, select and copy, in letters of one width. Main thread.
class ReportView : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit ReportView(QWidget* parent = nullptr);

    /// Shows another text, at the place where the reader is. What is selected stays selected if it is still there.
    void setReport(const QString& report);

private:
    void layOutLines(int lastBlock);
    void restoreSelection(int anchor, int position, const QString& selected);

    std::optional<QString> shown_;
};

} // namespace orvex
