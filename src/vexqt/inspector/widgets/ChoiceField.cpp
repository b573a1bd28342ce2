#include "vexqt/inspector/widgets/ChoiceField.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace vexqt {

static const QString kDash = QStringLiteral(" — ");

/// The spaces of a code belong to it: only the dash ends it.
static QString beforeDash(const QString& text) { return text.left(text.indexOf(kDash)); }

/// Shows a value as the item that names it.
class ChoiceField::Line final : public LineField {
public:
    explicit Line(ChoiceField& choice)
        : LineField(FieldText::Form::Decimal, 0, &choice), choice_(choice) {}

    void configure(const Field& field) override {
        if (field.kind == ValueKind::Text && form_.formatter().isEmpty())
            form_ = FieldText(FieldText::Form::Plain);
        LineField::configure(field);
    }

    using LineField::commit;
    using LineField::form_;

protected:
    QString textForValue() const override {
        QString plain = form_.textFor(value());
        if (!value().isValid()) return plain;
        for (int i = 0; i < choice_.count(); ++i) {
            // By what an item names: a formatter may write more digits than people do.
            QString item = choice_.itemText(i);
            QString why;
            const std::optional<QVariant> named = valueOf(item, why);
            if (named && form_.textFor(*named) == plain) return item;
        }
        return plain;
    }
    std::optional<QVariant> valueOf(const QString& text, QString& why) const override {
        return LineField::valueOf(beforeDash(text), why);
    }
    void showValue() override {
        const QSignalBlocker silent(&choice_);
        choice_.setCurrentIndex(
            choice_.findText(textForValue(), Qt::MatchExactly | Qt::MatchCaseSensitive));
        LineField::showValue();
    }

private:
    ChoiceField& choice_;
};

ChoiceField::ChoiceField(QWidget* parent) : QComboBox(parent), line_(new Line(*this)) {
    setEditable(true);
    setLineEdit(line_);
    setInsertPolicy(QComboBox::NoInsert);
    // A completed text would choose what nobody typed.
    setCompleter(nullptr);
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(28);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QComboBox::activated, line_, &Line::commit);
    connect(line_, &LineField::valueChanged, this, &ChoiceField::valueChanged);
    connect(line_, &LineField::editRefused, this, &ChoiceField::editRefused);
}

QVariant ChoiceField::value() const { return line_->value(); }

void ChoiceField::setValue(const QVariant& value) { line_->setValue(value); }

QString ChoiceField::formatter() const { return line_->form_.formatter(); }

void ChoiceField::setFormatter(const QString& className) { line_->form_.setFormatter(className); }

void ChoiceField::configure(const Field& field) { line_->configure(field); }

void ChoiceField::setReadOnly(bool readOnly) { line_->setReadOnly(readOnly); }

bool ChoiceField::isAcceptable() const { return line_->isAcceptable(); }

void ChoiceField::showPopup() {
    if (!line_->isReadOnly()) QComboBox::showPopup();
}

void ChoiceField::keyPressEvent(QKeyEvent* event) {
    if (line_->isReadOnly()) return event->ignore();
    QComboBox::keyPressEvent(event);
}

/// A turn of the wheel is meant for the form that the field stands in, not for the movie.
void ChoiceField::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace vexqt
