// How artworks come onto the canvas: import, another file for one that is there, a copy of one that is there.

#include "Interrupted.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "Output/ArtworkImport.h"
#include "SessionOperation.h"

namespace orvex {

namespace {

/// The last component of a path, of a folder's, too.
QString nameOf(const QUrl& file) {
    return file.adjusted(QUrl::StripTrailingSlash).fileName();
}

} // namespace

void OrvexModel::importRollArtworks() {
    if (busy()) {
        return;
    }
    endKeyboardNudge();
    importFiles(services_.openFiles({.title = spt("向此卷布添加更多作品", "Add More Artworks to This Roll"),
                                     .kind = FileKind::image,
                                     .allowsMultiple = true}));
}

void OrvexModel::importFiles(const QList<QUrl>& files) {
    if (busy() || files.isEmpty()) {
        return;
    }
    endKeyboardNudge();
    recordRollUndo(); // one step for all files, whatever becomes of them
    runImport(files);
}

QCoro::Task<> OrvexModel::runImport(QList<QUrl> files) {
    QStringList failures;
    bool isCancelled = false;
    {
        SessionOperation operation(*this, SessionOperation::Cancelling::possible);
        for (qsizetype index = 0; index < files.size() && !isCancelled; ++index) {
            const QUrl file = files[index];
            try {
                const SessionProgress start =
                    SessionProgress::of(index, files.size(), spt("导入作品", "Adding artworks"));
                message.set(spt("正在添加作品 %1/%2：%3", "Adding artwork %1/%2: %3")
                                .arg(QString::number(index + 1), QString::number(files.size()), nameOf(file)));
                platform::throwIfStopped(operation.stopToken());
                const QFuture<SharedImageMetadata> inspecting = inspect(file, start, operation);
                const SharedImageMetadata metadata = co_await inspecting;
                addArtwork(metadata);
            } catch (const platform::Interrupted&) {
                isCancelled = true;
            } catch (const std::exception& exception) {
                failures.append(nameOf(file) + u'：' + failureMessage(exception));
            }
        }
        finishImport(failures, isCancelled);
    }
    persistRollLayout();
}

/// Puts an inspected file on the canvas as a new artwork. Raises OrvexError.
void OrvexModel::addArtwork(const SharedImageMetadata& metadata) {
    const RollArtwork artwork = importedArtwork(*metadata, rollLayout().widthInches);
    RollLayout extended = rollLayout();
    extended.append(artwork, arrangementGap());
    rollLayout.set(extended);
    takeMetadata(artwork.id, metadata);
    endKeyboardNudge();
    selectedArtworkID.set(artwork.id);
    syncSelectedArtwork();
    persistRollLayout(); // a long import survives a crash up to here
}

void OrvexModel::finishImport(const QStringList& failures, bool isCancelled) {
    clearColorConfirmation();
    const QString count = QString::number(rollLayout().items.size());
    if (isCancelled) {
        message.set(spt("已取消导入，此前添加的作品保留在画布上。卷布现有 %1 幅作品。",
                        "The import was cancelled. Artworks added before that stay. The roll contains %1 artworks.")
                        .arg(count));
    } else {
        message.set(spt("卷布现有 %1 幅作品。可移动、旋转和等比缩放，PDF 会包含裁剪虚线。",
                        "The roll contains %1 artworks. You can move, rotate, and scale them proportionally. Trim "
                        "dashes will be included in the PDF.")
                        .arg(count));
    }
    if (!failures.isEmpty()) {
        errorMessage.set(failures.join(u'\n'));
    }
}

void OrvexModel::relinkSelectedArtwork() {
    const auto selected = selectedArtwork();
    if (!selected || busy()) {
        return;
    }
    const QList<QUrl> files =
        services_.openFiles({.title = spt("重新关联 %1", "Relink %1").arg(selected->title), .kind = FileKind::image});
    if (!files.isEmpty() && !busy()) {
        runRelink(*selected, files.first());
    }
}

QCoro::Task<> OrvexModel::runRelink(RollArtwork artwork, QUrl file) {
    SessionOperation operation(*this);
    try {
        const SessionProgress start = SessionProgress::ofReading(0, 1);
        const QFuture<SharedImageMetadata> inspecting = inspect(file, start, operation);
        const SharedImageMetadata metadata = co_await inspecting;
        replaceSource(artwork, metadata);
    } catch (const platform::Interrupted&) {
        // the session closes
    } catch (const std::exception& exception) {
        errorMessage.set(failureMessage(exception));
    }
}

/// Gives an artwork another file; its size and position stay. Raises OrvexError.
void OrvexModel::replaceSource(const RollArtwork& artwork, const SharedImageMetadata& metadata) {
    const RollArtwork current = this->artwork(artwork.id).value_or(artwork);
    const RollArtwork replacement = RollArtwork::make({.id = artwork.id,
                                                       .sourceURL = metadata->url,
                                                       .pixelWidth = metadata->pixelWidth,
                                                       .pixelHeight = metadata->pixelHeight,
                                                       .originalWidthInches = metadata->originalWidthInches,
                                                       .originalHeightInches = metadata->originalHeightInches,
                                                       .widthInches = current.widthInches,
                                                       .xInches = current.xInches,
                                                       .yInches = current.yInches,
                                                       .rotationQuarterTurns = current.rotationQuarterTurns});
    refuse(replacement.validationError(rollLayout().widthInches));
    recordRollUndo();
    RollLayout relinked = rollLayout();
    for (RollArtwork& item : relinked.items) {
        if (item.id == artwork.id) {
            item = replacement;
        }
    }
    rollLayout.set(relinked);
    takeMetadata(artwork.id, metadata);
    rollLoadWarnings.removeIf([&](const auto& each) { return each.key() == artwork.id; });
    clearColorConfirmation();
    syncSelectedArtwork();
    persistRollLayout();
}

void OrvexModel::duplicateSelectedArtwork() {
    const auto selected = selectedArtwork();
    if (!selected || busy()) {
        return;
    }
    endKeyboardNudge();
    RollArtwork copy = *selected;
    copy.id = QUuid::createUuid();
    RollLayout extended = rollLayout();
    if (const auto failure = failureMessageOf([&] { extended.append(copy, arrangementGap()); })) {
        errorMessage.set(failure);
        return;
    }
    recordRollUndo();
    rollLayout.set(extended);
    copySource(selected->id, copy.id);
    selectedArtworkID.set(copy.id);
    syncSelectedArtwork();
    persistRollLayout();
}

/// Makes known of one artwork's source what is known of another's.
void OrvexModel::copySource(const QUuid& from, const QUuid& to) {
    if (const SharedImageMetadata metadata = artworkPreviews().value(from)) {
        artworkPreviews.update([&](auto& previews) { previews.insert(to, metadata); });
    }
    sizingDescriptions.update([&](auto& descriptions) {
        const auto found = descriptions.constFind(platform::uuidText(from));
        if (found == descriptions.constEnd()) {
            descriptions.remove(platform::uuidText(to));
        } else {
            descriptions.insert(platform::uuidText(to), QString(*found));
        }
    });
}

} // namespace orvex
