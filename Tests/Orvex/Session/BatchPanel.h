#pragma once

#include "BatchSizingModel.h"
#include "LayoutFixtures.h"
#include "SessionFixture.h"

#include <gtest/gtest.h>

#include <memory>

namespace orvex::test {

/// The panel over a layout, with a session that only notes what it is asked to apply.
class BatchPanel : public ::testing::Test {
protected:
    void open(const QList<RollArtwork>& items, double rollWidth = RollLayout::rollWidthInches) {
        const auto apply = [this](const RollLayout& layout, const RollLayout& basedOn) {
            applied.append({layout, basedOn});
            return refusal;
        };
        panel = std::make_unique<BatchSizingModel>(RollLayout(items, rollWidth), apply);
        QObject::connect(panel.get(), &BatchSizingModel::closed, panel.get(), [this] { ++closings; });
    }

    /// Two artworks of 3 : 2.
    void openTwo() { open({artwork(30.0, 20.0, 1), artwork(30.0, 20.0, 2)}); }

    [[nodiscard]] const BatchSizeDraft& row(unsigned number) const {
        return panel->rows().at(static_cast<qsizetype>(number) - 1);
    }

    /// "width text × height text" of a row.
    [[nodiscard]] std::string texts(unsigned number) const {
        return (row(number).widthText + QStringLiteral(" × ") + row(number).heightText).toStdString();
    }

    [[nodiscard]] std::string issue() const { return messageOf(panel->issue()); }

    static BatchFieldID width(unsigned number) { return {.id = id(number), .dimension = BatchDimension::width}; }

    static BatchFieldID height(unsigned number) { return {.id = id(number), .dimension = BatchDimension::height}; }

    void type(const BatchFieldID& field, const char* text) { panel->edit(field, QString::fromUtf8(text)); }

    void paste(const char* text) {
        panel->setPastedSizes(QString::fromUtf8(text));
        panel->fillPastedSizes();
    }

    void fill(const char* text) {
        panel->setCommonSize(QString::fromUtf8(text));
        panel->fillCommonSize();
    }

    /// Calculates and waits for the end of it.
    void calculate() {
        panel->calculatePreview();
        waitFor([this] { return !panel->calculating(); });
    }

    struct Applied {
        RollLayout layout;
        RollLayout basedOn;
    };

    std::unique_ptr<BatchSizingModel> panel;
    QList<Applied> applied;
    std::optional<QString> refusal; ///< what the session answers to `apply`
    int closings = 0;
};

} // namespace orvex::test
