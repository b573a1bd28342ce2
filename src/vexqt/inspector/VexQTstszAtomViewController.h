#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The sample sizes, four a row.
class VEXQT_INSPECTOR_EXPORT VexQTstszAtomViewController final : public GridTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype sampleSizesCount READ sampleSizesCount)

public:
    VexQTstszAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype sampleSizesCount() const { return count(); }
};

}  // namespace vexqt
