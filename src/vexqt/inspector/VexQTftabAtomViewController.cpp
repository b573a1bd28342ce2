#include "vexqt/inspector/VexQTftabAtomViewController.h"

namespace vexqt {

VexQTftabAtomViewController::VexQTftabAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : RowTableController(QStringLiteral("fontTableEntries"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
