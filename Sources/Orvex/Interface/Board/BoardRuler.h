#pragma once

#include "Board/BoardGeometry.h"

#include <QWidget>

namespace orvex {

/// The marks along one side of the board, with their inches. Main thread.
class BoardRuler : public QWidget {
    Q_OBJECT

public:
    /// How much of the board a ruler takes.
    static constexpr int thickness = 36;

    BoardRuler(Qt::Orientation orientation, QWidget* parent);

    /// Shows the roll as it lies in the viewport, whose corner is that of the ruler's inner end.
    void setGeometryOfBoard(const BoardGeometry& geometry);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintHorizontal(QPainter& painter) const;
    void paintVertical(QPainter& painter) const;

    const Qt::Orientation orientation_;
    BoardGeometry geometry_;
};

} // namespace orvex
