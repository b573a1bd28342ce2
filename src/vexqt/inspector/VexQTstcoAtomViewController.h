#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The chunk offsets of 32 bits, four a row.
class VEXQT_INSPECTOR_EXPORT VexQTstcoAtomViewController final : public ChunkOffsetController {
    Q_OBJECT
    Q_PROPERTY(qsizetype chunkOffsetsCount READ chunkOffsetsCount)

public:
    VexQTstcoAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype chunkOffsetsCount() const { return count(); }
};

}  // namespace vexqt
