#pragma once

#include <QAbstractScrollArea>
#include <optional>

#include "apps/inspector/ByteRange.h"
#include "apps/inspector/ByteSource.h"

namespace vexqt::inspector_app {

/// Bytes as offset, hexadecimal digits and text.
///
/// Only what is on the screen is read. Rows are counted in 64 bits; the scroll bar, which cannot,
/// moves in larger steps where there are more rows than it has positions.
class HexView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit HexView(QWidget* parent = nullptr);

    /// Not owned; null for nothing.
    void setSource(ByteSource* source);
    /// Forgets what was read, for bytes that have changed.
    void readAgain();

    /// The bytes that this is about, among all those that are there; tinted.
    void setRange(const ByteRange& range);
    const ByteRange& range() const { return range_; }
    /// Bytes that stand out from those; empty for none.
    void setHighlight(const ByteRange& highlight);
    const ByteRange& highlight() const { return highlight_; }

    /// Moves the cursor and shows it. Behind the last byte it goes to that.
    void goTo(quint64 offset);
    void reveal(const ByteRange& range);
    quint64 cursor() const { return cursor_; }
    /// The byte under the cursor, if nothing else is selected.
    ByteRange selection() const;
    void select(const ByteRange& range);

    quint64 firstVisibleRow() const { return firstRow_; }
    int bytesPerRow() const { return bytesPerRow_; }
    quint64 rowCount() const;
    /// The byte at a point of the viewport; absent where there is none.
    std::optional<quint64> offsetAt(const QPoint& point) const;

    /// The selected bytes; too many to copy become the first few megabytes of them.
    QByteArray selectedBytes() const;
    QString selectedHex() const;
    QString selectedText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void cursorMoved(quint64 offset);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct Metrics {
        int row = 0, glyph = 0, ascent = 0, digits = 0;
        int hexLeft = 0, textLeft = 0, width = 0;
    };

    void measure();
    int hexX(int column) const;
    int textX(int column) const { return metrics_.textLeft + column * metrics_.glyph; }
    int visibleRows() const;
    quint64 lastFirstRow() const;
    void setFirstRow(quint64 row);
    void placeScrollBar();
    void moveCursor(quint64 offset, bool isSelecting);
    void ensureVisible(quint64 offset);
    quint64 length() const { return source_ != nullptr ? source_->length() : 0; }
    const QByteArray& window(quint64 offset, qsizetype count);
    void paintRow(QPainter& painter, quint64 row, int y, const QByteArray& bytes, qsizetype from);
    void copyHex() const;
    void copyText() const;
    void describe();

    ByteSource* source_ = nullptr;
    ByteRange range_, highlight_;
    quint64 firstRow_ = 0, cursor_ = 0, anchor_ = 0;
    int bytesPerRow_ = 16;
    Metrics metrics_;
    bool isPlacingScrollBar_ = false;
    int wheelRest_ = 0;

    quint64 windowStart_ = 0;
    QByteArray window_;
};

}  // namespace vexqt::inspector_app
