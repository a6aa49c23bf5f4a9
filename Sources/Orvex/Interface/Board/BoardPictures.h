#pragma once

#include "Output/DisplayPicture.h"
#include "SessionFields.h"

#include <QCache>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QSet>

#include <memory>

namespace orvex {

/// The pictures of artworks as the window draws them, within a budget of memory: made of the previews in the
/// background, at a few sizes, and scaled to the pixel once where they are drawn. Main thread.
class BoardPictures : public QObject {
    Q_OBJECT

public:
    static constexpr int picturesBudgetKiB = 96 << 10;
    static constexpr int placedBudgetKiB = 32 << 10;

    explicit BoardPictures(QObject* parent = nullptr);
    ~BoardPictures() override;

    /// The best picture at hand, of `longestSide` pixels or more where the preview has them; it is unturned. Null until
    /// there is one. A better one is made if need be, and announced.
    [[nodiscard]] QImage picture(const SharedImageMetadata& metadata, int longestSide);

    /// The same turned as the artwork lies on the roll.
    [[nodiscard]] QImage turnedPicture(const RollArtwork& artwork, const SharedImageMetadata& metadata,
                                       int longestSide);

    /// The picture of an artwork turned as it lies on the roll, of exactly that many pixels; null until there is one.
    [[nodiscard]] QPixmap placed(const RollArtwork& artwork, const SharedImageMetadata& metadata, const QSize& pixels);

    /// Makes the smallest size of every preview that has none yet, while the pixels are in memory.
    void prepare(const QHash<QUuid, SharedImageMetadata>& previews);

Q_SIGNALS:
    /// A better picture of that preview has come.
    void pictureReady(const orvex::ImageMetadata* metadata);

private:
    /// A preview, and the longer side of a picture that is made of it.
    using Key = std::pair<const ImageMetadata*, int>;

    /// A preview is told from a later one at the same address by its owner.
    struct Picture {
        std::weak_ptr<const ImageMetadata> owner;
        QImage image;
    };

    struct Placed {
        std::weak_ptr<const ImageMetadata> owner;
        qint64 turns = 0;
        QPixmap pixmap;
    };

    [[nodiscard]] QImage cached(const SharedImageMetadata& metadata, int size) const;
    void request(const SharedImageMetadata& metadata, int size);
    void take(const std::weak_ptr<const ImageMetadata>& owner, const Key& key, const QImage& image);

    std::shared_ptr<DisplayPictures> maker_ = std::make_shared<DisplayPictures>();
    mutable QCache<Key, Picture> pictures_{picturesBudgetKiB};
    QCache<QUuid, Placed> placed_{placedBudgetKiB};
    QHash<Key, std::weak_ptr<const ImageMetadata>> requested_; ///< those that failed stay, and are not tried again
};

} // namespace orvex
