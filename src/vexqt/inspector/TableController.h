// What the controllers of the ten sample and font tables share.
//
// Such tables have too many entries for bindings. A table view named "table" asks its controller
// for one cell at a time, by the identifier of the column, and cannot set any. Entries are read
// where the atom has them: a table of ten million is shown at once, and none of it is decoded.
#pragma once

#include <QVariant>

#include "vexqt/inspector/InspectorTableView.h"
#include "vexqt/inspector/VexQTAtomViewController.h"

namespace vexqt {

class TableModel;

/// Shows the entries of a table in a table view named "table".
class VEXQT_INSPECTOR_EXPORT TableController : public VexQTAtomViewController {
    Q_OBJECT

public:
    /// The table view of the interface description; null until that is loaded, or without one.
    InspectorTableView* table() const { return table_; }
    /// The property that lists the entries.
    const QString& listName() const { return listName_; }
    /// The number of entries. An atom that has no such list, because its class is another than its
    /// type, counts as empty.
    qsizetype count() const;

    // What a table view's model asks.

    /// The number of rows that the entries fill, one each unless a class says otherwise.
    virtual qsizetype numberOfRowsInTableView(const InspectorTableView* tableView) const;
    /// Invalid for an empty cell: a row behind the last, or a column that is not known.
    virtual QVariant objectValueForTableColumn(const InspectorTableView* tableView,
                                               const QString& column, qsizetype row) const = 0;

    void refresh() override;

protected:
    /// Lists the entries of that property.
    TableController(const QString& listName, const QString& nibName, const QString& bundle,
                    VexQTAtom* atom, QObject* parent);

    void awakeFromNib() override;
    /// Null where the atom has no such list.
    const ListAccess* list() const;
    /// How many entries stand side by side.
    virtual int entriesPerRow() const { return 1; }

private:
    QString listName_;
    QPointer<InspectorTableView> table_;
    QPointer<TableModel> model_;  ///< The table view's.
};

/// Four entries a row, in columns named "0" to "3".
class VEXQT_INSPECTOR_EXPORT GridTableController : public TableController {
    Q_OBJECT

public:
    qsizetype numberOfRowsInTableView(const InspectorTableView* tableView) const override;
    /// The entry as it is.
    QVariant objectValueForTableColumn(const InspectorTableView* tableView, const QString& column,
                                       qsizetype row) const override;

protected:
    /// The number of columns.
    static constexpr int kEntriesPerRow = 4;

    using TableController::TableController;
    int entriesPerRow() const override { return kEntriesPerRow; }
};

/// One entry a row, in columns named after the properties of an entry.
class VEXQT_INSPECTOR_EXPORT RowTableController : public TableController {
    Q_OBJECT

public:
    /// Integers as unsigned numbers of 32 bits, 4294967295 for -1, or of 16 where they have no
    /// more. Fractions are cut off.
    QVariant objectValueForTableColumn(const InspectorTableView* tableView, const QString& column,
                                       qsizetype row) const override;

protected:
    using TableController::TableController;
};

/// A grid of chunk offsets. A double click on one posts where it points to.
class VEXQT_INSPECTOR_EXPORT ChunkOffsetController : public GridTableController {
    Q_OBJECT

public slots:
    /// Posts VexQTChunkOffsetDoubleClickNotification for the entry that was clicked in the table,
    /// with "offset", "length" and "cellRect", the cell's place in the table's viewport.
    ///
    /// The entry is the one at column + 4 * row. Right of the last column the column is -1, which
    /// makes it the last one of the row above; without a table it is the first entry.
    void doubleClick(QObject* sender);

protected:
    using GridTableController::GridTableController;
    void awakeFromNib() override;
};

}  // namespace vexqt
