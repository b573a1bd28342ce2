#pragma once

#include "vexqt/inspector/TableController.h"

namespace vexqt {

/// The runs of samples of one composition offset.
class VEXQT_INSPECTOR_EXPORT VexQTcttsAtomViewController final : public RowTableController {
    Q_OBJECT
    Q_PROPERTY(qsizetype compositionOffsetsCount READ compositionOffsetsCount)

public:
    VexQTcttsAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                                QObject* parent = nullptr);

    qsizetype compositionOffsetsCount() const { return count(); }
};

}  // namespace vexqt
