#pragma once

#include "Layout/RollArtwork.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QStringList>

namespace orvex {

/// What the panels say of an artwork, in the current language. Any thread.
namespace ArtworkTexts {

[[nodiscard]] QString pixelSize(const RollArtwork& artwork);

/// Of the image as it lies on the roll.
[[nodiscard]] QString printSize(const RollArtwork& artwork);

/// Of the source at 100 %.
[[nodiscard]] QString originalReference(const RollArtwork& artwork);

/// Where the size of the source came from; `descriptions` are the session's, by the text of an id.
[[nodiscard]] QString sizeSource(const QMap<QString, QString>& descriptions, const QUuid& id);

[[nodiscard]] QString borderFrame(const RollArtwork& artwork);
[[nodiscard]] QString resolutionAndRotation(const RollArtwork& artwork);

/// For those who hear the screen: an artwork's row, and the × in it.
[[nodiscard]] QString rowName(const RollArtwork& artwork);
[[nodiscard]] QString removalName(const RollArtwork& artwork);

/// What each source is warned of, in the order of the artworks.
[[nodiscard]] QStringList loadWarnings(const QList<RollArtwork>& artworks, const QHash<QUuid, QString>& warnings);

} // namespace ArtworkTexts

} // namespace orvex
