#include "apps/inspector/ShortcutSheet.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMenu>
#include <QTreeWidget>

namespace vexqt::inspector_app {

namespace {

/// The text of an action without the marks of its mnemonic and of a dialogue that follows.
QString plain(QString text) {
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(u'&');
    text.replace(u'\x01', u'&');
    if (text.endsWith(u'…')) text.chop(1);
    return text;
}

QString keysOf(const QAction& action) {
    QStringList keys;
    for (const QKeySequence& sequence : action.shortcuts())
        keys << sequence.toString(QKeySequence::NativeText);
    return keys.join(ShortcutSheet::tr(" or "));
}

}  // namespace

ShortcutSheet::ShortcutSheet(const QList<QAction*>& menus, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Keyboard Shortcuts"));
    resize(560, 620);
    auto* list = new QTreeWidget;
    list->setColumnCount(2);
    list->setHeaderLabels({tr("Action"), tr("Keys")});
    list->setAlternatingRowColors(true);
    list->setAccessibleName(tr("Keyboard shortcuts"));
    for (const QAction* menuAction : menus) {
        auto* menu = new QTreeWidgetItem({plain(menuAction->text())});
        for (const QAction* action : menuAction->menu()->actions())
            if (!action->shortcuts().isEmpty())
                menu->addChild(new QTreeWidgetItem({plain(action->text()), keysOf(*action)}));
        if (menu->childCount() == 0) {
            delete menu;
            continue;
        }
        list->addTopLevelItem(menu);
        menu->setExpanded(true);
    }
    auto* elsewhere = new QTreeWidgetItem({tr("In a table or the bytes")});
    const std::initializer_list<std::pair<QString, QString>> others = {
        {tr("Show a chunk's bytes (in a table of chunk offsets)"), tr("Return, or double click")},
        {tr("Select bytes"), tr("Shift and an arrow key")},
        {tr("Copy the selected bytes as hexadecimal"), tr("Ctrl+C")},
        {tr("First or last byte of the file"), tr("Ctrl+Home or Ctrl+End")}};
    for (const auto& [what, keys] : others) elsewhere->addChild(new QTreeWidgetItem({what, keys}));
    list->addTopLevelItem(elsewhere);
    elsewhere->setExpanded(true);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list->header()->setStretchLastSection(false);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list);
    layout->addWidget(buttons);
}

}  // namespace vexqt::inspector_app
