#include "Observed.h"

#include "SessionFixture.h"

namespace orvex {
namespace {

/// Counts what a field of the session would announce.
class ObservedField : public ::testing::Test {
protected:
    ObservedField() {
        QObject::connect(&announcer, &ChangeAnnouncer::changed, &announcer, [this] { ++announced; });
    }

    template <typename Value>
    void write(Observed<Value>& field, Value value) {
        SessionBackdoor::set(field, std::move(value));
    }

    int announcedAfterATurn() {
        QCoreApplication::processEvents();
        return announced;
    }

    ChangeAnnouncer announcer;
    int announced = 0;
};

TEST_F(ObservedField, HasTheValueItIsMadeWith) {
    const Observed<int> field(announcer, 7);
    EXPECT_EQ(field(), 7);
    EXPECT_EQ(Observed<QString>(announcer)(), QString());
    EXPECT_EQ(announcedAfterATurn(), 0);
}

TEST_F(ObservedField, HasANewValueAtOnceAndAnnouncesItLater) {
    Observed<int> field(announcer, 7);
    write(field, 8);
    EXPECT_EQ(field(), 8);
    EXPECT_EQ(announced, 0);
    EXPECT_EQ(announcedAfterATurn(), 1);
}

TEST_F(ObservedField, AnnouncesManyChangesOnceInOneTurn) {
    Observed<int> number(announcer, 0);
    Observed<QString> text(announcer);
    for (int value = 1; value <= 100; ++value) {
        write(number, value);
        write(text, QString::number(value));
    }
    EXPECT_EQ(announcedAfterATurn(), 1);
    EXPECT_EQ(announcedAfterATurn(), 1);
}

TEST_F(ObservedField, AnnouncesNoEqualValue) {
    Observed<RollLayout> field(announcer, RollLayout({}, 40.0));
    write(field, RollLayout({}, 40.0));
    EXPECT_EQ(announcedAfterATurn(), 0);
    write(field, RollLayout({}, 41.0));
    EXPECT_EQ(announcedAfterATurn(), 1);
}

TEST_F(ObservedField, AnnouncesAgainInTheNextTurn) {
    Observed<int> field(announcer, 0);
    write(field, 1);
    EXPECT_EQ(announcedAfterATurn(), 1);
    write(field, 2);
    EXPECT_EQ(announcedAfterATurn(), 2);
}

TEST_F(ObservedField, AnnouncesWhatAListenerChanges) {
    Observed<int> field(announcer, 0);
    QObject::connect(&announcer, &ChangeAnnouncer::changed, &announcer, [this, &field] {
        if (field() < 3) {
            write(field, field() + 1);
        }
    });
    write(field, 1);
    QCoreApplication::sendPostedEvents();
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(field(), 3);
    EXPECT_EQ(announced, 3);
}

TEST_F(ObservedField, IsSilentWhenTheAnnouncerIsGoneBeforeTheTurn) {
    int count = 0;
    {
        ChangeAnnouncer closing;
        QObject::connect(&closing, &ChangeAnnouncer::changed, &announcer, [&count] { ++count; });
        closing.announce();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(count, 0);
}

} // namespace
} // namespace orvex
