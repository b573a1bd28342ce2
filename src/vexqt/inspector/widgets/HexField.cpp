#include "vexqt/inspector/widgets/HexField.h"

namespace vexqt {

HexField::HexField(QWidget* parent) : LineField(FieldText::Form::Formatted, 20, parent) {}

void HexField::setFormatter(const QString& className) {
    form_.setFormatter(className);
    // The formatter of four bytes writes sixteen digits where the uppermost bit is set.
    const bool isShort =
        className.startsWith(QLatin1String("Hex1")) || className.startsWith(QLatin1String("Hex2"));
    setColumns(isShort ? 8 : 20);
}

void HexField::configure(const Field& field) {
    LineField::configure(field);
    if (formatter().isEmpty())
        setFormatter(QStringLiteral("Hex%1ByteFormatter").arg(field.bits / 8));
}

}  // namespace vexqt
