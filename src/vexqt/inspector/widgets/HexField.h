#pragma once

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A whole number as one of the hexadecimal formatters shows and takes it. Without one named in the
/// form the width of the property chooses it.
class HexField : public LineField {
    Q_OBJECT
    Q_PROPERTY(QString formatter READ formatter WRITE setFormatter)

public:
    explicit HexField(QWidget* parent = nullptr);

    QString formatter() const { return form_.formatter(); }
    void setFormatter(const QString& className);
    void configure(const Field& field) override;
};

}  // namespace vexqt
