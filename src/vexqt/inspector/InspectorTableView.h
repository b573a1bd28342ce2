#pragma once

#include <QTableView>

#include "vexqt/inspector/export.h"

namespace vexqt {

/// A table view that tells where it was double-clicked, also beside its cells.
class VEXQT_INSPECTOR_EXPORT InspectorTableView : public QTableView {
    Q_OBJECT

public:
    /// A table without a model.
    explicit InspectorTableView(QWidget* parent = nullptr);

    /// The row of the last click; -1 for the header and below the last row.
    int clickedRow() const { return clickedRow_; }
    /// The position of the column of the last click; -1 right of the last column.
    int clickedColumn() const { return clickedColumn_; }
    /// The place of a cell in the viewport; null where there is no such cell.
    QRect frameOfCell(int column, int row) const;

signals:
    /// A double click anywhere in the table or on a column's title, or the return key on a cell.
    void doubleAction(vexqt::InspectorTableView* sender);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void setClicked(const QPoint& place);
    void actOn(int column, int row);

    int clickedRow_ = -1;
    int clickedColumn_ = -1;
};

}  // namespace vexqt
