#pragma once

#include <QString>

#include <functional>

namespace orvex {

/// The rules of a field in which a number of the roll is typed; the number itself belongs to the session. A number that
/// changes elsewhere wins over what was typed, and a field that was only visited changes nothing. Main thread.
class RollInchField {
public:
    /// The number that the field stands for. What `write` makes of a number is its own matter: it may refuse it.
    struct Binding {
        std::function<double()> read;
        std::function<void(double)> write;
    };

    /// `artworkSize` says that the number is shown as the size of an artwork.
    explicit RollInchField(Binding value, bool artworkSize = false);

    [[nodiscard]] static QString format(double value, bool artworkSize);

    /// What the field shows.
    [[nodiscard]] const QString& draft() const { return draft_; }

    /// The number from which typing began.
    [[nodiscard]] double editBaseline() const { return editBaseline_; }

    [[nodiscard]] bool focused() const { return focused_; }

    void takeFocus();
    void type(const QString& text);

    /// On Return, and when the field goes away: writes what was typed if it is a number, another one than before, and
    /// the number has not changed since. The field then shows the number that holds.
    void commit();

    void leaveFocus();

    /// The number may have changed elsewhere: if so, the field shows it, whatever was typed.
    void syncValue();

private:
    void restart();
    [[nodiscard]] bool isStale() const;
    void writeDraft() const;

    Binding value_;
    bool artworkSize_;
    QString draft_;
    double editBaseline_ = 0.0;
    bool focused_ = false;
};

} // namespace orvex
