#pragma once

#include "Json/JsonReader.h"
#include "Layout/Geometry.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace orvex {

/// How an image meets the content rectangle of a page.
enum class Placement { fit, fill };

/// The text that stands for a placement in stored records: Chinese in every language.
[[nodiscard]] QString rawValue(Placement placement);

/// The placement of a stored text, absent for any other text.
[[nodiscard]] std::optional<Placement> placement(const QString& rawValue);

/// The placement in the current language.
[[nodiscard]] QString label(Placement placement);

/// The page record of the print path, in millimetres; embedded in presets and jobs. Plain value, any thread.
struct DocumentSettings {
    static constexpr double minimumPageMM = 50.0;
    static constexpr double maximumPageWidthMM = 1524.0;
    static constexpr double maximumPageHeightMM = 18000.0;

    double widthMM = 210.0;
    double heightMM = 297.0;
    double marginMM = 10.0;
    Placement placement = Placement::fit;
    QString paperSource = QStringLiteral("卷纸");
    QString mediaNote;
    QString driverPageSize;

    bool operator==(const DocumentSettings&) const = default;

    /// The message of the first rule that the page breaks, or nothing.
    [[nodiscard]] std::optional<QString> validationError() const;

    /// The page in points.
    [[nodiscard]] Size pageSize() const;

    /// The page less its margins, in points; the page's corner is the origin.
    [[nodiscard]] Rect contentRect() const;

    /// Where an image of that pixel size lies, in points: centred in the content rectangle; with `fill` it may
    /// overhang.
    [[nodiscard]] Rect imageRect(qint64 pixelWidth, qint64 pixelHeight) const;

    /// Reads the seven required keys; no rule of the page is applied. Raises JsonError.
    [[nodiscard]] static DocumentSettings fromJson(const platform::JsonReader& reader);

    /// Raises JsonError for a number that the given mode cannot write.
    [[nodiscard]] QJsonObject toJson(platform::JsonNumbers numbers = platform::JsonNumbers::finite) const;
};

} // namespace orvex
