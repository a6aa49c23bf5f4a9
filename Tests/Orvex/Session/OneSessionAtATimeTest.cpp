#include "SessionFixture.h"

namespace orvex {
namespace {

class OneSessionAtATime : public test::SessionTest {
protected:
    test::FakeServices otherServices;
    OrvexModel& first = start();
    OrvexModel other{otherServices, SessionAccess::full, readings};
};

TEST_F(OneSessionAtATime, HasTheFolderForItself) {
    EXPECT_FALSE(first.isHeldByAnother());
    EXPECT_TRUE(other.isHeldByAnother());
}

TEST_F(OneSessionAtATime, LeavesTheSecondOneWithoutStores) {
    EXPECT_TRUE(model->queueAvailable());
    EXPECT_TRUE(model->presetsAvailable());
    EXPECT_FALSE(other.queueAvailable());
    EXPECT_FALSE(other.presetsAvailable());
    other.recordObservation();
    EXPECT_EQ(other.errorMessage(),
              QStringLiteral("Observation storage is unavailable. Existing records were not overwritten."));
}

TEST_F(OneSessionAtATime, KeepsTheSecondOneFromSavingTheCanvas) {
    place({artwork()});
    model->rotateSelectedArtwork();
    const QByteArray saved = test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json")));
    other.setRollGap(1.0);
    EXPECT_EQ(other.arrangementGap(), 1.0);
    EXPECT_EQ(other.rollSaveMessage(), QStringLiteral("Layouts save automatically"));
    EXPECT_EQ(test::TemporaryFolder::read(stored(QStringLiteral("roll-layout.json"))), saved);
}

TEST_F(OneSessionAtATime, RaisesItsWindowWhenTheSecondAsks) {
    RaiseRequests::send();
    test::waitFor([this] { return services.raisedWindows > 0; });
    EXPECT_EQ(services.raisedWindows, 1);
    EXPECT_EQ(otherServices.raisedWindows, 0);
}

TEST_F(OneSessionAtATime, GivesTheFolderBackWhenItEnds) {
    model.reset();
    const OrvexModel next(services, SessionAccess::full, readings);
    EXPECT_FALSE(next.isHeldByAnother());
    EXPECT_TRUE(next.queueAvailable());
}

TEST_F(OneSessionAtATime, NeedsNoLockToShowWhatIsThere) {
    const OrvexModel reader(services, SessionAccess::readOnly, readings);
    EXPECT_FALSE(reader.isHeldByAnother());
    EXPECT_FALSE(reader.queueAvailable());
}

} // namespace
} // namespace orvex
