#include "vexqt/inspector/widgets/FieldEditor.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>

namespace vexqt {

FieldEditor::~FieldEditor() = default;

void FieldEditor::mark(QWidget& widget, const QString& why) {
    // A quarter of red in the colour of the field is readable on light and on dark.
    QPalette palette;
    if (!why.isEmpty()) {
        const QColor plain = QApplication::palette(&widget).color(QPalette::Base);
        const QColor reddish((3 * plain.red() + 255) / 4, 3 * plain.green() / 4,
                             3 * plain.blue() / 4);
        palette.setColor(QPalette::Base, reddish);
    }
    widget.setPalette(palette);
    widget.setToolTip(why.isEmpty() ? widget.whatsThis() : why);
    widget.setAccessibleDescription(why);
}

}  // namespace vexqt
