#include "apps/inspector/WelcomePage.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "apps/inspector/MessageBar.h"

namespace vexqt::inspector_app {

WelcomePage::WelcomePage(QWidget* parent)
    : QWidget(parent),
      messages_(new QVBoxLayout),
      recentTitle_(new QLabel(tr("&Recent movies"))),
      recent_(new QListWidget) {
    auto* symbol = new QLabel;
    symbol->setPixmap(
        QIcon(QStringLiteral(":/vexqt/inspector-app/vexqt-inspector.svg")).pixmap(96));
    symbol->setAlignment(Qt::AlignCenter);
    auto* title = new QLabel(tr("Drop a movie here"));
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    title->setFont(large);
    title->setAlignment(Qt::AlignCenter);
    auto* hint =
        new QLabel(tr("Every atom of the file, every field, every byte: to look at, and to edit."));
    hint->setForegroundRole(QPalette::PlaceholderText);
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    auto* open = new QPushButton(tr("&Open a Movie…"));
    open->setDefault(true);
    connect(open, &QPushButton::clicked, this, &WelcomePage::openRequested);

    recentTitle_->setBuddy(recent_);
    recent_->setAccessibleName(tr("Recent movies"));
    recent_->setMaximumHeight(220);
    recent_->setTextElideMode(Qt::ElideMiddle);
    connect(recent_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        emit movieChosen(item->data(Qt::UserRole).toString());
    });

    auto* column = new QVBoxLayout;
    column->setSpacing(10);
    column->addStretch(2);
    column->addWidget(symbol);
    column->addWidget(title);
    column->addWidget(hint);
    column->addSpacing(8);
    column->addWidget(open, 0, Qt::AlignCenter);
    column->addSpacing(24);
    column->addWidget(recentTitle_);
    column->addWidget(recent_);
    column->addStretch(3);
    auto* middle = new QHBoxLayout;
    middle->addStretch(1);
    middle->addLayout(column, 2);
    middle->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(messages_);
    layout->addLayout(middle, 1);
    setRecent({});
}

void WelcomePage::setRecent(const QStringList& paths) {
    recent_->clear();
    for (const QString& path : paths) {
        const QFileInfo file(path);
        auto* item = new QListWidgetItem(
            tr("%1   –   %2", "a file and its folder").arg(file.fileName(), file.absolutePath()));
        item->setData(Qt::UserRole, path);
        item->setToolTip(path);
        recent_->addItem(item);
    }
    recent_->setVisible(!paths.isEmpty());
    recentTitle_->setVisible(!paths.isEmpty());
}

void WelcomePage::say(const QString& problem) {
    qDeleteAll(findChildren<MessageBar*>());
    messages_->addWidget(new MessageBar(theme::MessageKind::Problem, problem));
}

QString WelcomePage::problem() const {
    const auto* bar = findChild<MessageBar*>();
    return bar != nullptr ? bar->text() : QString();
}

void WelcomePage::hideEvent(QHideEvent* event) {
    qDeleteAll(findChildren<MessageBar*>());
    QWidget::hideEvent(event);
}

}  // namespace vexqt::inspector_app
