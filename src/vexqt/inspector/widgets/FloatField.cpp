#include "vexqt/inspector/widgets/FloatField.h"

namespace vexqt {

FloatField::FloatField(QWidget* parent) : LineField(FieldText::Form::Floating, 16, parent) {}

}  // namespace vexqt
