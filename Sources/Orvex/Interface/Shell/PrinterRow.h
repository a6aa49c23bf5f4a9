#pragma once

#include "PrintModels.h"

#include <QLabel>
#include <QRadioButton>

namespace orvex {

/// A printer in the list of printers: one of many, with its name and the state of its queue. A click asks for it and
/// changes nothing by itself. Main thread.
class PrinterRow : public QRadioButton {
    Q_OBJECT

public:
    explicit PrinterRow(const PrinterSnapshot& printer, QWidget* parent = nullptr);

    [[nodiscard]] const QString& name() const { return name_; }

    void setSummary(const QString& summary);

    /// Marks the row as the selected one, or takes the mark away.
    void setSelected(bool selected);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The arrow keys lead to the next row or, with -1, to the one before.
    void stepped(int rows);

protected:
    void nextCheckState() override {}

    [[nodiscard]] bool hitButton(const QPoint& point) const override { return rect().contains(point); }

    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QString name_;
    QLabel* summary_;
};

} // namespace orvex
