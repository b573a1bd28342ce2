#include "apps/inspector/MessageBar.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace vexqt::inspector_app {

namespace {

QString iconName(theme::MessageKind kind) {
    switch (kind) {
        case theme::MessageKind::Problem:
            return QStringLiteral("problem");
        case theme::MessageKind::Warning:
            return QStringLiteral("warning");
        case theme::MessageKind::Information:
            break;
    }
    return QStringLiteral("information");
}

}  // namespace

MessageBar::MessageBar(theme::MessageKind kind, const QString& text, QWidget* parent)
    : QFrame(parent), text_(new QLabel(text)), buttons_(new QHBoxLayout) {
    const theme::MessageColors colors = theme::messageColors(palette(), kind);
    QPalette mine = palette();
    mine.setColor(QPalette::Window, colors.back);
    mine.setColor(QPalette::WindowText, colors.front);
    setPalette(mine);
    setAutoFillBackground(true);
    setAccessibleName(text);

    auto* symbol = new QLabel;
    const QSize size(18, 18);
    symbol->setPixmap(theme::icon(iconName(kind)).pixmap(size, devicePixelRatioF()));
    symbol->setAccessibleName(tr("Message"));
    text_->setPalette(mine);
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    auto* close = new QToolButton;
    close->setIcon(theme::icon(QStringLiteral("close")));
    close->setAutoRaise(true);
    close->setToolTip(tr("Close this message"));
    close->setAccessibleName(tr("Close this message"));
    connect(close, &QToolButton::clicked, this, &QObject::deleteLater);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 6, 6, 6);
    layout->setSpacing(10);
    layout->addWidget(symbol, 0, Qt::AlignTop);
    layout->addWidget(text_, 1);
    layout->addLayout(buttons_);
    layout->addWidget(close, 0, Qt::AlignTop);
}

void MessageBar::addAction(const QString& text, const std::function<void()>& act) {
    auto* button = new QPushButton(text);
    button->setAccessibleDescription(text_->text());
    connect(button, &QPushButton::clicked, this, [this, act] {
        hide();
        deleteLater();
        act();
    });
    buttons_->addWidget(button);
}

QString MessageBar::text() const { return text_->text(); }

}  // namespace vexqt::inspector_app
