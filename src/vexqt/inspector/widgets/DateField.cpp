#include "vexqt/inspector/widgets/DateField.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QWheelEvent>
#include <limits>

namespace vexqt {

/// Stands for an absent date: no field of a file reaches back so far.
static const QDateTime kAbsent(QDate(100, 1, 1), QTime(0, 0), Qt::UTC);

DateField::DateField(QWidget* parent)
    : QDateTimeEdit(parent), first_(QDate(1904, 1, 1), QTime(0, 0), Qt::UTC) {
    setLocale(QLocale::c());
    setTimeSpec(Qt::UTC);
    setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
    setCalendarPopup(true);
    calendarWidget()->setLocale(QLocale());
    setMinimumDateTime(kAbsent);
    setSpecialValueText(tr("absent"));
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    showValue();
    connect(this, &QDateTimeEdit::dateTimeChanged, this, &DateField::commit);
}

void DateField::setValue(const QVariant& value) {
    value_ = value;
    showValue();
}

void DateField::configure(const Field& field) {
    if (field.width == 4) last_ = first_.addSecs(std::numeric_limits<std::uint32_t>::max());
}

void DateField::setReadOnly(bool readOnly) { QDateTimeEdit::setReadOnly(readOnly); }

void DateField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        showValue();
        selectAll();
        return event->ignore();
    }
    QDateTimeEdit::keyPressEvent(event);
}

/// A turn of the wheel is meant for the form that the field stands in, not for the movie.
void DateField::wheelEvent(QWheelEvent* event) { event->ignore(); }

void DateField::commit(const QDateTime& date) {
    if (isReadOnly() || (value_.isValid() && value_.toDateTime() == date)) return;
    const bool isInRange = date >= first_ && (!last_.isValid() || date <= last_);
    if (!isInRange) {
        showValue();
        const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
        emit editRefused(
            last_.isValid()
                ? tr("Only dates from %1 to %2 have a place here.")
                      .arg(first_.toString(format), last_.toString(format))
                : tr("Only dates from %1 on have a place here.").arg(first_.toString(format)));
        return;
    }
    value_ = date;
    emit valueChanged();
}

void DateField::showValue() {
    const QSignalBlocker silent(this);
    const QDateTime date = value_.toDateTime();
    setDateTime(date.isValid() ? date.toUTC() : kAbsent);
}

}  // namespace vexqt
