#pragma once

#include <QAbstractScrollArea>
#include <QVariant>

#include "vexqt/inspector/widgets/FieldEditor.h"

namespace vexqt {

/// Bytes, in hexadecimal and as printable characters side by side.
///
/// Only the rows in sight are drawn, so the bytes may be many. Typing overwrites or, after the
/// Insert key, inserts; Tab moves from the hexadecimal half to the printable one and then out. An
/// edit is taken when the focus leaves or with Ctrl+Return; Escape brings back the old bytes.
class DataField : public QAbstractScrollArea, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit DataField(QWidget* parent = nullptr);

    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;

    /// Takes the bytes of a file, or refuses one that cannot be read.
    void takeFile(const QString& path);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    enum class Half { Hexadecimal, Printable };
    enum class Selection { Ends, Grows };

    bool isSelected(qsizetype index) const;
    qsizetype selectionStart() const { return qMin(anchor_, caret_); }
    qsizetype selectionEnd() const;
    int digitsOfOffset() const;
    int columnOf(Half half, int byteOfRow) const;
    int columnsInAll() const;
    qsizetype rowCount() const;
    int rowHeight() const;
    int rowsInSight() const;
    void arrange();
    void paintRow(QPainter& painter, qsizetype row, int y) const;
    void moveCaret(qsizetype to, Selection selection);
    bool moveByKey(QKeyEvent* event);
    bool editByKey(QKeyEvent* event);
    void point(const QPoint& at, Selection selection);
    void type(QChar character);
    void typeDigit(int digit);
    void put(char byte);
    void removeSelection();
    void copy() const;
    void paste();
    void chooseFile();
    void saveFile();
    void commit();
    void showBytes();

    QVariant value_;
    QByteArray bytes_;      ///< As edited.
    qsizetype caret_ = 0;   ///< A byte, or the place behind the last.
    qsizetype anchor_ = 0;  ///< Where the selection began.
    int bytesOfRow_ = 16;
    Half half_ = Half::Hexadecimal;
    bool isSecondDigit_ = false;
    bool inserts_ = false;
    bool isReadOnly_ = false;
};

}  // namespace vexqt
