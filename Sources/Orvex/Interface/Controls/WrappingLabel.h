#pragma once

#include <QLabel>

namespace orvex {

/// A plain text that fits every width: it wraps between words, and inside of one that is longer than a line, so that
/// the name of a file or a printer neither widens a panel nor is cut off. Main thread.
class WrappingLabel : public QLabel {
    Q_OBJECT

public:
    explicit WrappingLabel(const QString& text = {}, QWidget* parent = nullptr);

    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString shownText() const;
};

} // namespace orvex
