#include "RollInchField.h"

#include "InLocale.h"

#include <QList>

#include <gtest/gtest.h>

#include <functional>

namespace orvex {
namespace {

/// A field for a number of the test, which takes what is written as a session may: not always as it is.
class RollInchFieldTest : public ::testing::Test {
protected:
    RollInchField field(bool artworkSize = false) {
        const auto write = [this](double typed) {
            written.append(typed);
            value = taken(typed);
        };
        return RollInchField({.read = [this] { return value; }, .write = write}, artworkSize);
    }

    [[nodiscard]] static std::string shown(const RollInchField& field) { return field.draft().toStdString(); }

    static void typeInto(RollInchField& field, const char* text) {
        field.takeFocus();
        field.type(QString::fromUtf8(text));
    }

    double value = 59.5;
    QList<double> written;
    std::function<double(double)> taken = [](double typed) { return typed; };
};

TEST_F(RollInchFieldTest, showsItsNumberFromTheStart) {
    const RollInchField plain = field();
    EXPECT_EQ(shown(plain), "59.5");
    EXPECT_EQ(plain.editBaseline(), 59.5);
    EXPECT_FALSE(plain.focused());
    EXPECT_EQ(shown(field(true)), "59.50");
}

TEST_F(RollInchFieldTest, formatsSizesOfArtworksAndOtherNumbers) {
    EXPECT_EQ(RollInchField::format(12.25, true).toStdString(), "12.25");
    EXPECT_EQ(RollInchField::format(12.3, true).toStdString(), "12.3");
    EXPECT_EQ(RollInchField::format(12.125, true).toStdString(), "12.125");
    EXPECT_EQ(RollInchField::format(12.0, true).toStdString(), "12.00");
    EXPECT_EQ(RollInchField::format(12.0, false).toStdString(), "12");
    EXPECT_EQ(RollInchField::format(12.12345, false).toStdString(), "12.123");
}

TEST_F(RollInchFieldTest, writesWhatWasTypedOnReturn) {
    RollInchField each = field();
    typeInto(each, "44");
    EXPECT_TRUE(each.focused());
    EXPECT_EQ(written, QList<double>{});
    each.commit();
    EXPECT_EQ(written, QList<double>{44.0});
    EXPECT_EQ(each.editBaseline(), 44.0);
    EXPECT_EQ(shown(each), "44");
    EXPECT_TRUE(each.focused());
}

TEST_F(RollInchFieldTest, writesWhatWasTypedOnLeavingAndOnce) {
    RollInchField each = field();
    typeInto(each, " 44.50 ");
    each.commit();
    each.leaveFocus();
    EXPECT_FALSE(each.focused());
    EXPECT_EQ(written, QList<double>{44.5});
    EXPECT_EQ(shown(each), "44.5");
}

TEST_F(RollInchFieldTest, writesWhatWasTypedOnGoingAway) {
    {
        RollInchField each = field();
        typeInto(each, "44");
        each.commit();
    }
    EXPECT_EQ(written, QList<double>{44.0});
}

TEST_F(RollInchFieldTest, showsWhatTheNumberBecame) {
    RollInchField each = field(true);
    taken = [](double) { return 24.0; };
    typeInto(each, "24.1");
    each.commit();
    EXPECT_EQ(written, QList<double>{24.1});
    EXPECT_EQ(each.editBaseline(), 24.0);
    EXPECT_EQ(shown(each), "24.00");
}

TEST_F(RollInchFieldTest, returnsToItsNumberWhereTheWriteIsRefused) {
    RollInchField each = field();
    taken = [](double) { return 59.5; };
    typeInto(each, "61");
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{61.0});
    EXPECT_EQ(shown(each), "59.5");
}

TEST_F(RollInchFieldTest, writesNothingThatIsNoNumber) {
    for (const char* text : {"", " ", "abc", "1,000.5", "0x10", "inf", "1e999", "44 in", "--1"}) {
        RollInchField each = field();
        typeInto(each, text);
        each.leaveFocus();
        EXPECT_EQ(written, QList<double>{}) << text;
        EXPECT_EQ(shown(each), "59.5") << text;
        EXPECT_EQ(each.editBaseline(), 59.5) << text;
    }
}

TEST_F(RollInchFieldTest, changesNothingIfOnlyVisited) {
    value = 100.0 / 3.0; // more than is shown
    RollInchField each = field();
    each.takeFocus();
    EXPECT_EQ(shown(each), "33.333");
    each.commit();
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{});
    EXPECT_EQ(value, 100.0 / 3.0);
}

TEST_F(RollInchFieldTest, changesNothingIfTheShownTextIsTypedAgain) {
    value = 100.0 / 3.0;
    RollInchField each = field();
    typeInto(each, "33");
    each.type(QStringLiteral("33.333"));
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{});
}

TEST_F(RollInchFieldTest, writesAnotherTextOfAnotherNumberThatIsShownAlike) {
    value = 100.0 / 3.0;
    RollInchField each = field();
    typeInto(each, "33.3330");
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{33.333});
}

TEST_F(RollInchFieldTest, writesNoNumberThatHoldsAlready) {
    RollInchField each = field();
    typeInto(each, "59.500");
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{});
    EXPECT_EQ(shown(each), "59.5");
}

TEST_F(RollInchFieldTest, letsANumberFromElsewhereWinOverAStaleDraft) {
    RollInchField each = field();
    typeInto(each, "44");
    value = 36.0; // and nobody has told the field
    each.commit();
    EXPECT_EQ(written, QList<double>{});
    EXPECT_EQ(value, 36.0);
    EXPECT_EQ(each.editBaseline(), 36.0);
    EXPECT_EQ(shown(each), "36");
}

TEST_F(RollInchFieldTest, writesAgainAfterAStaleDraft) {
    RollInchField each = field();
    typeInto(each, "44");
    value = 36.0;
    each.commit();
    each.type(QStringLiteral("44"));
    each.commit();
    EXPECT_EQ(written, QList<double>{44.0});
}

TEST_F(RollInchFieldTest, takesANumberFromElsewhereAtOnceWhileItIsTypedIn) {
    RollInchField each = field(true);
    typeInto(each, "44");
    value = 36.0;
    each.syncValue();
    EXPECT_EQ(shown(each), "36.00");
    EXPECT_EQ(each.editBaseline(), 36.0);
    EXPECT_TRUE(each.focused());
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{});
}

TEST_F(RollInchFieldTest, takesANumberFromElsewhereWithoutFocus) {
    RollInchField each = field();
    value = 36.0;
    each.syncValue();
    EXPECT_EQ(shown(each), "36");
    EXPECT_FALSE(each.focused());
}

TEST_F(RollInchFieldTest, keepsItsDraftWhereAnotherNumberChanged) {
    RollInchField each = field();
    typeInto(each, "44");
    each.syncValue();
    EXPECT_EQ(shown(each), "44");
}

TEST_F(RollInchFieldTest, startsFromTheNumberAsItIsWhenItTakesFocus) {
    RollInchField each = field();
    value = 36.0;
    each.takeFocus();
    EXPECT_EQ(each.editBaseline(), 36.0);
    EXPECT_EQ(shown(each), "36");
    each.type(QStringLiteral("44"));
    each.leaveFocus();
    EXPECT_EQ(written, QList<double>{44.0});
}

TEST_F(RollInchFieldTest, takesACommaWhereTheLocaleHasOne) {
    const test::InLocale german("de_DE");
    RollInchField each = field(true);
    EXPECT_EQ(shown(each), "59,50");
    typeInto(each, "44,25");
    each.commit();
    each.type(QStringLiteral("44.75"));
    each.commit();
    EXPECT_EQ(written, (QList<double>{44.25, 44.75}));
    EXPECT_EQ(shown(each), "44,75");
    each.leaveFocus();
    EXPECT_EQ(written.size(), 2);
}

TEST_F(RollInchFieldTest, takesNoCommaWhereTheLocaleHasAPoint) {
    RollInchField each = field();
    typeInto(each, "44,25");
    each.commit();
    EXPECT_EQ(written, QList<double>{});
    EXPECT_EQ(shown(each), "59.5");
}

} // namespace
} // namespace orvex
