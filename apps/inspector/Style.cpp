#include "apps/inspector/Style.h"

#include <QPainter>
#include <QStyleOption>

#include "apps/inspector/theme.h"

namespace vexqt::inspector_app {

namespace {

/// Halfway between the text and what it stands on.
QColor edgeColor(const QStyleOption& option) {
    const QColor text = option.palette.color(QPalette::Text);
    const QColor base = option.palette.color(QPalette::Base);
    const double share = option.state.testFlag(QStyle::State_Enabled) ? 0.5 : 0.25;
    const auto mixed = [share](int one, int other) {
        return other + static_cast<int>((one - other) * share);
    };
    return {mixed(text.red(), base.red()), mixed(text.green(), base.green()),
            mixed(text.blue(), base.blue())};
}

QRectF insideOf(const QRect& rect) { return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5); }

void drawEdge(const QStyleOption& option, QPainter& painter) {
    const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus ? QPen(option.palette.color(QPalette::Highlight), 1.6)
                            : QPen(edgeColor(option), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(insideOf(option.rect), 2.5, 2.5);
    painter.restore();
}

void drawCheckBox(const QStyleOption& option, QPainter& painter) {
    const QRectF box = insideOf(option.rect);
    const bool isOn = option.state.testFlag(QStyle::State_On);
    const bool isMixed = option.state.testFlag(QStyle::State_NoChange);
    const auto group =
        option.state.testFlag(QStyle::State_Enabled) ? QPalette::Active : QPalette::Disabled;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFilled = isOn || isMixed;
    const QColor accent = option.palette.color(group, QPalette::Highlight);
    painter.setPen(QPen(isFilled ? accent : edgeColor(option), 1));
    painter.setBrush(isFilled ? accent : option.palette.color(group, QPalette::Base));
    painter.drawRoundedRect(box, 2.5, 2.5);
    painter.setPen(QPen(option.palette.color(group, QPalette::HighlightedText), box.width() / 7,
                        Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    if (isOn) painter.drawPolyline(QPolygonF{at(0.24, 0.52), at(0.43, 0.72), at(0.77, 0.3)});
    if (isMixed) painter.drawLine(at(0.27, 0.5), at(0.73, 0.5));
    painter.restore();
}

void drawTabClose(const QStyleOption& option, QPainter& painter) {
    if (option.state.testFlag(QStyle::State_MouseOver)) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(option.palette.color(QPalette::Mid));
        painter.drawRoundedRect(option.rect, 3, 3);
        painter.restore();
    }
    theme::icon(QStringLiteral("close")).paint(&painter, option.rect.adjusted(2, 2, -2, -2));
}

}  // namespace

Style::Style() : QProxyStyle(QStringLiteral("Fusion")) {}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                              const QWidget* widget) const {
    static constexpr int kAir = 5;
    const QSize plain = QProxyStyle::sizeFromContents(type, option, size, widget);
    return type == CT_ItemViewItem ? plain + QSize(0, kAir) : plain;
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    switch (element) {
        case PE_IndicatorTabClose:
            return drawTabClose(*option, *painter);
        case PE_IndicatorCheckBox:
            return drawCheckBox(*option, *painter);
        default:
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == PE_PanelLineEdit && frame != nullptr && frame->lineWidth > 0)
        drawEdge(*option, *painter);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                               QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if ((spin != nullptr && spin->frame) || (combo != nullptr && combo->frame))
        drawEdge(*option, *painter);
}

}  // namespace vexqt::inspector_app
