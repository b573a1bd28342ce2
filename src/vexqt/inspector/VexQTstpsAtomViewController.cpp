#include "vexqt/inspector/VexQTstpsAtomViewController.h"

namespace vexqt {

VexQTstpsAtomViewController::VexQTstpsAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : GridTableController(QStringLiteral("syncSamples"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
