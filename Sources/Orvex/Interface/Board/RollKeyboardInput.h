#pragma once

#include "Layout/RollKeyboardNudge.h"

#include <QHash>
#include <QPointer>
#include <QSet>
#include <QWidget>

#include <functional>
#include <optional>

class QKeyEvent;

namespace orvex {

/// What the board tells the keyboard on each update.
struct RollKeyboardInput {
    int focusRequest = 0;   ///< a new number, 1 or more, asks for the keyboard
    bool isEnabled = false; ///< whether arrow keys move anything now
    std::function<void(RollNudgeDirection, bool isAccelerated)> onMove;
    std::function<void()> onEnd; ///< a run of steps is over
};

/// Takes the arrow keys for the board, invisibly behind it: a call for each step, and one when the last arrow key of a
/// run was released or can be released no more. The mouse goes through it. Main thread.
class RollKeyboardResponderView : public QWidget {
    Q_OBJECT

public:
    /// How long the end of a run waits for the press that shows that the key is still held: the window system tells of
    /// a repeat as a release with a press behind it, which may come in a later turn.
    static constexpr int releaseGraceMilliseconds = 60;

    explicit RollKeyboardResponderView(QWidget* parent = nullptr);
    ~RollKeyboardResponderView() override;

    /// Takes the settings of the moment.
    void take(const RollKeyboardInput& input);

    /// Takes the view out of service: a run ends, and no focus request is carried out any more.
    void stop();

    /// Whether an arrow key is held.
    [[nodiscard]] bool isNudging() const { return !pressedArrowKeys_.isEmpty(); }

Q_SIGNALS:
    /// The keyboard came or went.
    void focusChanged();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void setInputEnabled(bool enabled);
    void takeFocusRequest(int request);
    void scheduleFocusRequest();
    void applyPendingFocusRequest();
    [[nodiscard]] bool isWindowActive() const;
    [[nodiscard]] bool canHandleKeyboard() const;
    void press(quint32 key);
    void release(quint32 key);
    void finishRelease(quint32 key);
    void finishNudge();
    void observeWindow();

    bool inputEnabled_ = false;
    int lastFocusRequest_ = 0;
    std::optional<int> pendingFocusRequest_;
    bool pendingFocusWasDeferred_ = false; ///< it came while input was disabled
    QSet<quint32> pressedArrowKeys_;
    QHash<quint32, int> releases_; ///< that wait for a press, by their keys, with numbers from 1
    int lastRelease_ = 0;
    std::function<void(RollNudgeDirection, bool)> moveHandler_ = [](RollNudgeDirection, bool) {};
    std::function<void()> endHandler_ = [] {};
    QPointer<QWidget> observedWindow_;
};

} // namespace orvex
