#pragma once

#include "Board/BoardGeometry.h"
#include "OrvexModel.h"

#include <QRegion>

#include <optional>

namespace orvex {

/// What of the session the board has drawn last, so that it draws anew only what looks different since. Main thread.
class BoardSnapshot {
public:
    struct Change {
        bool isEverywhere = false;
        QRegion region;           ///< of the viewport; what has changed if not everything has
        bool isNamedAnew = false; ///< other artworks, or another one is selected
        QList<SharedImageMetadata> newPreviews;
    };

    /// Takes over what the session holds now, for a board of that geometry; gives what is different.
    [[nodiscard]] Change take(const OrvexModel& session, const BoardGeometry& geometry);

    /// The places of the artworks that show a preview.
    [[nodiscard]] QRegion placesOf(const ImageMetadata* preview, const BoardGeometry& geometry) const;

private:
    [[nodiscard]] bool isOtherList(const RollLayout& layout) const;
    [[nodiscard]] QRegion moved(const RollLayout& layout, const BoardGeometry& geometry) const;
    [[nodiscard]] QList<SharedImageMetadata> newPreviews(const OrvexModel& session) const;

    RollLayout layout_;
    std::optional<QUuid> selection_;
    bool isGesture_ = false;
    QHash<QUuid, SharedImageMetadata> previews_;
    QHash<QUuid, QString> warnings_;
};

} // namespace orvex
