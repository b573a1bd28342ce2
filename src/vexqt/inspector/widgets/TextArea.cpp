#include "vexqt/inspector/widgets/TextArea.h"

#include <QKeyEvent>

namespace vexqt {

TextArea::TextArea(QWidget* parent) : QPlainTextEdit(parent), form_(FieldText::Form::Plain) {
    setTabChangesFocus(true);
}

void TextArea::setValue(const QVariant& value) {
    value_ = value;
    showValue();
}

void TextArea::configure(const Field&) {}

void TextArea::setReadOnly(bool readOnly) { QPlainTextEdit::setReadOnly(readOnly); }

void TextArea::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) commit();
}

void TextArea::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) return commit();
    if (event->key() == Qt::Key_Escape && toPlainText() != shown_) return showValue();
    QPlainTextEdit::keyPressEvent(event);
}

void TextArea::commit() {
    QString text = toPlainText();
    if (isReadOnly() || text == shown_) {
        if (refused_) showValue();
        return;
    }
    if (refused_ == text) return;
    QString why;
    if (!form_.valueOf(text, why)) {
        refused_ = text;
        mark(*this, why);
        emit editRefused(why);
        return;
    }
    // The document knows one end of a line only; old files end them with a carriage return.
    const QString before = value_.toString();
    if (before.contains(QLatin1String("\r\n"))) {
        text.replace(u'\n', QLatin1String("\r\n"));
    } else if (before.contains(u'\r')) {
        text.replace(u'\n', u'\r');
    }
    value_ = text;
    showValue();
    emit valueChanged();
}

void TextArea::showValue() {
    const QString text = value_.toString();
    if (toPlainText() != text) setPlainText(text);
    shown_ = toPlainText();
    setPlaceholderText(value_.isValid() ? QString() : tr("absent"));
    if (refused_) mark(*this, {});
    refused_.reset();
}

}  // namespace vexqt
