#pragma once

#include "Layout/RollWorkspaceFile.h"
#include "SessionFixture.h"

#include <QFileInfo>

#include <limits>

namespace orvex::test {

/// Makes a session busy, as background work does, for as long as this lives.
class HeldBusy {
public:
    explicit HeldBusy(OrvexModel& session) : session_(session) { SessionBackdoor::set(session_.busy, true); }

    ~HeldBusy() { SessionBackdoor::set(session_.busy, false); }

    HeldBusy(const HeldBusy&) = delete;
    HeldBusy& operator=(const HeldBusy&) = delete;

private:
    OrvexModel& session_;
};

/// What editing the canvas can change.
struct CanvasState {
    RollLayout layout;
    std::optional<QUuid> selection;
    double gapInches = 0.0;
    QString message;
    QString saveMessage;
    std::optional<QString> errorMessage;
    int undoSteps = 0;
    bool isGesture = false;
    std::optional<double> frameLength;
    bool isAutosaved = false;
    int tab = 0;
    int focusRequest = 0;

    bool operator==(const CanvasState&) const = default;
};

/// A session whose canvas is edited.
class CanvasTest : public SessionTest {
protected:
    static constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    const QString autosavePath = stored(QStringLiteral("roll-layout.json"));

    /// Starts a session with this many artworks of 12 x 8 inches side by side; the last one is selected.
    void startWith(int count) {
        start();
        QList<RollArtwork> artworks;
        for (int number = 0; number < count; ++number) {
            artworks.append(artwork());
        }
        place(artworks);
    }

    [[nodiscard]] const RollArtwork& item(qsizetype number) const { return model->rollLayout().items[number]; }

    [[nodiscard]] QUuid idOf(qsizetype number) const { return item(number).id; }

    [[nodiscard]] int undoSteps() const {
        RollHistory history = SessionBackdoor(*model).history();
        int count = 0;
        while (history.undo(RollLayout())) {
            ++count;
        }
        return count;
    }

    /// The layout to which undo would go back.
    [[nodiscard]] std::optional<RollLayout> lastStep() const {
        RollHistory history = SessionBackdoor(*model).history();
        return history.undo(RollLayout());
    }

    /// Takes the autosave file away, so that the next autosave shows.
    void forgetAutosave() const { QFile::remove(autosavePath); }

    [[nodiscard]] bool isAutosaved() const { return QFileInfo::exists(autosavePath); }

    [[nodiscard]] static RollWorkspaceFile workspaceIn(const QString& path) {
        return RollWorkspaceFile::decode(TemporaryFolder::read(path));
    }

    [[nodiscard]] RollWorkspaceFile autosaved() const { return workspaceIn(autosavePath); }

    /// What the autosave file has to hold now.
    [[nodiscard]] RollWorkspaceFile workspace() const {
        return {.layout = model->rollLayout(),
                .selection = model->selectedArtworkID(),
                .sizingDescriptions = model->sizingDescriptions(),
                .gapInches = model->arrangementGap()};
    }

    [[nodiscard]] CanvasState state() const {
        return {.layout = model->rollLayout(),
                .selection = model->selectedArtworkID(),
                .gapInches = model->arrangementGap(),
                .message = model->message(),
                .saveMessage = model->rollSaveMessage(),
                .errorMessage = model->errorMessage(),
                .undoSteps = undoSteps(),
                .isGesture = model->arrangingGesture(),
                .frameLength = model->rollGestureFrameLength(),
                .isAutosaved = isAutosaved(),
                .tab = model->tab(),
                .focusRequest = model->rollKeyboardFocusRequest()};
    }

    /// Does something that must be one step of undo from the layout of before, saved, and told in no alert.
    void expectOneStep(const std::function<void()>& edit) {
        const RollLayout before = model->rollLayout();
        const int steps = undoSteps();
        forgetAutosave();
        edit();
        EXPECT_FALSE(model->rollLayout() == before);
        EXPECT_EQ(undoSteps(), steps + 1);
        EXPECT_EQ(lastStep(), before);
        EXPECT_EQ(model->errorMessage(), std::nullopt);
        EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout autosaved"));
        EXPECT_EQ(autosaved(), workspace());
    }

    /// Does something that must end a keyboard run, which has moved the last artwork: with one step and one autosave.
    void expectOneStepOfRun(const std::function<void()>& end) {
        const RollLayout moved = model->rollLayout();
        const int steps = undoSteps();
        forgetAutosave();
        end();
        EXPECT_EQ(model->rollLayout(), moved);
        EXPECT_EQ(undoSteps(), steps + 1);
        EXPECT_FALSE(lastStep() == moved);
        ASSERT_TRUE(isAutosaved());
        EXPECT_EQ(autosaved(), workspace());
    }

    /// Does something that must leave everything as it was.
    void expectNothing(const std::function<void()>& edit) {
        forgetAutosave();
        const CanvasState before = state();
        edit();
        EXPECT_EQ(state(), before);
    }

    /// Does something that must change nothing but the text in the alert.
    void expectRefusal(const std::function<void()>& edit, const QString& words) {
        forgetAutosave();
        CanvasState expected = state();
        expected.errorMessage = words;
        edit();
        EXPECT_EQ(model->errorMessage(), words);
        EXPECT_EQ(state(), expected);
    }
};

} // namespace orvex::test
