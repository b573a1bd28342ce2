#pragma once

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A whole number of up to 64 bits, in decimal; 0x and hexadecimal digits are taken too.
class IntegerField : public LineField {
    Q_OBJECT

public:
    explicit IntegerField(QWidget* parent = nullptr);
};

}  // namespace vexqt
