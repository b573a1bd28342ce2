#pragma once

#include <QIconEngine>

namespace vexqt::inspector_app {

/// Draws a symbol in the palette's text colour, so that it fits light and dark windows and any
/// resolution.
class SymbolIcon : public QIconEngine {
public:
    explicit SymbolIcon(const QString& name);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override { return new SymbolIcon(*this); }

private:
    QByteArray drawing_;  ///< An SVG whose colour is "currentColor".
};

}  // namespace vexqt::inspector_app
