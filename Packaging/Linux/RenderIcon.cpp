// Draws an SVG picture as a square PNG picture.
// usage: render-icon PICTURE.svg PIXELS PICTURE.png

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4) {
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const int pixels = std::atoi(argv[2]);
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    const bool isDrawn = drawing.isValid() && painter.end() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG");
    return isDrawn ? EXIT_SUCCESS : EXIT_FAILURE;
}
