#pragma once

#include "CanvasPreference.h"
#include "ObservationForm.h"
#include "Observed.h"
#include "OneStepEdit.h"
#include "Output/ImageMetadata.h"
#include "PresetForm.h"
#include "PrinterReadings.h"
#include "ProtectedSettingsBaseline.h"
#include "RollHistory.h"
#include "SessionProgress.h"
#include "Stores/LocalQueue.h"
#include "Stores/PresetStore.h"
#include "Stores/PrintJournal.h"

#include <QHash>
#include <QMap>

#include <memory>
#include <optional>

namespace orvex {

/// What is known of a source file; shared, since it never changes.
using SharedImageMetadata = std::shared_ptr<const ImageMetadata>;

/// The state of the session. What others watch reads like a function, such as `session.rollLayout()`; the session alone
/// writes it. Main thread.
class SessionFields {
protected:
    ChangeAnnouncer announcer_;

public:
    // Printers

    Observed<PrinterReadings> printerReadings{announcer_};
    Observed<bool> refreshing{announcer_, false};
    Observed<QString> protectionMessage{announcer_}; ///< the state of the check of local settings
    Observed<QStringList> protectionChanges{announcer_};

    // The canvas

    Observed<RollLayout> rollLayout{announcer_};
    Observed<std::optional<QUuid>> selectedArtworkID{announcer_};
    Observed<SharedImageMetadata> image{announcer_}; ///< of the selected artwork; null if unknown
    Observed<QHash<QUuid, SharedImageMetadata>> artworkPreviews{announcer_};
    Observed<QMap<QString, QString>> sizingDescriptions{announcer_}; ///< where a size came from, by the id's text
    Observed<QHash<QUuid, QString>> rollLoadWarnings{announcer_};    ///< why a source could not be confirmed
    Observed<double> rollZoom{announcer_, 1.0};
    Observed<bool> rollSnapToQuarter{announcer_, true};
    Observed<double> arrangementGap{announcer_, 0.0}; ///< inches between trim frames
    Observed<QString> rollSaveMessage{announcer_};    ///< autosave news, and failures of gestures
    Observed<bool> rollUndoAvailable{announcer_, false};
    Observed<bool> rollRedoAvailable{announcer_, false};
    Observed<int> rollKeyboardFocusRequest{announcer_, 0}; ///< each increase asks for the keyboard
    Observed<bool> batchSizingPresented{announcer_, false};
    Observed<bool> arrangingGesture{announcer_, false};
    Observed<std::optional<double>> rollGestureFrameLength{announcer_}; ///< inches, frozen for the gesture

    // Presets, jobs, the journal

    Observed<PresetForm> presetForm{announcer_, PresetForm::initial()};
    Observed<QList<PrintPreset>> presets{announcer_};
    Observed<std::optional<QString>> canvasDefaultName{announcer_}; ///< of the preset that loads by itself
    Observed<bool> presetsAvailable{announcer_, false};
    Observed<QList<StagedJob>> jobs{announcer_}; ///< the newest first
    Observed<bool> queueAvailable{announcer_, false};
    Observed<QList<PrintObservation>> observations{announcer_}; ///< the newest first
    Observed<ObservationForm> observationForm{announcer_};

    // The whole

    Observed<bool> busy{announcer_, false}; ///< while true, commands that change anything return at once
    Observed<std::optional<SessionProgress>> progress{announcer_};
    Observed<QString> message{announcer_};                     ///< what is being done or was done
    Observed<std::optional<QString>> errorMessage{announcer_}; ///< until the user has dismissed it
    Observed<int> tab{announcer_, 0};

protected:
    // Working state, which nobody watches

    RollHistory rollHistory;
    OneStepEdit rollKeyboardInitialLayout;
    OneStepEdit rollGestureInitialLayout;
    std::optional<QUrl> rollDocumentURL; ///< what autosave writes; absent means that autosave is off
    bool rollPreviewsRestored = false;   ///< the sources of the canvas were looked for already
    bool nativePrintRequestPending = false;
    std::optional<LocalQueueStore> store; ///< the stores are absent if they cannot be used
    std::optional<PresetStore> presetStore;
    std::optional<PrintJournalStore> journalStore;
    std::optional<CanvasPreference> canvasPreference; ///< the preset that loads by itself
    bool canvasApplied = false;                       ///< it was, for this printer
    std::optional<ProtectedSettingsSnapshot> protectedBaseline;
    std::optional<ProtectedSettingsBaselineStore> protectionStore;
    std::optional<QUrl> defaultsURL; ///< where `canvasPreference` is kept
};

} // namespace orvex
