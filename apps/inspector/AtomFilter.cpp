#include "apps/inspector/AtomFilter.h"

#include "apps/inspector/AtomTreeModel.h"

namespace vexqt::inspector_app {

AtomFilter::AtomFilter(QObject* parent) : QSortFilterProxyModel(parent) {
    setRecursiveFilteringEnabled(true);
    setAutoAcceptChildRows(true);
}

void AtomFilter::setText(const QString& text) {
    text_ = text.trimmed();
    invalidateFilter();
}

bool AtomFilter::filterAcceptsRow(int row, const QModelIndex& parent) const {
    if (text_.isEmpty()) return true;
    for (const int column : {AtomTreeModel::TypeColumn, AtomTreeModel::NameColumn}) {
        const QString shown = sourceModel()->index(row, column, parent).data().toString();
        if (shown.contains(text_, Qt::CaseInsensitive)) return true;
    }
    return false;
}

}  // namespace vexqt::inspector_app
