// The canvas as a file: autosave, and layouts that the user saves and opens.

#include "FileGuard.h"
#include "Files/ApplicationFolder.h"
#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "OrvexQAWorkspace.h"

#include <cerrno>

namespace orvex {

namespace {

/// What a layout file may have at most: that is hundreds of thousands of artworks.
constexpr qint64 largestFileBytes = 1 << 28;

RollWorkspaceFile decodeWorkspace(QByteArrayView bytes) {
    RollWorkspaceFile file = RollWorkspaceFile::decode(bytes);
    file.validate();
    return file;
}

void writeWorkspace(const RollWorkspaceFile& file, const QUrl& to) {
    file.validate();
    const QByteArray bytes = file.encode();
    if (bytes.size() > largestFileBytes) {
        throw platform::FileSystemError(EFBIG, platform::localPath(to)); // it could not be read again
    }
    platform::FileReplacer::replace(platform::localPath(to), bytes);
}

QUrl autosaveFileIn(const QUrl& folder) {
    return QUrl::fromLocalFile(platform::localPath(folder) + QStringLiteral("/roll-layout.json"));
}

/// A layout may be saved over the one that is saved by itself, if the user says so, but over no other data.
void refuseOverwriting(const QUrl& to, const RollLayout& layout) {
    refuseOverwritingSources(to, layout);
    const QString place = platform::resolvingSymlinks(platform::localPath(to));
    if (place != platform::resolvingSymlinks(platform::localPath(autosaveFileIn(storesFolder())))) {
        refuseOverwritingOwnData(to);
    }
}

QString autosaved() {
    return spt("排版已自动保存", "Layout autosaved");
}

} // namespace

RollWorkspaceFile OrvexModel::workspaceFile() const {
    return {.layout = rollLayout(),
            .selection = selectedArtworkID(),
            .sizingDescriptions = sizingDescriptions(),
            .gapInches = arrangementGap()};
}

void OrvexModel::takeWorkspace(const RollWorkspaceFile& file) {
    rollLayout.set(file.layout);
    selectKnown(file.selection);
    sizingDescriptions.set(file.sizingDescriptions);
    arrangementGap.set(file.gapInches);
}

void OrvexModel::persistRollLayout() {
    pruneRollPreviews();
    if (!rollDocumentURL) {
        return;
    }
    const auto failure = failureMessageOf([this] { writeWorkspace(workspaceFile(), *rollDocumentURL); });
    rollSaveMessage.set(failure ? spt("排版未保存：%1", "Layout not saved: %1").arg(*failure) : autosaved());
}

void OrvexModel::loadSavedRollLayout() {
    const auto load = [this] {
        const QUrl file = autosaveFileIn(platform::storeFolder(OrvexQAWorkspace::directory()));
        if (const auto bytes = platform::readFileIfThere(platform::localPath(file), largestFileBytes)) {
            takeWorkspace(decodeWorkspace(*bytes));
        }
        if (!isReadOnly()) {
            rollDocumentURL = file;
        }
    };
    if (const auto failure = failureMessageOf(load)) {
        // Autosave stays off: it would write over what could not be read.
        rollSaveMessage.set(spt("无法读取自动保存的排版。原文件已保留，请将排版另存为新文件。",
                                "The autosaved layout could not be read. The original file has been retained. Save the "
                                "layout as a new file."));
        errorMessage.set(failure);
    }
}

void OrvexModel::saveRollProject() {
    if (busy()) {
        return;
    }
    const auto file = services_.saveFile(
        {.proposedName = spt("orvex-卷布排版.json", "orvex-roll-layout.json"), .kind = FileKind::layout});
    if (!file) {
        return;
    }
    const auto save = [&] {
        refuseOverwriting(*file, rollLayout());
        writeWorkspace(workspaceFile(), *file);
    };
    if (const auto failure = failureMessageOf(save)) {
        errorMessage.set(failure);
        return;
    }
    if (!rollDocumentURL && !isReadOnly()) {
        rollDocumentURL = file;
        rollSaveMessage.set(autosaved());
    }
    message.set(spt("排版已保存，其中只引用原图文件。介质和 ICC 选择由打印预设管理。",
                    "Layout saved with references to the originals. Print presets manage media and ICC choices."));
}

void OrvexModel::openRollProject() {
    if (busy()) {
        return;
    }
    endKeyboardNudge();
    const QList<QUrl> files =
        services_.openFiles({.title = spt("打开卷布排版", "Open Roll Layout"), .kind = FileKind::layout});
    if (!files.isEmpty()) {
        openLayoutFile(files.first());
    }
}

void OrvexModel::openLayoutFile(const QUrl& file) {
    if (busy()) {
        return;
    }
    endKeyboardNudge();
    RollWorkspaceFile opened;
    const auto read = [&] {
        opened = decodeWorkspace(platform::readWholeFile(platform::localPath(file), largestFileBytes));
    };
    if (const auto failure = failureMessageOf(read)) {
        errorMessage.set(failure);
        return;
    }
    recordRollUndo();
    takeWorkspace(opened);
    syncSelectedArtwork(); // also of an empty canvas, which has no sources to restore
    rollPreviewsRestored = false;
    clearColorConfirmation();
    if (!rollDocumentURL && !isReadOnly()) {
        rollDocumentURL = file;
    }
    setTab(0);
    message.set(spt("已打开作品排版。介质和 ICC 选择仍以当前打印预设为准。",
                    "Artwork layout opened. Media and ICC choices remain in the current print preset."));
    isPersistPending_ = true;
    later([this] { restoreAndPersist(); });
}

QCoro::Task<> OrvexModel::restoreAndPersist() {
    co_await restoreRollPreviews(false);
    isPersistPending_ = false;
    persistRollLayout();
}

} // namespace orvex
