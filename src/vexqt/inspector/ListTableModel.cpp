#include "vexqt/inspector/ListTableModel.h"

#include <algorithm>

#include "vexqt/inspector/ValueFormatter.h"
#include "vexqt/inspector/VexQTAtomViewController.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/inspector/widgets/FieldText.h"

namespace vexqt {

namespace {

using Row = std::vector<Value>;

const Field* columnNamed(const ListAccess& list, const QString& name) {
    const auto found = std::ranges::find(list.columns, fromQString(name), &Field::name);
    return found != list.columns.end() ? &*found : nullptr;
}

const ValueFormatter* formatterFor(const Field& column) {
    if (column.display == Display::Code) return formatterNamed("OSTypeFormatter");
    return nullptr;
}

std::vector<TableColumn> columnsThere(const ListAccess& list, std::vector<TableColumn> columns) {
    std::erase_if(columns, [&](const TableColumn& column) {
        return columnNamed(list, column.identifier) == nullptr;
    });
    for (TableColumn& column : columns)
        if (column.formatter == nullptr)
            column.formatter = formatterFor(*columnNamed(list, column.identifier));
    return columns;
}

/// Numbers in a list without columns of their own are set as a whole.
bool canBeSet(const Field& column) { return column.set != nullptr || column.name.empty(); }

std::vector<Row> takeRows(const ListAccess& list, VexQTAtom& atom, std::size_t row,
                          std::size_t count) {
    std::vector<Row> rows(count);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t column = 0; column < list.columns.size(); ++column)
            rows[i].push_back(list.cell(atom, row + i, column));
    list.removeRows(atom, row, count);
    return rows;
}

void putRows(const ListAccess& list, VexQTAtom& atom, std::size_t row,
             const std::vector<Row>& rows) {
    list.insertRows(atom, row, rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t column = 0; column < list.columns.size(); ++column)
            if (canBeSet(list.columns[column]))
                list.setCell(atom, row + i, column, rows[i][column]);
}

/// How a cell of a column stands as text.
FieldText textOf(const Field& column, const ValueFormatter* formatter) {
    if (formatter != nullptr) return FieldText(*formatter);
    const bool isInteger = column.kind == ValueKind::Unsigned || column.kind == ValueKind::Signed;
    FieldText text(column.kind == ValueKind::Text ? FieldText::Form::Plain
                   : isInteger                    ? FieldText::Form::Decimal
                                                  : FieldText::Form::Floating);
    text.configure(column);
    return text;
}

}  // namespace

ListTableModel::ListTableModel(VexQTAtomViewController& controller, const Field& property,
                               const std::vector<TableColumn>& columns, QObject* parent)
    : TableModel(columnsThere(*property.list, columns), 1, parent),
      controller_(controller),
      atom_(*controller.atom()),
      property_(property),
      list_(*property.list) {
    refresh();
}

std::size_t ListTableModel::positionOf(int column) const {
    return static_cast<std::size_t>(columnNamed(list_, this->column(column).identifier) -
                                    list_.columns.data());
}

bool ListTableModel::isEditable(int column) const {
    return canBeSet(list_.columns[positionOf(column)]);
}

qsizetype ListTableModel::countRows() const { return static_cast<qsizetype>(list_.size(atom_)); }

QVariant ListTableModel::cell(int row, int column) const {
    // The list may have become shorter since views were last told.
    if (row >= countRows()) return {};
    return toVariant(list_.cell(atom_, static_cast<std::size_t>(row), positionOf(column)));
}

Qt::ItemFlags ListTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return TableModel::flags(index);
    const Qt::ItemFlags plain = TableModel::flags(index) | Qt::ItemNeverHasChildren;
    return isEditable(index.column()) ? plain | Qt::ItemIsEditable : plain;
}

bool ListTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
    if (index.row() >= countRows() || !isEditable(index.column())) return false;
    const TableColumn& shown = column(index.column());
    const auto row = static_cast<std::size_t>(index.row());
    const std::size_t position = positionOf(index.column());
    const QString key =
        QStringLiteral("%1[%2].%3").arg(toQString(property_.name)).arg(row).arg(shown.identifier);

    if (value.toString() == data(index, Qt::EditRole).toString()) return true;
    QString why;
    const auto named =
        textOf(list_.columns[position], shown.formatter).valueOf(value.toString(), why);
    if (!named) {
        emit controller_.editRefused(key, why);
        return false;
    }
    const Value before = list_.cell(atom_, row, position);
    const Value after = fromVariant(*named);
    const auto set = [&atom = atom_, &list = list_, row, position](const Value& to) {
        list.setCell(atom, row, position, to);
    };
    return controller_.performEdit({.text = tr("Change %1").arg(shown.title.toLower()),
                                    .redo = [set, after] { set(after); },
                                    .undo = [set, before] { set(before); },
                                    .atom = &atom_,
                                    .key = key});
}

bool ListTableModel::insertRows(int row, int count, const QModelIndex& parent) {
    if (parent.isValid() || row < 0 || count < 1 || row > countRows()) return false;
    const auto first = static_cast<std::size_t>(row);
    const auto length = static_cast<std::size_t>(count);
    return controller_.performEdit({.text = tr("Insert %n row(s)", nullptr, count),
                                    .redo = [&atom = atom_, &list = list_, first,
                                             length] { list.insertRows(atom, first, length); },
                                    .undo = [&atom = atom_, &list = list_, first,
                                             length] { list.removeRows(atom, first, length); },
                                    .atom = &atom_});
}

bool ListTableModel::removeRows(int row, int count, const QModelIndex& parent) {
    if (parent.isValid() || row < 0 || count < 1 || count > countRows() - row) return false;
    const auto first = static_cast<std::size_t>(row);
    const auto length = static_cast<std::size_t>(count);
    const auto removed = std::make_shared<std::vector<Row>>();
    return controller_.performEdit(
        {.text = tr("Remove %n row(s)", nullptr, count),
         .redo = [&atom = atom_, &list = list_, first, length,
                  removed] { *removed = takeRows(list, atom, first, length); },
         .undo = [&atom = atom_, &list = list_, first,
                  removed] { putRows(list, atom, first, *removed); },
         .atom = &atom_});
}

bool ListTableModel::moveEntry(int from, int to) {
    if (from < 0 || to < 0 || from == to || std::max(from, to) >= countRows()) return false;
    const auto move = [&atom = atom_, &list = list_](std::size_t source, std::size_t target) {
        putRows(list, atom, target, takeRows(list, atom, source, 1));
    };
    const auto source = static_cast<std::size_t>(from);
    const auto target = static_cast<std::size_t>(to);
    return controller_.performEdit({.text = tr("Move row"),
                                    .redo = [move, source, target] { move(source, target); },
                                    .undo = [move, source, target] { move(target, source); },
                                    .atom = &atom_});
}

}  // namespace vexqt
