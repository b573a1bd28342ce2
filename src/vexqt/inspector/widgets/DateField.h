#pragma once

#include <QDateTimeEdit>
#include <QVariant>

#include "vexqt/inspector/widgets/FieldEditor.h"

namespace vexqt {

/// A date and time of day in UTC, from 1904 on as the format counts.
class DateField : public QDateTimeEdit, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit DateField(QWidget* parent = nullptr);

    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void commit(const QDateTime& date);
    void showValue();

    QVariant value_;
    QDateTime first_;
    QDateTime last_;  ///< Invalid where there is none.
};

}  // namespace vexqt
