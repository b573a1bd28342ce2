#include "vexqt/inspector/widgets/DataField.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>

namespace vexqt {

/// More bytes than that are no property of a movie that people edit by hand.
static constexpr qint64 kMostBytesOfFile = qint64{256} << 20;

/// Between the frame and the bytes, in pixels.
static constexpr int kMargin = 4;

static bool isPrintable(char byte) { return byte >= ' ' && byte <= '~'; }

static int valueOfDigit(QChar digit) {
    if (digit >= u'0' && digit <= u'9') return digit.unicode() - u'0';
    const QChar lower = digit.toLower();
    if (lower >= u'a' && lower <= u'f') return lower.unicode() - u'a' + 10;
    return -1;
}

DataField::DataField(QWidget* parent) : QAbstractScrollArea(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setBackgroundRole(QPalette::Base);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(),
            qOverload<>(&QWidget::update));
    showBytes();
}

void DataField::setValue(const QVariant& value) {
    value_ = value;
    showBytes();
}

void DataField::configure(const Field&) {}

void DataField::setReadOnly(bool readOnly) {
    isReadOnly_ = readOnly;
    arrange();
}

void DataField::takeFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        emit editRefused(tr("“%1” cannot be read: %2").arg(path, file.errorString()));
        return;
    }
    if (file.size() > kMostBytesOfFile) {
        emit editRefused(tr("“%1” is too large.").arg(path));
        return;
    }
    bytes_ = file.readAll();
    moveCaret(0, Selection::Ends);
    arrange();
    commit();
}

QSize DataField::sizeHint() const {
    const int width = columnsInAll() * fontMetrics().horizontalAdvance(u'0');
    const int frame = 2 * frameWidth();
    return {width + frame + 2 * kMargin + verticalScrollBar()->sizeHint().width(),
            8 * rowHeight() + frame + kMargin};
}

QSize DataField::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(u'0') * 40,
            2 * rowHeight() + 2 * frameWidth() + kMargin};
}

// MARK: Drawing

bool DataField::isSelected(qsizetype index) const {
    return anchor_ != caret_ && index >= selectionStart() && index < selectionEnd();
}

/// The byte under the later end belongs to the selection.
qsizetype DataField::selectionEnd() const { return qMin(qMax(anchor_, caret_) + 1, bytes_.size()); }

int DataField::digitsOfOffset() const { return bytes_.size() > 0xFFFF ? 8 : 4; }

/// In characters from the left: the offset, a gap, two digits and a space for every byte, a gap
/// after the eighth and the last, and the printable characters.
int DataField::columnOf(Half half, int byteOfRow) const {
    const int hexadecimal = digitsOfOffset() + 2;
    if (half == Half::Hexadecimal) return hexadecimal + 3 * byteOfRow + (byteOfRow >= 8 ? 1 : 0);
    return hexadecimal + 3 * bytesOfRow_ + (bytesOfRow_ > 8 ? 2 : 1) + byteOfRow;
}

int DataField::columnsInAll() const { return columnOf(Half::Printable, bytesOfRow_) + 1; }

/// What can be edited has a place behind the last byte.
qsizetype DataField::rowCount() const {
    const qsizetype places = bytes_.size() + (isReadOnly_ ? 0 : 1);
    return (places + bytesOfRow_ - 1) / bytesOfRow_;
}

int DataField::rowHeight() const { return fontMetrics().lineSpacing() + 2; }

int DataField::rowsInSight() const {
    return qMax(1, (viewport()->height() - kMargin) / rowHeight());
}

void DataField::arrange() {
    const int width = fontMetrics().horizontalAdvance(u'0');
    bytesOfRow_ = 16;
    if (columnsInAll() * width + kMargin > viewport()->width()) bytesOfRow_ = 8;
    const qsizetype rows = rowCount();
    verticalScrollBar()->setPageStep(rowsInSight());
    verticalScrollBar()->setRange(0, static_cast<int>(qMax<qsizetype>(0, rows - rowsInSight())));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setRange(
        0, qMax(0, columnsInAll() * width + kMargin - viewport()->width()));
    viewport()->update();
}

void DataField::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setFont(font());
    if (bytes_.isEmpty() && !hasFocus()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(6, 4, -6, -4), Qt::AlignLeft | Qt::AlignTop,
                         value_.isValid() ? tr("no bytes") : tr("absent"));
        return;
    }
    painter.translate(kMargin - horizontalScrollBar()->value(), kMargin);
    const qsizetype first = verticalScrollBar()->value();
    const qsizetype rows = rowCount();
    for (qsizetype row = first; row < qMin(rows, first + rowsInSight() + 1); ++row)
        paintRow(painter, row, static_cast<int>(row - first) * rowHeight());
}

void DataField::paintRow(QPainter& painter, qsizetype row, int y) const {
    const int width = fontMetrics().horizontalAdvance(u'0');
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const auto draw = [&](int column, const QString& text, bool isSelected, bool isFaint) {
        const QRect cell(column * width, y, static_cast<int>(text.size()) * width, rowHeight());
        if (isSelected) painter.fillRect(cell, palette().color(group, QPalette::Highlight));
        const auto ink = isSelected ? QPalette::HighlightedText
                                    : (isFaint ? QPalette::PlaceholderText : QPalette::Text);
        painter.setPen(palette().color(group, ink));
        painter.drawText(cell, Qt::AlignCenter, text);
    };
    const qsizetype start = row * bytesOfRow_;
    draw(0, QString::number(start, 16).rightJustified(digitsOfOffset(), u'0').toUpper(), false,
         true);
    for (int i = 0; i <= bytesOfRow_; ++i) {
        const qsizetype index = start + i;
        if (index < bytes_.size() && i < bytesOfRow_) {
            const char byte = bytes_[index];
            const QString digits = QString::number(static_cast<uchar>(byte), 16).toUpper();
            draw(columnOf(Half::Hexadecimal, i), digits.rightJustified(2, u'0'), isSelected(index),
                 false);
            draw(columnOf(Half::Printable, i), isPrintable(byte) ? QChar(byte) : QChar(u'·'),
                 isSelected(index), !isPrintable(byte));
        }
        if (index != caret_ || i == bytesOfRow_ || !hasFocus()) continue;
        const int column = columnOf(half_, i) + (isSecondDigit_ ? 1 : 0);
        painter.fillRect(QRect(column * width, y, inserts_ ? 2 : width, rowHeight()),
                         QColor(128, 128, 255, inserts_ ? 255 : 110));
    }
}

void DataField::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    arrange();
}

void DataField::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) arrange();
}

// MARK: Keyboard and mouse

void DataField::moveCaret(qsizetype to, Selection selection) {
    caret_ = qBound<qsizetype>(0, to, bytes_.size());
    if (selection == Selection::Ends) anchor_ = caret_;
    isSecondDigit_ = false;
    const auto row = static_cast<int>(caret_ / bytesOfRow_);
    const int first = verticalScrollBar()->value();
    if (row < first) verticalScrollBar()->setValue(row);
    if (row >= first + rowsInSight()) verticalScrollBar()->setValue(row - rowsInSight() + 1);
    viewport()->update();
}

void DataField::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return copy();
    if (event->matches(QKeySequence::SelectAll)) {
        anchor_ = 0;
        return moveCaret(bytes_.size(), Selection::Grows);
    }
    if (moveByKey(event)) return;
    if (!isReadOnly_ && editByKey(event)) return;
    QAbstractScrollArea::keyPressEvent(event);
}

bool DataField::moveByKey(QKeyEvent* event) {
    const bool isControl = event->modifiers().testFlag(Qt::ControlModifier);
    const qsizetype start = caret_ - caret_ % bytesOfRow_;
    qsizetype to = caret_;
    switch (event->key()) {
        case Qt::Key_Left:
            to -= 1;
            break;
        case Qt::Key_Right:
            to += 1;
            break;
        case Qt::Key_Up:
            to -= bytesOfRow_;
            break;
        case Qt::Key_Down:
            to += bytesOfRow_;
            break;
        case Qt::Key_PageUp:
            to -= qsizetype{bytesOfRow_} * rowsInSight();
            break;
        case Qt::Key_PageDown:
            to += qsizetype{bytesOfRow_} * rowsInSight();
            break;
        case Qt::Key_Home:
            to = isControl ? 0 : start;
            break;
        case Qt::Key_End:
            to = isControl ? bytes_.size() : start + bytesOfRow_ - 1;
            break;
        default:
            return false;
    }
    const bool isShift = event->modifiers().testFlag(Qt::ShiftModifier);
    moveCaret(to, isShift ? Selection::Grows : Selection::Ends);
    return true;
}

bool DataField::editByKey(QKeyEvent* event) {
    const bool isControl = event->modifiers().testFlag(Qt::ControlModifier);
    if (event->matches(QKeySequence::Paste)) {
        paste();
    } else if (event->matches(QKeySequence::Cut)) {
        copy();
        removeSelection();
    } else if (event->key() == Qt::Key_Escape && bytes_ != value_.toByteArray()) {
        showBytes();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && isControl) {
        commit();
    } else if (event->key() == Qt::Key_Insert) {
        inserts_ = !inserts_;
        viewport()->update();
    } else if (event->key() == Qt::Key_Delete) {
        removeSelection();
    } else if (event->key() == Qt::Key_Backspace) {
        if (anchor_ == caret_) {
            if (caret_ == 0) return true;
            moveCaret(caret_ - 1, Selection::Ends);
        }
        removeSelection();
    } else if (!isControl && event->text().size() == 1 && event->text().front().isPrint()) {
        type(event->text().front());
    } else {
        return false;
    }
    return true;
}

void DataField::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const bool isShift = event->modifiers().testFlag(Qt::ShiftModifier);
    point(event->pos(), isShift ? Selection::Grows : Selection::Ends);
}

void DataField::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) point(event->pos(), Selection::Grows);
}

void DataField::point(const QPoint& at, Selection selection) {
    const int width = fontMetrics().horizontalAdvance(u'0');
    const int column = (at.x() - kMargin + horizontalScrollBar()->value()) / width;
    const bool isPrintableHalf = column >= columnOf(Half::Printable, 0);
    half_ = isPrintableHalf ? Half::Printable : Half::Hexadecimal;
    int byteOfRow = 0;
    while (byteOfRow + 1 < bytesOfRow_ && columnOf(half_, byteOfRow + 1) <= column) ++byteOfRow;
    const qsizetype row = verticalScrollBar()->value() + qMax(0, at.y() - kMargin) / rowHeight();
    moveCaret(row * bytesOfRow_ + byteOfRow, selection);
}

void DataField::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    menu.addAction(tr("&Copy"), QKeySequence::Copy, this, &DataField::copy);
    QAction* paste = menu.addAction(tr("&Paste"), QKeySequence::Paste, this, &DataField::paste);
    menu.addSeparator();
    QAction* load = menu.addAction(tr("&Load from File…"), this, &DataField::chooseFile);
    menu.addAction(tr("&Save to File…"), this, &DataField::saveFile);
    for (QAction* edit : {paste, load}) edit->setEnabled(!isReadOnly_);
    menu.exec(event->globalPos());
}

void DataField::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason) half_ = Half::Hexadecimal;
    if (event->reason() == Qt::BacktabFocusReason) half_ = Half::Printable;
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void DataField::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
    if (event->reason() != Qt::PopupFocusReason) commit();
}

bool DataField::focusNextPrevChild(bool next) {
    const Half other = next ? Half::Printable : Half::Hexadecimal;
    if (half_ == other || !hasFocus()) return QAbstractScrollArea::focusNextPrevChild(next);
    half_ = other;
    isSecondDigit_ = false;
    viewport()->update();
    return true;
}

// MARK: Editing

void DataField::type(QChar character) {
    if (half_ == Half::Hexadecimal) {
        const int digit = valueOfDigit(character);
        if (digit >= 0) typeDigit(digit);
        return;
    }
    if (character.unicode() > 0x7E) return;
    put(character.toLatin1());
    moveCaret(caret_ + 1, Selection::Ends);
}

void DataField::typeDigit(int digit) {
    if (isSecondDigit_) {
        bytes_[caret_] = static_cast<char>((bytes_[caret_] & 0xF0) | digit);
        moveCaret(caret_ + 1, Selection::Ends);
        return;
    }
    const bool keepsSecond = !inserts_ && caret_ < bytes_.size();
    put(static_cast<char>(digit << 4 | (keepsSecond ? bytes_[caret_] & 0x0F : 0)));
    isSecondDigit_ = true;
}

/// Writes a byte at the caret, which stays there.
void DataField::put(char byte) {
    anchor_ = caret_;
    if (inserts_ || caret_ == bytes_.size()) {
        bytes_.insert(caret_, byte);
    } else {
        bytes_[caret_] = byte;
    }
    arrange();
}

/// Removes what is selected, or the byte under the caret.
void DataField::removeSelection() {
    const qsizetype start = selectionStart();
    bytes_.remove(start, selectionEnd() - start);
    moveCaret(start, Selection::Ends);
    arrange();
}

void DataField::copy() const {
    const qsizetype start = selectionStart();
    const QByteArray selected = bytes_.mid(start, selectionEnd() - start);
    const QByteArray text = half_ == Half::Printable ? selected : selected.toHex(' ').toUpper();
    QApplication::clipboard()->setText(QString::fromLatin1(text));
}

void DataField::paste() {
    const QString text = QApplication::clipboard()->text();
    QByteArray pasted;
    if (half_ == Half::Printable) {
        pasted = text.toLatin1();
    } else {
        QString digits = text;
        digits.removeIf([](QChar c) { return c.isSpace(); });
        for (const QChar digit : digits) {
            if (valueOfDigit(digit) >= 0) continue;
            emit editRefused(tr("The text is no row of hexadecimal digits."));
            return;
        }
        pasted = QByteArray::fromHex(digits.toLatin1());
    }
    if (anchor_ != caret_) removeSelection();
    if (inserts_) {
        bytes_.insert(caret_, pasted);
    } else {
        bytes_.replace(caret_, pasted.size(), pasted);
    }
    moveCaret(caret_ + pasted.size(), Selection::Ends);
    arrange();
}

void DataField::chooseFile() {
    auto* dialog = new QFileDialog(this, tr("Load Bytes"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &DataField::takeFile);
    dialog->open();
}

void DataField::saveFile() {
    auto* dialog = new QFileDialog(this, tr("Save Bytes"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes_) != bytes_.size())
            emit editRefused(tr("“%1” cannot be written: %2").arg(path, file.errorString()));
    });
    dialog->open();
}

void DataField::commit() {
    isSecondDigit_ = false;
    if (isReadOnly_ || bytes_ == value_.toByteArray()) return;
    value_ = bytes_;
    showBytes();
    emit valueChanged();
}

void DataField::showBytes() {
    bytes_ = value_.toByteArray();
    setAccessibleDescription(tr("%n byte(s)", nullptr, static_cast<int>(bytes_.size())));
    arrange();
    moveCaret(qMin(caret_, bytes_.size()), Selection::Ends);
}

}  // namespace vexqt
