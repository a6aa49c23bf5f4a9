#pragma once

#include "Imaging/Raster.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace orvex::platform {

/// A validated ICC profile: its bytes, and what they say. Immutable; any thread.
class IccProfile {
public:
    enum class Space { gray, rgb, cmyk, other };

    static constexpr qsizetype smallestBytes = 132;     ///< the header and the count of tags (ICC.1, 7.1)
    static constexpr qsizetype largestBytes = 64 << 20; ///< bounds what a profile can make the engine allocate

    /// The profile of these bytes, or nothing if they are unusable: fewer than `smallestBytes` or more than
    /// `largestBytes`; a signature that is not "acsp"; a size field below `smallestBytes` or beyond the bytes, while
    /// bytes behind the profile do no harm; a class or colour space that is not ASCII; a tag that does not lie between
    /// the directory and the end of the profile; or a profile that the colour engine cannot open, from which it cannot
    /// compute colours, or of which it cannot read all that colours are computed from. Every class of the standard
    /// passes.
    [[nodiscard]] static std::optional<IccProfile> fromData(const QByteArray& data);

    /// Whether the bytes have all that `fromData` asks for, but that large tables are not read, only looked at. That
    /// takes a fiftieth of the time: this is for bytes that are known to be those of a profile that has passed before.
    [[nodiscard]] static bool isWellFormed(const QByteArray& data);

    [[nodiscard]] const QByteArray& data() const { return data_; }

    /// The profile's own description, in English if it has that, trimmed; absent if it has none.
    [[nodiscard]] std::optional<QString> description() const { return description_; }

    /// The four characters of the profile class, such as "prtr".
    [[nodiscard]] const QByteArray& profileClass() const { return profileClass_; }

    [[nodiscard]] Space space() const { return space_; }

    /// The count of colour samples of a pixel in the profile's space.
    [[nodiscard]] int componentCount() const { return componentCount_; }

private:
    IccProfile() = default;

    QByteArray data_;
    std::optional<QString> description_;
    QByteArray profileClass_;
    Space space_ = Space::other;
    int componentCount_ = 0;
};

/// Whether the bytes are long enough for a profile and bear the signature "acsp".
[[nodiscard]] bool hasIccSignature(QByteArrayView data);

/// The colour model of a raster whose samples are in that space; absent for `other`.
[[nodiscard]] std::optional<ColorModel> colorModel(IccProfile::Space space);

/// The system's sRGB profile: one fixed byte sequence. Any thread.
[[nodiscard]] const QByteArray& sRgbProfileData();

/// The colour space of a decoded picture whose file embeds `data`: the data itself if it is a usable input, display,
/// output or colour-space profile of that model, and otherwise absent, which means the model's device space.
[[nodiscard]] std::optional<QByteArray> appliedProfile(const std::optional<QByteArray>& data, ColorModel model);

} // namespace orvex::platform
