#include "PDF/PdfView.h"

#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "OrvexLanguage.h"

#include <poppler-document.h>
#include <poppler-image.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>

#include <mutex>

namespace orvex::platform {

namespace {

constexpr double pointsPerInch = 72.0;
constexpr unsigned int whitePaper = 0xffffffff;
constexpr qsizetype bytesPerPixel = 3;

thread_local bool hasComplained = false;

/// Poppler would print its messages; here a thread only learns that there was one. It reports on the thread at work.
void listenToMessages() {
    static std::once_flag done;
    std::call_once(done, [] {
        poppler::set_debug_error_function([](const std::string&, void*) { hasComplained = true; }, nullptr);
    });
}

std::unique_ptr<poppler::document> load(const QString& path) {
    listenToMessages();
    // Poppler opens by name and would wait for a FIFO. This also raises the system's own failure.
    static_cast<void>(RandomAccessFile::open(path));
    std::unique_ptr<poppler::document> document(poppler::document::load_from_file(nativePath(path).toStdString()));
    if (!document) {
        throw unreadablePdf();
    }
    return document;
}

std::unique_ptr<poppler::page> firstPage(const poppler::document& document) {
    const bool hasPage = !document.is_locked() && document.pages() > 0;
    return std::unique_ptr<poppler::page>(hasPage ? document.create_page(0) : nullptr);
}

PdfBox box(const poppler::rectf& rectangle) {
    return {rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height()};
}

int degrees(poppler::page::orientation_enum orientation) {
    switch (orientation) {
    case poppler::page::portrait:
        return 0;
    case poppler::page::landscape:
        return 90;
    case poppler::page::upside_down:
        return 180;
    case poppler::page::seascape:
        return 270;
    }
    return 0;
}

PdfError pageNotDrawn() {
    return PdfError(
        spt("无法绘制该 PDF 的页面。原文件已保留。", "Cannot draw the page of this PDF. The original file was kept."));
}

/// The width and height of the drawn page, in points as a viewer shows it.
std::pair<double, double> drawnSize(const poppler::page& page) {
    const poppler::rectf box = page.page_rect(poppler::crop_box);
    const bool isTurned = degrees(page.orientation()) % 180 != 0;
    const double width = isTurned ? box.height() : box.width();
    const double height = isTurned ? box.width() : box.height();
    if (!std::isfinite(width) || !std::isfinite(height) || width <= 0 || height <= 0) {
        throw pageNotDrawn();
    }
    return {width, height};
}

/// The pixels of a side that has `points`, where the longer side has `longerPoints` and `longerPixels`.
int sidePixels(double points, double longerPoints, int longerPixels) {
    return std::max(1, static_cast<int>(std::lround(longerPixels * (points / longerPoints))));
}

PdfPicture packed(const poppler::image& image) {
    PdfPicture picture{.width = image.width(), .height = image.height(), .rgb = {}};
    const qsizetype rowBytes = bytesPerPixel * picture.width;
    picture.rgb.reserve(rowBytes * picture.height);
    for (qsizetype row = 0; row < picture.height; ++row) {
        picture.rgb.append(image.const_data() + row * image.bytes_per_row(), rowBytes);
    }
    return picture;
}

PdfPicture draw(const poppler::page& page, int longerSidePixels) {
    const auto [width, height] = drawnSize(page);
    const double longer = std::max(width, height);
    const int widthPixels = sidePixels(width, longer, longerSidePixels);
    const int heightPixels = sidePixels(height, longer, longerSidePixels);
    poppler::page_renderer renderer;
    renderer.set_paper_color(whitePaper);
    renderer.set_image_format(poppler::image::format_rgb24);
    renderer.set_render_hints(poppler::page_renderer::antialiasing | poppler::page_renderer::text_antialiasing);
    // A resolution for each axis, so that the page ends where its last pixel does.
    const poppler::image image =
        renderer.render_page(&page, pointsPerInch * widthPixels / width, pointsPerInch * heightPixels / height, 0, 0,
                             widthPixels, heightPixels);
    const bool isWhole = image.is_valid() && image.width() == widthPixels && image.height() == heightPixels;
    if (!isWhole || hasComplained) {
        throw pageNotDrawn();
    }
    return packed(image);
}

} // namespace

PdfView PdfView::open(const QString& path) {
    const std::unique_ptr<poppler::document> document = load(path);
    const std::unique_ptr<poppler::page> page = firstPage(*document);
    PdfView view;
    view.isLocked_ = document->is_locked();
    view.isEncrypted_ = view.isLocked_ || document->is_encrypted(); // it does not call a locked one encrypted
    view.pageCount_ = view.isLocked_ ? 0 : document->pages();
    view.hasFirstPage_ = page != nullptr;
    if (page) {
        view.mediaBox_ = box(page->page_rect(poppler::media_box));
        view.cropBox_ = box(page->page_rect(poppler::crop_box));
        view.rotationDegrees_ = degrees(page->orientation());
    }
    return view;
}

PdfPicture PdfView::renderPage(const QString& path, int longerSidePixels) {
    if (longerSidePixels < 1 || longerSidePixels > largestSidePixels) {
        throw PdfError(
            spt("图片较长边的像素数须在 1 到 %1 之间。", "The longer side of the picture must have 1 to %1 pixels.")
                .arg(largestSidePixels));
    }
    const std::unique_ptr<poppler::document> document = load(path);
    const std::unique_ptr<poppler::page> page = firstPage(*document);
    if (!page) {
        throw pageNotDrawn();
    }
    hasComplained = false;
    return draw(*page, longerSidePixels);
}

} // namespace orvex::platform
