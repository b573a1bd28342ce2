#include "vexqt/inspector/VexQTstssAtomViewController.h"

namespace vexqt {

VexQTstssAtomViewController::VexQTstssAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : GridTableController(QStringLiteral("syncSamples"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
