#include "BoardPictures.h"

#include "BackgroundTask.h"

#include <QTransform>

#include <algorithm>
#include <array>

namespace orvex {

namespace {

constexpr std::array<int, 4> sizes{256, 512, 1024, static_cast<int>(ImageMetadata::previewPixels)};

int sizeFor(int longestSide) {
    const auto found = std::ranges::find_if(sizes, [&](int size) { return size >= longestSide; });
    return found != sizes.end() ? *found : sizes.back();
}

template <typename Picture>
int costKiB(const Picture& picture) {
    return std::max(1, picture.width() * picture.height() * picture.depth() / 8 / 1024);
}

QImage imageOf(const DisplayPicture& picture) {
    const auto width = static_cast<int>(picture.width);
    const QImage rows(reinterpret_cast<const uchar*>(picture.rgb.constData()), width, static_cast<int>(picture.height),
                      width * 3, QImage::Format_RGB888);
    return rows.copy();
}

QImage turned(const QImage& image, qint64 turns) {
    constexpr double degreesPerTurn = 90.0;
    return turns % 4 == 0 ? image : image.transformed(QTransform().rotate(degreesPerTurn * static_cast<double>(turns)));
}

} // namespace

BoardPictures::BoardPictures(QObject* parent) : QObject(parent) {}

BoardPictures::~BoardPictures() = default;

QImage BoardPictures::cached(const SharedImageMetadata& metadata, int size) const {
    const Picture* found = pictures_.object({metadata.get(), size});
    return found != nullptr && found->owner.lock() == metadata ? found->image : QImage();
}

QImage BoardPictures::picture(const SharedImageMetadata& metadata, int longestSide) {
    if (!metadata) {
        return {};
    }
    const int wanted = sizeFor(longestSide);
    if (QImage exact = cached(metadata, wanted); !exact.isNull()) {
        return exact;
    }
    request(metadata, wanted);
    QImage best;
    for (const int size : sizes) {
        if (const QImage other = cached(metadata, size); !other.isNull() && (size < wanted || best.isNull())) {
            best = other;
        }
    }
    return best;
}

QImage BoardPictures::turnedPicture(const RollArtwork& artwork, const SharedImageMetadata& metadata, int longestSide) {
    return turned(picture(metadata, longestSide), artwork.rotationQuarterTurns);
}

QPixmap BoardPictures::placed(const RollArtwork& artwork, const SharedImageMetadata& metadata, const QSize& pixels) {
    const Placed* known = placed_.object(artwork.id);
    if (known != nullptr && known->owner.lock() == metadata && known->turns == artwork.rotationQuarterTurns &&
        known->pixmap.size() == pixels) {
        return known->pixmap;
    }
    const int longestSide = std::max(pixels.width(), pixels.height());
    const QImage source = turnedPicture(artwork, metadata, longestSide);
    if (source.isNull()) {
        return {};
    }
    const QImage exact = source.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QPixmap pixmap = QPixmap::fromImage(exact);
    if (!cached(metadata, sizeFor(longestSide)).isNull()) {
        placed_.insert(artwork.id, new Placed{metadata, artwork.rotationQuarterTurns, pixmap}, costKiB(pixmap));
    }
    return pixmap;
}

void BoardPictures::prepare(const QHash<QUuid, SharedImageMetadata>& previews) {
    for (const SharedImageMetadata& metadata : previews) {
        if (metadata && !pictures_.contains({metadata.get(), sizes.front()})) {
            request(metadata, sizes.front());
        }
    }
}

void BoardPictures::request(const SharedImageMetadata& metadata, int size) {
    const Key key{metadata.get(), size};
    if (requested_.value(key).lock() == metadata) {
        return;
    }
    const std::weak_ptr<const ImageMetadata> owner = metadata;
    requested_.insert(key, owner);
    const auto make = [maker = maker_, metadata, size] { return imageOf(maker->make(metadata->preview, size)); };
    platform::startUserInitiatedTask(make).then(this, [this, owner, key](const QFuture<QImage>& made) {
        try {
            take(owner, key, made.result());
        } catch (const std::exception&) {
            // A source that cannot be read any more is told where it matters; its picture stays as it was.
        }
    });
}

void BoardPictures::take(const std::weak_ptr<const ImageMetadata>& owner, const Key& key, const QImage& image) {
    requested_.remove(key);
    if (owner.expired()) {
        return;
    }
    pictures_.insert(key, new Picture{owner, image}, costKiB(image));
    Q_EMIT pictureReady(key.first);
}

} // namespace orvex
