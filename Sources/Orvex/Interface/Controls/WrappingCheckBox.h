#pragma once

#include <QCheckBox>

namespace orvex {

class WrappingLabel;

/// A check box whose text goes on in further lines where the width ends. Main thread.
class WrappingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    WrappingCheckBox(const QString& name, const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }

    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int textLeft() const;

    WrappingLabel* label_;
};

} // namespace orvex
