#pragma once

#include <QColor>
#include <QIcon>

namespace orvex {

/// The pictures on buttons and notes. Main thread, with an application.
namespace OrvexIcons {

/// What a picture stands for.
enum class Symbol {
    addArtwork,
    exportFile,
    print,
    shield,
    information,
    pause,
    waveform,
    refresh,
    tray,
    missingPicture,
    resizeHandle,
    undo,
    redo,
    zoomIn,
    zoomOut,
    arrangement,
    remove
};

/// The desktop theme's picture for the symbol, or the program's own where the theme has none or one of another kind
/// would be unclear. Drawn crisply at every size, in the given colour where it is the program's own.
[[nodiscard]] QIcon icon(Symbol symbol, const QColor& color);

/// The same in the colour of texts.
[[nodiscard]] QIcon icon(Symbol symbol);

/// The program's own icon.
[[nodiscard]] QIcon application();

} // namespace OrvexIcons

} // namespace orvex
