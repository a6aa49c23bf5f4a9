#include "BoardPictures.h"

#include "BackgroundTask.h"

#include <QTransform>

#include <algorithm>
#include <array>

namespace orvex {

namespace {

constexpr std::array<int, 5> sizes{256, 512, 1024, 1600, static_cast<int>(ImageMetadata::previewPixels)};

int sizeFor(int longestSide) {
    const auto found = std::ranges::find_if(sizes, [&](int size) { return size >= longestSide; });
    return found != sizes.end() ? *found : sizes.back();
}

template <typename Picture>
int costKiB(const Picture& picture) {
    return std::max(1, picture.width() * picture.height() * picture.depth() / 8 / 1024);
}

/// The picture's own samples, which it shares.
QImage imageOf(const DisplayPicture& picture) {
    const auto width = static_cast<int>(picture.width);
    auto* samples = new QByteArray(picture.rgb);
    return {reinterpret_cast<const uchar*>(samples->constData()),
            width,
            static_cast<int>(picture.height),
            width * 3,
            QImage::Format_RGB888,
            [](void* shared) { delete static_cast<QByteArray*>(shared); },
            samples};
}

QImage turned(const QImage& image, qint64 turns) {
    constexpr double degreesPerTurn = 90.0;
    return turns % 4 == 0 ? image : image.transformed(QTransform().rotate(degreesPerTurn * static_cast<double>(turns)));
}

QSize laid(const QSize& size, qint64 turns) {
    return turns % 2 == 0 ? size : size.transposed();
}

/// As many pixels of the upright picture as are asked for of the one on the roll, or as the preview has if these are
/// fewer: enlarged pixels need no memory.
QSize uprightSize(const RollArtwork& artwork, const ImageMetadata& metadata, const QSize& pixels) {
    const QSize wanted = laid(pixels, artwork.rotationQuarterTurns);
    const QSize whole(static_cast<int>(metadata.preview.width()), static_cast<int>(metadata.preview.height()));
    return wanted.width() > whole.width() && wanted.height() > whole.height() ? whole : wanted;
}

} // namespace

BoardPictures::BoardPictures(QObject* parent) : QObject(parent) {}

BoardPictures::~BoardPictures() = default;

QCache<BoardPictures::Key, BoardPictures::Picture>& BoardPictures::cacheOf(int size) {
    return size == sizes.front() ? thumbnails_ : pictures_;
}

QImage BoardPictures::cached(const SharedImageMetadata& metadata, int size) {
    const Picture* found = cacheOf(size).object({metadata.get(), size});
    return found != nullptr && found->owner.lock() == metadata ? found->image : QImage();
}

qsizetype BoardPictures::heldKiB() const {
    return thumbnails_.totalCost() + pictures_.totalCost() + placed_.totalCost();
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

QPixmap BoardPictures::placed(const RollArtwork& artwork, const SharedImageMetadata& metadata, const QSize& pixels,
                              Sharpness sharpness) {
    if (!metadata) {
        return {};
    }
    const QSize upright = uprightSize(artwork, *metadata, pixels);
    const QSize size = laid(upright, artwork.rotationQuarterTurns);
    const Placed* known = placed_.object(artwork.id);
    if (known != nullptr && known->owner.lock() == metadata && known->turns == artwork.rotationQuarterTurns &&
        (known->pixmap.size() == size || sharpness == Sharpness::quick)) {
        return known->pixmap;
    }
    const int longestSide = std::max(size.width(), size.height());
    const QImage source = picture(metadata, longestSide);
    if (cached(metadata, sizeFor(longestSide)).isNull()) {
        return QPixmap::fromImage(turned(source, artwork.rotationQuarterTurns)); // not for long
    }
    const QImage scaled = source.scaled(upright, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QPixmap pixmap = QPixmap::fromImage(turned(scaled, artwork.rotationQuarterTurns));
    placed_.insert(artwork.id, new Placed{metadata, artwork.rotationQuarterTurns, pixmap}, costKiB(pixmap));
    return pixmap;
}

void BoardPictures::prepare(const SharedImageMetadata& metadata) {
    if (metadata && !isBegun(metadata, sizes.front()) && cached(metadata, sizes.front()).isNull()) {
        requests_.push_back({{metadata.get(), sizes.front()}, metadata});
        startRequests();
    }
}

void BoardPictures::giveUpLargerPictures() {
    std::erase_if(requests_, [](const Request& each) { return each.key.second != sizes.front(); });
}

/// Whether it is being made, or could not be.
bool BoardPictures::isBegun(const SharedImageMetadata& metadata, int size) const {
    return begun_.value({metadata.get(), size}).lock() == metadata;
}

void BoardPictures::request(const SharedImageMetadata& metadata, int size) {
    if (isBegun(metadata, size)) {
        return;
    }
    const Key key{metadata.get(), size};
    std::erase_if(requests_, [&key](const Request& each) { return each.key == key; });
    requests_.push_front({key, metadata});
    startRequests();
}

/// As many at once as leave a thread for what the user has started.
void BoardPictures::startRequests() {
    const int most = std::max(platform::userInitiatedPool().maxThreadCount() - 1, 1);
    while (makingCount_ < most && !requests_.empty()) {
        const Request next = requests_.front();
        requests_.pop_front();
        const SharedImageMetadata metadata = next.owner.lock();
        if (metadata && !isBegun(metadata, next.key.second)) {
            start(metadata, next.key.second);
        }
    }
}

void BoardPictures::start(const SharedImageMetadata& metadata, int size) {
    const Key key{metadata.get(), size};
    const Owner owner = metadata;
    begun_.removeIf([](const auto& each) { return each.value().expired(); });
    begun_.insert(key, owner);
    ++makingCount_;
    const auto make = [maker = maker_, metadata, size] { return imageOf(maker->make(metadata->preview, size)); };
    platform::startUserInitiatedTask(make).then(this, [this, owner, key](const QFuture<QImage>& made) {
        --makingCount_;
        startRequests();
        try {
            take(owner, key, made.result());
        } catch (const std::exception&) {
            // A source that cannot be read any more is told where it matters; its picture stays as it was.
        }
    });
}

void BoardPictures::take(const Owner& owner, const Key& key, const QImage& image) {
    begun_.remove(key);
    if (owner.expired()) {
        return;
    }
    cacheOf(key.second).insert(key, new Picture{owner, image}, costKiB(image));
    Q_EMIT pictureReady(key.first);
}

} // namespace orvex
