#include "vexqt/inspector/widgets/TextField.h"

namespace vexqt {

TextField::TextField(QWidget* parent) : LineField(FieldText::Form::Plain, 0, parent) {}

}  // namespace vexqt
