#pragma once

#include "ObservationForm.h"
#include "Observed.h"
#include "Output/ImageMetadata.h"
#include "PresetForm.h"
#include "PrinterReadings.h"
#include "ProtectedSettings.h"
#include "SessionProgress.h"
#include "Stores/LocalQueue.h"

#include <QHash>
#include <QMap>

#include <memory>
#include <optional>

namespace orvex {

/// What is known of a source file; shared, since it never changes.
using SharedImageMetadata = std::shared_ptr<const ImageMetadata>;

/// Everything of the session that others watch. Each field reads like a function, such as `session.rollLayout()`; the
/// session alone writes them. Main thread.
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
};

} // namespace orvex
