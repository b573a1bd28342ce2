#pragma once

#include <QProxyStyle>

namespace vexqt::inspector_app {

/// Fusion, with a little more air between rows, our own sign for closing a tab, and edges around
/// fields and boxes that can be seen in dark windows too.
class Style : public QProxyStyle {
    Q_OBJECT

public:
    Style();

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
};

}  // namespace vexqt::inspector_app
