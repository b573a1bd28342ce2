#include "vexqt/inspector/widgets/LineField.h"

#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionFrame>

namespace vexqt {

LineField::LineField(FieldText::Form form, int columns, QWidget* parent)
    : QLineEdit(parent), form_(form), columns_(columns) {
    if (columns_ > 0) setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QLineEdit::editingFinished, this, &LineField::commit);
}

void LineField::setValue(const QVariant& value) {
    value_ = value;
    showValue();
}

void LineField::configure(const Field& field) { form_.configure(field); }

void LineField::setReadOnly(bool readOnly) { QLineEdit::setReadOnly(readOnly); }

QSize LineField::sizeHint() const {
    QSize size = QLineEdit::sizeHint();
    if (columns_ == 0) return size;
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize contents(fontMetrics().horizontalAdvance(u'0') * columns_, fontMetrics().height());
    size.setWidth(style()->sizeFromContents(QStyle::CT_LineEdit, &option, contents, this).width());
    return size;
}

void LineField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && text() != textForValue()) {
        showValue();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void LineField::setColumns(int columns) {
    columns_ = columns;
    updateGeometry();
}

void LineField::commit() {
    // What nobody changed is not read back: the text may say less than the value holds.
    if (isReadOnly() || text() == textForValue()) {
        if (refused_) showValue();
        return;
    }
    if (refused_ == text()) return;
    QString why;
    const std::optional<QVariant> named = valueOf(text(), why);
    if (!named) {
        refused_ = text();
        mark(*this, why);
        emit editRefused(why);
        return;
    }
    const bool isOther = !value_.isValid() || *named != value_;
    value_ = *named;
    showValue();
    if (isOther) emit valueChanged();
}

void LineField::showValue() {
    setText(textForValue());
    setPlaceholderText(value_.isValid() ? QString() : tr("absent"));
    if (columns_ == 0) setCursorPosition(0);
    if (refused_) mark(*this, {});
    refused_.reset();
}

}  // namespace vexqt
