#pragma once

#include "Color/ColorTransform.h"
#include "Color/IccProfile.h"
#include "Imaging/Raster.h"
#include "Output/ColorManagement.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <stop_token>

namespace orvex {

/// On which side of a conversion a profile stands.
enum class ICCUse { source, output };

/// A profile that may be used for a conversion.
struct ParsedICC {
    platform::IccProfile profile;
    platform::ColorModel model = platform::ColorModel::rgb;
    QString profileClass;
};

/// The last conversion that was made, kept for the next picture: what it has read of a profile and computed of the
/// colours of two serves every picture with these profiles. One thread.
class LastColorTransform {
public:
    /// The output profile of these bytes: the kept one, else one read by `parse` and kept.
    template <typename Parse>
    const ParsedICC& output(const QByteArray& data, const Parse& parse) {
        if (!output_ || output_->profile.data() != data) {
            output_ = parse(data, ICCUse::output);
        }
        return *output_;
    }

    /// The transform between two profiles: the kept one if it was made for the same, else one made by `make` and kept.
    template <typename Make>
    platform::ColorTransform of(const ParsedICC& source, const ParsedICC& output, int bits, ColorRenderingIntent intent,
                                const Make& make) {
        const Key key{source.profile.data(), output.profile.data(), bits, intent};
        if (!transform_ || !(key_ == key)) {
            transform_ = make(source, output, bits, intent);
            key_ = key;
        }
        return *transform_;
    }

private:
    struct Key {
        QByteArray source;
        QByteArray output;
        int bits = 0;
        ColorRenderingIntent intent = ColorRenderingIntent::perceptual;

        bool operator==(const Key&) const = default;
    };

    std::optional<ParsedICC> output_;
    Key key_;
    std::optional<platform::ColorTransform> transform_;
};

/// The single point at which pixels change colour.
namespace ColorProcessor {

/// Validates a profile: as a source, a scanner, display, printer or colour-space profile of gray, RGB or CMYK; as an
/// output, a display, printer or colour-space profile of RGB or CMYK. Raises OrvexError for any other. Any thread.
[[nodiscard]] ParsedICC parseICC(const QByteArray& data, ICCUse use);

/// The picture in the colours of the output profile, or the very same picture if the driver manages colour.
///
/// All checks are made at once; the pixels are converted strip by strip whenever the result's rows are read, by rows
/// that hold one strip and no more. What is transparent is first laid on the white paper of the source profile. The
/// result has 8 bits for sources of up to 8 and else 16, no alpha, the size and orientation of the source, and the
/// output profile. Raises OrvexError for whatever cannot be converted without loss or guesses; so do the result's rows
/// if the source delivers others than it promised. Any thread.
[[nodiscard]] platform::Raster apply(const platform::Raster& image, const SourceColorProfile& sourceProfile,
                                     const ColorWorkflow& workflow, const std::optional<QByteArray>& outputICC);

/// The same, with the transform of the picture before if it serves again. The result's rows raise Interrupted soon
/// after a stop is requested.
[[nodiscard]] platform::Raster apply(const platform::Raster& image, const SourceColorProfile& sourceProfile,
                                     const ColorWorkflow& workflow, const std::optional<QByteArray>& outputICC,
                                     LastColorTransform& last, const std::stop_token& stop = {});

} // namespace ColorProcessor

} // namespace orvex
