#pragma once

#include "Layout/Geometry.h"
#include "Layout/RollLayout.h"
#include "Output/ColorManagement.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <functional>
#include <optional>
#include <stop_token>

namespace orvex {

/// What was drawn of one artwork.
struct RollSourceAudit {
    QUuid artworkID;
    QUrl sourceURL;
    QString sourceProfileName;                  ///< as found in the file at the time of drawing
    std::optional<QString> sourceProfileSHA256; ///< of the embedded profile's bytes; absent without one
    qint64 pixelWidth = 0;                      ///< of the decoded full picture, upright
    qint64 pixelHeight = 0;
    qint64 renderedBitsPerComponent = 0; ///< of the image as it stands in the PDF
    QString renderedColorModel;          ///< "CMYK", "Gray" or "RGB"

    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static RollSourceAudit fromJson(const platform::JsonReader& json);

    bool operator==(const RollSourceAudit&) const = default;
};

namespace RollPDFRenderer {

/// The real size of the roll's page, in points.
[[nodiscard]] Size pageSizePoints(const RollLayout& layout);

/// The PDF unit that brings a page of this size, in points, within the 14,400 units of a page side: at least 1.
[[nodiscard]] double userUnit(double widthPoints, double lengthPoints);

/// A rectangle of the roll, in inches from its top left corner, in points from the bottom left corner of a page of the
/// given length.
[[nodiscard]] Rect pageRect(const Rect& rollInches, double lengthPoints);

/// Raises OrvexError unless every trim frame lies on the page with whole borders, undistorted, and apart from the
/// others. Works in page points.
void validateFrames(const RollLayout& layout, const Rect& pagePoints);

enum class RenderStage {
    preflight, ///< every source is read through for the first time
    drawing    ///< their pixels go into the PDF
};

/// How far a rendering has come.
struct RenderProgress {
    RenderStage stage = RenderStage::preflight;
    qsizetype artwork = 1; ///< the one at work, from 1 to `artworkCount`
    qsizetype artworkCount = 1;
    qint64 rowsDone = 0; ///< of its source's stored rows
    qint64 rowCount = 1;

    /// The part of the stage that is done, 0 to 1, every artwork counting the same.
    [[nodiscard]] double fraction() const;

    bool operator==(const RenderProgress&) const = default;
};

/// Is told of a rendering's progress, once for each strip of rows at most; an artwork whose source has come before is
/// done at once. Called on the thread that called `render`, which waits for it; what it raises ends the rendering.
using ProgressReport = std::function<void(const RenderProgress&)>;

/// Writes the layout as a one-page PDF at the artworks' full resolution.
///
/// The file at `to` is left alone or replaced by a complete, verified PDF. Every source is stamped before its first
/// pixel is read, and checked again at each stage; the sources are never touched. Returns what was drawn, in the order
/// of the layout's items. Raises OrvexError, FileSystemError as the system gave it, PdfError beyond the limits of the
/// format, what `report` raises, and Interrupted within a moment of a stop request; after any of them no temporary file
/// is left. Any thread; it takes long.
[[nodiscard]] QList<RollSourceAudit> render(const RollLayout& layout, const QString& title, const QUrl& to,
                                            const ColorWorkflow& colorWorkflow,
                                            const std::optional<QByteArray>& outputICC,
                                            const std::stop_token& stop = {}, const ProgressReport& report = {});

} // namespace RollPDFRenderer

} // namespace orvex
