#pragma once

#include <QSortFilterProxyModel>

namespace vexqt::inspector_app {

/// The atoms whose type or name has a text in it, with all that they are in and all in them.
class AtomFilter : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit AtomFilter(QObject* parent = nullptr);

    void setText(const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    QString text_;
};

}  // namespace vexqt::inspector_app
