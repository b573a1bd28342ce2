// The window's colours, light and dark.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>

class QApplication;

namespace vexqt::inspector_app::theme {

enum class Choice { System, Light, Dark };

QPalette light();
QPalette dark();
bool isDark(const QPalette& palette);

/// Gives an application its style and its colours. The system's are asked for once, before any of
/// ours are set.
void apply(QApplication& application, Choice choice);

/// What the byte pane paints with.
struct ByteColors {
    QColor offset, outside, inside, zero, rangeBack, highlight, highlightBack;
};
ByteColors byteColors(const QPalette& palette);

/// Behind and in front of messages.
struct MessageColors {
    QColor back, front, edge;
};
enum class MessageKind { Information, Warning, Problem };
MessageColors messageColors(const QPalette& palette, MessageKind kind);

/// A plain drawing in the colour of the text that it stands beside: "open", "save", …
QIcon icon(const QString& name);

/// How well two colours can be told apart, from 1 to 21; text wants 4.5.
double contrast(const QColor& one, const QColor& other);

}  // namespace vexqt::inspector_app::theme
