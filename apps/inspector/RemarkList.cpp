#include "apps/inspector/RemarkList.h"

#include <QHeaderView>

#include "apps/inspector/theme.h"
#include "apps/inspector/words.h"

namespace vexqt::inspector_app {

namespace {

constexpr int kOffsetRole = Qt::UserRole;
constexpr int kPathRole = Qt::UserRole + 1;

}  // namespace

RemarkList::RemarkList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(2);
    setHeaderLabels({tr("Problem"), tr("Where")});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAccessibleName(tr("Problems of this movie"));
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* item) {
        const QVariant offset = item->data(0, kOffsetRole);
        emit remarkChosen(item->data(0, kPathRole).toString(),
                          offset.isValid() ? std::optional(offset.toULongLong()) : std::nullopt);
    });
}

void RemarkList::setRemarks(const QList<Document::Remark>& remarks) {
    clear();
    for (const Document::Remark& remark : remarks) {
        QString where = remark.path;
        if (remark.offset && where.isEmpty())
            where = tr("at %1").arg(offsetText(*remark.offset));
        else if (remark.offset)
            where = tr("%1 at %2").arg(where, offsetText(*remark.offset));
        auto* item = new QTreeWidgetItem({remark.message, where});
        item->setIcon(0, theme::icon(QStringLiteral("warning")));
        item->setToolTip(0, remark.message);
        item->setToolTip(1, where);
        item->setData(0, kPathRole, remark.path);
        if (remark.offset) item->setData(0, kOffsetRole, *remark.offset);
        addTopLevelItem(item);
    }
}

}  // namespace vexqt::inspector_app
