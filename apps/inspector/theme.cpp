#include "apps/inspector/theme.h"

#include <QApplication>
#include <cmath>

#include "apps/inspector/Style.h"
#include "apps/inspector/SymbolIcon.h"

namespace vexqt::inspector_app::theme {

namespace {

/// A color of the program.
struct Tone {
    QRgb onLight, onDark;
};

constexpr Tone kWindow = {0xFFF4F5F7, 0xFF20242B};
constexpr Tone kBase = {0xFFFFFFFF, 0xFF171A1F};
constexpr Tone kAlternate = {0xFFF7F8FA, 0xFF1C2026};
constexpr Tone kText = {0xFF1C2330, 0xFFE4E8EE};
constexpr Tone kDim = {0xFF616B7A, 0xFF98A3B3};
constexpr Tone kButton = {0xFFFBFBFC, 0xFF2B313A};
constexpr Tone kEdge = {0xFFC9CED6, 0xFF414A57};
constexpr Tone kAccent = {0xFF1F63C6, 0xFF2F6FD0};
constexpr Tone kAccentText = {0xFFFFFFFF, 0xFFFFFFFF};
constexpr Tone kLink = {0xFF1A56AE, 0xFF7FB2FF};

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto part = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {part(one.red(), other.red()), part(one.green(), other.green()),
            part(one.blue(), other.blue())};
}

QPalette paletteOf(QRgb Tone::*shade) {
    QPalette palette;
    const auto color = [shade](const Tone& tone) { return QColor::fromRgb(tone.*shade); };
    const auto set = [&](QPalette::ColorRole role, const Tone& tone) {
        palette.setColor(role, color(tone));
    };
    set(QPalette::Window, kWindow);
    set(QPalette::WindowText, kText);
    set(QPalette::Base, kBase);
    set(QPalette::AlternateBase, kAlternate);
    set(QPalette::Text, kText);
    set(QPalette::Button, kButton);
    set(QPalette::ButtonText, kText);
    set(QPalette::BrightText, kAccentText);
    set(QPalette::ToolTipBase, kBase);
    set(QPalette::ToolTipText, kText);
    set(QPalette::PlaceholderText, kDim);
    set(QPalette::Highlight, kAccent);
    set(QPalette::HighlightedText, kAccentText);
    set(QPalette::Link, kLink);
    set(QPalette::LinkVisited, kLink);
    set(QPalette::Mid, kEdge);
    set(QPalette::Midlight, kEdge);
    set(QPalette::Dark, kEdge);
    palette.setColor(QPalette::Light, color(kButton).lighter(108));
    palette.setColor(QPalette::Shadow, color(kWindow).darker(180));

    const QColor faint = mixed(color(kText), color(kWindow), 0.5);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, color(kEdge));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, color(kText));
    palette.setColor(QPalette::Disabled, QPalette::Base, color(kWindow));
    return palette;
}

/// Brightness as the eye has it.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

}  // namespace

QPalette light() { return paletteOf(&Tone::onLight); }
QPalette dark() { return paletteOf(&Tone::onDark); }

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

void apply(QApplication& application, Choice choice) {
    static const bool kSystemIsDark = isDark(application.palette());
    const bool wantsDark = choice == Choice::Dark || (choice == Choice::System && kSystemIsDark);
    if (qobject_cast<Style*>(QApplication::style()) == nullptr) QApplication::setStyle(new Style);
    application.setPalette(wantsDark ? dark() : light());
}

ByteColors byteColors(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const bool isOnDark = isDark(palette);
    return {.offset = palette.color(QPalette::PlaceholderText),
            .outside = palette.color(QPalette::PlaceholderText),
            .inside = text,
            .zero = mixed(text, base, isOnDark ? 0.38 : 0.3),
            .rangeBack = mixed(base, palette.color(QPalette::Highlight), isOnDark ? 0.26 : 0.15),
            .highlight = QColor::fromRgb(isOnDark ? 0xFFFFF3D6 : 0xFF2B1D00),
            .highlightBack = QColor::fromRgb(isOnDark ? 0xFF7A5200 : 0xFFFFD56B)};
}

MessageColors messageColors(const QPalette& palette, MessageKind kind) {
    const bool isOnDark = isDark(palette);
    switch (kind) {
        case MessageKind::Problem:
            return isOnDark ? MessageColors{QColor(0x4A, 0x20, 0x24), QColor(0xFF, 0xDC, 0xDC),
                                            QColor(0x8A, 0x3A, 0x40)}
                            : MessageColors{QColor(0xFD, 0xE7, 0xE7), QColor(0x6E, 0x12, 0x16),
                                            QColor(0xE3, 0xA3, 0xA5)};
        case MessageKind::Warning:
            return isOnDark ? MessageColors{QColor(0x45, 0x36, 0x12), QColor(0xFF, 0xEB, 0xC2),
                                            QColor(0x85, 0x69, 0x26)}
                            : MessageColors{QColor(0xFF, 0xF4, 0xD6), QColor(0x5A, 0x42, 0x00),
                                            QColor(0xE2, 0xC3, 0x6E)};
        case MessageKind::Information:
            break;
    }
    return isOnDark ? MessageColors{QColor(0x1E, 0x34, 0x53), QColor(0xDC, 0xEA, 0xFF),
                                    QColor(0x37, 0x5E, 0x94)}
                    : MessageColors{QColor(0xE6, 0xEF, 0xFC), QColor(0x12, 0x3B, 0x77),
                                    QColor(0xA5, 0xC3, 0xEE)};
}

QIcon icon(const QString& name) { return QIcon(new SymbolIcon(name)); }

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

}  // namespace vexqt::inspector_app::theme
