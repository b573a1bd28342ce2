#pragma once

#include "vexqt/inspector/TableController.h"
#include "vexqt/inspector/TableModel.h"

namespace vexqt {

/// The model of a table view that a controller feeds: it asks for rows and cells and knows nothing
/// of atoms.
class DataSourceModel final : public TableModel {
    Q_OBJECT

public:
    /// The view owns the model. The controller must outlive it.
    DataSourceModel(const TableController& source, InspectorTableView& view,
                    std::vector<TableColumn> columns, int entriesPerRow);

protected:
    qsizetype countRows() const override;
    QVariant cell(int row, int column) const override;

private:
    const TableController& source_;
    const InspectorTableView& view_;
};

}  // namespace vexqt
