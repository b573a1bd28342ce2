#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/inspector/TableModel.h"

namespace vexqt {

class VexQTAtomViewController;

/// A list property of an atom as a table that can be edited, one entry a row.
///
/// Every edit goes through the controller, so that it can be undone and may be refused.
class ListTableModel final : public TableModel {
    Q_OBJECT

public:
    /// The identifiers of the columns are names of properties of an entry; "" is the only column of
    /// a list of plain numbers. Columns that the list does not have are left out.
    ListTableModel(VexQTAtomViewController& controller, const Field& property,
                   const std::vector<TableColumn>& columns, QObject* parent);

    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Takes a text, as a cell shows it.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    /// New entries are as their class makes them.
    bool insertRows(int row, int count, const QModelIndex& parent = {}) override;
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;
    /// Moves one entry to where another is.
    bool moveEntry(int from, int to);

protected:
    qsizetype countRows() const override;
    QVariant cell(int row, int column) const override;

private:
    std::size_t positionOf(int column) const;
    bool isEditable(int column) const;

    VexQTAtomViewController& controller_;
    VexQTAtom& atom_;
    const Field& property_;
    const ListAccess& list_;
};

}  // namespace vexqt
