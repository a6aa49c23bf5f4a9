#pragma once

#include "InChinese.h"
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

    /// Starts an export to this file of the test's folder and cancels it, in both languages: what is there stays, and
    /// it is told.
    void expectCancelled(const QString& name, const std::function<void()>& startExport) {
        expectCancelled(name, startExport, QStringLiteral("The export was cancelled. No PDF was written."));
        const InChinese chinese;
        expectCancelled(name, startExport, QStringLiteral("已取消导出，没有写入 PDF。"));
    }

private:
    void expectCancelled(const QString& name, const std::function<void()>& startExport, const QString& message) {
        const QString place = folder.write(name, "old");
        const QStringList names = folder.names();
        services.chosenPlaces = {QUrl::fromLocalFile(place)};
        {
            const Barrier barrier;
            startExport();
            model->cancelOperation();
        }
        settle();
        EXPECT_EQ(model->message(), message);
        EXPECT_EQ(model->errorMessage(), std::nullopt);
        EXPECT_EQ(TemporaryFolder::read(place), "old");
        EXPECT_EQ(folder.names(), names);
        EXPECT_FALSE(model->busy());
        EXPECT_EQ(model->progress(), std::nullopt);
        EXPECT_TRUE(services.revealed.isEmpty());
    }
};

} // namespace orvex::test
