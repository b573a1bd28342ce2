#pragma once

#include <QWidget>

#include "vexqt/inspector/InspectorTableView.h"

class QAction;

namespace vexqt {

class ListTableModel;

/// What can be done with the rows of a list, for buttons, the keyboard and the context menu of its
/// table view.
class ListActions final : public QObject {
    Q_OBJECT

public:
    /// The view owns the actions.
    ListActions(InspectorTableView& view, ListTableModel& model);

    const QList<QAction*>& actions() const { return actions_; }

private:
    QAction* addAction(const QString& name, const QString& text, const QKeySequence& shortcut,
                       void (ListActions::*perform)());
    void insert();
    void remove();
    void moveUp() { move(-1); }
    void moveDown() { move(1); }
    void move(int by);
    /// Edits leave no cell the current one.
    void makeCurrent(int row, int column);
    void updateEnabled();

    InspectorTableView& view_;
    ListTableModel& model_;
    QList<QAction*> actions_;
    QAction *remove_ = nullptr, *moveUp_ = nullptr, *moveDown_ = nullptr;
};

/// Shows and edits a list property: a table, and buttons that insert, remove and move its rows.
///
/// Its dynamic properties are those of a table view: `listKey`, `columnIdentifiers`,
/// `columnTitles`, `columnFormatters`.
class ListEditor final : public QWidget {
    Q_OBJECT

public:
    explicit ListEditor(QWidget* parent = nullptr);

    InspectorTableView* table() const { return table_; }
    /// To be called once.
    void setModel(ListTableModel* model);

private:
    InspectorTableView* table_;
};

}  // namespace vexqt
