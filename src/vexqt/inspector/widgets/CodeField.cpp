#include "vexqt/inspector/widgets/CodeField.h"

namespace vexqt {

CodeField::CodeField(QWidget* parent) : LineField(FieldText::Form::Formatted, 10, parent) {
    form_.setFormatter(QStringLiteral("OSTypeFormatter"));
}

}  // namespace vexqt
