// Sessions whose folder cannot take the canvas, or does not show it: what is there stays, and editing goes on.

#include "ChildProcess.h"
#include "FolderContent.h"
#include "ForkedWork.h"
#include "NoDesktop.h"
#include "OnPrivateMachine.h"
#include "OrvexError.h"
#include "OrvexModel.h"
#include "PrivateDisk.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvex {
namespace {

using test::Outcome;
using test::PrivateDisk;

constexpr qint64 diskBytes = 256 * 1024;

const QString notRead = QStringLiteral("The autosaved layout could not be read. The original file has been retained. "
                                       "Save the layout as a new file.");

class SessionPlace : public test::OnPrivateMachine<> {
protected:
    SessionPlace() {
        qputenv("HOME", root_.path().toUtf8());
        qputenv("XDG_DATA_HOME", home_.toUtf8());
        QDir().mkdir(home_);
    }

    void SetUp() override {
        OnPrivateMachine::SetUp();
        ASSERT_EQ(::chmod(root_.path().toUtf8().constData(), 0755), 0);
    }

    /// Leaves a canvas in the application folder, and all the files that a session makes there.
    void leaveCanvas() {
        NoDesktop desktop;
        OrvexModel session(desktop);
        session.setRollGap(1.0);
        ASSERT_EQ(session.errorMessage(), std::nullopt);
        before_ = test::TemporaryFolder::read(file_);
    }

    void allow(const QString& path, mode_t mode) const {
        ASSERT_EQ(::chmod(path.toUtf8().constData(), mode), 0) << path.toStdString();
    }

    /// The gap of a session that has made an edit, and what it says of saving; as a user without rights.
    Outcome editAsOrdinaryUser() const {
        return test::outcomeOf([] {
            if (!test::becomeOrdinaryUser()) {
                throw std::runtime_error("still the superuser");
            }
            NoDesktop desktop;
            OrvexModel session(desktop);
            const QString gap = QString::number(session.arrangementGap());
            session.setRollGap(5.0);
            throw OrvexError::invalid(gap + QStringLiteral("; ") + session.rollSaveMessage());
        });
    }

    void expectOutcome(const Outcome& outcome, const QString& words) const {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.message.toStdString(), words.toStdString());
        EXPECT_EQ(test::TemporaryFolder::read(file_), before_);
        EXPECT_EQ(test::temporariesIn(root_.path()), QStringList());
    }

    const test::TemporaryFolder root_;
    const QString home_ = root_.path(QStringLiteral("home"));
    const QString folder_ = home_ + QStringLiteral("/ORVEX");
    const QString file_ = folder_ + QStringLiteral("/roll-layout.json");
    QByteArray before_;
};

TEST_F(SessionPlace, thatIsReadOnlyShowsTheCanvasAndTellsThatItIsNotSaved) {
    const PrivateDisk disk(home_, diskBytes);
    leaveCanvas();
    disk.makeReadOnly();
    NoDesktop desktop;
    OrvexModel session(desktop);
    EXPECT_EQ(session.arrangementGap(), 1.0);
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    session.setRollGap(2.0);
    EXPECT_EQ(session.arrangementGap(), 2.0);
    EXPECT_EQ(session.rollSaveMessage().toStdString(),
              "Layout not saved: " + file_.toStdString() + ": Read-only file system");
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_EQ(test::TemporaryFolder::read(file_), before_);
}

TEST_F(SessionPlace, thatIsReadOnlyAndEmptySwitchesAutosaveOff) {
    const PrivateDisk disk(home_, diskBytes);
    disk.makeReadOnly();
    NoDesktop desktop;
    OrvexModel session(desktop);
    EXPECT_EQ(session.rollSaveMessage(), notRead);
    EXPECT_EQ(session.errorMessage().value_or(QString()).toStdString(),
              folder_.toStdString() + ": Read-only file system");
    session.setRollGap(2.0);
    EXPECT_EQ(session.rollSaveMessage(), notRead);
    EXPECT_FALSE(QFileInfo::exists(folder_));
}

TEST_F(SessionPlace, thatIsFullKeepsTheOldFileUntilThereIsRoomAgain) {
    const PrivateDisk disk(home_, diskBytes);
    leaveCanvas();
    NoDesktop desktop;
    OrvexModel session(desktop);
    QFile filler(home_ + QStringLiteral("/filler"));
    ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(4096, 'f')) > 0) {
    }
    session.setRollGap(2.0);
    EXPECT_EQ(session.rollSaveMessage().toStdString(),
              "Layout not saved: " + file_.toStdString() + ": No space left on device");
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_EQ(test::TemporaryFolder::read(file_), before_);
    EXPECT_EQ(test::temporariesIn(home_), QStringList());
    ASSERT_TRUE(filler.remove());
    session.setRollGap(3.0);
    EXPECT_EQ(session.rollSaveMessage(), QStringLiteral("Layout autosaved"));
    EXPECT_EQ(OrvexModel(desktop).arrangementGap(), 3.0);
}

TEST_F(SessionPlace, whereTheUserMayNotWriteShowsTheCanvasAndKeepsIt) {
    leaveCanvas();
    allow(home_, 0755);
    allow(folder_, 0755);
    allow(file_, 0644);
    expectOutcome(editAsOrdinaryUser(), QStringLiteral("1; Layout not saved: %1: Permission denied").arg(file_));
}

TEST_F(SessionPlace, withAFileThatTheUserMayNotReadKeepsItWhateverIsEdited) {
    leaveCanvas();
    allow(home_, 0777);
    allow(folder_, 0777);
    allow(file_, 0000);
    expectOutcome(editAsOrdinaryUser(), QStringLiteral("0; ") + notRead);
}

TEST_F(SessionPlace, thatTheUserMayNotEnterKeepsTheCanvas) {
    leaveCanvas();
    allow(home_, 0755);
    allow(folder_, 0000);
    expectOutcome(editAsOrdinaryUser(), QStringLiteral("0; ") + notRead);
}

TEST_F(SessionPlace, thatTheUserMayNotMakeSwitchesAutosaveOff) {
    allow(home_, 0555);
    const Outcome outcome = editAsOrdinaryUser();
    EXPECT_EQ(outcome.message, QByteArray("0; ") + notRead.toUtf8());
    EXPECT_FALSE(QFileInfo::exists(folder_));
}

} // namespace
} // namespace orvex
