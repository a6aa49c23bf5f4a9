#include "OrvexModel.h"

#include "Layout/RollSummary.h"
#include "OrvexLanguage.h"
#include "SessionOperation.h"
#include "SizeTexts.h"

#include <QEventLoop>

#include <algorithm>

namespace orvex {

OrvexModel::OrvexModel(SessionServices& services, SessionAccess access, MachineReadings readings)
    : services_(services),
      access_(access),
      readings_(std::move(readings)),
      previewStore_(std::make_shared<PreviewStore>()) {
    connect(&announcer_, &ChangeAnnouncer::changed, this, &OrvexModel::changed);
    rollSaveMessage.set(spt("排版会自动保存", "Layouts save automatically"));
    message.set(spt("请导入作品。打印机面板上已停用的裁切设置会原样保留。",
                    "Import artwork. The Cutting setting already disabled on the printer panel is preserved."));
    protectionMessage.set(spt("正在读取现有设置指纹…", "Reading existing settings fingerprints…"));
    observationForm.set({.observationNote = spt("连续打印数张后出现，位置不固定",
                                                "Appears after several prints, in varying locations")});
    lockStores();
    loadQueue();
    loadPresets();
    loadJournal();
    loadBaseline();
    loadSavedRollLayout();
}

OrvexModel::~OrvexModel() {
    endKeyboardNudge();
    endArrangeGesture();
    if (isPersistPending_) {
        persistRollLayout();
    }
    closing_.request_stop();
    refreshLoop_.request_stop();
    for (SessionOperation* operation : std::as_const(operations_)) {
        operation->requestStop();
    }
    // What runs in the background comes back to this object, and must find it.
    QEventLoop loop;
    while (busy() || refreshing() || refreshLoopCount_ > 0) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// Derived values

std::optional<PrintPreset> OrvexModel::selectedPreset() const {
    return presetWithID(presetForm().selectedPresetID);
}

std::optional<RollArtwork> OrvexModel::selectedArtwork() const {
    return artwork(selectedArtworkID());
}

std::optional<RollArtwork> OrvexModel::artwork(const std::optional<QUuid>& id) const {
    const QList<RollArtwork>& items = rollLayout().items;
    const auto found = std::ranges::find_if(items, [&id](const RollArtwork& each) { return id == each.id; });
    return found != items.end() ? std::optional(*found) : std::nullopt;
}

QString OrvexModel::rollWidthLabel() const {
    return inchesText(rollLayout().widthInches);
}

QString OrvexModel::rollLengthLabel() const {
    return inchesText(rollLayout().lengthInches());
}

std::optional<QString> OrvexModel::rollAdvisory() const {
    return orvex::rollAdvisory(rollLayout());
}

// The whole

void OrvexModel::setTab(int value) {
    if (tab() == value) {
        return;
    }
    endKeyboardNudge();
    tab.set(value);
}

void OrvexModel::setBatchSizingPresented(bool value) {
    if (value) {
        endKeyboardNudge();
    }
    batchSizingPresented.set(value);
}

bool OrvexModel::canPresentBatchSizing() const {
    return !busy() && !batchSizingPresented() && !rollLayout().items.isEmpty();
}

void OrvexModel::presentBatchSizing() {
    services_.commitEditing(); // the panel starts from what is on the canvas then
    if (canPresentBatchSizing()) {
        setBatchSizingPresented(true);
    }
}

void OrvexModel::dismissError() {
    errorMessage.set(std::nullopt);
}

void OrvexModel::cancelOperation() {
    for (SessionOperation* operation : std::as_const(operations_)) {
        if (operation->isCancellable()) {
            operation->requestStop();
        }
    }
}

// What the commands share

/// Does something in the next turn of the event loop, unless the session closes.
void OrvexModel::later(std::function<void()> work) {
    const auto unlessClosing = [this, work = std::move(work)] {
        if (!closing_.stop_requested()) {
            work();
        }
    };
    QMetaObject::invokeMethod(this, unlessClosing, Qt::QueuedConnection);
}

void OrvexModel::clearColorConfirmation() {
    setDriverColorCorrectionDisabledConfirmed(false);
}

} // namespace orvex
