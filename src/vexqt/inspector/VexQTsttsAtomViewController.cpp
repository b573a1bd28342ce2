#include "vexqt/inspector/VexQTsttsAtomViewController.h"

namespace vexqt {

VexQTsttsAtomViewController::VexQTsttsAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : RowTableController(QStringLiteral("sampleDurations"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
