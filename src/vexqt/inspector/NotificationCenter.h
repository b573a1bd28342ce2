#pragma once

#include <QObject>
#include <QVariantMap>

#include "vexqt/inspector/export.h"

namespace vexqt {

/// Tells those who listen what happened, without either side knowing the other.
class VEXQT_INSPECTOR_EXPORT NotificationCenter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// The one that the library posts on.
    static NotificationCenter& defaultCenter();

    /// Emits posted() before it returns.
    void post(const QString& name, QObject* object, const QVariantMap& userInfo = {});

signals:
    /// What happened, of which object, and what else is to be known of it.
    void posted(const QString& name, QObject* object, const QVariantMap& userInfo);
};

}  // namespace vexqt
