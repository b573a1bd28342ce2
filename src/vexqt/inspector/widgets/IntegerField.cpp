#include "vexqt/inspector/widgets/IntegerField.h"

namespace vexqt {

IntegerField::IntegerField(QWidget* parent) : LineField(FieldText::Form::Decimal, 16, parent) {}

}  // namespace vexqt
