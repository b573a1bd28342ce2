#include "apps/inspector/SymbolIcon.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

namespace vexqt::inspector_app {

SymbolIcon::SymbolIcon(const QString& name) {
    QFile file(QStringLiteral(":/vexqt/inspector-app/icons/%1.svg").arg(name));
    if (file.open(QIODevice::ReadOnly)) drawing_ = file.readAll();
}

void SymbolIcon::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) {
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    QByteArray drawing = drawing_;
    drawing.replace("currentColor", QApplication::palette().color(group, role).name().toLatin1());
    QSvgRenderer(drawing).render(painter, rect);
}

QPixmap SymbolIcon::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
}

}  // namespace vexqt::inspector_app
