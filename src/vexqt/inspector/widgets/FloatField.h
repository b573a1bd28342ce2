#pragma once

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A number with a fraction, as the shortest text that reads back. Fixed-point fields have a range.
class FloatField : public LineField {
    Q_OBJECT
    Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum)

public:
    explicit FloatField(QWidget* parent = nullptr);

    double minimum() const { return form_.minimum(); }
    void setMinimum(double minimum) { form_.setMinimum(minimum); }
    double maximum() const { return form_.maximum(); }
    void setMaximum(double maximum) { form_.setMaximum(maximum); }
};

}  // namespace vexqt
