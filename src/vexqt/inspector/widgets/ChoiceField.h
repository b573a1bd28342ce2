#pragma once

#include <QComboBox>

#include "vexqt/inspector/widgets/LineField.h"

namespace vexqt {

/// A value with a meaning: a list of well-known ones such as "9 — BT.2020", where the value is what
/// stands before the dash, and a line for any other.
class ChoiceField : public QComboBox, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(QString formatter READ formatter WRITE setFormatter)

public:
    explicit ChoiceField(QWidget* parent = nullptr);

    QVariant value() const;
    void setValue(const QVariant& value);
    /// The formatter of values that are codes or hexadecimal; without one they are whole numbers
    /// or, where the property is a text, texts.
    QString formatter() const;
    void setFormatter(const QString& className);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;
    bool isAcceptable() const override;
    void showPopup() override;

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    class Line;

    Line* line_;
};

}  // namespace vexqt
