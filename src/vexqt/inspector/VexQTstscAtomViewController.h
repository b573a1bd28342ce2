#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The runs of chunks of one make.
class VEXQT_INSPECTOR_EXPORT VexQTstscAtomViewController final : public RowTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype sampleToChunkEntriesCount READ sampleToChunkEntriesCount)

public:
    VexQTstscAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype sampleToChunkEntriesCount() const { return count(); }
};

}  // namespace vexqt
