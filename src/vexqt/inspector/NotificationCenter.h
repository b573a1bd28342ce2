#pragma once

#include <QObject>
#include <QVariantMap>

namespace vexqt {

/// Tells those who listen what happened, without either side knowing the other.
class NotificationCenter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// The one that the library posts on.
    static NotificationCenter& defaultCenter();

    void post(const QString& name, QObject* object, const QVariantMap& userInfo = {});

signals:
    void posted(const QString& name, QObject* object, const QVariantMap& userInfo);
};

}  // namespace vexqt
