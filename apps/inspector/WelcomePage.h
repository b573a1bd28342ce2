#pragma once

#include <QWidget>

class QLabel;
class QListWidget;
class QVBoxLayout;

namespace vexqt::inspector_app {

/// What the window shows while no movie is open.
class WelcomePage : public QWidget {
    Q_OBJECT

public:
    explicit WelcomePage(QWidget* parent = nullptr);

    void setRecent(const QStringList& paths);
    /// Says what went wrong, until the next movie is opened.
    void say(const QString& problem);
    QString problem() const;

signals:
    void openRequested();
    void movieChosen(const QString& path);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QVBoxLayout* messages_;
    QLabel* recentTitle_;
    QListWidget* recent_;
};

}  // namespace vexqt::inspector_app
