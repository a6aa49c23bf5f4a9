#include "Output/RollPageContent.h"

#include "PDF/PdfText.h"

namespace orvex {

namespace {

constexpr double frameGray = 0.45;
constexpr double frameLineWidthPoints = 0.5;
constexpr double dashOnPoints = 6;
constexpr double dashOffPoints = 4;

QByteArray numbers(std::initializer_list<double> values) {
    QByteArray text;
    for (const double value : values) {
        text += platform::pdfNumber(value) + ' ';
    }
    return text;
}

QByteArray rectangle(const Rect& rect) {
    return numbers({rect.x, rect.y, rect.width, rect.height}) + "re ";
}

} // namespace

RollPageContent::RollPageContent(double widthPoints, double lengthPoints, double userUnit) {
    const double scale = 1.0 / userUnit;
    bytes_ = numbers({scale, 0, 0, scale, 0, 0}) + "cm\n1 g " + rectangle({0, 0, widthPoints, lengthPoints}) + "f\n";
}

void RollPageContent::drawImage(const QByteArray& name, const PageTransform& transform,
                                const std::optional<QByteArray>& renderingIntent) {
    bytes_ += "q ";
    if (renderingIntent) {
        bytes_ += '/' + *renderingIntent + " ri ";
    }
    bytes_ += numbers({transform.a, transform.b, transform.c, transform.d, transform.e, transform.f}) + "cm /" + name +
              " Do Q\n";
}

void RollPageContent::strokeFrames(const QList<Rect>& frames) {
    constexpr QByteArrayView buttCap = "0 J ";
    bytes_ += "q " + numbers({frameGray}) + "G " + numbers({frameLineWidthPoints}) + "w ";
    bytes_ += buttCap;
    bytes_ += '[' + numbers({dashOnPoints, dashOffPoints}).trimmed() + "] 0 d\n";
    for (const Rect& frame : frames) {
        bytes_ += rectangle(frame) + "S\n";
    }
    bytes_ += "Q\n";
}

} // namespace orvex
