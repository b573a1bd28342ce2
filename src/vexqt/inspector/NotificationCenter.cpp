#include "vexqt/inspector/NotificationCenter.h"

namespace vexqt {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

void NotificationCenter::post(const QString& name, QObject* object, const QVariantMap& userInfo) {
    emit posted(name, object, userInfo);
}

}  // namespace vexqt
