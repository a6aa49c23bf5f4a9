#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace orvex {

/// Puts its parts side by side, in the order in which they were added, and goes on in a further row where the width
/// ends. The parts of a row stand at the same middle. Main thread.
class FlowLayout : public QLayout {
    Q_OBJECT

public:
    explicit FlowLayout(QWidget* parent = nullptr);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    [[nodiscard]] QLayoutItem* takeAt(int index) override;

    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }

    [[nodiscard]] int heightForWidth(int width) const override;

    /// As wide as one single row.
    [[nodiscard]] QSize sizeHint() const override;

    /// As wide as the widest part.
    [[nodiscard]] QSize minimumSize() const override;

    void setGeometry(const QRect& rect) override;

private:
    struct Row;

    [[nodiscard]] std::vector<Row> rows(int width) const;

    /// The size of a part in a row of that width; one that is wider wraps what it holds.
    [[nodiscard]] static QSize sizeIn(const QLayoutItem& item, int width);

    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

} // namespace orvex
