#include "apps/inspector/table_tools.h"

#include <QApplication>
#include <QDateTime>
#include <QIODevice>
#include <algorithm>

#include "vexqt/inspector/TableController.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

QByteArray quoted(const QString& text) {
    const bool isPlain = std::none_of(text.begin(), text.end(), [](QChar character) {
        return character == u',' || character == u'"' || character == u'\n' || character == u'\r';
    });
    if (isPlain) return text.toUtf8();
    QString doubled = text;
    return '"' + doubled.replace(u'"', QStringLiteral("\"\"")).toUtf8() + '"';
}

QByteArray cellText(const QVariant& value, const Field& column) {
    if (column.display == Display::Code && value.isValid())
        return quoted(toQString(textFromCode(static_cast<OSType>(value.toULongLong()))));
    switch (value.typeId()) {
        case QMetaType::QByteArray:
            return value.toByteArray().toHex();
        case QMetaType::QDateTime:
            return value.toDateTime().toString(Qt::ISODate).toLatin1();
        case QMetaType::Double:
            return QByteArray::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
        default:
            return quoted(value.toString());
    }
}

}  // namespace

QString Table::listName() const {
    if (const auto* tables = qobject_cast<const TableController*>(controller))
        if (tables->table() == view) return tables->listName();
    // A list editor names the list and holds the table.
    for (const QWidget* widget = view; widget != nullptr; widget = widget->parentWidget()) {
        QString name = widget->property("listKey").toString();
        if (!name.isEmpty()) return name;
    }
    return {};
}

const ListAccess* Table::list() const {
    if (controller == nullptr) return nullptr;
    const Field* field = controller->atom()->propertyNamed(fromQString(listName()));
    return field != nullptr ? field->list : nullptr;
}

int Table::entriesPerRow() const {
    const ListAccess* shown = list();
    const bool isGrid = shown != nullptr && shown->columns.size() == 1 &&
                        view->model() != nullptr && view->model()->columnCount() > 1;
    return isGrid ? view->model()->columnCount() : 1;
}

quint64 Table::entryCount() const {
    const ListAccess* shown = list();
    return shown != nullptr ? shown->size(*controller->atom()) : 0;
}

quint64 Table::entryAt(const QModelIndex& index) const {
    const int perRow = entriesPerRow();
    const auto row = static_cast<quint64>(index.row()) * static_cast<quint64>(perRow);
    return perRow > 1 ? row + static_cast<quint64>(index.column()) : row;
}

void Table::goTo(quint64 entry) const {
    const auto perRow = static_cast<quint64>(entriesPerRow());
    const QModelIndex index =
        view->model()->index(static_cast<int>(entry / perRow), static_cast<int>(entry % perRow));
    view->setFocus();
    view->setCurrentIndex(index);
    view->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

Table tableIn(VexQTAtomViewController* controller) {
    if (controller == nullptr || !controller->isViewLoaded()) return {};
    const QList<QTableView*> tables = controller->view()->findChildren<QTableView*>();
    for (QTableView* table : tables)
        if (table->isAncestorOf(QApplication::focusWidget()) || table->hasFocus())
            return {table, controller};
    for (QTableView* table : tables)
        if (!table->isHidden()) return {table, controller};
    return {};
}

QString selectionAsCsv(const QTableView& view) {
    if (view.selectionModel() == nullptr) return {};
    QItemSelection selection = view.selectionModel()->selection();
    std::vector<std::pair<int, int>> rows;  // First and last of each range.
    int left = view.model()->columnCount(), right = -1;
    for (const QItemSelectionRange& range : selection) {
        rows.emplace_back(range.top(), range.bottom());
        left = std::min(left, range.left());
        right = std::max(right, range.right());
    }
    std::sort(rows.begin(), rows.end());
    QByteArray text;
    int next = 0;
    for (const auto& [top, bottom] : rows) {
        for (int row = std::max(top, next); row <= bottom; ++row) {
            for (int column = left; column <= right; ++column) {
                const QModelIndex index = view.model()->index(row, column);
                if (column > left) text += ',';
                if (selection.contains(index))
                    text += quoted(index.data(Qt::DisplayRole).toString());
            }
            text += '\n';
        }
        next = std::max(next, bottom + 1);
    }
    return QString::fromUtf8(text);
}

bool writeCsv(const VexQTAtom& atom, const Field& list, QIODevice& out,
              const CsvProgress& progress) {
    static constexpr std::size_t kRowsBetweenTelling = 1 << 14;
    const ListAccess& access = *list.list;
    const std::size_t columns = access.columns.size();
    QByteArray block;
    for (std::size_t column = 0; column < columns; ++column) {
        const std::string_view name = access.columns[column].name;
        if (column > 0) block += ',';
        block += quoted(toQString(name.empty() ? list.name : name));
    }
    block += '\n';
    const std::size_t rows = access.size(atom);
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            if (column > 0) block += ',';
            block += cellText(toVariant(access.cell(atom, row, column)), access.columns[column]);
        }
        block += '\n';
        if (row % kRowsBetweenTelling != kRowsBetweenTelling - 1) continue;
        if (out.write(block) != block.size()) return false;
        block.clear();
        if (progress && !progress(row + 1, rows)) return false;
    }
    return out.write(block) == block.size();
}

}  // namespace vexqt::inspector_app
