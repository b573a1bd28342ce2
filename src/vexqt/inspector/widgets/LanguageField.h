#pragma once

#include <QVariant>
#include <QWidget>

#include "vexqt/inspector/widgets/LineField.h"

class QLabel;

namespace vexqt {

/// A language as the number that stands in the file, its meaning beside it. The three letters of a
/// language are taken for its number.
class LanguageField : public QWidget, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit LanguageField(QWidget* parent = nullptr);

    QVariant value() const { return line_->value(); }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;
    bool isAcceptable() const override { return line_->isAcceptable(); }

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    bool event(QEvent* event) override;

private:
    void showMeaning();

    LineField* line_;
    QLabel* meaning_;
};

}  // namespace vexqt
