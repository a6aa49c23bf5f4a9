#pragma once

#include "Layout/Geometry.h"
#include "Output/PageTransform.h"

#include <QByteArray>

#include <optional>

namespace orvex {

/// Builds the content stream of a roll's page (ISO 32000-1, 8). All lengths are points of the real print.
class RollPageContent {
public:
    /// Begins a white page of the given size whose drawing space is reduced by `userUnit`.
    RollPageContent(double widthPoints, double lengthPoints, double userUnit);

    /// Draws the named image, its unit square mapped by `transform`; with a rendering intent, that one is set for it.
    void drawImage(const QByteArray& name, const PageTransform& transform,
                   const std::optional<QByteArray>& renderingIntent);

    /// Strokes the trim frames, dashed and centred on their edges.
    void strokeFrames(const QList<Rect>& frames);

    [[nodiscard]] const QByteArray& bytes() const { return bytes_; }

private:
    QByteArray bytes_;
};

} // namespace orvex
