#include "vexqt/inspector/VexQTstscAtomViewController.h"

namespace vexqt {

VexQTstscAtomViewController::VexQTstscAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : RowTableController(QStringLiteral("sampleToChunkEntries"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
