#pragma once

#include <QMainWindow>
#include <functional>

#include "apps/inspector/RecentFiles.h"
#include "apps/inspector/theme.h"

class QSettings;
class QStackedWidget;
class QTabWidget;
class QToolBar;

namespace vexqt::inspector_app {

class MovieTab;
class WelcomePage;

/// The window: movies as tabs, and everything that can be done with them.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// Null settings keep nothing: neither the recent files nor the window's size.
    explicit MainWindow(QSettings* settings = nullptr, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Opens a movie in a tab, or goes to the tab that has it. False when it cannot be opened; the
    /// window says why.
    bool openMovie(const QString& path);
    /// Null where no movie is open.
    MovieTab* currentTab() const;
    int tabCount() const;
    bool closeTab(int index);
    /// The reason of the last movie that could not be opened; empty after one that could.
    const QString& lastError() const { return lastError_; }
    QAction* actionNamed(const QString& name) const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    using TabAction = std::function<void(MovieTab&)>;

    QAction* add(const QString& name, const QString& text, const QList<QKeySequence>& shortcuts,
                 const QString& tip);
    QAction* addForTab(const QString& name, const QString& text,
                       const QList<QKeySequence>& shortcuts, const QString& tip,
                       const TabAction& act);
    void makeFileActions();
    void makeEditActions();
    void makeViewActions();
    void makeColorActions();
    void makeHelpActions();
    void makeMenus();
    void makeToolBar();
    void addTabActions(MovieTab& tab) const;

    void askForMovies();
    void showRecentFiles();
    void showState();
    void showTab();
    void sayWhyNot(const QString& path, const QString& why);
    void setTheme(theme::Choice choice);
    void showShortcuts();
    void showAbout();
    void restore();

    QSettings* settings_;
    RecentFiles recent_;
    QString lastError_;
    QStackedWidget* pages_;
    WelcomePage* welcome_;
    QTabWidget* tabs_;
    QMenu* recentMenu_ = nullptr;
    QHash<QString, QAction*> actions_;
    QList<QAction*> tabActions_;  ///< Those that act on a movie.
};

}  // namespace vexqt::inspector_app
