#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The chunk offsets of 64 bits, four a row.
class VEXQT_INSPECTOR_EXPORT VexQTco64AtomViewController final : public ChunkOffsetController {
    Q_OBJECT
    Q_PROPERTY(qsizetype chunkOffsetsCount READ chunkOffsetsCount)

public:
    VexQTco64AtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype chunkOffsetsCount() const { return count(); }
};

}  // namespace vexqt
