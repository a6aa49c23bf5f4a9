#pragma once

#include "Board/RollBoardView.h"
#include "CanvasTest.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>

namespace orvex::test {

/// A board over a session, in a window of its own that has the keyboard.
class BoardTest : public CanvasTest {
protected:
    std::unique_ptr<BoardPictures> pictures;
    std::unique_ptr<RollBoardView> board;

    ~BoardTest() override {
        board.reset();
        pictures.reset();
    }

    /// Shows the session's board; at this width, ten points are an inch of a 60-inch roll at zoom 1.
    RollBoardView& show(int height = 500) {
        pictures = std::make_unique<BoardPictures>();
        board = std::make_unique<RollBoardView>(*model, *pictures);
        board->resize(648 + board->verticalScrollBar()->sizeHint().width(), height);
        board->show();
        QApplication::setActiveWindow(board.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(board.get()));
        turn();
        EXPECT_EQ(board->geometryOfBoard().pointsPerInch, 10.0);
        return *board;
    }

    /// Lets what is announced reach the board.
    static void turn() { QCoreApplication::processEvents(); }

    [[nodiscard]] const RollArtwork& item(int index) const { return model->rollLayout().items[index]; }

    [[nodiscard]] QPoint centerOf(int index) const { return board->frameOf(item(index).id).center().toPoint(); }

    [[nodiscard]] QPoint handleOf(int index) const {
        return BoardGeometry::handleOf(board->frameOf(item(index).id)).center().toPoint();
    }

    void press(const QPoint& place) const {
        QTest::mousePress(board->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }

    void moveTo(const QPoint& place) const {
        const QPointF position(place);
        QMouseEvent event(QEvent::MouseMove, position, board->viewport()->mapToGlobal(position), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(board->viewport(), &event);
        turn();
    }

    void release(const QPoint& place) const {
        QTest::mouseRelease(board->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        turn();
    }

    /// A whole drag, in points.
    void drag(const QPoint& from, const QPoint& by) const {
        press(from);
        moveTo(from + by / 2);
        moveTo(from + by);
        release(from + by);
    }
};

} // namespace orvex::test
