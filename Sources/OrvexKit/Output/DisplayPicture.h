#pragma once

#include "Color/ColorTransform.h"
#include "Imaging/Raster.h"

#include <QByteArray>

#include <mutex>
#include <optional>
#include <vector>

namespace orvex {

/// A small picture for the screen: sRGB, three bytes a pixel, rows from the top without padding.
struct DisplayPicture {
    qint64 width = 0;
    qint64 height = 0;
    QByteArray rgb;

    bool operator==(const DisplayPicture&) const = default;
};

/// Makes pictures for the screen of previews. Nothing that is printed comes from here. Any thread, and several at once.
class DisplayPictures {
public:
    /// An upright raster with its longer side reduced to `longestSide` at most, in the screen's colours, on white. A
    /// colour space that cannot be converted shows as the device's. Raises what reading the raster's rows raises.
    [[nodiscard]] DisplayPicture make(const platform::Raster& upright, qint64 longestSide);

private:
    /// The way from a profile to the screen; absent if there is none.
    struct Known {
        QByteArray profile;
        std::optional<platform::ColorTransform> transform;
    };

    [[nodiscard]] std::optional<platform::ColorTransform> transformOf(const QByteArray& profile);

    std::mutex mutex_;
    std::vector<Known> known_; ///< the last used profiles, the newest last
};

} // namespace orvex
