#include "vexqt/inspector/VexQTstszAtomViewController.h"

namespace vexqt {

VexQTstszAtomViewController::VexQTstszAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : GridTableController(QStringLiteral("sampleSizes"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
