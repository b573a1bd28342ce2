#include "apps/inspector/MainWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QShortcut>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolBar>
#include <QTreeView>

#include "apps/inspector/BytePane.h"
#include "apps/inspector/MovieTab.h"
#include "apps/inspector/ShortcutSheet.h"
#include "apps/inspector/WelcomePage.h"
#include "apps/inspector/words.h"

namespace vexqt::inspector_app {

namespace {

const QString kGeometryKey = QStringLiteral("windowGeometry");
const QString kThemeKey = QStringLiteral("theme");

QStringList filesIn(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile()) files << url.toLocalFile();
    return files;
}

QString movieFilter() {
    return MainWindow::tr("Movies (*.mov *.mp4 *.m4a *.m4v *.m4b *.3gp *.3g2 *.qt);;All files (*)");
}

}  // namespace

MainWindow::MainWindow(QSettings* settings, QWidget* parent)
    : QMainWindow(parent),
      settings_(settings),
      recent_(settings),
      pages_(new QStackedWidget),
      welcome_(new WelcomePage),
      tabs_(new QTabWidget) {
    setWindowTitle(tr("VexQt Inspector"));
    setAcceptDrops(true);
    resize(1240, 820);

    tabs_->setDocumentMode(true);
    tabs_->setTabsClosable(true);
    tabs_->setMovable(true);
    tabs_->setAccessibleName(tr("Open movies"));
    pages_->addWidget(welcome_);
    pages_->addWidget(tabs_);
    setCentralWidget(pages_);

    makeFileActions();
    makeEditActions();
    makeViewActions();
    makeColorActions();
    makeHelpActions();
    makeMenus();
    makeToolBar();

    connect(tabs_, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    connect(tabs_, &QTabWidget::currentChanged, this, &MainWindow::showTab);
    connect(welcome_, &WelcomePage::openRequested, this, &MainWindow::askForMovies);
    connect(welcome_, &WelcomePage::movieChosen, this, &MainWindow::openMovie);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::showState);
    restore();
    showRecentFiles();
    showTab();
}

MainWindow::~MainWindow() { qApp->disconnect(this); }

// MARK: Actions

QAction* MainWindow::add(const QString& name, const QString& text,
                         const QList<QKeySequence>& shortcuts, const QString& tip) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcuts(shortcuts);
    action->setStatusTip(tip);
    action->setToolTip(tip);
    addAction(action);  // So that the shortcut works whatever menu shows it.
    actions_.insert(name, action);
    return action;
}

QAction* MainWindow::addForTab(const QString& name, const QString& text,
                               const QList<QKeySequence>& shortcuts, const QString& tip,
                               const TabAction& act) {
    QAction* action = add(name, text, shortcuts, tip);
    connect(action, &QAction::triggered, this, [this, act] {
        if (MovieTab* tab = currentTab()) act(*tab);
    });
    tabActions_ << action;
    return action;
}

QAction* MainWindow::actionNamed(const QString& name) const { return actions_.value(name); }

void MainWindow::makeFileActions() {
    QAction* open =
        add(QStringLiteral("open"), tr("&Open…"), {QKeySequence::Open}, tr("Opens movies"));
    open->setIcon(theme::icon(QStringLiteral("open")));
    connect(open, &QAction::triggered, this, &MainWindow::askForMovies);

    addForTab(QStringLiteral("save"), tr("&Save…"), {QKeySequence::Save},
              tr("Shows what a save will do, and saves the movie"), &MovieTab::save)
        ->setIcon(theme::icon(QStringLiteral("save")));
    addForTab(QStringLiteral("saveCopy"), tr("Save a &Copy…"), {QKeySequence(tr("Ctrl+Shift+S"))},
              tr("Saves the edited movie under another name"), &MovieTab::saveCopy);
    addForTab(QStringLiteral("check"), tr("Chec&k…"), {QKeySequence(tr("F7"))},
              tr("Shows what a save would do, without saving"), &MovieTab::check);
    addForTab(QStringLiteral("takeBack"), tr("&Take Back the Last Save"), {},
              tr("Makes the file what it was before its last save"), &MovieTab::takeBackLastSave);
    addForTab(QStringLiteral("readAgain"), tr("&Read Again"), {QKeySequence(tr("F5"))},
              tr("Reads the movie from its file once more"), &MovieTab::readAgain)
        ->setIcon(theme::icon(QStringLiteral("reload")));
    addForTab(QStringLiteral("close"), tr("C&lose"), {QKeySequence::Close}, tr("Closes this movie"),
              [this](MovieTab&) { closeTab(tabs_->currentIndex()); });
    QAction* quit = add(QStringLiteral("quit"), tr("&Quit"), {QKeySequence(tr("Ctrl+Q"))},
                        tr("Closes all movies and ends the program"));
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

void MainWindow::makeEditActions() {
    // Which history they act on changes with the tab, so they are plain actions.
    addForTab(QStringLiteral("undo"), tr("&Undo"), {QKeySequence::Undo},
              tr("Takes the last edit back"),
              [](MovieTab& tab) { tab.document().history().undo(); })
        ->setIcon(theme::icon(QStringLiteral("undo")));
    addForTab(QStringLiteral("redo"), tr("&Redo"),
              {QKeySequence(tr("Ctrl+Shift+Z")), QKeySequence(tr("Ctrl+Y"))},
              tr("Makes the edit that was taken back once more"),
              [](MovieTab& tab) { tab.document().history().redo(); })
        ->setIcon(theme::icon(QStringLiteral("redo")));

    addForTab(QStringLiteral("insertInto"), tr("&Insert an Atom into This…"),
              {QKeySequence(tr("Ctrl+I"))}, tr("Puts an atom from a file into the selected one"),
              &MovieTab::insertIntoSelected)
        ->setIcon(theme::icon(QStringLiteral("insert")));
    addForTab(QStringLiteral("insertBehind"), tr("Insert an Atom &behind This…"),
              {QKeySequence(tr("Ctrl+Shift+I"))},
              tr("Puts an atom from a file behind the selected one"),
              &MovieTab::insertBehindSelected);
    addForTab(
        QStringLiteral("replace"), tr("Re&place This Atom…"), {QKeySequence(tr("Ctrl+Shift+R"))},
        tr("Puts an atom from a file in the selected one's place"), &MovieTab::replaceSelected);
    addForTab(QStringLiteral("remove"), tr("Remo&ve This Atom"), {QKeySequence(tr("Ctrl+D"))},
              tr("Removes the selected atom"), &MovieTab::removeSelected)
        ->setIcon(theme::icon(QStringLiteral("remove")));
    addForTab(QStringLiteral("export"), tr("&Export This Atom…"),
              {QKeySequence(tr("Ctrl+Shift+E"))},
              tr("Writes the selected atom's bytes into a file"), &MovieTab::exportSelected)
        ->setIcon(theme::icon(QStringLiteral("export")));

    addForTab(QStringLiteral("copyPath"), tr("&Copy Path"), {QKeySequence(tr("Ctrl+Shift+C"))},
              tr("Copies the selected atom's path, as the command vexqt takes it"),
              [](MovieTab& tab) { QApplication::clipboard()->setText(tab.selectedPath()); })
        ->setIcon(theme::icon(QStringLiteral("copy")));
    addForTab(QStringLiteral("copyCommand"), tr("Copy as Co&mmand"),
              {QKeySequence(tr("Ctrl+Alt+C"))},
              tr("Copies a command that shows the selected atom in a terminal"),
              [](MovieTab& tab) { QApplication::clipboard()->setText(tab.selectionAsCommand()); });
}

void MainWindow::makeViewActions() {
    addForTab(QStringLiteral("filter"), tr("&Filter Atoms"), {QKeySequence::Find},
              tr("Shows the atoms whose type or name has a text in it"), &MovieTab::findAtoms);
    addForTab(QStringLiteral("goToPath"), tr("Go to &Path…"), {QKeySequence(tr("Ctrl+L"))},
              tr("Selects the atom with a path"), &MovieTab::askForPath);
    addForTab(QStringLiteral("goToOffset"), tr("Go to &Offset…"), {QKeySequence(tr("Ctrl+G"))},
              tr("Shows the bytes at an offset of the file"), &MovieTab::askForOffset);
    addForTab(QStringLiteral("toTree"), tr("&Tree of Atoms"), {QKeySequence(tr("Ctrl+1"))},
              tr("Moves to the tree"), &MovieTab::enterTree);
    addForTab(QStringLiteral("toView"), tr("&View of the Atom"), {QKeySequence(tr("Ctrl+2"))},
              tr("Moves to the selected atom's fields"), &MovieTab::enterView);
    addForTab(QStringLiteral("toBytes"), tr("&Bytes"), {QKeySequence(tr("Ctrl+3"))},
              tr("Moves to the bytes"), &MovieTab::enterBytes);
    QAction* bytes = add(QStringLiteral("showBytes"), tr("&Show Bytes"),
                         {QKeySequence(tr("Ctrl+B"))}, tr("Shows or hides the bytes of the file"));
    bytes->setCheckable(true);
    bytes->setChecked(true);
    bytes->setIcon(theme::icon(QStringLiteral("bytes")));
    connect(bytes, &QAction::toggled, this, [this](bool isShown) {
        if (MovieTab* tab = currentTab()) tab->setBytesVisible(isShown);
    });
    tabActions_ << bytes;
    addForTab(QStringLiteral("expandAll"), tr("&Expand All"), {QKeySequence(tr("F9"))},
              tr("Shows all atoms of the tree"), &MovieTab::expandAll);
    addForTab(QStringLiteral("collapseAll"), tr("&Collapse All"), {QKeySequence(tr("Shift+F9"))},
              tr("Shows the top of the tree alone"), &MovieTab::collapseAll);

    addForTab(QStringLiteral("goToRow"), tr("&Go to Row…"), {QKeySequence(tr("Ctrl+R"))},
              tr("Shows an entry of the table"), &MovieTab::askForRow);
    addForTab(QStringLiteral("copyRows"), tr("&Copy as CSV"), {QKeySequence(tr("Ctrl+Shift+T"))},
              tr("Copies the selected cells of the table, fields parted by commas"),
              &MovieTab::copyRows);
    addForTab(
        QStringLiteral("exportTable"), tr("&Export as CSV…"), {QKeySequence(tr("Ctrl+Shift+X"))},
        tr("Writes the whole table into a file, fields parted by commas"), &MovieTab::exportTable);
}

void MainWindow::makeColorActions() {
    auto* group = new QActionGroup(this);
    const auto addTheme = [&](const QString& name, const QString& text, theme::Choice choice) {
        QAction* action = add(name, text, {}, tr("Chooses the window's colours"));
        action->setCheckable(true);
        action->setData(static_cast<int>(choice));
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, choice] { setTheme(choice); });
    };
    addTheme(QStringLiteral("themeSystem"), tr("As the &System"), theme::Choice::System);
    addTheme(QStringLiteral("themeLight"), tr("&Light"), theme::Choice::Light);
    addTheme(QStringLiteral("themeDark"), tr("&Dark"), theme::Choice::Dark);
    actionNamed(QStringLiteral("themeSystem"))->setChecked(true);
}

void MainWindow::makeHelpActions() {
    QAction* keys = add(QStringLiteral("shortcuts"), tr("&Keyboard Shortcuts"),
                        {QKeySequence(tr("F1"))}, tr("Lists what the keys do"));
    connect(keys, &QAction::triggered, this, &MainWindow::showShortcuts);
    QAction* about = add(QStringLiteral("about"), tr("&About VexQt Inspector"), {},
                         tr("Tells which version this is"));
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, &MainWindow::showAbout);
}

void MainWindow::makeMenus() {
    const auto fill = [this](QMenu* menu, std::initializer_list<const char*> names) {
        for (const char* name : names) {
            if (*name == '\0') {
                menu->addSeparator();
            } else {
                menu->addAction(actionNamed(QLatin1String(name)));
            }
        }
    };
    QMenu* file = menuBar()->addMenu(tr("&File"));
    fill(file, {"open"});
    recentMenu_ = file->addMenu(tr("Open R&ecent"));
    fill(file, {"", "save", "saveCopy", "check", "takeBack", "", "readAgain", "close", "", "quit"});
    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    fill(edit, {"undo", "redo", "", "insertInto", "insertBehind", "replace", "remove", "export", "",
                "copyPath", "copyCommand"});
    QMenu* view = menuBar()->addMenu(tr("&View"));
    fill(view, {"filter", "expandAll", "collapseAll", "", "showBytes", ""});
    QMenu* colors = view->addMenu(tr("Colou&rs"));
    fill(colors, {"themeSystem", "themeLight", "themeDark"});
    QMenu* go = menuBar()->addMenu(tr("&Go"));
    fill(go, {"goToPath", "goToOffset", "", "toTree", "toView", "toBytes"});
    QMenu* table = menuBar()->addMenu(tr("&Table"));
    fill(table, {"goToRow", "copyRows", "exportTable"});
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    fill(help, {"shortcuts", "about"});
}

void MainWindow::makeToolBar() {
    QToolBar* bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({18, 18});
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    setContextMenuPolicy(Qt::NoContextMenu);
    const auto addTool = [&](const char* name, const QString& text) {
        QAction* action = actionNamed(QLatin1String(name));
        action->setIconText(text);
        bar->addAction(action);
    };
    addTool("open", tr("Open"));
    addTool("save", tr("Save"));
    bar->addSeparator();
    addTool("undo", tr("Undo"));
    addTool("redo", tr("Redo"));
    bar->addSeparator();
    addTool("insertInto", tr("Insert"));
    addTool("remove", tr("Remove"));
    addTool("export", tr("Export"));
    bar->addSeparator();
    addTool("copyPath", tr("Copy Path"));
    addTool("showBytes", tr("Bytes"));
}

void MainWindow::addTabActions(MovieTab& tab) const {
    const auto addTo = [&](QWidget& widget, std::initializer_list<const char*> names) {
        for (const char* name : names) widget.addAction(actionNamed(QLatin1String(name)));
    };
    addTo(tab.tree(),
          {"copyPath", "copyCommand", "insertInto", "insertBehind", "replace", "remove", "export"});
    // In the tree the key that deletes means the atom; in a field it means a letter.
    new QShortcut(QKeySequence::Delete, &tab.tree(), actionNamed(QStringLiteral("remove")),
                  &QAction::trigger, Qt::WidgetShortcut);
}

// MARK: Movies

MovieTab* MainWindow::currentTab() const { return qobject_cast<MovieTab*>(tabs_->currentWidget()); }

int MainWindow::tabCount() const { return tabs_->count(); }

void MainWindow::askForMovies() {
    QString last = recent_.paths().value(0);
    if (MovieTab* tab = currentTab()) last = tab->document().path();
    const QString folder = last.isEmpty() ? QString() : QFileInfo(last).absolutePath();
    for (const QString& path :
         QFileDialog::getOpenFileNames(this, tr("Open Movies"), folder, movieFilter()))
        openMovie(path);
}

bool MainWindow::openMovie(const QString& path) {
    lastError_.clear();
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (int i = 0; i < tabs_->count(); ++i) {
        auto* tab = qobject_cast<MovieTab*>(tabs_->widget(i));
        if (QFileInfo(tab->document().path()) != QFileInfo(absolute)) continue;
        tabs_->setCurrentIndex(i);
        return true;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    auto document = Document::open(absolute, lastError_);
    QApplication::restoreOverrideCursor();
    if (!document) {
        sayWhyNot(absolute, lastError_);
        return false;
    }
    auto* tab = new MovieTab(std::move(document));
    addTabActions(*tab);
    connect(tab, &MovieTab::changed, this, &MainWindow::showTab);
    connect(tab, &MovieTab::openRequested, this, &MainWindow::openMovie);
    const int index = tabs_->addTab(tab, tab->document().name());
    tabs_->setTabToolTip(index, absolute);
    tabs_->setCurrentIndex(index);
    tab->setBytesVisible(actionNamed(QStringLiteral("showBytes"))->isChecked());
    pages_->setCurrentWidget(tabs_);
    recent_.add(absolute);
    showRecentFiles();
    showTab();
    tab->enterTree();
    return true;
}

void MainWindow::sayWhyNot(const QString& path, const QString& why) {
    const QString text = tr("%1 cannot be opened: %2").arg(path, why);
    recent_.remove(path);
    showRecentFiles();
    if (MovieTab* tab = currentTab()) return tab->say(theme::MessageKind::Problem, text);
    welcome_->say(text);
}

bool MainWindow::closeTab(int index) {
    auto* tab = qobject_cast<MovieTab*>(tabs_->widget(index));
    if (tab == nullptr) return true;
    tabs_->setCurrentIndex(index);
    if (!tab->mayClose()) return false;
    tabs_->removeTab(index);
    delete tab;
    showTab();
    return true;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    while (tabs_->count() > 0)
        if (!closeTab(tabs_->count() - 1)) return event->ignore();
    if (settings_ != nullptr) settings_->setValue(kGeometryKey, saveGeometry());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!filesIn(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    for (const QString& path : filesIn(*event->mimeData())) openMovie(path);
}

void MainWindow::showRecentFiles() {
    recentMenu_->clear();
    recentMenu_->setEnabled(!recent_.paths().isEmpty());
    int number = 0;
    for (const QString& path : recent_.paths()) {
        QString name = QFileInfo(path).fileName();
        name.replace(u'&', QStringLiteral("&&"));
        const QString text = ++number < 10 ? tr("&%1  %2").arg(number).arg(name)
                                           : tr("%1  %2").arg(number).arg(name);
        QAction* action = recentMenu_->addAction(text);
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] { openMovie(path); });
    }
    recentMenu_->addSeparator();
    connect(recentMenu_->addAction(tr("&Forget These")), &QAction::triggered, this, [this] {
        recent_.clear();
        showRecentFiles();
    });
    welcome_->setRecent(recent_.paths());
}

// MARK: What can be done now

void MainWindow::showTab() {
    pages_->setCurrentWidget(tabs_->count() > 0 ? static_cast<QWidget*>(tabs_) : welcome_);
    for (int i = 0; i < tabs_->count(); ++i) {
        Document& document = qobject_cast<MovieTab*>(tabs_->widget(i))->document();
        QString text = document.name();
        text.replace(u'&', QStringLiteral("&&"));
        tabs_->setTabText(
            i, document.isModified() ? tr("%1 •", "a movie with edits").arg(text) : text);
    }
    MovieTab* tab = currentTab();
    setWindowModified(tab != nullptr && tab->document().isModified());
    setWindowTitle(tab != nullptr ? tr("%1[*] – VexQt Inspector").arg(tab->document().name())
                                  : tr("VexQt Inspector"));
    setWindowFilePath(tab != nullptr ? tab->document().path() : QString());
    if (tab != nullptr) tab->setBytesVisible(actionNamed(QStringLiteral("showBytes"))->isChecked());
    showState();
}

void MainWindow::showState() {
    MovieTab* tab = currentTab();
    for (QAction* action : tabActions_) action->setEnabled(tab != nullptr);
    const auto enable = [this](const char* name, bool isPossible) {
        actionNamed(QLatin1String(name))->setEnabled(isPossible);
    };
    QUndoStack* history = tab != nullptr ? &tab->document().history() : nullptr;
    const auto showHistory = [&](const char* name, bool can, const QString& plain,
                                 const QString& what) {
        QAction* action = actionNamed(QLatin1String(name));
        const QString iconText = action->iconText();
        action->setEnabled(can);
        action->setText(can && !what.isEmpty() ? tr("%1 “%2”").arg(plain, what) : plain);
        action->setIconText(iconText);
    };
    showHistory("undo", history != nullptr && history->canUndo(), tr("&Undo"),
                history != nullptr ? history->undoText() : QString());
    showHistory("redo", history != nullptr && history->canRedo(), tr("&Redo"),
                history != nullptr ? history->redoText() : QString());
    if (tab == nullptr) return;

    VexQTAtom* atom = tab->selectedAtom();
    const VexQTAtom* holder = tab->document().atoms().holderOf(atom);
    const bool isAtom = atom != nullptr;
    const bool isHeld = holder != nullptr && Document::canHold(*holder);
    enable("insertInto", isAtom && Document::canHold(*atom));
    enable("insertBehind", isHeld);
    enable("replace", isHeld);
    enable("remove", isAtom && tab->document().whyNotRemovable(*atom).isEmpty());
    enable("export", isAtom);
    enable("copyPath", isAtom);
    const Table table = tab->table();
    const bool hasEntries = table.list() != nullptr && table.entryCount() > 0;
    enable("goToRow", hasEntries);
    enable("copyRows", table.view != nullptr);
    enable("exportTable", hasEntries);
}

void MainWindow::setTheme(theme::Choice choice) {
    theme::apply(*qApp, choice);
    if (settings_ != nullptr) settings_->setValue(kThemeKey, static_cast<int>(choice));
}

void MainWindow::restore() {
    if (settings_ == nullptr) return;
    restoreGeometry(settings_->value(kGeometryKey).toByteArray());
    const int choice = settings_->value(kThemeKey).toInt();
    for (const char* name : {"themeSystem", "themeLight", "themeDark"}) {
        QAction* action = actionNamed(QLatin1String(name));
        if (action->data().toInt() == choice && choice != 0) action->trigger();
    }
}

// MARK: Help

void MainWindow::showShortcuts() { ShortcutSheet(menuBar()->actions(), this).exec(); }

void MainWindow::showAbout() {
    QMessageBox::about(
        this, tr("About VexQt Inspector"),
        tr("<h3>VexQt Inspector %1</h3>"
           "<p>Looks inside QuickTime movies and changes what is there, without moving the "
           "media.</p><p>Free software under the MIT licence.</p>")
            .arg(QStringLiteral(VEXQT_VERSION)));
}

}  // namespace vexqt::inspector_app
