#include "vexqt/inspector/widgets/LanguageField.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include "vexqt/inspector/widgets/language_codes.h"

namespace vexqt {

namespace {

class LanguageLine final : public LineField {
public:
    explicit LanguageLine(QWidget* parent) : LineField(FieldText::Form::Language, 16, parent) {}
};

}  // namespace

LanguageField::LanguageField(QWidget* parent)
    : QWidget(parent), line_(new LanguageLine(this)), meaning_(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line_);
    layout->addWidget(meaning_, 1);
    setFocusProxy(line_);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(line_, &LineField::valueChanged, this, [this] {
        showMeaning();
        emit valueChanged();
    });
    connect(line_, &LineField::editRefused, this, &LanguageField::editRefused);
}

void LanguageField::setValue(const QVariant& value) {
    line_->setValue(value);
    showMeaning();
}

void LanguageField::configure(const Field& field) { line_->configure(field); }

void LanguageField::setReadOnly(bool readOnly) { line_->setReadOnly(readOnly); }

/// What screen readers and tooltips say of the whole holds of the line in it.
bool LanguageField::event(QEvent* event) {
    if (event->type() == QEvent::Polish) line_->setAccessibleName(accessibleName());
    return QWidget::event(event);
}

void LanguageField::showMeaning() {
    const auto code = static_cast<std::uint16_t>(value().toUInt());
    meaning_->setText(value().isValid() ? meaningOfLanguageCode(code) : QString());
}

}  // namespace vexqt
