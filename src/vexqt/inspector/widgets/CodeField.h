#pragma once

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A four-character code. A zero byte is shown as the symbol for null, and taken as such.
class CodeField : public LineField {
    Q_OBJECT

public:
    explicit CodeField(QWidget* parent = nullptr);
};

}  // namespace vexqt
