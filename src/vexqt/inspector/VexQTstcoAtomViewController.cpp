#include "vexqt/inspector/VexQTstcoAtomViewController.h"

namespace vexqt {

VexQTstcoAtomViewController::VexQTstcoAtomViewController(const QString& nibName,
                                                         const QString& bundle, VexQTAtom* atom,
                                                         QObject* parent)
    : ChunkOffsetController(QStringLiteral("chunkOffsets"), nibName, bundle, atom, parent) {}

}  // namespace vexqt
