#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The runs of samples of one duration.
class VEXQT_INSPECTOR_EXPORT VexQTsttsAtomViewController final : public RowTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype sampleDurationsCount READ sampleDurationsCount)

public:
    VexQTsttsAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype sampleDurationsCount() const { return count(); }
};

}  // namespace vexqt
