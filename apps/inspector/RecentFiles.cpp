#include "apps/inspector/RecentFiles.h"

#include <QFileInfo>
#include <QSettings>

namespace vexqt::inspector_app {

namespace {

const QString kKey = QStringLiteral("recentFiles");

}  // namespace

RecentFiles::RecentFiles(QSettings* settings) : settings_(settings) {
    if (settings_ != nullptr) paths_ = settings_->value(kKey).toStringList().mid(0, kMost);
}

void RecentFiles::add(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    paths_.removeAll(absolute);
    paths_.prepend(absolute);
    paths_ = paths_.mid(0, kMost);
    store();
}

void RecentFiles::remove(const QString& path) {
    paths_.removeAll(QFileInfo(path).absoluteFilePath());
    store();
}

void RecentFiles::clear() {
    paths_.clear();
    store();
}

void RecentFiles::store() {
    if (settings_ != nullptr) settings_->setValue(kKey, paths_);
}

}  // namespace vexqt::inspector_app
