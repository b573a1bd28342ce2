#include "vexqt/inspector/widgets/ColorWell.h"

#include <QColorDialog>
#include <QPainter>

namespace vexqt {

/// The colour over a chessboard, which shows through what is not opaque.
static QIcon swatch(const QColor& color, const QSize& size, qreal ratio) {
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    QPainter painter(&pixmap);
    const QRect all(QPoint(), size);
    painter.fillRect(all, Qt::white);
    if (color.isValid()) {
        const int side = size.height() / 2;
        for (int x = 0; x < size.width(); x += side)
            painter.fillRect(QRect(x, x / side % 2 * side, side, side), Qt::lightGray);
        painter.fillRect(all, color);
    } else {
        painter.setPen(Qt::gray);
        painter.drawLine(all.bottomLeft(), all.topRight());
    }
    painter.setPen(Qt::gray);
    painter.drawRect(all.adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

ColorWell::ColorWell(QWidget* parent) : QPushButton(parent) {
    setIconSize(QSize(48, 16));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, &ColorWell::choose);
    showValue();
}

void ColorWell::setValue(const QVariant& value) {
    value_ = value;
    showValue();
}

void ColorWell::setHasAlpha(bool hasAlpha) {
    hasAlpha_ = hasAlpha;
    showValue();
}

void ColorWell::configure(const Field&) {}

void ColorWell::setReadOnly(bool readOnly) { isReadOnly_ = readOnly; }

void ColorWell::choose() {
    if (isReadOnly_) return;
    auto* dialog = new QColorDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(accessibleName());
    // In this order: without the option a colour loses its alpha.
    dialog->setOption(QColorDialog::ShowAlphaChannel, hasAlpha_);
    dialog->setCurrentColor(value_.value<QColor>());
    connect(dialog, &QColorDialog::colorSelected, this, &ColorWell::take);
    dialog->open();
}

void ColorWell::take(const QColor& color) {
    // The dialogue gives eight bits a component: the same eight bits are no choice.
    const auto before = value_.value<QColor>();
    if (!color.isValid() || (value_.isValid() && color.rgba() == before.rgba())) return;
    value_ = color;
    showValue();
    emit valueChanged();
}

void ColorWell::showValue() {
    const auto color = value_.value<QColor>();
    QColor painted = color;
    if (!hasAlpha_ && color.isValid()) painted.setAlpha(255);
    setIcon(swatch(painted, iconSize(), devicePixelRatioF()));
    QString text = tr("absent");
    if (color.isValid()) text = color.name(QColor::HexRgb).toUpper();
    if (color.isValid() && hasAlpha_)
        text = tr("%1, %2 % opaque").arg(text).arg(qRound(color.alphaF() * 100));
    setText(text);
}

}  // namespace vexqt
