#pragma once

#include "PanelFixture.h"

namespace orvex::test {

/// A panel over a session with a printer of two resolutions.
template <typename Panel>
class OutputPanelTest : public CanvasPanelTest<Panel> {
protected:
    OutputPanelTest() {
        this->readings.discoverQueues = findingQueues({QStringLiteral("W9400")});
        this->start();
        this->model->refresh();
        this->settle();
        this->open();
    }

    [[nodiscard]] const PresetForm& form() const { return this->model->presetForm(); }

    void save(const QString& name) {
        this->model->setPresetName(name);
        this->model->savePreset(true);
        this->announced();
    }
};

} // namespace orvex::test
