#pragma once

#include <QLineEdit>

#include "vexqt/inspector/widgets/FieldEditor.h"
#include "vexqt/inspector/widgets/FieldText.h"

namespace vexqt {

/// A field of one line. A finished edit is taken with Return or when the focus leaves; Escape
/// brings back the old text. A text that names no value stays, marked, and the value stays the old
/// one.
class LineField : public QLineEdit, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;
    bool isAcceptable() const override { return !refused_; }
    QSize sizeHint() const override;

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    /// A field of about that many characters; 0 for one that takes the room there is.
    LineField(FieldText::Form form, int columns, QWidget* parent);
    void keyPressEvent(QKeyEvent* event) override;
    void setColumns(int columns);

    virtual QString textForValue() const { return form_.textFor(value_); }
    /// Absent for a text that names no value of this field, and then `why` says it to people.
    virtual std::optional<QVariant> valueOf(const QString& text, QString& why) const {
        return form_.valueOf(text, why);
    }
    /// Takes the text for the value, or marks it.
    void commit();
    virtual void showValue();

    FieldText form_;

private:
    QVariant value_;
    int columns_;
    std::optional<QString> refused_;  ///< The text that stands there and is no value.
};

}  // namespace vexqt
