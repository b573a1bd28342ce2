#pragma once

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A text of one line.
class TextField : public LineField {
    Q_OBJECT
    Q_PROPERTY(bool asciiOnly READ isAsciiOnly WRITE setAsciiOnly)

public:
    explicit TextField(QWidget* parent = nullptr);

    bool isAsciiOnly() const { return form_.isAsciiOnly(); }
    void setAsciiOnly(bool asciiOnly) { form_.setAsciiOnly(asciiOnly); }
};

}  // namespace vexqt
