#pragma once

#include "PrinterFixtures.h"
#include "SessionFixture.h"

namespace orvex::test {

[[nodiscard]] inline QByteArray bytesOf(const samples::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())}; // NOLINT
}

/// A session with one printer, which is selected.
class PresetTest : public SessionTest {
protected:
    static inline const QString queue = QStringLiteral("W9400");

    PresetTest() {
        readings.discoverQueues = findingQueues({queue});
        start();
        model->refresh();
        settle();
    }

    [[nodiscard]] const PresetForm& form() const { return model->presetForm(); }

    [[nodiscard]] bool isConfirmed() const { return form().colorWorkflow.driverColorCorrectionDisabledConfirmed; }

    /// Writes an output profile, and answers the next dialog with it.
    QUrl chooseProfile() {
        const QUrl file =
            QUrl::fromLocalFile(folder.write(QStringLiteral("press.icc"), bytesOf(samples::pressProfile())));
        services.chosenFiles.push_back({file});
        return file;
    }

    /// Stores the form as a new preset of this name.
    PrintPreset saved(const QString& name) {
        model->setPresetName(name);
        model->savePreset(true);
        EXPECT_EQ(model->errorMessage(), std::nullopt);
        return model->selectedPreset().value_or(PrintPreset());
    }

    [[nodiscard]] QString fileOf(const PrintPreset& preset) const {
        return stored(QStringLiteral("presets/") + preset.id.toString(QUuid::WithoutBraces) + QStringLiteral(".json"));
    }

    [[nodiscard]] QString binding() const { return stored(QStringLiteral("canvas-default.json")); }

    /// A session whose presets cannot be read.
    void startWithoutPresets() {
        model.reset();
        QDir(stored(QStringLiteral("presets"))).removeRecursively();
        QDir().mkpath(stored({}));
        QFile file(stored(QStringLiteral("presets")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.close();
        start();
        ASSERT_FALSE(model->presetsAvailable());
        model->dismissError();
    }
};

} // namespace orvex::test
