#pragma once

#include <QTreeWidget>

#include "apps/inspector/Document.h"

namespace vexqt::inspector_app {

/// What is wrong with a movie, one thing a line.
class RemarkList : public QTreeWidget {
    Q_OBJECT

public:
    explicit RemarkList(QWidget* parent = nullptr);

    void setRemarks(const QList<Document::Remark>& remarks);

signals:
    /// Somebody wants to see where it is.
    void remarkChosen(const QString& path, std::optional<quint64> offset);
};

}  // namespace vexqt::inspector_app
