#include "vexqt/inspector/VexQTelstAtomViewController.h"

namespace vexqt {

VexQTelstAtomViewController::VexQTelstAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : RowTableController(QStringLiteral("editListEntries"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
