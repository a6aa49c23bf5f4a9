#pragma once

#include <QProxyStyle>

namespace orvex {

/// The toolkit's plain style with edges and marks that can be seen on a dark ground, and with room around the texts of
/// buttons. Main thread.
class OrvexStyle : public QProxyStyle {
    Q_OBJECT

public:
    OrvexStyle();

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                         const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

} // namespace orvex
