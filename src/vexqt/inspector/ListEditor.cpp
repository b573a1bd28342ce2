#include "vexqt/inspector/ListEditor.h"

#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QToolButton>
#include <set>

#include "vexqt/inspector/ListTableModel.h"

namespace vexqt {

// MARK: Actions

ListActions::ListActions(InspectorTableView& view, ListTableModel& model)
    : QObject(&view), view_(view), model_(model) {
    addAction(QStringLiteral("insertRow"), tr("Insert"), Qt::Key_Insert, &ListActions::insert);
    remove_ = addAction(QStringLiteral("removeRows"), tr("Remove"), QKeySequence::Delete,
                        &ListActions::remove);
    moveUp_ = addAction(QStringLiteral("moveRowUp"), tr("Move Up"), Qt::ALT | Qt::Key_Up,
                        &ListActions::moveUp);
    moveDown_ = addAction(QStringLiteral("moveRowDown"), tr("Move Down"), Qt::ALT | Qt::Key_Down,
                          &ListActions::moveDown);
    view_.setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(view_.selectionModel(), &QItemSelectionModel::currentChanged, this,
            &ListActions::updateEnabled);
    connect(&model_, &QAbstractItemModel::modelReset, this, &ListActions::updateEnabled);
    updateEnabled();
}

QAction* ListActions::addAction(const QString& name, const QString& text,
                                const QKeySequence& shortcut, void (ListActions::*perform)()) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, perform);
    view_.addAction(action);
    actions_.append(action);
    return action;
}

void ListActions::insert() {
    // Behind the current row; without one at the end.
    const QModelIndex current = view_.currentIndex();
    const int row = current.isValid() ? current.row() + 1 : model_.rowCount();
    if (model_.insertRows(row, 1)) makeCurrent(row, current.column());
}

void ListActions::remove() {
    const int column = view_.currentIndex().column();
    std::set<int> rows;
    for (const QModelIndex& index : view_.selectionModel()->selectedIndexes())
        rows.insert(index.row());
    // Run by run, the last first, so that the numbers of the others stay right.
    while (!rows.empty()) {
        const int last = *rows.rbegin();
        int first = last;
        while (rows.erase(first) == 1 && rows.contains(first - 1)) --first;
        if (!model_.removeRows(first, last - first + 1)) return;
        makeCurrent(std::min(first, model_.rowCount() - 1), column);
    }
}

void ListActions::move(int by) {
    const int row = view_.currentIndex().row();
    const int column = view_.currentIndex().column();
    if (model_.moveEntry(row, row + by)) makeCurrent(row + by, column);
}

void ListActions::makeCurrent(int row, int column) {
    view_.setCurrentIndex(model_.index(row, std::max(column, 0)));
}

void ListActions::updateEnabled() {
    const QModelIndex current = view_.currentIndex();
    remove_->setEnabled(current.isValid());
    moveUp_->setEnabled(current.isValid() && current.row() > 0);
    moveDown_->setEnabled(current.isValid() && current.row() + 1 < model_.rowCount());
}

// MARK: Table and buttons

ListEditor::ListEditor(QWidget* parent) : QWidget(parent), table_(new InspectorTableView(this)) {
    setFocusProxy(table_);
    table_->horizontalHeader()->setStretchLastSection(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(table_);
}

void ListEditor::setModel(ListTableModel* model) {
    table_->setModel(model);
    if (!accessibleName().isEmpty()) table_->setAccessibleName(accessibleName());
    auto* buttons = new QHBoxLayout;
    for (QAction* action : (new ListActions(*table_, *model))->actions()) {
        auto* button = new QToolButton(this);
        button->setDefaultAction(action);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    static_cast<QBoxLayout*>(layout())->addLayout(buttons);
}

}  // namespace vexqt
