#include "vexqt/inspector/InspectorTableView.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace vexqt {

InspectorTableView::InspectorTableView(QWidget* parent) : QTableView(parent) {
    // Rows of one height each are what makes millions of them fast.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    setWordWrap(false);
    connect(horizontalHeader(), &QHeaderView::sectionDoubleClicked, this,
            [this](int section) { actOn(horizontalHeader()->visualIndex(section), -1); });
}

QRect InspectorTableView::frameOfCell(int column, int row) const {
    if (model() == nullptr || column < 0 || row < 0) return {};
    return visualRect(model()->index(row, horizontalHeader()->logicalIndex(column), rootIndex()));
}

void InspectorTableView::setClicked(const QPoint& place) {
    clickedRow_ = rowAt(place.y());
    clickedColumn_ = horizontalHeader()->visualIndex(columnAt(place.x()));
}

void InspectorTableView::actOn(int column, int row) {
    clickedColumn_ = column;
    clickedRow_ = row;
    emit doubleAction(this);
}

void InspectorTableView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QModelIndex current = currentIndex();
    if (!isReturn || state() == EditingState || !current.isValid())
        return QTableView::keyPressEvent(event);
    actOn(horizontalHeader()->visualIndex(current.column()), current.row());
}

void InspectorTableView::mousePressEvent(QMouseEvent* event) {
    setClicked(event->position().toPoint());
    QTableView::mousePressEvent(event);
}

void InspectorTableView::mouseDoubleClickEvent(QMouseEvent* event) {
    setClicked(event->position().toPoint());
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) emit doubleAction(this);
}

}  // namespace vexqt
