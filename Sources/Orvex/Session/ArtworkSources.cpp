// What is known of the artworks' sources: looked up, restored after a start, given up when nothing holds it any more.

#include "BackgroundTask.h"
#include "Interrupted.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "Output/FileStamp.h"
#include "SessionOperation.h"

namespace orvex {

namespace {

bool isOfArtwork(const SharedImageMetadata& metadata, const RollArtwork& artwork) {
    return metadata && metadata->url == artwork.sourceURL && metadata->pixelWidth == artwork.pixelWidth &&
           metadata->pixelHeight == artwork.pixelHeight;
}

/// Inspects a file; its picture is in the keeping of the store.
SharedImageMetadata loadMetadata(const QUrl& file, PreviewStore& store, const std::stop_token& stop,
                                 const platform::RowProgress& progress) {
    // Taken first, though the picture's own refusal is the better message: what changes while the file is read is not
    // the picture's stamp any more.
    std::optional<FileStamp> stamp;
    const auto failure = failureMessageOf([&] { stamp = FileStamp::read(file); });
    const ImageMetadata metadata = ImageMetadata::load(file, stop, progress);
    if (!stamp) {
        throw OrvexError::invalid(*failure);
    }
    return std::make_shared<const ImageMetadata>(store.hold(metadata, *stamp));
}

} // namespace

SharedImageMetadata OrvexModel::metadataFor(const RollArtwork& artwork) const {
    const SharedImageMetadata found = artworkPreviews().value(artwork.id);
    return isOfArtwork(found, artwork) ? found : nullptr;
}

/// Inspects a file in the background; the progress goes on from `start`.
QFuture<SharedImageMetadata> OrvexModel::inspect(const QUrl& file, const SessionProgress& start,
                                                 SessionOperation& operation) {
    operation.show(start);
    const auto showRows = [start, report = operation.report()](qint64 done, qint64 count) {
        SessionProgress now = start;
        const double ofFile = static_cast<double>(done) / static_cast<double>(count);
        now.fraction = (static_cast<double>(start.done) + ofFile) / static_cast<double>(start.total);
        report(now);
    };
    return platform::startUserInitiatedTask([file, store = previewStore_, stop = operation.stopToken(), showRows] {
        return loadMetadata(file, *store, stop, showRows);
    });
}

void OrvexModel::takeMetadata(const QUuid& id, const SharedImageMetadata& metadata) {
    artworkPreviews.update([&](auto& previews) { previews.insert(id, metadata); });
    sizingDescriptions.update(
        [&](auto& descriptions) { descriptions.insert(platform::uuidText(id), metadata->physicalSizeSource); });
}

QCoro::Task<> OrvexModel::restoreRollPreviews(bool force) {
    if (rollPreviewsRestored && !force) {
        co_return;
    }
    rollPreviewsRestored = true;
    if (rollLayout().items.isEmpty()) {
        co_return;
    }
    SessionOperation operation(*this);
    rollLoadWarnings.set({});
    const QList<RollArtwork> items = rollLayout().items;
    for (qsizetype index = 0; index < items.size() && !operation.stopToken().stop_requested(); ++index) {
        if (!isOfArtwork(artworkPreviews().value(items[index].id), items[index])) {
            const SessionProgress start = SessionProgress::ofReading(index, items.size());
            co_await restoreSource(items[index], start, operation);
        }
    }
    syncSelectedArtwork();
}

/// Whether the artwork on the canvas with this one's id is now made of something else.
bool OrvexModel::isReplaced(const RollArtwork& inspected) const {
    const auto current = artwork(inspected.id);
    return current && (current->sourceURL != inspected.sourceURL || current->pixelWidth != inspected.pixelWidth ||
                       current->pixelHeight != inspected.pixelHeight);
}

QCoro::Task<> OrvexModel::restoreSource(RollArtwork artwork, SessionProgress start, SessionOperation& operation) {
    std::optional<QString> failure;
    try {
        const QFuture<SharedImageMetadata> inspecting = inspect(artwork.sourceURL, start, operation);
        const SharedImageMetadata metadata = co_await inspecting;
        if (isReplaced(artwork)) {
            co_return; // what was read is of another file than the artwork has now
        }
        if (metadata->pixelWidth == artwork.pixelWidth && metadata->pixelHeight == artwork.pixelHeight) {
            takeMetadata(artwork.id, metadata);
            co_return;
        }
        failure = spt("原图的像素尺寸已改变，请重新关联：%1", "The original image dimensions have changed. Relink: %1")
                      .arg(artwork.title);
    } catch (const platform::Interrupted&) {
        co_return; // the session closes
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (isReplaced(artwork)) {
        co_return;
    }
    artworkPreviews.update([&](auto& previews) { previews.remove(artwork.id); });
    rollLoadWarnings.update([&](auto& warnings) { warnings.insert(artwork.id, *failure); });
}

void OrvexModel::pruneRollPreviews() {
    QSet<QUuid> current;
    for (const RollArtwork& item : rollLayout().items) {
        current.insert(item.id);
    }
    QSet<QUuid> known; // of whose sources something is known
    for (auto each = artworkPreviews().keyBegin(); each != artworkPreviews().keyEnd(); ++each) {
        known.insert(*each);
    }
    for (auto each = sizingDescriptions().keyBegin(); each != sizingDescriptions().keyEnd(); ++each) {
        known.insert(QUuid(*each));
    }
    const QSet<QUuid> kept = current + rollHistory.heldIDs(known - current);
    artworkPreviews.removeIf([&](const auto& each) { return !kept.contains(each.key()); });
    sizingDescriptions.removeIf([&](const auto& each) {
        const QUuid id(each.key());
        return !kept.contains(id) || platform::uuidText(id) != each.key();
    });
    rollLoadWarnings.removeIf([&](const auto& each) { return !current.contains(each.key()); });
}

} // namespace orvex
