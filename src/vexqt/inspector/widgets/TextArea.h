#pragma once

#include <QPlainTextEdit>

#include "vexqt/inspector/widgets/FieldEditor.h"
#include "vexqt/inspector/widgets/FieldText.h"

namespace vexqt {

/// A text of many lines. An edit is taken when the focus leaves or with Ctrl+Return; Escape brings
/// back the old text. Lines keep the ends that they were read with.
class TextArea : public QPlainTextEdit, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(bool asciiOnly READ isAsciiOnly WRITE setAsciiOnly)

public:
    explicit TextArea(QWidget* parent = nullptr);

    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;
    bool isAcceptable() const override { return !refused_; }
    bool isAsciiOnly() const { return form_.isAsciiOnly(); }
    void setAsciiOnly(bool asciiOnly) { form_.setAsciiOnly(asciiOnly); }

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void commit();
    void showValue();

    FieldText form_;
    QVariant value_;
    QString shown_;
    std::optional<QString> refused_;  ///< The text that stands there and is no value.
};

}  // namespace vexqt
