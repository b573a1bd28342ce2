#include "vexqt/inspector/DataSourceModel.h"

namespace vexqt {

DataSourceModel::DataSourceModel(const TableController& source, InspectorTableView& view,
                                 std::vector<TableColumn> columns, int entriesPerRow)
    : TableModel(std::move(columns), entriesPerRow, &view), source_(source), view_(view) {
    refresh();
}

qsizetype DataSourceModel::countRows() const { return source_.numberOfRowsInTableView(&view_); }

QVariant DataSourceModel::cell(int row, int column) const {
    return source_.objectValueForTableColumn(&view_, this->column(column).identifier, row);
}

}  // namespace vexqt
