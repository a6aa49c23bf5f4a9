#pragma once

#include "Imaging/ImageSource.h"
#include "OrvexError.h"
#include "Output/ColorManagement.h"

#include <QString>
#include <QUrl>

namespace orvex {

/// What a source file is: its upright size in pixels, the size at which it was meant to be printed, its colour profile,
/// and a small picture of it. Fixed once loaded.
struct ImageMetadata {
    QUrl url;
    qint64 pixelWidth = 0; ///< after the orientation is applied
    qint64 pixelHeight = 0;
    QString profileName; ///< that of `sourceColorProfile`
    SourceColorProfile sourceColorProfile;
    double originalWidthInches = 0; ///< at 100 %
    double originalHeightInches = 0;
    QString physicalSizeSource; ///< where the physical size came from; always stored in its Chinese form
    platform::Raster preview;   ///< upright, the longer side at most `previewPixels`

    static constexpr qint64 previewPixels = 2400;

    /// Inspects a file; every pixel is read on the way, so that a damaged file is refused here. Gives the same answer
    /// for the same file each time. Raises OrvexError, or the file system's own error if the file opens as an image and
    /// then cannot be read, and Interrupted soon after a stop is requested. `progress` is told of the stored rows, on
    /// the calling thread. Any thread.
    [[nodiscard]] static ImageMetadata load(const QUrl& url, const std::stop_token& stop = {},
                                            const platform::RowProgress& progress = {});

    /// The opened file's picture with its longer side limited to `maximum`, materialised and upright. Raises
    /// OrvexError.
    [[nodiscard]] static platform::Raster raster(const platform::ImageSource& source, qint64 maximum,
                                                 const platform::RowProgress& progress = {});

    /// The refusal of a picture that opens but cannot be decoded.
    [[nodiscard]] static OrvexError decodingError();

    /// A stored `physicalSizeSource` in the current language; any other text is given back unchanged.
    [[nodiscard]] static QString localizedPhysicalSizeSource(const QString& text);

    [[nodiscard]] QString displayProfileName() const { return sourceColorProfile.displayName(); }

    [[nodiscard]] QString physicalSizeSourceLabel() const { return localizedPhysicalSizeSource(physicalSizeSource); }

    /// Whether the file stated a usable density; if not, the physical size is an estimate.
    [[nodiscard]] bool isPhysicalSizeEstimated() const;
};

} // namespace orvex
