#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The sync samples, four a row.
class VEXQT_INSPECTOR_EXPORT VexQTstssAtomViewController final : public GridTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype syncSamplesCount READ syncSamplesCount)

public:
    VexQTstssAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype syncSamplesCount() const { return count(); }
};

}  // namespace vexqt
