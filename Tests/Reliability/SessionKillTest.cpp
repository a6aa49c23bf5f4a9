// What a session leaves that is killed while its user edits.

#include "FolderContent.h"
#include "ForkedWork.h"
#include "Layout/RollWorkspaceFile.h"
#include "NoDesktop.h"
#include "OrvexModel.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <random>

namespace orvex {
namespace {

using test::TemporaryFolder;

// Edits by number, from 1 on, and what the canvas has to be after each of them

enum Kind { selection, position, drag, size, gap, kinds };

constexpr int repeatedAfterRounds = 40;

QUuid idOf(int artwork) {
    return QUuid::createUuidV5(QUuid(), QString::number(artwork));
}

double placeOf(int round) {
    return 1.0 + 0.25 * (round % repeatedAfterRounds);
}

double widthOf(int round) {
    return 3.0 + 0.75 * (round % repeatedAfterRounds); // at these widths both sides are whole quarter inches
}

double gapOf(int round) {
    return 0.5 * (1 + round % repeatedAfterRounds);
}

RollArtwork artworkAt(int number, double y) {
    return RollArtwork::make({.id = idOf(number),
                              .sourceURL = QUrl(QStringLiteral("file:///pictures/%1.png").arg(number)),
                              .pixelWidth = 1200,
                              .pixelHeight = 800,
                              .originalWidthInches = 12.0,
                              .originalHeightInches = 8.0,
                              .widthInches = 12.0,
                              .yInches = y});
}

/// What the first edit is made on.
RollWorkspaceFile initialWorkspace() {
    RollWorkspaceFile workspace;
    workspace.layout.items = {artworkAt(0, 0.0), artworkAt(1, 13.0), artworkAt(2, 26.0)};
    workspace.selection = idOf(2);
    return workspace;
}

void take(RollWorkspaceFile& workspace, int edit) {
    const int round = edit / kinds;
    QList<RollArtwork>& items = workspace.layout.items;
    switch (edit % kinds) {
    case selection:
        workspace.selection = idOf(0);
        break;
    case position:
        items[0].xInches = placeOf(round);
        break;
    case drag:
        items[1].xInches = placeOf(round);
        workspace.selection = idOf(1);
        break;
    case size:
        items[2].widthInches = widthOf(round);
        break;
    default:
        workspace.gapInches = gapOf(round);
    }
}

/// The canvas after that many edits.
RollWorkspaceFile workspaceAfter(int edits) {
    RollWorkspaceFile workspace = initialWorkspace();
    for (int edit = std::max(1, edits - 2 * kinds); edit <= edits; ++edit) {
        take(workspace, edit); // later edits of a kind replace what earlier ones did
    }
    return workspace;
}

void dragSecondArtwork(OrvexModel& session, double x) {
    session.beginArrangeGesture();
    for (const double step : {20.0, 10.0, 0.0}) {
        session.dragArtwork(idOf(1), x + step, 13.0);
    }
    session.endArrangeGesture();
}

/// The same as a user's command.
void run(OrvexModel& session, int edit) {
    const int round = edit / kinds;
    switch (edit % kinds) {
    case selection:
        session.selectArtwork(idOf(0));
        break;
    case position:
        session.moveArtwork(idOf(0), placeOf(round), std::nullopt);
        break;
    case drag:
        dragSecondArtwork(session, placeOf(round));
        break;
    case size:
        session.resizeArtwork(idOf(2), widthOf(round), QuarterInchArtworkSizing::Dimension::width);
        break;
    default:
        session.setRollGap(gapOf(round));
    }
}

RollWorkspaceFile workspaceOf(const OrvexModel& session) {
    return {.layout = session.rollLayout(),
            .selection = session.selectedArtworkID(),
            .sizingDescriptions = session.sizingDescriptions(),
            .gapInches = session.arrangementGap()};
}

int numberFrom(const char* variable, int otherwise) {
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? number : otherwise;
}

class KilledSession : public ::testing::Test {
protected:
    KilledSession() {
        qputenv("HOME", folder_.path().toUtf8());
        qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
        QDir(folder_.path()).mkdir(QStringLiteral("ORVEX"));
        folder_.write(QStringLiteral("ORVEX/roll-layout.json"), initialWorkspace().encode());
    }

    /// Edits until it is killed at some moment; the last edit that was reported as finished. Every second kill may come
    /// before the first edit.
    int editUntilKilled(int finished) {
        test::ForkedWork user([finished](const auto& report) {
            NoDesktop desktop;
            OrvexModel session(desktop);
            for (int edit = finished + 1;; ++edit) {
                run(session, edit);
                report(edit);
            }
        });
        if (kills_ % 2 == 0) {
            user.waitForReport();
        }
        ::usleep(std::uniform_int_distribution<useconds_t>(0, longestMicroseconds)(random_));
        user.kill();
        const test::Outcome outcome = user.wait();
        EXPECT_EQ(outcome.signal, SIGKILL) << outcome.message.constData();
        return outcome.reports.empty() ? finished : outcome.reports.back();
    }

    /// Starts again after a kill and makes one more edit; the number of it.
    int restartAndEdit(int finished) {
        NoDesktop desktop;
        OrvexModel session(desktop);
        EXPECT_EQ(session.errorMessage(), std::nullopt) << session.errorMessage().value_or(QString()).toStdString();
        const RollWorkspaceFile found = workspaceOf(session);
        const bool isNext = found == workspaceAfter(finished + 1);
        EXPECT_TRUE(isNext || found == workspaceAfter(finished))
            << "after edit " << finished << ": " << found.encode().constData();
        EXPECT_LE(test::temporariesIn(folder_.path()).size(), 1);
        const int edit = finished + (isNext ? 2 : 1);
        run(session, edit);
        EXPECT_EQ(workspaceOf(session), workspaceAfter(edit));
        EXPECT_EQ(test::temporariesIn(folder_.path()), QStringList());
        return edit;
    }

    static constexpr useconds_t longestMicroseconds = 25'000;

    const unsigned seed_ =
        static_cast<unsigned>(numberFrom("ORVEX_SEED", static_cast<int>(std::random_device()() >> 1U)));
    std::mt19937 random_{seed_};
    int kills_ = 0;
    TemporaryFolder folder_;
};

TEST_F(KilledSession, startsAgainWithTheLastFinishedEdit) {
    SCOPED_TRACE("ORVEX_SEED=" + std::to_string(seed_));
    const int kills = numberFrom("ORVEX_KILLS", 40);
    int edits = 0;
    for (; kills_ < kills && !HasFailure(); ++kills_) {
        edits = restartAndEdit(editUntilKilled(edits));
    }
    std::cout << "session: " << kills_ << " kills, " << edits << " edits\n";
}

TEST(EditsOfAKilledSession, areAllToldApartFromTheOnesBeforeAndAfter) {
    for (int edits = 0; edits < 3 * repeatedAfterRounds * kinds; ++edits) {
        EXPECT_FALSE(workspaceAfter(edits) == workspaceAfter(edits + 1)) << edits;
    }
}

} // namespace
} // namespace orvex
