#pragma once

#include "InChinese.h"
#include "PrinterFixtures.h"
#include "WindowTest.h"

#include <QComboBox>
#include <QDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QTabBar>

#include <optional>
#include <string>

namespace orvex::test {

/// The names that come from outside: of files, printers, presets and media, and what the system says.
struct OutsideTexts {
    QString artwork = QStringLiteral("Mountain Dawn");
    QString printer = QStringLiteral("Canon_iPF9400");
    QString preset = QStringLiteral("Satin & Matte");
    QString ink = QStringLiteral("Matte Black");
    QString note = QStringLiteral("Left side purple on the third print");
    QString failure = QStringLiteral("The printer does not answer.");
};

/// The whole window over a session in which there is something of everything, in each of the languages.
class FullWindowTest : public WindowTest, public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr int tabs = 4;

    FullWindowTest() {
        if (language() == "zh") {
            chinese_.emplace();
        }
    }

    ~FullWindowTest() override {
        beFree(); // a session that goes waits for its work
        window.reset();
        QApplication::setFont(font_);
    }

    [[nodiscard]] static std::string language() { return GetParam(); }

    /// Shows the window in the smallest size that it takes, or else in the one that it has by itself.
    enum class Size { smallest, byDefault };

    MainWindow& openFull(const OutsideTexts& texts = {}, Size size = Size::byDefault) {
        start();
        settle();
        fill(texts);
        open();
        if (size == Size::smallest) {
            window->resize(window->minimumSizeHint());
        }
        settleLayout();
        return *window;
    }

    /// Makes all letters that much larger, from the next window on.
    void enlargeLetters(double factor) const {
        QFont larger = font_;
        larger.setPointSizeF(font_.pointSizeF() * factor);
        QApplication::setFont(larger);
    }

    void showTab(int tab) {
        model->setTab(tab);
        settleLayout();
    }

    /// Layouts within layouts need some turns until all know their heights.
    static void settleLayout() {
        for (int times = 0; times < 3; ++times) {
            turn();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        }
    }

    /// The panel for many sizes, as small as it can be.
    QDialog& openBatchPanel() {
        model->presentBatchSizing();
        settleLayout();
        auto* panel = window->findChild<QDialog*>(QStringLiteral("batchSizingView"));
        EXPECT_NE(panel, nullptr);
        panel->resize(panel->minimumSize());
        settleLayout();
        return *panel;
    }

    QDialog& openAlert(const QString& text) {
        SessionBackdoor::set(model->errorMessage, std::optional(text));
        settleLayout();
        auto* alert = window->findChild<QDialog*>(QStringLiteral("alert"));
        EXPECT_NE(alert, nullptr);
        return *alert;
    }

    /// Shows work that is going on.
    void beBusyWith(const QString& what) {
        SessionBackdoor::set(model->busy, true);
        SessionBackdoor::set(model->progress,
                             std::optional(SessionProgress{
                                 .done = 1, .total = 3, .what = what, .fraction = 0.3, .isCancellable = true}));
        settleLayout();
    }

    void beFree() {
        SessionBackdoor::set(model->busy, false);
        SessionBackdoor::set(model->progress, std::optional<SessionProgress>());
        settleLayout();
    }

private:
    void fill(const OutsideTexts& texts) {
        fillCanvas(texts);
        fillPrinters(texts);
        fillStores(texts);
    }

    void fillCanvas(const OutsideTexts& texts) {
        place({artwork(), artwork(18.0, 12.0), artwork(8.0, 12.0)});
        RollLayout layout = model->rollLayout();
        for (qsizetype number = 0; number < layout.items.size(); ++number) {
            layout.items[number].title = texts.artwork + QStringLiteral(" %1").arg(number + 1);
        }
        SessionBackdoor::set(model->rollLayout, layout);
        SessionBackdoor::set(model->rollLoadWarnings, QHash<QUuid, QString>{{idOf(1), texts.failure}});
        SessionBackdoor::set(model->message, texts.artwork);
        SessionBackdoor::set(model->rollSaveMessage, texts.failure);
        SessionBackdoor::set(model->rollUndoAvailable, true);
        SessionBackdoor::set(model->rollRedoAvailable, true);
    }

    void fillPrinters(const OutsideTexts& texts) {
        PrinterReadings known = model->printerReadings();
        const QString other = texts.printer + QStringLiteral(" 2");
        PrinterTelemetrySnapshot state = readyState(texts.printer, services.clock.secondsSince2001);
        state.queuedJobCount = 1;
        state.queueMessage = texts.failure;
        state.markers = {{.index = 0, .name = texts.ink, .level = 74}, {.index = 1, .level = 12}};
        known.printers = {printer(texts.printer), printer(other)};
        known.selectedPrinterName = texts.printer;
        known.telemetry = state;
        known.lastRefreshError = texts.failure;
        SessionBackdoor::set(model->printerReadings, known);
    }

    void fillStores(const OutsideTexts& texts) {
        PresetForm form = model->presetForm();
        form.mediaName = texts.note;
        form.colorWorkflow.mode = ColorManagementMode::appManaged;
        const PrintPreset preset = form.preset(QUuid::createUuid(), services.clock, services.clock);
        form.selectedPresetID = preset.id.toString(QUuid::WithoutBraces).toUpper();
        form.presetName = texts.preset;
        SessionBackdoor::set(model->presetForm, form);
        SessionBackdoor::set(model->presets, QList{named(preset, texts.preset)});
        SessionBackdoor::set(model->jobs, QList{job(texts, 60.0), job(texts, 0.0)});
        SessionBackdoor::set(model->observations, QList{observation(texts, 2), observation(texts, 1)});
        SessionBackdoor::set(model->observationForm, ObservationForm{.observationNote = {}});
    }

    [[nodiscard]] static PrintPreset named(PrintPreset preset, const QString& name) {
        preset.name = name;
        return preset;
    }

    [[nodiscard]] StagedJob job(const OutsideTexts& texts, double laterSeconds) const {
        return {.id = QUuid::createUuid(),
                .title = texts.artwork,
                .printerName = texts.printer,
                .createdAt = {services.clock.secondsSince2001 + laterSeconds},
                .sourceProfile = {},
                .colorWorkflow = ColorWorkflow(),
                .presetName = texts.preset,
                .canvasMediaName = texts.note,
                .rollLayout = model->rollLayout()};
    }

    [[nodiscard]] static PrintObservation observation(const OutsideTexts& texts, int number) {
        PrintObservation made;
        made.sequenceNumber = number;
        made.note = texts.note;
        made.artwork = texts.artwork;
        return made;
    }

    std::optional<InChinese> chinese_;
    const QFont font_ = QApplication::font();
};

/// Runs the tests of a fixture in both languages.
#define IN_BOTH_LANGUAGES(Fixture)                                                                                     \
    INSTANTIATE_TEST_SUITE_P(Languages, Fixture, ::testing::Values("en", "zh"),                                        \
                             [](const auto& language) { return std::string(language.param); })

} // namespace orvex::test
