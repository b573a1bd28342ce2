// What can be done with the tables in the views of atoms.
#pragma once

#include <QTableView>
#include <functional>

#include "vexqt/inspector/VexQTAtomViewController.h"

class QIODevice;

namespace vexqt::inspector_app {

/// A table view and the list of an atom that it shows.
struct Table {
    QTableView* view = nullptr;
    const VexQTAtomViewController* controller = nullptr;

    /// The property that lists the entries; empty where the table shows something else.
    QString listName() const;
    /// Null where the table shows something else.
    const ListAccess* list() const;
    /// Several entries stand in a row of a grid.
    int entriesPerRow() const;
    quint64 entryCount() const;
    quint64 entryAt(const QModelIndex& index) const;
    /// Makes an entry, counted from 0, the current one.
    void goTo(quint64 entry) const;
};

/// The table of a view that has the focus, otherwise its first; null for none.
Table tableIn(VexQTAtomViewController* controller);

/// The selected cells, a line a row, fields parted by commas and quoted where they must be.
QString selectionAsCsv(const QTableView& view);

/// Told how many entries are written, of how many; false stops.
using CsvProgress = std::function<bool(quint64 done, quint64 total)>;

/// Writes every entry of a list under the names of its columns, with its full values, whatever its
/// view shows of them. False when that was stopped or could not be written.
bool writeCsv(const VexQTAtom& atom, const Field& list, QIODevice& out,
              const CsvProgress& progress);

}  // namespace vexqt::inspector_app
