#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The stretches of an edit list. A media rate shows its whole part alone.
class VEXQT_INSPECTOR_EXPORT VexQTelstAtomViewController final : public RowTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype editListEntriesCount READ editListEntriesCount)

public:
    VexQTelstAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype editListEntriesCount() const { return count(); }
};

}  // namespace vexqt
