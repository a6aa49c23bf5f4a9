#pragma once

#include "PrinterFixtures.h"
#include "SessionFixture.h"

namespace orvex::test {

/// A session on a machine with these queues, whose state nobody asks for.
class RefreshTest : public SessionTest {
protected:
    static inline const QString queue = QStringLiteral("W9400");
    static inline const QString other = QStringLiteral("Other");

    RefreshTest() { readings.discoverQueues = findingQueues({other, queue}); }

    void refresh() {
        model->refresh();
        settle();
    }

    [[nodiscard]] const PrinterReadings& printers() const { return model->printerReadings(); }

    [[nodiscard]] const PresetForm& form() const { return model->presetForm(); }

    /// Makes all choices that belong to one printer.
    void choose() {
        model->setQualityChoice(QStringLiteral("600dpi"));
        model->setDriverColorCorrectionDisabledConfirmed(true);
        PresetForm chosen = form();
        chosen.settings.driverPageSize = QStringLiteral("Roll60");
        SessionBackdoor::set(model->presetForm, chosen);
    }

    void expectChoices(bool areKept) const {
        EXPECT_EQ(form().qualityChoice, areKept ? QStringLiteral("600dpi") : QString());
        EXPECT_EQ(form().settings.driverPageSize, areKept ? QStringLiteral("Roll60") : QString());
        EXPECT_EQ(form().colorWorkflow.driverColorCorrectionDisabledConfirmed, areKept);
    }
};

} // namespace orvex::test
