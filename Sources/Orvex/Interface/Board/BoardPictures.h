#pragma once

#include "Output/DisplayPicture.h"
#include "SessionFields.h"

#include <QCache>
#include <QImage>
#include <QObject>
#include <QPixmap>

#include <deque>
#include <memory>

namespace orvex {

/// The pictures of artworks as the window draws them, within a budget of memory: made of the previews in the
/// background, at a few sizes, and scaled to the pixel once where they are drawn. Main thread.
class BoardPictures : public QObject {
    Q_OBJECT

public:
    static constexpr int thumbnailsBudgetKiB = 96 << 10; ///< of the smallest size, which stands in for the others
    static constexpr int picturesBudgetKiB = 24 << 10;
    static constexpr int placedBudgetKiB = 32 << 10;

    explicit BoardPictures(QObject* parent = nullptr);
    ~BoardPictures() override;

    /// The best picture at hand, of `longestSide` pixels or more where the preview has them; it is unturned. Null until
    /// there is one. A better one is made if need be, and announced.
    [[nodiscard]] QImage picture(const SharedImageMetadata& metadata, int longestSide);

    /// The same turned as the artwork lies on the roll.
    [[nodiscard]] QImage turnedPicture(const RollArtwork& artwork, const SharedImageMetadata& metadata,
                                       int longestSide);

    enum class Sharpness {
        exact,
        quick ///< whatever size was drawn last, for a picture that changes its size with every step of the mouse
    };

    /// The picture of an artwork turned as it lies on the roll, of exactly that many pixels; of fewer where the preview
    /// has fewer, and until a better one has come. Null until there is one.
    [[nodiscard]] QPixmap placed(const RollArtwork& artwork, const SharedImageMetadata& metadata, const QSize& pixels,
                                 Sharpness sharpness = Sharpness::exact);

    /// Makes the smallest size of a new preview, while its pixels are in memory.
    void prepare(const SharedImageMetadata& metadata);

    /// Gives up larger pictures that were asked for and are not begun, as the user goes on to other places. What is
    /// drawn again asks again.
    void giveUpLargerPictures();

    /// Whether pictures are being made.
    [[nodiscard]] bool isMaking() const { return makingCount_ > 0 || !requests_.empty(); }

    /// What all pictures that are kept take.
    [[nodiscard]] qsizetype heldKiB() const;

Q_SIGNALS:
    /// A better picture of that preview has come.
    void pictureReady(const orvex::ImageMetadata* metadata);

private:
    /// A preview, and the longer side of a picture that is made of it.
    using Key = std::pair<const ImageMetadata*, int>;

    /// A preview is told from a later one at the same address by its owner.
    using Owner = std::weak_ptr<const ImageMetadata>;

    struct Picture {
        Owner owner;
        QImage image;
    };

    struct Placed {
        Owner owner;
        qint64 turns = 0;
        QPixmap pixmap;
    };

    struct Request {
        Key key;
        Owner owner;
    };

    [[nodiscard]] QCache<Key, Picture>& cacheOf(int size);
    [[nodiscard]] QImage cached(const SharedImageMetadata& metadata, int size);
    [[nodiscard]] bool isBegun(const SharedImageMetadata& metadata, int size) const;
    void request(const SharedImageMetadata& metadata, int size);
    void startRequests();
    void start(const SharedImageMetadata& metadata, int size);
    void take(const Owner& owner, const Key& key, const QImage& image);

    std::shared_ptr<DisplayPictures> maker_ = std::make_shared<DisplayPictures>();
    QCache<Key, Picture> thumbnails_{thumbnailsBudgetKiB};
    QCache<Key, Picture> pictures_{picturesBudgetKiB};
    QCache<QUuid, Placed> placed_{placedBudgetKiB};
    std::deque<Request> requests_; ///< not begun; what was drawn last comes first
    QHash<Key, Owner> begun_;      ///< those that failed stay, and are not tried again
    int makingCount_ = 0;
};

} // namespace orvex
