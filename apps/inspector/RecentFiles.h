#pragma once

#include <QStringList>

class QSettings;

namespace vexqt::inspector_app {

/// The movies that were opened last, the latest first.
class RecentFiles {
public:
    static constexpr int kMost = 10;

    /// Null keeps nothing beyond this object's life.
    explicit RecentFiles(QSettings* settings);

    const QStringList& paths() const { return paths_; }
    void add(const QString& path);
    void remove(const QString& path);
    void clear();

private:
    void store();

    QSettings* settings_;
    QStringList paths_;
};

}  // namespace vexqt::inspector_app
