#pragma once

#include "SessionFixture.h"

namespace orvex::test {

inline QByteArray bytesOf(const samples::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

/// A session whose roll goes into a PDF.
class RollTest : public SessionTest {
protected:
    RollTest() { start(); }

    /// Two artworks of sRGB on the canvas.
    void importTwo() {
        import({picture(QStringLiteral("a.png"), 120, 80, 10, samples::sRgbProfile()),
                picture(QStringLiteral("b.png"), 60, 40, 10, samples::sRgbProfile())});
    }

    [[nodiscard]] const RollArtwork& item(qsizetype index) const { return model->rollLayout().items.at(index); }

    /// Has the program convert the colours to the press profile.
    void manageColours() {
        services.chosenFiles = {
            {QUrl::fromLocalFile(folder.write(QStringLiteral("press.icc"), bytesOf(samples::pressProfile())))}};
        model->inspectICC();
        model->setColorManagementMode(ColorManagementMode::appManaged);
        model->setDriverColorCorrectionDisabledConfirmed(true);
    }

    /// Where the profile in the keeping of the presets lies.
    [[nodiscard]] QString profileFile() const {
        return stored(QStringLiteral("presets/profiles/")) + model->presetForm().iccAsset->filename;
    }

    [[nodiscard]] QStringList pdfNames() const {
        return QDir(stored({})).entryList({QStringLiteral("*.pdf")}, QDir::Files | QDir::Hidden);
    }
};

} // namespace orvex::test
