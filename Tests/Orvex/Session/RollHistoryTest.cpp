#include "RollHistory.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

/// Layouts that a number tells apart.
RollLayout layout(int number) {
    return RollLayout({}, 10.0 + number / 100.0);
}

RollArtwork artworkOf(const QUuid& id) {
    return RollArtwork::make(
        {.id = id, .sourceURL = QUrl(QStringLiteral("file:///a.png")), .pixelWidth = 300, .pixelHeight = 300});
}

TEST(RollHistory, IsEmptyAtFirst) {
    RollHistory history;
    EXPECT_TRUE(history.rollUndo().isEmpty());
    EXPECT_TRUE(history.rollRedo().isEmpty());
    EXPECT_EQ(history.undo(layout(0)), std::nullopt);
    EXPECT_EQ(history.redo(layout(0)), std::nullopt);
    EXPECT_TRUE(history.rollUndo().isEmpty());
    EXPECT_TRUE(history.rollRedo().isEmpty());
}

TEST(RollHistory, GoesBackAndForwardStepByStep) {
    RollHistory history;
    history.record(layout(0));
    history.record(layout(1));
    EXPECT_EQ(history.undo(layout(2)), layout(1));
    EXPECT_EQ(history.undo(layout(1)), layout(0));
    EXPECT_TRUE(history.rollUndo().isEmpty());
    EXPECT_EQ(history.redo(layout(0)), layout(1));
    EXPECT_EQ(history.redo(layout(1)), layout(2));
    EXPECT_TRUE(history.rollRedo().isEmpty());
    EXPECT_EQ(history.undo(layout(2)), layout(1));
}

TEST(RollHistory, HasNothingToRedoAfterANewStep) {
    RollHistory history;
    history.record(layout(0));
    static_cast<void>(history.undo(layout(1)));
    EXPECT_FALSE(history.rollRedo().isEmpty());
    history.record(layout(2));
    EXPECT_TRUE(history.rollRedo().isEmpty());
    EXPECT_EQ(history.undo(layout(3)), layout(2));
}

TEST(RollHistory, RecordsEqualLayoutsAsSteps) {
    RollHistory history;
    history.record(layout(0));
    history.record(layout(0));
    EXPECT_EQ(history.undo(layout(0)), layout(0));
    EXPECT_EQ(history.undo(layout(0)), layout(0));
    EXPECT_TRUE(history.rollUndo().isEmpty());
}

TEST(RollHistory, LosesTheOldestStepWithTheEightyFirst) {
    RollHistory history;
    for (int number = 1; number <= 80; ++number) {
        history.record(layout(number));
    }
    RollHistory full = history;
    for (int number = 80; number >= 1; --number) {
        ASSERT_EQ(full.undo(layout(0)), layout(number));
    }
    EXPECT_TRUE(full.rollUndo().isEmpty());
    history.record(layout(81));
    for (int number = 81; number >= 2; --number) {
        ASSERT_EQ(history.undo(layout(0)), layout(number));
    }
    EXPECT_TRUE(history.rollUndo().isEmpty());
}

TEST(RollHistory, HoldsTheArtworksOfStepsToUndoAndToRedo) {
    const QUuid undone = QUuid::createUuid();
    const QUuid redone = QUuid::createUuid();
    const QUuid unknown = QUuid::createUuid();
    RollHistory history;
    history.record(RollLayout({artworkOf(undone)}));
    history.record(RollLayout());
    static_cast<void>(history.undo(RollLayout({artworkOf(redone)})));
    EXPECT_EQ(history.heldIDs({undone, redone, unknown}), (QSet<QUuid>{undone, redone}));
    EXPECT_EQ(history.heldIDs({redone}), QSet<QUuid>{redone});
    EXPECT_EQ(history.heldIDs({}), QSet<QUuid>());
}

} // namespace
} // namespace orvex
