#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The partial sync samples, four a row.
class VEXQT_INSPECTOR_EXPORT VexQTstpsAtomViewController final : public GridTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype syncSamplesCount READ syncSamplesCount)

public:
    VexQTstpsAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype syncSamplesCount() const { return count(); }
};

}  // namespace vexqt
