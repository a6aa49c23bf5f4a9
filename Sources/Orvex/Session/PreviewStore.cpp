#include "PreviewStore.h"

#include "Files/Paths.h"
#include "Imaging/MemoryRaster.h"
#include "OrvexLanguage.h"

#include <QSet>

#include <list>
#include <mutex>
#include <unordered_map>

namespace orvex {

namespace {

QByteArray copyOf(const platform::Raster& raster) {
    QByteArray pixels;
    pixels.reserve(raster.rowBytes() * raster.storedHeight());
    raster.rows([&pixels](const platform::RowStrip& strip) {
        pixels.append(reinterpret_cast<const char*>(strip.bytes.data()), static_cast<qsizetype>(strip.bytes.size()));
    });
    return pixels;
}

OrvexError changedError(const QUrl& url) {
    return OrvexError::invalid(spt("原图在检查后已更改：%1。请重新导入或重新关联。",
                                   "Artwork changed after it was inspected: %1. Import or relink it again.")
                                   .arg(url.fileName()));
}

} // namespace

/// The pixels and profiles in memory. Nothing but memory is touched under its lock.
class PreviewStore::Shelf {
public:
    using Key = const platform::RowSource*;

    explicit Shelf(qint64 budgetBytes) : budgetBytes_(budgetBytes) {}

    /// The pixels of a preview, which are then those used last; absent if they are not in memory.
    std::optional<QByteArray> find(Key key) {
        const std::lock_guard lock(mutex_);
        const auto found = places_.find(key);
        if (found == places_.end()) {
            return std::nullopt;
        }
        order_.splice(order_.begin(), order_, found->second);
        return found->second->pixels;
    }

    void put(Key key, const QByteArray& pixels) {
        const std::lock_guard lock(mutex_);
        take(key);
        if (pixels.size() > budgetBytes_) {
            return;
        }
        order_.push_front({key, pixels});
        places_.emplace(key, order_.begin());
        heldBytes_ += pixels.size();
        while (heldBytes_ > budgetBytes_) {
            take(order_.back().key);
        }
    }

    void remove(Key key) {
        const std::lock_guard lock(mutex_);
        take(key);
    }

    /// An equal profile that others have already, or else this one.
    std::optional<QByteArray> sharedProfile(const std::optional<QByteArray>& profile) {
        if (!profile) {
            return std::nullopt;
        }
        const std::lock_guard lock(mutex_);
        if (const auto known = profiles_.constFind(*profile); known != profiles_.constEnd()) {
            return *known;
        }
        erase_if(profiles_, [](const QByteArray& each) { return each.isDetached(); }); // nobody has it any more
        profiles_.insert(*profile);
        return profile;
    }

    qint64 heldBytes() {
        const std::lock_guard lock(mutex_);
        return heldBytes_;
    }

private:
    struct Place {
        Key key;
        QByteArray pixels;
    };

    void take(Key key) {
        if (const auto found = places_.find(key); found != places_.end()) {
            heldBytes_ -= found->second->pixels.size();
            order_.erase(found->second);
            places_.erase(found);
        }
    }

    const qint64 budgetBytes_;
    std::mutex mutex_;
    std::list<Place> order_; // used last first
    std::unordered_map<Key, std::list<Place>::iterator> places_;
    qint64 heldBytes_ = 0;
    QSet<QByteArray> profiles_;
};

/// The rows of one preview, from the shelf or from the file.
class PreviewStore::Preview : public platform::RowSource {
public:
    Preview(std::shared_ptr<Shelf> shelf, const ImageMetadata& metadata, const FileStamp& stamp)
        : shelf_(std::move(shelf)),
          url_(metadata.url),
          stamp_(stamp),
          width_(metadata.preview.width()),
          height_(metadata.preview.height()),
          format_(metadata.preview.format()),
          profile_(shelf_->sharedProfile(metadata.preview.iccProfile())) {
        shelf_->put(this, copyOf(metadata.preview));
    }

    ~Preview() override { shelf_->remove(this); }

    [[nodiscard]] const std::optional<QByteArray>& profile() const { return profile_; }

    void rows(const platform::RowSink& sink) const override {
        platform::memoryRaster(width_, height_, format_, std::nullopt, pixels()).rows(sink);
    }

private:
    [[nodiscard]] QByteArray pixels() const {
        if (auto held = shelf_->find(this)) {
            return *held;
        }
        const std::lock_guard reading(reading_); // whoever else wants them takes what is read now
        if (auto held = shelf_->find(this)) {
            return *held;
        }
        const QByteArray pixels = readAgain();
        shelf_->put(this, pixels);
        return pixels;
    }

    [[nodiscard]] QByteArray readAgain() const {
        requireUnchanged(FileStamp::read(url_) == stamp_);
        const auto source = platform::ImageSource::open(platform::localPath(url_));
        const platform::Raster raster = ImageMetadata::raster(*source, ImageMetadata::previewPixels);
        requireUnchanged(hasTheFactsOf(raster) && FileStamp::read(url_) == stamp_);
        return copyOf(raster);
    }

    [[nodiscard]] bool hasTheFactsOf(const platform::Raster& raster) const {
        return raster.width() == width_ && raster.height() == height_ && raster.format() == format_ &&
               raster.iccProfile() == profile_;
    }

    void requireUnchanged(bool isUnchanged) const {
        if (!isUnchanged) {
            throw changedError(url_);
        }
    }

    std::shared_ptr<Shelf> shelf_;
    QUrl url_;
    FileStamp stamp_;
    qint64 width_;
    qint64 height_;
    platform::PixelFormat format_;
    std::optional<QByteArray> profile_;
    mutable std::mutex reading_;
};

PreviewStore::PreviewStore(qint64 budgetBytes) : shelf_(std::make_shared<Shelf>(budgetBytes)) {}

ImageMetadata PreviewStore::hold(const ImageMetadata& metadata, const FileStamp& stamp) const {
    const auto preview = std::make_shared<Preview>(shelf_, metadata, stamp);
    ImageMetadata held = metadata;
    held.sourceColorProfile.embeddedICCData = shelf_->sharedProfile(metadata.sourceColorProfile.embeddedICCData);
    held.preview = platform::Raster(metadata.preview.width(), metadata.preview.height(), 1, metadata.preview.format(),
                                    preview->profile(), preview);
    return held;
}

qint64 PreviewStore::heldBytes() const {
    return shelf_->heldBytes();
}

} // namespace orvex
