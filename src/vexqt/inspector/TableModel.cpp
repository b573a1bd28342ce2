#include "vexqt/inspector/TableModel.h"

#include <QCoreApplication>
#include <algorithm>
#include <limits>

#include "vexqt/inspector/ValueFormatter.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/inspector/widgets/FieldText.h"

namespace vexqt {

std::vector<TableColumn> tableColumns(const QObject& described, const QString& context,
                                      QStringList& problems) {
    const QStringList identifiers = described.property("columnIdentifiers").toStringList();
    const QStringList titles = described.property("columnTitles").toStringList();
    const QStringList formatters = described.property("columnFormatters").toStringList();
    if (identifiers.isEmpty() || titles.size() != identifiers.size() ||
        (!formatters.isEmpty() && formatters.size() != identifiers.size()))
        problems.append(described.objectName() +
                        QStringLiteral(": columns, titles and formatters do not go together"));

    std::vector<TableColumn> columns;
    for (qsizetype i = 0; i < identifiers.size(); ++i) {
        TableColumn column = {.identifier = identifiers[i]};
        if (!titles.value(i).isEmpty())
            column.title = QCoreApplication::translate(context.toUtf8(), titles[i].toUtf8());
        const QString formatter = formatters.value(i);
        column.formatter = formatterNamed(fromQString(formatter));
        if (column.formatter == nullptr && !formatter.isEmpty())
            problems.append(described.objectName() + QStringLiteral(": no formatter is a ") +
                            formatter);
        columns.push_back(column);
    }
    return columns;
}

TableModel::TableModel(std::vector<TableColumn> columns, int entriesPerRow, QObject* parent)
    : QAbstractTableModel(parent), columns_(std::move(columns)), entriesPerRow_(entriesPerRow) {}

int TableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int TableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

static bool isNumber(const QVariant& value) {
    return value.canConvert<double>() && value.typeId() != QMetaType::QString;
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    if (!isText && role != Qt::TextAlignmentRole) return {};
    const QVariant value = cell(index.row(), index.column());
    if (role == Qt::TextAlignmentRole)
        return QVariant((isNumber(value) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (!value.isValid()) return {};
    if (const ValueFormatter* formatter = column(index.column()).formatter)
        return FieldText(*formatter).textFor(value);
    // Views group the digits of numbers as the locale does; texts they leave alone.
    return role == Qt::DisplayRole ? value.toString() : value;
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const int sections = orientation == Qt::Horizontal ? columnCount() : rowCount();
    if (role != Qt::DisplayRole || section < 0 || section >= sections) return {};
    if (orientation == Qt::Horizontal) return column(section).title;
    return QString::number(qsizetype{section} * entriesPerRow_ + 1);
}

int TableModel::rowsToShow() const {
    // Views add up the heights of all rows in an int.
    constexpr qsizetype kHighestRow = 64;
    constexpr qsizetype kMost = std::numeric_limits<int>::max() / kHighestRow;
    return static_cast<int>(std::min(countRows(), kMost));
}

void TableModel::refresh() {
    if (rowsToShow() != rows_) {
        beginResetModel();
        rows_ = rowsToShow();
        endResetModel();
    } else if (rows_ > 0 && !columns_.empty()) {
        emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1));
    }
}

}  // namespace vexqt
