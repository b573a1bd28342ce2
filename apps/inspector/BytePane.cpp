#include "apps/inspector/BytePane.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include "apps/inspector/words.h"

namespace vexqt::inspector_app {

BytePane::BytePane(QWidget* parent)
    : QWidget(parent), hex_(new HexView), caption_(new QLabel), offset_(new QLineEdit) {
    offset_->setPlaceholderText(tr("Go to offset"));
    offset_->setToolTip(tr("An offset in the file, decimal or 0x…"));
    offset_->setAccessibleName(tr("Go to offset"));
    offset_->setClearButtonEnabled(true);
    offset_->setFixedWidth(offset_->fontMetrics().averageCharWidth() * 22);
    caption_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    caption_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    caption_->setAccessibleName(tr("Which bytes are shown"));

    auto* top = new QHBoxLayout;
    top->setContentsMargins(10, 4, 4, 4);
    top->addWidget(caption_, 1);
    top->addWidget(offset_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(hex_, 1);
    setFocusProxy(hex_);

    connect(offset_, &QLineEdit::returnPressed, this, &BytePane::goToTyped);
    connect(offset_, &QLineEdit::textEdited, this, [this] { offset_->setPalette({}); });
    connect(hex_, &HexView::cursorMoved, this, &BytePane::describe);
}

void BytePane::setSource(ByteSource* source, const QString& note) {
    note_ = note;
    field_.clear();
    hex_->setSource(source);
    describe();
}

void BytePane::showAtom(const ByteRange& range) {
    field_.clear();
    hex_->setHighlight({});
    hex_->setRange(range);
    if (!range.isEmpty()) {
        hex_->goTo(range.offset);
        // As much of it as there is room for.
        hex_->reveal(range);
    }
    describe();
}

void BytePane::showField(const ByteRange& range, const QString& name) {
    field_ = range.isEmpty() ? QString() : name;
    hex_->setHighlight(range);
    describe();
}

void BytePane::askForOffset() {
    offset_->setFocus(Qt::ShortcutFocusReason);
    offset_->selectAll();
}

void BytePane::goToTyped() {
    quint64 offset = 0;
    if (!offsetFrom(offset_->text(), offset)) {
        QPalette refused = offset_->palette();
        refused.setColor(QPalette::Text, QColor(0xC6, 0x28, 0x28));
        offset_->setPalette(refused);
        return;
    }
    hex_->goTo(offset);
    hex_->setFocus();
}

QString BytePane::caption() const { return caption_->text(); }

void BytePane::describe() {
    QStringList parts;
    const ByteRange& atom = hex_->range();
    const ByteRange& field = hex_->highlight();
    if (!note_.isEmpty()) parts << note_;
    if (!field.isEmpty()) {
        parts << tr("%1: %2 at %3", "a field, its bytes, their offset")
                     .arg(field_, bytesText(field.length), offsetText(field.offset));
    } else if (!atom.isEmpty()) {
        parts << tr("%1 at %2", "bytes and their offset")
                     .arg(sizeText(atom.length), offsetText(atom.offset));
    }
    const ByteRange chosen = hex_->selection();
    if (chosen.length > 1) {
        parts << tr("%1 selected at %2").arg(bytesText(chosen.length), offsetText(chosen.offset));
    } else if (!chosen.isEmpty() && (hex_->hasFocus() || !atom.contains(chosen.offset))) {
        parts << tr("cursor at %1").arg(offsetText(chosen.offset));
    }
    caption_->setText(parts.join(tr("  ·  ")));
    caption_->setToolTip(caption_->text());
}

}  // namespace vexqt::inspector_app
