#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace orvex::benchmarks {

/// Pictures of 2400 x 1600 pixels, and some that are much larger; their files are in FOLDER/pictures and FOLDER/large.
void makePictures(const QString& folder);

/// The canvas that a session finds at its start: `count` artworks of those pictures. Gives the folder of the data.
[[nodiscard]] QString writeAutosave(const QString& folder, int count);

[[nodiscard]] QList<QUrl> largePictures(const QString& folder);

} // namespace orvex::benchmarks
