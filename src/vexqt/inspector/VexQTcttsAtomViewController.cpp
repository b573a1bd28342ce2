#include "vexqt/inspector/VexQTcttsAtomViewController.h"

namespace vexqt {

VexQTcttsAtomViewController::VexQTcttsAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : RowTableController(QStringLiteral("compositionOffsets"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
