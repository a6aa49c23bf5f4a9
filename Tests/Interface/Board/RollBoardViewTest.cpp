#include "BoardTest.h"
#include "CountedPreview.h"

#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QWheelEvent>

namespace orvex::test {

namespace {

class RollBoardViewTest : public BoardTest {
protected:
    void wheel(const QPoint& place, int eighthsOfDegrees, Qt::KeyboardModifiers modifiers) const {
        const QPointF position(place);
        QWheelEvent event(position, board->viewport()->mapToGlobal(position), {}, {0, eighthsOfDegrees}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(board->viewport(), &event);
        turn();
    }

    [[nodiscard]] static QImage pixelsOf(const QPixmap& pixmap) {
        return pixmap.toImage().convertToFormat(QImage::Format_RGB32);
    }

    [[nodiscard]] QColor colorAt(const QPoint& place) const {
        return board->viewport()->grab().toImage().pixelColor(place);
    }
};

} // namespace

TEST_F(RollBoardViewTest, TheRollStandsBesideTheRulersAtTheScaleThatFits) {
    startWith(2);
    show();
    EXPECT_EQ(board->viewport()->geometry().topLeft(), QPoint(BoardRuler::thickness, BoardRuler::thickness));
    EXPECT_EQ(board->geometryOfBoard().canvas(), QRectF(6.0, 6.0, 600.0, 130.0));
    EXPECT_EQ(board->frameOf(item(0).id), QRectF(6.0, 6.0, 170.0, 130.0));
    EXPECT_EQ(board->frameOf(item(1).id), QRectF(176.0, 6.0, 170.0, 130.0));
}

TEST_F(RollBoardViewTest, TheCanvasIsWhiteAndEndsWhereTheLayoutEnds) {
    startWith(1);
    show();
    EXPECT_EQ(colorAt({500, 60}), QColor(Qt::white));
    EXPECT_NE(colorAt({500, 145}), QColor(Qt::white));
}

TEST_F(RollBoardViewTest, ATapSelectsSavesAndAsksForTheKeyboard) {
    startWith(2);
    show();
    QTest::mouseClick(board->viewport(), Qt::LeftButton, Qt::NoModifier, centerOf(0));
    turn();
    EXPECT_EQ(model->selectedArtworkID(), item(0).id);
    EXPECT_EQ(model->rollKeyboardFocusRequest(), 1);
    EXPECT_TRUE(QFileInfo::exists(autosavePath));
    EXPECT_TRUE(board->hasKeyboard());
}

TEST_F(RollBoardViewTest, ATapOnNothingChangesNothing) {
    startWith(2);
    show();
    const CanvasState before = state();
    QTest::mouseClick(board->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(500, 400));
    turn();
    EXPECT_EQ(state(), before);
}

TEST_F(RollBoardViewTest, AnotherButtonDoesNothing) {
    startWith(2);
    show();
    QTest::mouseClick(board->viewport(), Qt::RightButton, Qt::NoModifier, centerOf(0));
    turn();
    EXPECT_EQ(model->selectedArtworkID(), item(1).id);
}

TEST_F(RollBoardViewTest, OfTwoOverlappingArtworksTheLaterOneIsHit) {
    startWith(2);
    model->moveArtwork(item(1).id, 2.0, 0.0);
    show();
    EXPECT_EQ(board->hitAt({60.0, 60.0})->id, item(1).id);
    EXPECT_EQ(board->hitAt({15.0, 60.0})->id, item(0).id);
}

TEST_F(RollBoardViewTest, ADragMovesTheArtworkInOneStepOfUndo) {
    startWith(1);
    show();
    const RollLayout before = model->rollLayout();
    drag(centerOf(0), {100, 0});
    EXPECT_EQ(item(0).xInches, 10.0);
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_TRUE(board->hasKeyboard());
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(RollBoardViewTest, AMovementOfAFewPointsIsATap) {
    startWith(2);
    show();
    drag(centerOf(0), {2, 2});
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->selectedArtworkID(), item(0).id);
}

TEST_F(RollBoardViewTest, ADragKeepsToTheScaleAtItsBeginning) {
    startWith(1);
    model->setRollSnapToQuarter(false);
    show();
    const QPoint from = centerOf(0);
    press(from);
    moveTo(from + QPoint(10, 0));
    model->zoomIn();
    turn();
    EXPECT_EQ(board->geometryOfBoard().pointsPerInch, 12.5);
    moveTo(from + QPoint(100, 0));
    EXPECT_EQ(item(0).xInches, 10.0);
    release(from + QPoint(100, 0));
}

TEST_F(RollBoardViewTest, DraggingTheHandleScalesTheArtwork) {
    startWith(1);
    show();
    drag(handleOf(0), {120, 80});
    EXPECT_EQ(item(0).widthInches, 24.0);
    EXPECT_EQ(item(0).heightInches(), 16.0);
    EXPECT_EQ(item(0).xInches, 0.0);
    model->undoRollEdit();
    EXPECT_EQ(item(0).widthInches, 12.0);
}

TEST_F(RollBoardViewTest, TheCanvasDoesNotShrinkDuringAGesture) {
    startWith(1);
    show();
    press(handleOf(0));
    moveTo(handleOf(0) - QPoint(60, 40));
    EXPECT_EQ(item(0).widthInches, 6.0);
    EXPECT_EQ(board->geometryOfBoard().lengthInches, 13.0);
    release(handleOf(0));
    EXPECT_EQ(board->geometryOfBoard().lengthInches, 9.0);
}

TEST_F(RollBoardViewTest, NothingMovesWhileTheSessionIsBusy) {
    startWith(1);
    show();
    const HeldBusy busy(*model);
    turn();
    const CanvasState before = state();
    drag(centerOf(0), {100, 0});
    drag(handleOf(0), {100, 0});
    EXPECT_EQ(state(), before);
}

TEST_F(RollBoardViewTest, ADragThatTheSessionHasEndedGoesOnNoMore) {
    startWith(1);
    show();
    const QPoint grip = centerOf(0);
    press(grip);
    moveTo(grip + QPoint(50, 0));
    model->endArrangeGesture();
    const RollLayout ended = model->rollLayout();
    moveTo(grip + QPoint(100, 0));
    release(grip + QPoint(100, 0));
    EXPECT_EQ(model->rollLayout(), ended);
    EXPECT_FALSE(model->arrangingGesture());
}

TEST_F(RollBoardViewTest, TheSecondPressOfTwoQuickOnesBeginsADrag) {
    startWith(1);
    show();
    const QPoint grip = centerOf(0);
    press(grip);
    release(grip);
    QMouseEvent second(QEvent::MouseButtonDblClick, grip, board->viewport()->mapToGlobal(grip), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(board->viewport(), &second);
    moveTo(grip + QPoint(20, 0));
    moveTo(grip + QPoint(50, 0));
    release(grip + QPoint(50, 0));
    EXPECT_EQ(item(0).xInches, 5.0);
}

TEST_F(RollBoardViewTest, FitsTheWidthWhateverTheWindowMeasures) {
    startWith(1);
    show();
    for (const double rollWidth : {60.0, 44.0, 42.0, 59.5}) {
        model->changeRollWidth(rollWidth);
        for (int width = 500; width < 600; ++width) {
            board->resize(width, 400);
            turn();
            EXPECT_EQ(board->horizontalScrollBar()->maximum(), 0) << rollWidth << " in on " << width;
        }
    }
}

TEST_F(RollBoardViewTest, AnArtworkTakenAtAnEdgeStaysThereUntilItIsDraggedOutwards) {
    startWith(40);
    show();
    const QPoint grip(centerOf(0).x(), 4);
    press(grip);
    moveTo(grip + QPoint(30, 0));
    moveTo(grip + QPoint(60, 0));
    QTest::qWait(60);
    EXPECT_EQ(board->verticalScrollBar()->value(), 0);
    release(grip + QPoint(60, 0));
    board->verticalScrollBar()->setValue(300);
    turn();
    const auto taken = board->hitAt(QPointF(300, 12));
    ASSERT_TRUE(taken);
    press({300, 12});
    moveTo({320, 14});
    moveTo({340, 14});
    QTest::qWait(60);
    EXPECT_EQ(board->verticalScrollBar()->value(), 300);
    moveTo({340, 2});
    waitFor([this] { return board->verticalScrollBar()->value() < 300; });
    release({340, 2});
}

TEST_F(RollBoardViewTest, HidingTheBoardEndsAGesture) {
    startWith(1);
    show();
    press(centerOf(0));
    moveTo(centerOf(0) + QPoint(100, 0));
    EXPECT_TRUE(model->arrangingGesture());
    board->hide();
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(RollBoardViewTest, ArrowKeysMoveTheSelectedArtworkInOneStepOfUndo) {
    startWith(1);
    show();
    QTest::mouseClick(board->viewport(), Qt::LeftButton, Qt::NoModifier, centerOf(0));
    turn();
    for (int repeat = 0; repeat < 5; ++repeat) {
        QTest::keyPress(QApplication::focusWidget(), Qt::Key_Right);
    }
    QTest::keyPress(QApplication::focusWidget(), Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Right, Qt::ShiftModifier);
    waitFor([this] { return model->rollUndoAvailable(); });
    EXPECT_NEAR(item(0).xInches, 0.15, 1e-12);
    model->undoRollEdit();
    EXPECT_EQ(item(0).xInches, 0.0);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(RollBoardViewTest, TheWheelWithControlZoomsAroundThePointer) {
    startWith(30);
    show();
    const QPoint place(206, 306); // 20 and 30 inches from the corner of the canvas
    EXPECT_EQ(board->geometryOfBoard().inchesAt(place), QPointF(20.0, 30.0));
    wheel(place, 120, Qt::ControlModifier);
    EXPECT_EQ(model->rollZoom(), 1.25);
    EXPECT_EQ(board->geometryOfBoard().inchesAt(place), QPointF(20.0, 30.0));
    wheel(place, -120, Qt::ControlModifier);
    EXPECT_EQ(model->rollZoom(), 1.0);
}

TEST_F(RollBoardViewTest, ATouchpadZoomsOnceItHasTurnedByAStep) {
    startWith(1);
    show();
    for (int part = 0; part < 7; ++part) {
        wheel({200, 100}, 15, Qt::ControlModifier);
    }
    EXPECT_EQ(model->rollZoom(), 1.0);
    wheel({200, 100}, 15, Qt::ControlModifier);
    EXPECT_EQ(model->rollZoom(), 1.25);
}

TEST_F(RollBoardViewTest, TheWheelAloneScrolls) {
    startWith(30);
    show();
    wheel({200, 300}, -120, Qt::NoModifier);
    EXPECT_EQ(model->rollZoom(), 1.0);
    EXPECT_GT(board->verticalScrollBar()->value(), 0);
}

TEST_F(RollBoardViewTest, TheButtonsKeepTheMiddle) {
    startWith(30);
    show();
    const QPointF middle = QRectF(board->viewport()->rect()).center();
    const QPointF inches = board->geometryOfBoard().inchesAt(middle);
    model->zoomIn();
    turn();
    const QPointF moved = board->geometryOfBoard().inchesAt(middle) - inches;
    EXPECT_LE(std::abs(moved.x()), 0.5 / 12.5);
    EXPECT_LE(std::abs(moved.y()), 0.5 / 12.5);
}

TEST_F(RollBoardViewTest, AZoomedCanvasScrollsBothWays) {
    startWith(30);
    show();
    EXPECT_EQ(board->horizontalScrollBar()->maximum(), 0);
    model->zoomIn();
    turn();
    EXPECT_EQ(board->horizontalScrollBar()->maximum(), 150);
    EXPECT_GT(board->verticalScrollBar()->maximum(), 0);
}

TEST_F(RollBoardViewTest, ALongRollIsShownFromItsStart) {
    startWith(60);
    show();
    EXPECT_EQ(board->verticalScrollBar()->value(), 0);
    EXPECT_GT(board->verticalScrollBar()->maximum(), 1000);
}

TEST_F(RollBoardViewTest, ASmallCanvasStandsInTheMiddle) {
    startWith(1);
    show();
    for (int step = 0; step < 3; ++step) {
        model->zoomOut();
    }
    turn();
    const QRectF canvas = board->geometryOfBoard().canvas();
    EXPECT_NEAR(canvas.center().x(), board->viewport()->width() / 2.0, 1.0);
}

TEST_F(RollBoardViewTest, AnEmptyCanvasSaysHowToBegin) {
    start();
    show();
    auto* add = board->findChild<QPushButton*>(QStringLiteral("addFirstArtworkButton"));
    ASSERT_NE(add, nullptr);
    EXPECT_TRUE(add->isVisible());
    EXPECT_EQ(add->text(), QStringLiteral("Add Your First Artwork"));
    EXPECT_EQ(board->findChild<QLabel*>(QStringLiteral("emptyCanvasTitle"))->text(),
              QStringLiteral("60-inch Roll Canvas"));
    QTest::mouseClick(add, Qt::LeftButton);
    EXPECT_EQ(services.openRequests.size(), 1);
    {
        const HeldBusy busy(*model);
        turn();
        EXPECT_FALSE(add->isEnabled());
    }
    place({artwork()});
    turn();
    EXPECT_FALSE(add->isVisible());
}

TEST_F(RollBoardViewTest, APictureIsDrawnInsideItsBorder) {
    start();
    show();
    import({picture(QStringLiteral("a.png"), 120, 80)});
    const QPoint inside = centerOf(0);
    waitFor([&] { return colorAt(inside).lightness() < 200 && colorAt(inside).saturation() > 0; });
    EXPECT_EQ(colorAt(board->frameOf(item(0).id).topLeft().toPoint() + QPoint(12, 12)), QColor(Qt::white));
}

TEST_F(RollBoardViewTest, PaintingNeverReadsAPreviewItself) {
    startWith(12);
    std::vector<CountedPreview> previews;
    QHash<QUuid, SharedImageMetadata> known;
    for (const RollArtwork& each : model->rollLayout().items) {
        previews.push_back(CountedPreview::ofColor(Qt::red, {1200, 800}));
        known.insert(each.id, previews.back().metadata);
    }
    SessionBackdoor::set(model->artworkPreviews, known);
    show();
    const auto settlePictures = [this] {
        waitFor([this] { return !pictures->isMaking(); });
        turn();
    };
    settlePictures();
    EXPECT_EQ(colorAt(centerOf(0)).rgb(), QColor(Qt::red).rgb());
    while (model->rollZoom() < 3.0) {
        model->zoomIn();
        turn();
        board->verticalScrollBar()->setValue(0);
        board->horizontalScrollBar()->setValue(0);
        settlePictures();
    }
    drag(centerOf(0), {40, 20});
    drag(handleOf(0), {-60, -40});
    board->verticalScrollBar()->setValue(board->verticalScrollBar()->maximum());
    settlePictures();
    for (const CountedPreview& each : previews) {
        EXPECT_GE(each.rows->reads, 1);
        EXPECT_EQ(each.rows->readsOnMainThread, 0);
    }
}

TEST_F(RollBoardViewTest, ABoardOverAFullCanvasOpensAtTheStartOfTheRoll) {
    startWith(40);
    show();
    EXPECT_EQ(board->verticalScrollBar()->value(), 0);
    EXPECT_EQ(board->geometryOfBoard().origin, QPointF(6.0, 6.0));
    board->resize(board->width() / 2, 300);
    turn();
    board->resize(board->width() * 2, 500);
    turn();
    EXPECT_EQ(board->verticalScrollBar()->value(), 0);
}

TEST_F(RollBoardViewTest, WhatIsMovedByScrollingIsWhatWouldBeDrawnThere) {
    startWith(40);
    model->moveArtwork(item(20).id, 3.21, 100.07);
    show();
    const auto onScreen = [this] { return pixelsOf(board->screen()->grabWindow(board->winId())); };
    ASSERT_TRUE(onScreen() == pixelsOf(board->grab()));
    for (const int place : {100, 350, 340, 0, 1000}) {
        board->verticalScrollBar()->setValue(place);
        turn();
        EXPECT_TRUE(onScreen() == pixelsOf(board->grab())) << place;
    }
}

} // namespace orvex::test
