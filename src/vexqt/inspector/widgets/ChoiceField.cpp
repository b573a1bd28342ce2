#include "vexqt/inspector/widgets/ChoiceField.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWheelEvent>

namespace vexqt {

static const QString kDash = QStringLiteral(" — ");

/// The spaces of a code belong to it: only the dash ends it.
static QString beforeDash(const QString& text) { return text.left(text.indexOf(kDash)); }

ChoiceField::ChoiceField(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // A completed text would choose what nobody typed.
    setCompleter(nullptr);
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(28);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QComboBox::activated, this, &ChoiceField::commit);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &ChoiceField::commit);
}

void ChoiceField::setValue(const QVariant& value) {
    value_ = value;
    showValue();
}

void ChoiceField::configure(const Field& field) {
    if (field.kind == ValueKind::Text && formatter().isEmpty())
        form_ = FieldText(FieldText::Form::Plain);
    form_.configure(field);
}

void ChoiceField::setReadOnly(bool readOnly) { lineEdit()->setReadOnly(readOnly); }

void ChoiceField::showPopup() {
    if (!lineEdit()->isReadOnly()) QComboBox::showPopup();
}

void ChoiceField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && currentText() != textForValue()) return showValue();
    if (lineEdit()->isReadOnly()) return event->ignore();
    QComboBox::keyPressEvent(event);
}

/// A turn of the wheel is meant for the form that the field stands in, not for the movie.
void ChoiceField::wheelEvent(QWheelEvent* event) { event->ignore(); }

void ChoiceField::commit() {
    if (lineEdit()->isReadOnly() || currentText() == textForValue()) {
        if (refused_) showValue();
        return;
    }
    if (refused_ == currentText()) return;
    QString why;
    const std::optional<QVariant> named = form_.valueOf(beforeDash(currentText()), why);
    if (!named) {
        refused_ = currentText();
        mark(*lineEdit(), why);
        emit editRefused(why);
        return;
    }
    const bool isOther = !value_.isValid() || *named != value_;
    value_ = *named;
    showValue();
    if (isOther) emit valueChanged();
}

void ChoiceField::showValue() {
    const QString text = textForValue();
    const QSignalBlocker silent(this);
    setCurrentIndex(findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
    setEditText(text);
    lineEdit()->setCursorPosition(0);
    lineEdit()->setPlaceholderText(value_.isValid() ? QString() : tr("absent"));
    if (refused_) mark(*lineEdit(), {});
    refused_.reset();
}

QString ChoiceField::textForValue() const {
    const QString plain = form_.textFor(value_);
    if (!value_.isValid()) return plain;
    for (int i = 0; i < count(); ++i) {
        // By what an item names: a formatter may write a number with more digits than people do.
        QString why;
        const std::optional<QVariant> named = form_.valueOf(beforeDash(itemText(i)), why);
        if (named && form_.textFor(*named) == plain) return itemText(i);
    }
    return plain;
}

}  // namespace vexqt
