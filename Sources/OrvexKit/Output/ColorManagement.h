#pragma once

#include "Files/ByteReader.h"
#include "Imaging/Raster.h"
#include "Json/JsonReader.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QUrl>

#include <array>
#include <optional>

namespace orvex {

/// Who converts the colours of a print: the printer's driver, or this program.
enum class ColorManagementMode { driverManaged, appManaged };

inline constexpr std::array allColorManagementModes{ColorManagementMode::driverManaged,
                                                    ColorManagementMode::appManaged};

/// The text that stands for a mode in stored records.
[[nodiscard]] QString rawValue(ColorManagementMode mode);

/// The mode of a stored text, absent for any other text.
[[nodiscard]] std::optional<ColorManagementMode> colorManagementMode(const QString& rawValue);

/// The mode in the current language.
[[nodiscard]] QString label(ColorManagementMode mode);

/// How colours that the output cannot show are brought into its range.
enum class ColorRenderingIntent { perceptual, relativeColorimetric, saturation, absoluteColorimetric };

inline constexpr std::array allColorRenderingIntents{
    ColorRenderingIntent::perceptual, ColorRenderingIntent::relativeColorimetric, ColorRenderingIntent::saturation,
    ColorRenderingIntent::absoluteColorimetric};

/// The text that stands for an intent in stored records.
[[nodiscard]] QString rawValue(ColorRenderingIntent intent);

/// The intent of a stored text, absent for any other text.
[[nodiscard]] std::optional<ColorRenderingIntent> colorRenderingIntent(const QString& rawValue);

/// The intent in the current language.
[[nodiscard]] QString label(ColorRenderingIntent intent);

/// The intent's number, 1 to 4: absolute, relative, perceptual, saturation.
[[nodiscard]] int cgIntent(ColorRenderingIntent intent);

/// The colour choices of a print; embedded in presets and jobs. Plain value, any thread.
struct ColorWorkflow {
    ColorManagementMode mode = ColorManagementMode::driverManaged;
    ColorRenderingIntent intent = ColorRenderingIntent::relativeColorimetric;
    bool driverColorCorrectionDisabledConfirmed = false; ///< stated by the operator; the program cannot see it

    /// Reads the three required keys. Raises JsonError, for an unknown mode or intent, too.
    [[nodiscard]] static ColorWorkflow fromJson(const platform::JsonReader& reader);

    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ColorWorkflow&) const = default;
};

/// The colour profile that a source file itself carries. One is never assumed: a file without a proven profile is
/// untagged. The default value is the untagged one.
struct SourceColorProfile {
    std::optional<QByteArray> embeddedICCData;                      ///< validated
    QString name = QStringLiteral("未报告嵌入配置；不推定为 sRGB"); ///< the profile's own, or a stored text

    [[nodiscard]] static SourceColorProfile untagged() { return {}; }

    /// The profile of a file, `data`, one of whose decoded pictures has the colour space `imageProfile` (absent: the
    /// device's). It counts only if the decoder applied the very same one; whatever is amiss, the file is untagged.
    /// Reads the head of the data only. Raises nothing but FileSystemError, if the reader stands on a file.
    [[nodiscard]] static SourceColorProfile detect(platform::ByteReader& data,
                                                   const std::optional<QByteArray>& imageProfile);

    /// The same for a file and a decoded picture of it. Raises FileSystemError.
    [[nodiscard]] static SourceColorProfile detect(const QUrl& sourceURL, const platform::Raster& image);

    [[nodiscard]] bool isTagged() const { return embeddedICCData.has_value(); }

    /// `name`, the stored text of the untagged value in the current language.
    [[nodiscard]] QString displayName() const;

    bool operator==(const SourceColorProfile&) const = default;
};

/// What an output profile says of itself.
struct OutputICCProfile {
    QString name;
    QString profileClass; ///< four characters, such as "prtr"
    QString colorModel;   ///< "CMYK" or "RGB"
    qint64 componentCount = 0;
    QString sha256; ///< of all the data, lower-case hexadecimal

    /// Inspects a file, whose name serves a profile without a description. Raises OrvexError for anything but a usable
    /// output profile, FileSystemError if the file cannot be read.
    [[nodiscard]] static OutputICCProfile inspect(const QUrl& url);

    /// Inspects bytes. Raises OrvexError for anything but a usable output profile.
    [[nodiscard]] static OutputICCProfile inspect(const QByteArray& data, const QString& fallbackName);

    bool operator==(const OutputICCProfile&) const = default;
};

/// What any ICC file says of itself, whatever it is good for.
struct ICCProfileInfo {
    QString name; ///< of the file
    QString colorSpace;
    qint64 componentCount = 0;

    static constexpr qint64 smallestBytes = 129;
    static constexpr qint64 largestBytes = 19'999'999;

    /// Raises OrvexError for a file of another size or without a usable profile, FileSystemError if it cannot be read.
    [[nodiscard]] static ICCProfileInfo inspect(const QUrl& url);

    bool operator==(const ICCProfileInfo&) const = default;
};

} // namespace orvex
