#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The fonts of a timed text.
class VEXQT_INSPECTOR_EXPORT VexQTftabAtomViewController final : public RowTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype fontTableEntriesCount READ fontTableEntriesCount)

public:
    VexQTftabAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype fontTableEntriesCount() const { return count(); }
};

}  // namespace vexqt
