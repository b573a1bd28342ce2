#pragma once

#include <QDialog>

namespace vexqt::inspector_app {

/// Lists what the keys do, menu by menu.
class ShortcutSheet : public QDialog {
    Q_OBJECT

public:
    ShortcutSheet(const QList<QAction*>& menus, QWidget* parent = nullptr);
};

}  // namespace vexqt::inspector_app
