#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <vector>

namespace vexqt {

class ValueFormatter;

/// A column as an interface description has it.
struct TableColumn {
    QString identifier = {};  ///< What the column is of, for the program.
    QString title = {};
    const ValueFormatter* formatter = nullptr;  ///< Null: values show as they are.
};

/// The columns that an object's properties `columnIdentifiers`, `columnTitles` and
/// `columnFormatters` list, side by side. The titles are translated in a context, the name of their
/// interface description.
std::vector<TableColumn> tableColumns(const QObject& described, const QString& context,
                                      QStringList& problems);

/// What the models of tables share: columns, and rows that are asked for one cell at a time.
///
/// A model holds no data. It keeps the number of rows that it last told views of, until refresh().
class TableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Tells views that any value, and the number of rows, may have changed.
    void refresh();

protected:
    /// Rows are numbered by the first of their entries, from 1 on.
    TableModel(std::vector<TableColumn> columns, int entriesPerRow, QObject* parent);

    const TableColumn& column(int column) const {
        return columns_[static_cast<std::size_t>(column)];
    }
    virtual qsizetype countRows() const = 0;
    /// Invalid for a cell that is empty.
    virtual QVariant cell(int row, int column) const = 0;

private:
    int rowsToShow() const;

    std::vector<TableColumn> columns_;
    int entriesPerRow_;
    int rows_ = 0;
};

}  // namespace vexqt
