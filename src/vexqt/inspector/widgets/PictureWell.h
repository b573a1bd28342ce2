#pragma once

#include <QFrame>
#include <QImage>
#include <QVariant>

#include "vexqt/inspector/widgets/FieldEditor.h"

class QLabel;
class QMimeData;
class QPushButton;

namespace vexqt {

/// A picture in a frame. Another one is dropped on it, pasted or chosen from the disk.
class PictureWell : public QFrame, public FieldEditor {
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit PictureWell(QWidget* parent = nullptr);

    QVariant value() const { return value_; }
    void setValue(const QVariant& value);
    void configure(const Field& field) override;
    void setReadOnly(bool readOnly) override;

    /// Takes the picture of a file, or refuses what is none.
    void takeFile(const QString& path);

signals:
    void valueChanged();
    void editRefused(const QString& why);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void chooseFile();
    void saveFile();
    void take(const QImage& image);
    void takeFrom(const QMimeData& given);
    void remove();
    void showValue();
    void scale();

    QVariant value_;
    QImage image_;
    QLabel* picture_;
    QLabel* size_;
    QPushButton* choose_;
    QPushButton* save_;
    QPushButton* remove_;
    bool isReadOnly_ = false;
    bool isOptional_ = true;
};

}  // namespace vexqt
