#include "vexqt/inspector/widgets/HexField.h"

namespace vexqt {

HexField::HexField(QWidget* parent) : LineField(FieldText::Form::Formatted, 20, parent) {}

void HexField::configure(const Field& field) {
    LineField::configure(field);
    if (formatter().isEmpty())
        setFormatter(QStringLiteral("Hex%1ByteFormatter").arg(field.bits / 8));
}

}  // namespace vexqt
