#pragma once

#include "Layout/QuarterInchArtworkSizing.h"
#include "Layout/RollKeyboardNudge.h"
#include "Layout/RollWorkspaceFile.h"
#include "MachineReadings.h"
#include "PreviewStore.h"
#include "RaiseRequests.h"
#include "SessionFields.h"
#include "SessionLock.h"
#include "SessionServices.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QObject>

#include <optional>
#include <stop_token>

namespace orvex {

class SessionOperation;

/// What a session does with the stores and the autosave.
enum class SessionAccess {
    full,
    readOnly ///< it shows what is there, and every command that would store something finds no store
};

/// The one session object: it holds all that the window shows, and every command of the user is a method of it.
///
/// A command that is locked by a flag returns at once and says nothing. What goes wrong is told in `errorMessage`, or
/// in `rollSaveMessage` where an alert would come in the middle of a movement; no command raises anything. Work that
/// takes long runs in the background over copies, with `busy` true for as long as it lasts. Main thread only.
class OrvexModel : public QObject, public SessionFields {
    Q_OBJECT

public:
    /// How long after one pass over the printers the next begins.
    static constexpr std::chrono::nanoseconds refreshInterval{30'000'000'000};

    /// Starts up: the stores, then the canvas as it was left. Never fails; what could not be read is told in the fields
    /// and kept. `services` must outlive the session.
    explicit OrvexModel(SessionServices& services, SessionAccess access = SessionAccess::full,
                        MachineReadings readings = MachineReadings::standard());

    /// Cancels the work that is going on and waits for its end.
    ~OrvexModel() override;

    /// Whether another process has the folder of the stores for itself. This session is a read-only one then.
    [[nodiscard]] bool isHeldByAnother() const;

    // Derived values, computed anew at each call

    [[nodiscard]] std::optional<PrintPreset> selectedPreset() const;
    [[nodiscard]] std::optional<RollArtwork> selectedArtwork() const;

    /// What is known of an artwork's source; null unless it is of the very file and size that the artwork was made of.
    [[nodiscard]] SharedImageMetadata metadataFor(const RollArtwork& artwork) const;

    /// The width and length of the canvas in inches, as all texts show them.
    [[nodiscard]] QString rollWidthLabel() const;
    [[nodiscard]] QString rollLengthLabel() const;

    /// Why the roll cannot be exported, staged or printed; absent if it can.
    [[nodiscard]] std::optional<QString> rollExportIssue() const;

    /// The part of that which is about colour.
    [[nodiscard]] std::optional<QString> colorPreflight() const;

    /// A warning about the roll that stops nothing.
    [[nodiscard]] std::optional<QString> rollAdvisory() const;

    /// Whether the print command is offered. A queue whose state is not known is no reason against it.
    [[nodiscard]] bool canPrintCurrent() const;

    /// The last state of the selected queue, unless it is too old.
    [[nodiscard]] std::optional<NativePrintReadinessAssessment> cachedNativePrintReadiness() const;

    /// A report on the session and the machine, to be sent to whoever helps.
    [[nodiscard]] QString diagnosticText() const;

    // The whole

    void setTab(int value);
    void setBatchSizingPresented(bool value);

    /// Opens the panel for the sizes of many artworks, if it can be opened.
    void presentBatchSizing();
    [[nodiscard]] bool canPresentBatchSizing() const;
    void dismissError();

    /// Asks the work that goes on to end where it can; what is finished stays.
    void cancelOperation();

    // The canvas: history, gestures, the keyboard

    /// Adds a step of undo: the given layout, or the current one.
    void recordRollUndo(const std::optional<RollLayout>& layout = std::nullopt);
    void undoRollEdit();
    void redoRollEdit();
    [[nodiscard]] bool canUndoRollEdit() const;
    [[nodiscard]] bool canRedoRollEdit() const;

    /// Whether a gesture is open now, so that its changes may follow.
    bool beginArrangeGesture();
    void dragArtwork(const QUuid& id, double x, double y);
    void resizeArtworkGesture(const QUuid& id, double width);
    void endArrangeGesture();

    void nudgeSelectedArtwork(RollNudgeDirection direction, bool accelerated);
    void endKeyboardNudge();
    void requestKeyboardFocus();

    /// Whether the arrow keys may move an artwork now, for as long as the canvas is shown.
    [[nodiscard]] bool canNudgeArtwork() const;

    // The canvas: edits

    /// What a click on an artwork or its row does.
    void selectArtwork(const QUuid& id);
    void resizeArtwork(const QUuid& id, double inches, QuarterInchArtworkSizing::Dimension dimension);
    void scaleArtwork(const QUuid& id, double percent);
    void moveArtwork(const QUuid& id, const std::optional<double>& x, const std::optional<double>& y);
    void rotateSelectedArtwork();
    void fitSelectedArtwork();
    void restoreSelectedNaturalSize();
    void duplicateSelectedArtwork();
    void removeArtwork(const QUuid& id);
    void setRollGap(double inches);
    void arrangeRoll(bool tight);
    [[nodiscard]] bool canArrangeRoll() const;
    void changeRollWidth(double width);

    /// Puts a finished arrangement of the batch panel on the canvas, if the canvas is still the one that it started
    /// from. The message of what speaks against it, or nothing.
    [[nodiscard]] std::optional<QString> applyBatchArrangement(const RollLayout& layout, const RollLayout& basedOn);

    // The canvas: the board's view

    void zoomIn();
    void zoomOut();
    void fitWidth();
    void setRollSnapToQuarter(bool value);

    // The canvas: files

    void persistRollLayout();
    void saveRollProject();
    void openRollProject();

    /// What `openRollProject` does with the file of its dialog.
    void openLayoutFile(const QUrl& file);
    void importRollArtworks();

    /// What `importRollArtworks` does with the files of its dialog.
    void importFiles(const QList<QUrl>& files);
    void relinkSelectedArtwork();

    /// Inspects the sources of the canvas that are not known yet; once only, unless forced.
    QCoro::Task<> restoreRollPreviews(bool force);

    // Export, jobs, printing

    /// Whether the roll can be exported, and whether it can go into the local queue.
    [[nodiscard]] bool canExportRoll() const;
    [[nodiscard]] bool canStageRoll() const;
    void stageRollPDF();
    void exportRollPDF();
    void exportJob(const StagedJob& job);
    void removeJob(const StagedJob& job);

    /// Shows the job's PDF in the desktop's file manager.
    void revealJob(const StagedJob& job);
    void printCurrentRoll();
    void printSavedJob(const StagedJob& job);

    // Output controls

    void setMediaName(const QString& value);
    void setMediaNote(const QString& value);
    void setQualityChoice(const QString& value);
    void setPresetName(const QString& value);
    void setColorManagementMode(ColorManagementMode mode);
    void setColorRenderingIntent(ColorRenderingIntent intent);
    void setDriverColorCorrectionDisabledConfirmed(bool value);
    void inspectICC();
    void clearICC();
    void choosePreset(const QString& id);
    void savePreset(bool asNew);
    void deletePreset();
    void bindCanvasDefault();

    /// Whether a preset can be saved as a new one; whether the selected one can be updated or deleted, and made the
    /// printer's default.
    [[nodiscard]] bool canSavePreset() const;
    [[nodiscard]] bool canChangePreset() const;
    [[nodiscard]] bool canBindCanvasDefault() const;

    // Printers, diagnostics, the journal

    /// Runs the task of the open window: restores the sources, then looks at the printers every 30 seconds until
    /// `stopRefreshing`.
    void startRefreshing();
    void stopRefreshing();

    /// One pass over the printers. Returns at once while one runs.
    QCoro::Task<> refresh();
    void selectPrinter(const QString& name);
    void openCanonMonitor();
    void setObservationForm(const ObservationForm& form);
    void recordObservation();
    void exportDiagnostics();

Q_SIGNALS:
    /// Fields have changed; once for each turn of the event loop at most.
    void changed();

private:
    friend class SessionOperation;
    friend class SessionBackdoor; // of the tests

    using HistoryStep = std::optional<RollLayout> (RollHistory::*)(const RollLayout& current);

    // Start-up
    void lockStores();
    [[nodiscard]] bool isReadOnly() const;
    void loadQueue();
    void loadPresets();
    void migrateDefaultCanvas();
    void loadJournal();
    void loadBaseline();
    void loadSavedRollLayout();

    // What the commands share
    void later(std::function<void()> work);
    void clearColorConfirmation();
    void recordStep(const std::optional<RollLayout>& step);
    void edit(const std::function<void(RollLayout&)>& change);
    void applyEdit(const RollLayout& edited);
    void goThroughHistory(HistoryStep step);
    void applyHistoryStep(const RollLayout& layout);
    void syncSelectedArtwork();
    void selectKnown(const std::optional<QUuid>& id);
    [[nodiscard]] bool isGestureLocked() const;
    [[nodiscard]] std::optional<RollArtwork> artwork(const std::optional<QUuid>& id) const;
    [[nodiscard]] double
    quarterInchWidth(const RollArtwork& artwork, double inches,
                     QuarterInchArtworkSizing::Dimension dimension = QuarterInchArtworkSizing::Dimension::width) const;
    [[nodiscard]] RollWorkspaceFile workspaceFile() const;
    void takeWorkspace(const RollWorkspaceFile& file);
    void pruneRollPreviews();

    // The background parts of commands
    QCoro::Task<> runWidthChange(double width);
    QCoro::Task<> runRemoval(RollArtwork artwork);
    [[nodiscard]] bool takeRepacked(const RollLayout& repacked, const RollLayout& original);
    void finishRemoval(const RollArtwork& removed, qsizetype index);
    QCoro::Task<> runImport(QList<QUrl> files);
    QCoro::Task<> runRelink(RollArtwork artwork, QUrl file);
    QCoro::Task<> runStaging();
    void removeUnlessRecorded(const QUrl& pdf, const QUuid& id);
    QCoro::Task<> runExport(QUrl file);
    QCoro::Task<> runJobExport(StagedJob job, QUrl file);
    QCoro::Task<> runRefreshing();

    QFuture<SharedImageMetadata> inspect(const QUrl& file, const SessionProgress& start, SessionOperation& operation);
    QCoro::Task<> restoreSource(RollArtwork artwork, SessionProgress start, SessionOperation& operation);
    [[nodiscard]] bool isReplaced(const RollArtwork& inspected) const;
    QCoro::Task<> restoreAndPersist();
    void addArtwork(const SharedImageMetadata& metadata);
    void finishImport(const QStringList& failures, bool isCancelled);
    void replaceSource(const RollArtwork& artwork, const SharedImageMetadata& metadata);
    void copySource(const QUuid& from, const QUuid& to);
    void takeMetadata(const QUuid& id, const SharedImageMetadata& metadata);

    // Export and printing
    [[nodiscard]] bool refusesExport();
    [[nodiscard]] std::optional<QByteArray> outputICCData(const ColorWorkflow& workflow,
                                                          const std::optional<ManagedICCAsset>& asset) const;
    void prepareCurrentRollForPrinting();
    QCoro::Task<> runCurrentPrint();
    QCoro::Task<> runSavedPrint(StagedJob job, QString queue);
    QCoro::Task<> requireFreshNativePrintReadiness(QString queue);
    void runNativePrintWindow(NativePrintOperation& prepared);

    // Presets and printers
    [[nodiscard]] bool applyPreset(const PrintPreset& preset, bool resizesArtwork);
    [[nodiscard]] std::optional<PrintPreset> presetWithID(const QUuid& id) const;
    [[nodiscard]] std::optional<PrintPreset> presetWithID(const QString& id) const;
    QCoro::Task<> readQueues();
    void takePrinters(const QList<PrinterSnapshot>& printers);
    void forgetPrinterChoices();
    void applyDefaultPreset();
    QCoro::Task<> readSelectedQueue(QString queue);
    void takeTelemetry(const PrinterTelemetrySnapshot& state, const QString& queue);
    void forgetTelemetry(const QString& reason);
    QCoro::Task<> runMonitor(QUrl application);

    // The check of local settings
    QCoro::Task<> checkProtectedSettings();
    [[nodiscard]] QList<QUrl> pathsToCapture() const;
    void compareProtectedSettings(const ProtectedSettingsSnapshot& current);
    void recordBaseline(const ProtectedSettingsSnapshot& current);

    SessionServices& services_;
    const SessionAccess access_;
    const MachineReadings readings_;
    std::optional<SessionLock> lock_;
    std::optional<RaiseRequests> raiseRequests_;

    QList<SessionOperation*> operations_; ///< that make the session busy
    std::stop_source closing_;
    std::stop_source refreshLoop_;
    int refreshLoopCount_ = 0; ///< with those that were stopped and have not ended

    bool isPersistPending_ = false; ///< an opened layout is saved once its sources are restored
    std::shared_ptr<PreviewStore> previewStore_;
};

} // namespace orvex
