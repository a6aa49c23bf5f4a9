#include "OneStepEdit.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

RollLayout layoutOfWidth(double width) {
    return RollLayout({}, width);
}

TEST(OneStepEdit, IsClosedAtFirst) {
    OneStepEdit edit;
    EXPECT_FALSE(edit.isOpen());
    EXPECT_EQ(edit.initialLayout(), std::nullopt);
    EXPECT_EQ(edit.end(layoutOfWidth(40)), std::nullopt);
}

TEST(OneStepEdit, KeepsTheLayoutOfItsStartHoweverOftenItIsBegun) {
    OneStepEdit edit;
    edit.begin(layoutOfWidth(40));
    edit.begin(layoutOfWidth(50));
    EXPECT_TRUE(edit.isOpen());
    EXPECT_EQ(edit.initialLayout(), layoutOfWidth(40));
}

TEST(OneStepEdit, EndsOnceWithTheStepToRecord) {
    OneStepEdit edit;
    edit.begin(layoutOfWidth(40));
    EXPECT_EQ(edit.end(layoutOfWidth(50)), layoutOfWidth(40));
    EXPECT_FALSE(edit.isOpen());
    EXPECT_EQ(edit.end(layoutOfWidth(50)), std::nullopt);
}

TEST(OneStepEdit, EndsWithoutAStepWhereNothingIsChanged) {
    OneStepEdit edit;
    edit.begin(layoutOfWidth(40));
    EXPECT_EQ(edit.end(layoutOfWidth(40)), std::nullopt);
    EXPECT_FALSE(edit.isOpen());
}

TEST(OneStepEdit, CanBeginAnewAfterItsEnd) {
    OneStepEdit edit;
    edit.begin(layoutOfWidth(40));
    static_cast<void>(edit.end(layoutOfWidth(50)));
    edit.begin(layoutOfWidth(50));
    EXPECT_EQ(edit.initialLayout(), layoutOfWidth(50));
}

} // namespace
} // namespace orvex
