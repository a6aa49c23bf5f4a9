// Start-up: each store on its own, so that one that cannot be read switches off only what depends on it.

#include "InchLayoutMigration.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "OrvexQAWorkspace.h"

#include <QScopeGuard>

namespace orvex {

/// Where the folder cannot be locked at all, nobody else can either, and the stores say themselves what they cannot do.
void OrvexModel::lockStores() {
    if (access_ == SessionAccess::readOnly) {
        return;
    }
    lock_ = SessionLock::acquire(OrvexQAWorkspace::directory());
    if (lock_->state() == SessionLock::State::held) {
        raiseRequests_.emplace(OrvexQAWorkspace::directory());
        connect(&*raiseRequests_, &RaiseRequests::raiseRequested, this, [this] { services_.raiseWindow(); });
    }
}

bool OrvexModel::isHeldByAnother() const {
    return lock_ && lock_->state() == SessionLock::State::heldByAnother;
}

bool OrvexModel::isReadOnly() const {
    return access_ == SessionAccess::readOnly || isHeldByAnother();
}

void OrvexModel::loadQueue() {
    const auto load = [this] {
        const LocalQueueStore queue(OrvexQAWorkspace::directory());
        jobs.set(queue.load());
        if (!isReadOnly()) {
            store = queue;
            queueAvailable.set(true);
            defaultsURL = CanvasPreference::url(queue.directory());
        }
        canvasPreference = CanvasPreference::load(CanvasPreference::url(queue.directory()));
    };
    if (const auto failure = failureMessageOf(load)) {
        defaultsURL.reset();
        errorMessage.set(spt("无法载入本地待打印队列或默认绑定。现有文件已保留：%1",
                             "Could not load the local queue or default binding. Existing files are preserved: %1")
                             .arg(*failure));
    }
}

void OrvexModel::loadPresets() {
    const auto load = [this] {
        const auto workspace = OrvexQAWorkspace::directory();
        const PresetStore stored(workspace ? std::optional(PresetStore::folderIn(*workspace)) : std::nullopt);
        presets.set(stored.load());
        if (!isReadOnly()) {
            presetStore = stored;
            presetsAvailable.set(true);
            migrateDefaultCanvas();
        }
        const auto bound = canvasPreference ? presetWithID(canvasPreference->presetID) : std::nullopt;
        canvasDefaultName.set(bound ? std::optional(bound->name) : std::nullopt);
    };
    if (const auto failure = failureMessageOf(load)) {
        errorMessage.set(
            spt("无法载入预设。现有文件已保留：%1", "Could not load presets. Existing files are preserved: %1")
                .arg(*failure));
    }
}

/// Carries the default preset forward to pages in inches, once. Raises what keeps it from that.
void OrvexModel::migrateDefaultCanvas() {
    if (!defaultsURL) {
        return;
    }
    QList<PrintPreset> migrated = presets();
    const auto take = qScopeGuard([&] { presets.set(migrated); }); // also where only the marker could not be written
    migrateDefaultCanvasToInches(*presetStore, *defaultsURL, canvasPreference, migrated);
}

void OrvexModel::loadJournal() {
    const auto load = [this] {
        const PrintJournalStore journal(OrvexQAWorkspace::directory());
        observations.set(journal.load());
        if (!isReadOnly()) {
            journalStore = journal;
        }
    };
    if (const auto failure = failureMessageOf(load)) {
        errorMessage.set(
            spt("无法读取实物观察记录：%1", "Could not read physical observation records: %1").arg(*failure));
    }
}

void OrvexModel::loadBaseline() {
    const auto load = [this] {
        const ProtectedSettingsBaselineStore baseline(OrvexQAWorkspace::directory());
        protectedBaseline = baseline.load();
        if (!isReadOnly()) {
            protectionStore = baseline;
        }
    };
    const bool isUnreadable = failureMessageOf(load).has_value();
    if (isReadOnly() && !protectedBaseline) {
        protectionMessage.set(spt("尚未记录设置基线。", "No settings baseline has been recorded."));
    }
    if (isUnreadable) {
        protectionMessage.set(spt("无法读取设置基线，原文件已保留。",
                                  "The settings baseline could not be read; the original file is preserved."));
    }
}

} // namespace orvex
