#include "apps/inspector/PathBar.h"

#include <QBoxLayout>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStackedLayout>
#include <QToolButton>
#include <QToolTip>

namespace vexqt::inspector_app {

PathBar::PathBar(QWidget* parent) : QWidget(parent), crumbs_(new QWidget), edit_(new QLineEdit) {
    edit_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    edit_->setAccessibleName(tr("Path of an atom"));
    edit_->setPlaceholderText(tr("A path, such as moov.trak[1].tkhd"));
    edit_->installEventFilter(this);
    row_ = new QHBoxLayout(crumbs_);
    row_->setContentsMargins(0, 0, 0, 0);
    row_->setSpacing(0);
    stack_ = new QStackedLayout(this);
    stack_->addWidget(crumbs_);
    stack_->addWidget(edit_);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setMinimumWidth(60);
    setAccessibleName(tr("Path of the selected atom"));
    connect(edit_, &QLineEdit::returnPressed, this, [this] { emit pathEntered(edit_->text()); });
}

void PathBar::setParts(const QStringList& parts) {
    parts_ = parts;
    showButtons();
    rebuild();
}

void PathBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    rebuild();
}

/// Where there is not room for all parts, the first ones give way to a sign that there are more.
void PathBar::rebuild() {
    while (QLayoutItem* item = row_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    QFont last = font();
    last.setBold(true);
    const QString separator = QStringLiteral("›");
    const int gap = fontMetrics().horizontalAdvance(separator) + 6;
    const auto widthOf = [&](const QString& part) {
        return QFontMetrics(last).horizontalAdvance(part) + 14 + gap;
    };
    qsizetype first = parts_.size();
    int left = width() - 2 * gap;
    while (first > 0 && left >= widthOf(parts_[first - 1])) left -= widthOf(parts_[--first]);
    if (first == parts_.size() && first > 0) --first;

    const auto addSeparator = [&](const QString& text) {
        auto* label = new QLabel(text);
        label->setForegroundRole(QPalette::PlaceholderText);
        label->setContentsMargins(3, 0, 3, 0);
        row_->addWidget(label);
    };
    if (first > 0) addSeparator(QStringLiteral("…"));
    for (qsizetype i = first; i < parts_.size(); ++i) {
        if (i > 0) addSeparator(separator);
        auto* button = new QToolButton;
        const bool isLast = i + 1 == parts_.size();
        if (isLast) button->setFont(last);
        button->setText(QString(parts_[i]).replace(u'&', QStringLiteral("&&")));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        const QString path = parts_.mid(0, i + 1).join(u'.');
        button->setToolTip(path);
        button->setAccessibleName(tr("Go to %1").arg(path));
        connect(button, &QToolButton::clicked, this,
                [this, i] { emit partChosen(static_cast<int>(i)); });
        row_->addWidget(button);
    }
    row_->addStretch(1);
}

void PathBar::askForPath() {
    edit_->setText(path());
    stack_->setCurrentWidget(edit_);
    edit_->setFocus(Qt::ShortcutFocusReason);
    edit_->selectAll();
}

void PathBar::refuse(const QString& why) {
    QToolTip::showText(edit_->mapToGlobal(QPoint(0, edit_->height())), why, edit_);
    edit_->setAccessibleDescription(why);
}

void PathBar::showButtons() { stack_->setCurrentWidget(crumbs_); }

bool PathBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == edit_) {
        const bool isEscape = event->type() == QEvent::KeyPress &&
                              static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        if (isEscape || event->type() == QEvent::FocusOut) {
            showButtons();
            if (isEscape) {
                setFocus();
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace vexqt::inspector_app
