#include "vexqt/inspector/widgets/PictureWell.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include "vexqt/platform/Picture.h"

namespace vexqt {

PictureWell::PictureWell(QWidget* parent)
    : QFrame(parent),
      picture_(new QLabel(this)),
      size_(new QLabel(this)),
      choose_(new QPushButton(tr("&Choose…"), this)),
      save_(new QPushButton(tr("&Save As…"), this)),
      remove_(new QPushButton(tr("&Remove"), this)) {
    setFrameShape(QFrame::StyledPanel);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

    picture_->setAlignment(Qt::AlignCenter);
    picture_->setMinimumSize(240, 180);
    picture_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    picture_->installEventFilter(this);
    size_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(size_, 1);
    for (QPushButton* button : {choose_, save_, remove_}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    auto* all = new QVBoxLayout(this);
    all->addWidget(picture_, 1);
    all->addLayout(buttons);

    connect(choose_, &QPushButton::clicked, this, &PictureWell::chooseFile);
    connect(save_, &QPushButton::clicked, this, &PictureWell::saveFile);
    connect(remove_, &QPushButton::clicked, this, &PictureWell::remove);
    showValue();
}

void PictureWell::setValue(const QVariant& value) {
    value_ = value;
    image_ = value.value<QImage>();
    showValue();
}

void PictureWell::configure(const Field& field) {
    isOptional_ = field.isOptional;
    showValue();
}

void PictureWell::setReadOnly(bool readOnly) {
    isReadOnly_ = readOnly;
    setAcceptDrops(!readOnly);
    showValue();
}

void PictureWell::takeFile(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    const auto pixels =
        static_cast<quint64>(qMax(size.width(), 0)) * static_cast<quint64>(qMax(size.height(), 0));
    if (pixels > Picture::kMostPixels) {
        emit editRefused(tr("The picture in “%1” is too large.").arg(path));
        return;
    }
    const QImage image = reader.read();
    if (image.isNull()) {
        emit editRefused(
            tr("“%1” holds no picture that can be read: %2").arg(path, reader.errorString()));
        return;
    }
    take(image);
}

bool PictureWell::eventFilter(QObject* watched, QEvent* event) {
    if (watched == picture_ && event->type() == QEvent::Resize) scale();
    return QFrame::eventFilter(watched, event);
}

void PictureWell::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    const bool isFile = dragged.hasUrls() && dragged.urls().front().isLocalFile();
    if (!isReadOnly_ && (isFile || dragged.hasImage())) event->acceptProposedAction();
}

void PictureWell::dropEvent(QDropEvent* event) {
    if (isReadOnly_) return;
    event->acceptProposedAction();
    takeFrom(*event->mimeData());
}

void PictureWell::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && !image_.isNull())
        return QGuiApplication::clipboard()->setImage(image_);
    if (isReadOnly_) return QFrame::keyPressEvent(event);
    if (event->matches(QKeySequence::Paste))
        return takeFrom(*QGuiApplication::clipboard()->mimeData());
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) return remove();
    if (event->key() == Qt::Key_Space) return chooseFile();
    QFrame::keyPressEvent(event);
}

void PictureWell::focusInEvent(QFocusEvent* event) {
    setFrameShadow(QFrame::Sunken);
    QFrame::focusInEvent(event);
}

void PictureWell::focusOutEvent(QFocusEvent* event) {
    setFrameShadow(QFrame::Plain);
    QFrame::focusOutEvent(event);
}

void PictureWell::chooseFile() {
    auto* dialog = new QFileDialog(this, tr("Choose a Picture"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Pictures (*.jpg *.jpeg *.png *.bmp)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::fileSelected, this, &PictureWell::takeFile);
    dialog->open();
}

void PictureWell::saveFile() {
    auto* dialog = new QFileDialog(this, tr("Save the Picture"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("png"));
    dialog->setNameFilters({tr("Pictures (*.png *.jpg *.bmp)")});
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        if (!image_.save(path)) emit editRefused(tr("“%1” cannot be written.").arg(path));
    });
    dialog->open();
}

void PictureWell::take(const QImage& image) {
    setValue(image);
    emit valueChanged();
}

void PictureWell::takeFrom(const QMimeData& given) {
    if (given.hasUrls() && given.urls().front().isLocalFile())
        return takeFile(given.urls().front().toLocalFile());
    const auto image = given.imageData().value<QImage>();
    if (!image.isNull()) return take(image);
    emit editRefused(tr("That is no picture."));
}

void PictureWell::remove() {
    if (!isOptional_ || !value_.isValid()) return;
    setValue({});
    emit valueChanged();
}

void PictureWell::showValue() {
    const bool isThere = !image_.isNull();
    size_->setText(isThere ? tr("%1 × %2 pixels").arg(image_.width()).arg(image_.height())
                           : QString());
    choose_->setEnabled(!isReadOnly_);
    save_->setEnabled(isThere);
    remove_->setEnabled(isThere && isOptional_ && !isReadOnly_);
    scale();
}

void PictureWell::scale() {
    if (image_.isNull()) {
        picture_->setPixmap({});
        picture_->setText(isReadOnly_ ? tr("No picture") : tr("Drop a picture here"));
        return;
    }
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap = QPixmap::fromImage(image_);
    const QSize room = picture_->size() * ratio;
    // A small picture keeps its size: blown up it would look worse than it is.
    if (pixmap.width() > room.width() || pixmap.height() > room.height())
        pixmap = pixmap.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(ratio);
    picture_->setPixmap(pixmap);
}

}  // namespace vexqt
