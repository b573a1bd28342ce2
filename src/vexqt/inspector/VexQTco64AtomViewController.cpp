#include "vexqt/inspector/VexQTco64AtomViewController.h"

namespace vexqt {

VexQTco64AtomViewController::VexQTco64AtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : ChunkOffsetController(QStringLiteral("chunkOffsets"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
