#include "vexqt/inspector/TableController.h"

#include <QRect>
#include <algorithm>
#include <cmath>

#include "vexqt/inspector/DataSourceModel.h"
#include "vexqt/inspector/NotificationCenter.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt {

// MARK: All tables

TableController::TableController(const QString& listName, const QString& nibName,
                                 const QString& bundle, VexQTAtom* atom, QObject* parent)
    : VexQTAtomViewController(nibName, bundle, atom, parent), listName_(listName) {}

const ListAccess* TableController::list() const {
    const Field* property = atom()->propertyNamed(fromQString(listName_));
    return property != nullptr ? property->list : nullptr;
}

qsizetype TableController::count() const {
    const ListAccess* entries = list();
    return entries != nullptr ? static_cast<qsizetype>(entries->size(*atom())) : 0;
}

qsizetype TableController::numberOfRowsInTableView(const InspectorTableView*) const {
    return count();
}

void TableController::awakeFromNib() {
    table_ = view()->findChild<InspectorTableView*>(QStringLiteral("table"));
    if (!table_) return;
    QStringList problems;
    model_ = new DataSourceModel(
        *this, *table_, tableColumns(*table_, view()->objectName(), problems), entriesPerRow());
    for (const QString& problem : problems) addProblem(problem);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setModel(model_);
}

void TableController::refresh() {
    VexQTAtomViewController::refresh();
    if (model_) model_->refresh();
}

// MARK: Four entries a row

qsizetype GridTableController::numberOfRowsInTableView(const InspectorTableView*) const {
    // In single precision, as this table has always counted: one row may be missing behind more
    // than 16777216 entries.
    return static_cast<qsizetype>(std::ceil(static_cast<float>(count()) * 0.25F));
}

QVariant GridTableController::objectValueForTableColumn(const InspectorTableView*,
                                                        const QString& column,
                                                        qsizetype row) const {
    bool isNumber = false;
    const qsizetype position = column.toInt(&isNumber);
    if (!isNumber || position < 0 || row < 0 || row >= count()) return {};
    const qsizetype index = position + kEntriesPerRow * row;
    if (index >= count()) return {};
    return toVariant(list()->cell(*atom(), static_cast<std::size_t>(index), 0));
}

// MARK: One entry a row

static QVariant shown(const Value& value, const Field& column) {
    const auto number = integerFrom(value);
    if (!number) return toVariant(value);
    if (column.kind == ValueKind::Floating) return qlonglong{static_cast<std::int64_t>(*number)};
    if (column.bits <= 16) return uint{static_cast<std::uint16_t>(*number)};
    return uint{static_cast<std::uint32_t>(*number)};
}

QVariant RowTableController::objectValueForTableColumn(const InspectorTableView*,
                                                       const QString& column, qsizetype row) const {
    if (row < 0 || row >= count()) return {};
    const auto columns = list()->columns;
    const auto found = std::ranges::find(columns, fromQString(column), &Field::name);
    if (found == columns.end()) return {};
    const auto position = static_cast<std::size_t>(found - columns.begin());
    return shown(list()->cell(*atom(), static_cast<std::size_t>(row), position), *found);
}

// MARK: Chunk offsets

void ChunkOffsetController::awakeFromNib() {
    GridTableController::awakeFromNib();
    if (table())
        connect(table(), &InspectorTableView::doubleAction, this,
                &ChunkOffsetController::doubleClick);
}

void ChunkOffsetController::doubleClick(QObject*) {
    const int row = table() ? table()->clickedRow() : 0;
    const int column = table() ? table()->clickedColumn() : 0;
    // Unsigned, so that no click on the header finds an entry.
    const std::uint64_t index = static_cast<std::uint64_t>(qsizetype{column}) +
                                kEntriesPerRow * static_cast<std::uint64_t>(qsizetype{row});
    if (index >= static_cast<std::uint64_t>(count())) return;
    const Value entry = list()->cell(*atom(), index, 0);
    const QVariantMap userInfo = {
        {QStringLiteral("offset"), qulonglong{integerFrom(entry).value_or(0)}},
        {QStringLiteral("length"), 1024},
        {QStringLiteral("cellRect"), table() ? table()->frameOfCell(column, row) : QRect()},
    };
    NotificationCenter::defaultCenter().post(
        QStringLiteral("VexQTChunkOffsetDoubleClickNotification"), table(), userInfo);
}

}  // namespace vexqt
