#include "AlertRules.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

const QString reason = QStringLiteral("the scheduler does not answer");
const QString message = QStringLiteral("Could not read printer status: the scheduler does not answer");

} // namespace

TEST(AlertRules, EveryFirstMessageIsWorthAnAlert) {
    const AlertRules rules;
    EXPECT_TRUE(rules.isWorthAlert(QStringLiteral("No.")));
    EXPECT_TRUE(rules.isWorthAlert(message));
}

TEST(AlertRules, ADismissedRefreshFailureIsNotRaisedAgainWhileItLasts) {
    AlertRules rules;
    rules.dismissed(message, reason);
    rules.refreshed(reason);
    EXPECT_FALSE(rules.isWorthAlert(message));
    EXPECT_FALSE(rules.isWorthAlert(message));
}

TEST(AlertRules, AnotherReasonOfARefreshFailureIsWorthAnAlert) {
    AlertRules rules;
    rules.dismissed(message, reason);
    rules.refreshed(QStringLiteral("x"));
    EXPECT_TRUE(rules.isWorthAlert(QStringLiteral("Could not read printer status: x")));
}

TEST(AlertRules, TheSameRefreshFailureAfterASuccessIsWorthAnAlert) {
    AlertRules rules;
    rules.dismissed(message, reason);
    rules.refreshed(std::nullopt);
    rules.refreshed(reason);
    EXPECT_TRUE(rules.isWorthAlert(message));
}

TEST(AlertRules, WhatACommandSaysIsWorthAnAlertEachTime) {
    AlertRules rules;
    rules.dismissed(QStringLiteral("No."), std::nullopt);
    EXPECT_TRUE(rules.isWorthAlert(QStringLiteral("No.")));
    rules.dismissed(QStringLiteral("No."), reason);
    EXPECT_TRUE(rules.isWorthAlert(QStringLiteral("No.")));
}

TEST(AlertRules, ARefreshFailureWithoutWordsHidesNothingElse) {
    AlertRules rules;
    rules.dismissed(QStringLiteral("No."), QString());
    EXPECT_TRUE(rules.isWorthAlert(QStringLiteral("No.")));
}

} // namespace orvex
