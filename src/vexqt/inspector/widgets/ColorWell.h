#pragma once

#include <QPushButton>
#include <QVariant>

#include "vexqt/inspector/widgets/FieldEditor.h"

namespace vexqt {

/// A colour that a click opens a dialogue for. As long as nobody chooses another, the value is the
/// one that was set, not what the dialogue or the screen makes of it.
class ColorWell : public QPushButton, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(bool hasAlpha READ hasAlpha WRITE setHasAlpha)

public:
    explicit ColorWell(QWidget* parent = nullptr);

    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    /// Whether the file keeps how opaque the colour is; it does where nothing else is said.
    bool hasAlpha() const { return hasAlpha_; }
    void setHasAlpha(bool hasAlpha);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;

signals:
    void valueChanged();
    void editRefused(const QString& why);

private:
    void choose();
    void take(const QColor& color);
    void showValue();

    QVariant value_;
    bool hasAlpha_ = true;
    bool isReadOnly_ = false;
};

}  // namespace vexqt
