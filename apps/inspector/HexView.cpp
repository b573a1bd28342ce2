#include "apps/inspector/HexView.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include "apps/inspector/theme.h"
#include "apps/inspector/words.h"

namespace vexqt::inspector_app {

namespace {

constexpr int kMargin = 8;
constexpr int kGroup = 8;  ///< Bytes between two wider gaps.
constexpr quint64 kMostScrollPositions = 1 << 30;
constexpr quint64 kMostCopied = 4 << 20;

QChar printable(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code >= 0x20 && code < 0x7F ? QChar(code) : QChar(u'·');
}

/// part * whole / total, where the product may be too large for 64 bits.
quint64 scaled(quint64 part, quint64 whole, quint64 total) {
    if (total == 0) return 0;
    const long double exact = static_cast<long double>(part) * static_cast<long double>(whole) /
                              static_cast<long double>(total);
    return std::min(static_cast<quint64>(exact), whole);
}

}  // namespace

HexView::HexView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setCursor(Qt::IBeamCursor);
    setAccessibleName(tr("Bytes of the file"));
    measure();
}

void HexView::setSource(ByteSource* source) {
    source_ = source;
    range_ = highlight_ = {};
    firstRow_ = cursor_ = anchor_ = 0;
    measure();
    readAgain();
}

void HexView::readAgain() {
    window_.clear();
    windowStart_ = 0;
    placeScrollBar();
    viewport()->update();
}

void HexView::setRange(const ByteRange& range) {
    range_ = range;
    viewport()->update();
}

void HexView::setHighlight(const ByteRange& highlight) {
    highlight_ = highlight;
    if (!highlight.isEmpty()) reveal(highlight);
    viewport()->update();
}

void HexView::goTo(quint64 offset) {
    moveCursor(offset, false);
    ensureVisible(cursor_);
}

void HexView::reveal(const ByteRange& range) {
    if (length() == 0 || range.isEmpty()) return;
    const auto width = static_cast<quint64>(bytesPerRow_);
    const quint64 first = std::min(range.offset, length() - 1) / width;
    const quint64 last = std::min(range.end() - 1, length() - 1) / width;
    const auto visible = static_cast<quint64>(visibleRows());
    if (first >= firstRow_ && last < firstRow_ + visible) return;
    // A row of what comes before shows where it is.
    setFirstRow(first > 0 ? first - 1 : 0);
}

ByteRange HexView::selection() const {
    if (length() == 0) return {};
    const quint64 first = std::min(anchor_, cursor_);
    return {first, std::max(anchor_, cursor_) - first + 1};
}

void HexView::select(const ByteRange& range) {
    if (length() == 0 || range.isEmpty()) return;
    anchor_ = std::min(range.offset, length() - 1);
    moveCursor(range.end() - 1, true);
    reveal(range);
}

quint64 HexView::rowCount() const {
    const auto width = static_cast<quint64>(bytesPerRow_);
    return length() / width + (length() % width != 0 ? 1 : 0);
}

// MARK: Geometry

void HexView::measure() {
    const QFontMetrics font(this->font());
    metrics_.glyph = font.horizontalAdvance(u'0');
    metrics_.row = font.height() + 2;
    metrics_.ascent = font.ascent() + 1;
    metrics_.digits =
        std::max(8, static_cast<int>(QString::number(length(), 16).size() + 1) / 2 * 2);
    metrics_.hexLeft = kMargin + (metrics_.digits + 2) * metrics_.glyph;
    const auto widthFor = [&](int columns) {
        const int hex = (3 * columns + columns / kGroup) * metrics_.glyph;
        return metrics_.hexLeft + hex + metrics_.glyph + columns * metrics_.glyph + kMargin;
    };
    bytesPerRow_ = widthFor(16) <= viewport()->width() ? 16 : 8;
    if (widthFor(32) <= viewport()->width()) bytesPerRow_ = 32;
    metrics_.textLeft = hexX(bytesPerRow_) + metrics_.glyph;
    metrics_.width = widthFor(bytesPerRow_);
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setRange(0, std::max(0, metrics_.width - viewport()->width()));
}

int HexView::hexX(int column) const {
    return metrics_.hexLeft + (3 * column + column / kGroup) * metrics_.glyph;
}

int HexView::visibleRows() const { return std::max(1, viewport()->height() / metrics_.row); }

quint64 HexView::lastFirstRow() const {
    const auto visible = static_cast<quint64>(visibleRows());
    return rowCount() > visible ? rowCount() - visible : 0;
}

void HexView::setFirstRow(quint64 row) {
    firstRow_ = std::min(row, lastFirstRow());
    placeScrollBar();
    viewport()->update();
}

void HexView::placeScrollBar() {
    isPlacingScrollBar_ = true;
    firstRow_ = std::min(firstRow_, lastFirstRow());
    const quint64 positions = std::min(lastFirstRow(), kMostScrollPositions);
    verticalScrollBar()->setRange(0, static_cast<int>(positions));
    verticalScrollBar()->setPageStep(visibleRows());
    verticalScrollBar()->setValue(static_cast<int>(scaled(firstRow_, positions, lastFirstRow())));
    isPlacingScrollBar_ = false;
}

void HexView::scrollContentsBy(int, int dy) {
    if (!isPlacingScrollBar_ && dy != 0) {
        const auto positions = static_cast<quint64>(verticalScrollBar()->maximum());
        firstRow_ =
            scaled(static_cast<quint64>(verticalScrollBar()->value()), lastFirstRow(), positions);
    }
    viewport()->update();
}

std::optional<quint64> HexView::offsetAt(const QPoint& point) const {
    if (length() == 0 || point.y() < 0) return std::nullopt;
    const int x = point.x() + horizontalScrollBar()->value();
    const quint64 row = firstRow_ + static_cast<quint64>(point.y() / metrics_.row);
    int column = 0;
    if (x >= metrics_.textLeft - metrics_.glyph / 2) {
        column = (x - metrics_.textLeft) / metrics_.glyph;
    } else {
        while (column + 1 < bytesPerRow_ && hexX(column + 1) <= x) ++column;
    }
    column = std::clamp(column, 0, bytesPerRow_ - 1);
    const quint64 offset = row * static_cast<quint64>(bytesPerRow_) + static_cast<quint64>(column);
    if (row >= rowCount() || offset >= length()) return std::nullopt;
    return offset;
}

QSize HexView::sizeHint() const {
    return {80 * metrics_.glyph + verticalScrollBar()->sizeHint().width(), 12 * metrics_.row};
}

QSize HexView::minimumSizeHint() const { return {20 * metrics_.glyph, 3 * metrics_.row}; }

void HexView::resizeEvent(QResizeEvent*) {
    const quint64 first = firstRow_ * static_cast<quint64>(bytesPerRow_);
    measure();
    firstRow_ = first / static_cast<quint64>(bytesPerRow_);
    placeScrollBar();
}

void HexView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    measure();
    placeScrollBar();
}

// MARK: The cursor

void HexView::moveCursor(quint64 offset, bool isSelecting) {
    if (length() == 0) return;
    cursor_ = std::min(offset, length() - 1);
    if (!isSelecting) anchor_ = cursor_;
    viewport()->update();
    describe();
    emit cursorMoved(cursor_);
}

/// Screen readers are told where the cursor is and what is there.
void HexView::describe() {
    const QByteArray byte = source_->read(cursor_, 1);
    setAccessibleDescription(
        tr("Offset %1, byte %2").arg(offsetText(cursor_), QString::fromLatin1(byte.toHex())));
}

void HexView::ensureVisible(quint64 offset) {
    const quint64 row = offset / static_cast<quint64>(bytesPerRow_);
    const auto visible = static_cast<quint64>(visibleRows());
    if (row < firstRow_) setFirstRow(row);
    if (row >= firstRow_ + visible) setFirstRow(row - visible + 1);
}

void HexView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return copyHex();
    if (length() == 0) return QAbstractScrollArea::keyPressEvent(event);
    const auto width = static_cast<quint64>(bytesPerRow_);
    const quint64 page = width * static_cast<quint64>(visibleRows());
    const bool isFar = event->modifiers().testFlag(Qt::ControlModifier);
    const quint64 last = length() - 1;
    const auto back = [&](quint64 count) { return cursor_ >= count ? cursor_ - count : cursor_; };
    const auto ahead = [&](quint64 count) {
        return last - cursor_ >= count ? cursor_ + count : cursor_;
    };
    quint64 target = 0;
    switch (event->key()) {
        case Qt::Key_Left:
            target = back(1);
            break;
        case Qt::Key_Right:
            target = ahead(1);
            break;
        case Qt::Key_Up:
            target = back(width);
            break;
        case Qt::Key_Down:
            target = ahead(width);
            break;
        case Qt::Key_PageUp:
            target = cursor_ >= page ? cursor_ - page : cursor_ % width;
            break;
        case Qt::Key_PageDown:
            target = last - cursor_ >= page ? cursor_ + page : last;
            break;
        case Qt::Key_Home:
            target = isFar ? 0 : cursor_ - cursor_ % width;
            break;
        case Qt::Key_End:
            target = isFar ? last : std::min(last, cursor_ - cursor_ % width + width - 1);
            break;
        default:
            return QAbstractScrollArea::keyPressEvent(event);
    }
    moveCursor(target, event->modifiers().testFlag(Qt::ShiftModifier));
    ensureVisible(cursor_);
}

void HexView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (const auto offset = offsetAt(event->pos()))
        moveCursor(*offset, event->modifiers().testFlag(Qt::ShiftModifier));
}

void HexView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton)) return;
    if (const auto offset = offsetAt(event->pos())) {
        moveCursor(*offset, true);
        ensureVisible(cursor_);
    }
}

/// A step of the wheel is three rows, however many rows a position of the scroll bar stands for.
void HexView::wheelEvent(QWheelEvent* event) {
    static constexpr int kUnitsOfARow = 40;
    wheelRest_ += event->angleDelta().y();
    const int rows = wheelRest_ / kUnitsOfARow;
    wheelRest_ -= rows * kUnitsOfARow;
    const auto count = static_cast<quint64>(std::abs(rows));
    setFirstRow(rows < 0 ? firstRow_ + count : firstRow_ - std::min(firstRow_, count));
    event->accept();
}

// MARK: Copying

QByteArray HexView::selectedBytes() const {
    const ByteRange chosen = selection();
    if (source_ == nullptr || chosen.isEmpty()) return {};
    return source_->read(chosen.offset,
                         static_cast<qsizetype>(std::min(chosen.length, kMostCopied)));
}

QString HexView::selectedHex() const { return QString::fromLatin1(selectedBytes().toHex(' ')); }

QString HexView::selectedText() const {
    QString text;
    for (const char byte : selectedBytes()) text += printable(byte);
    return text;
}

void HexView::copyHex() const { QApplication::clipboard()->setText(selectedHex()); }
void HexView::copyText() const { QApplication::clipboard()->setText(selectedText()); }

void HexView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    menu.addAction(tr("Copy as &Hexadecimal"), this, &HexView::copyHex);
    menu.addAction(tr("Copy as &Text"), this, &HexView::copyText);
    menu.addAction(tr("Select the &Atom"), this, [this] { select(range_); })
        ->setEnabled(!range_.isEmpty());
    menu.exec(event->globalPos());
}

// MARK: Painting

const QByteArray& HexView::window(quint64 offset, qsizetype count) {
    const auto wanted = static_cast<quint64>(count);
    const auto there = static_cast<quint64>(window_.size());
    if (offset >= windowStart_ && offset - windowStart_ <= there &&
        there - (offset - windowStart_) >= wanted)
        return window_;
    windowStart_ = offset;
    window_ = source_->read(offset, count);
    return window_;
}

void HexView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.translate(-horizontalScrollBar()->value(), 0);
    if (length() == 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin),
                         Qt::AlignTop | Qt::AlignLeft, tr("No bytes"));
        return;
    }
    const auto width = static_cast<quint64>(bytesPerRow_);
    const quint64 rows = static_cast<quint64>(visibleRows()) + 1;
    const quint64 first = firstRow_ * width;
    const quint64 count = std::min(rows * width, length() - first);
    const QByteArray& bytes = window(first, static_cast<qsizetype>(count));
    const auto from = static_cast<qsizetype>(first - windowStart_);
    for (quint64 i = 0; i < rows && firstRow_ + i < rowCount(); ++i)
        paintRow(painter, firstRow_ + i, static_cast<int>(i) * metrics_.row, bytes,
                 from + static_cast<qsizetype>(i * width));
}

void HexView::paintRow(QPainter& painter, quint64 row, int y, const QByteArray& bytes,
                       qsizetype from) {
    const theme::ByteColors colors = theme::byteColors(palette());
    const quint64 start = row * static_cast<quint64>(bytesPerRow_);
    const int baseline = y + metrics_.ascent;
    const auto offset = QString::number(start, 16).rightJustified(metrics_.digits, u'0').toUpper();
    painter.setPen(colors.offset);
    painter.drawText(kMargin, baseline, offset);

    struct Look {
        QColor back, front;
        ByteRange run;  ///< The bytes that look so together.
    };
    const ByteRange chosen = selection();
    const bool isChosen = chosen.length > 1 || hasFocus();
    const auto lookOf = [&](quint64 position, char byte) -> Look {
        if (isChosen && chosen.contains(position))
            return {palette().color(QPalette::Highlight),
                    palette().color(QPalette::HighlightedText), chosen};
        if (highlight_.contains(position))
            return {colors.highlightBack, colors.highlight, highlight_};
        if (range_.contains(position))
            return {colors.rangeBack, byte == 0 ? colors.zero : colors.inside, range_};
        return {{}, colors.outside, {}};
    };
    for (int column = 0; column < bytesPerRow_; ++column) {
        const quint64 position = start + static_cast<quint64>(column);
        if (position >= length()) break;
        const qsizetype index = from + column;
        const bool isThere = index < bytes.size();
        const char byte = isThere ? bytes[index] : '\0';
        const auto [back, front, run] = lookOf(position, byte);
        if (back.isValid()) {
            // The gap to the next byte belongs to a run that goes on.
            const bool goesOn = column + 1 < bytesPerRow_ && run.contains(position + 1);
            const int right = goesOn ? hexX(column + 1) : hexX(column) + 2 * metrics_.glyph;
            painter.fillRect(hexX(column), y, right - hexX(column), metrics_.row, back);
            painter.fillRect(textX(column), y, metrics_.glyph, metrics_.row, back);
        }
        painter.setPen(front);
        const QString digits =
            isThere ? QString::number(static_cast<unsigned char>(byte), 16).rightJustified(2, u'0')
                    : QStringLiteral("??");
        painter.drawText(hexX(column), baseline, digits.toUpper());
        painter.drawText(textX(column), baseline, isThere ? QString(printable(byte)) : "?");
    }
}

}  // namespace vexqt::inspector_app
