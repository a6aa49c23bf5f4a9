#include "OrvexIcons.h"

#include "Theme/OrvexTheme.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <array>

/// A static library's resources are not registered by themselves; the macro works outside of namespaces only.
static void registerIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace orvex {

namespace {

struct SymbolNames {
    OrvexIcons::Symbol symbol;
    const char* own;   ///< of the file among the program's own
    const char* theme; ///< by the desktop's naming rules; empty where its meaning is another
};

constexpr std::array symbolNames{
    SymbolNames{OrvexIcons::Symbol::addArtwork, "add-artwork", "insert-image"},
    SymbolNames{OrvexIcons::Symbol::exportFile, "export-file", "document-save-as"},
    SymbolNames{OrvexIcons::Symbol::print, "print", "document-print"},
    SymbolNames{OrvexIcons::Symbol::shield, "shield", "security-high"},
    SymbolNames{OrvexIcons::Symbol::information, "information", "dialog-information"},
    SymbolNames{OrvexIcons::Symbol::pause, "pause", "media-playback-pause"},
    SymbolNames{OrvexIcons::Symbol::waveform, "waveform", ""},
    SymbolNames{OrvexIcons::Symbol::refresh, "refresh", "view-refresh"},
    SymbolNames{OrvexIcons::Symbol::tray, "tray", ""},
    SymbolNames{OrvexIcons::Symbol::missingPicture, "missing-picture", ""},
    SymbolNames{OrvexIcons::Symbol::resizeHandle, "resize-handle", ""},
    SymbolNames{OrvexIcons::Symbol::undo, "undo", "edit-undo"},
    SymbolNames{OrvexIcons::Symbol::redo, "redo", "edit-redo"},
    SymbolNames{OrvexIcons::Symbol::zoomIn, "zoom-in", "zoom-in"},
    SymbolNames{OrvexIcons::Symbol::zoomOut, "zoom-out", "zoom-out"},
    SymbolNames{OrvexIcons::Symbol::arrangement, "arrangement", ""},
    SymbolNames{OrvexIcons::Symbol::remove, "remove", "window-close"},
};

const SymbolNames& namesOf(OrvexIcons::Symbol symbol) {
    const auto found = std::ranges::find(symbolNames, symbol, &SymbolNames::symbol);
    Q_ASSERT(found != symbolNames.end());
    return *found;
}

QString ownFile(const char* name) {
    registerIcons();
    return QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name));
}

/// The program's icon; at the size of a title bar or a list one with fewer parts.
QPixmap applicationPicture(int pixels) {
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    QSvgRenderer(ownFile(pixels < 32 ? "orvex-small" : "orvex")).render(&painter);
    return picture;
}

/// Draws a picture of one colour in another one: the desktop's symbols are made to be coloured by whoever shows them.
class SymbolEngine : public QIconEngine {
public:
    SymbolEngine(const SymbolNames& names, const QColor& color) : names_(names), color_(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device()->devicePixelRatio();
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    /// `size` is in device pixels.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal ratio) override {
        const QColor color = mode == QIcon::Disabled ? OrvexTheme::disabled : color_;
        const QString key = QStringLiteral("symbol %1 %2x%3 %4 %5")
                                .arg(QLatin1String(names_.own))
                                .arg(size.width())
                                .arg(size.height())
                                .arg(color.rgba())
                                .arg(ratio);
        QPixmap pixmap;
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = drawn(size, color, ratio);
            QPixmapCache::insert(key, pixmap);
        }
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new SymbolEngine(names_, color_); }

private:
    [[nodiscard]] QPixmap drawn(const QSize& size, const QColor& color, qreal ratio) const {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawShape(painter, size);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
        painter.end();
        pixmap.setDevicePixelRatio(ratio);
        return pixmap;
    }

    void drawShape(QPainter& painter, const QSize& size) const {
        const QIcon theme = themeIcon();
        if (!theme.isNull()) {
            theme.paint(&painter, QRect(QPoint(), size));
            return;
        }
        QSvgRenderer(ownFile(names_.own)).render(&painter, QRectF(QPointF(), size));
    }

    [[nodiscard]] QIcon themeIcon() const {
        const QString name = QLatin1String(names_.theme) + QStringLiteral("-symbolic");
        return *names_.theme != '\0' && QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : QIcon();
    }

    const SymbolNames& names_;
    QColor color_;
};

} // namespace

QIcon OrvexIcons::icon(Symbol symbol, const QColor& color) {
    return QIcon(new SymbolEngine(namesOf(symbol), color));
}

QIcon OrvexIcons::icon(Symbol symbol) {
    return icon(symbol, OrvexTheme::text);
}

QIcon OrvexIcons::application() {
    QIcon icon;
    for (const int pixels : {16, 24, 32, 48, 64, 128, 256, 512}) {
        icon.addPixmap(applicationPicture(pixels));
    }
    return icon;
}

} // namespace orvex
