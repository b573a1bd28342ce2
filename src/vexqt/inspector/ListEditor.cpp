#include "vexqt/inspector/ListEditor.h"

#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QToolButton>

#include "vexqt/inspector/ListTableModel.h"

namespace vexqt {

// MARK: Actions

ListActions::ListActions(InspectorTableView& view, ListTableModel& model)
    : QObject(&view), view_(view), model_(model) {
    addAction(QStringLiteral("insertRow"), tr("Insert"), Qt::Key_Insert, &ListActions::insert);
    addAction(QStringLiteral("removeRows"), tr("Remove"), QKeySequence::Delete,
              &ListActions::remove);
    addAction(QStringLiteral("moveRowUp"), tr("Move Up"), Qt::ALT | Qt::Key_Up,
              &ListActions::moveUp);
    addAction(QStringLiteral("moveRowDown"), tr("Move Down"), Qt::ALT | Qt::Key_Down,
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
    const int row =
        view_.currentIndex().isValid() ? view_.currentIndex().row() + 1 : model_.rowCount();
    if (model_.insertRows(row, 1)) selectRow(row);
}

void ListActions::remove() {
    // Rows that are selected side by side go at once, others run by run, the last first.
    QList<int> rows;
    for (const QModelIndex& index : view_.selectionModel()->selectedIndexes())
        if (!rows.contains(index.row())) rows.append(index.row());
    std::ranges::sort(rows, std::greater());
    while (!rows.isEmpty()) {
        const int last = rows.takeFirst();
        int first = last;
        while (!rows.isEmpty() && rows.first() == first - 1) first = rows.takeFirst();
        if (!model_.removeRows(first, last - first + 1)) return;
        if (rows.isEmpty()) selectRow(std::min(first, model_.rowCount() - 1));
    }
}

void ListActions::move(int by) {
    const int row = view_.currentIndex().row();
    if (model_.moveEntry(row, row + by)) selectRow(row + by);
}

void ListActions::selectRow(int row) {
    const int column = std::max(view_.currentIndex().column(), 0);
    view_.setCurrentIndex(model_.index(row, column));
}

void ListActions::updateEnabled() {
    const QModelIndex current = view_.currentIndex();
    actions_[1]->setEnabled(current.isValid());
    actions_[2]->setEnabled(current.isValid() && current.row() > 0);
    actions_[3]->setEnabled(current.isValid() && current.row() + 1 < model_.rowCount());
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
