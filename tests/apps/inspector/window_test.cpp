#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QTreeView>

#include "apps/inspector/AtomPane.h"
#include "apps/inspector/BytePane.h"
#include "apps/inspector/MainWindow.h"
#include "apps/inspector/MovieTab.h"
#include "apps/inspector/PathBar.h"
#include "apps/inspector/RemarkList.h"
#include "apps/inspector/SaveSheet.h"
#include "apps/inspector/WelcomePage.h"
#include "apps/inspector/program.h"
#include "movies.h"
#include "vexqt/inspector/NotificationCenter.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

class WindowTest : public QObject {
    Q_OBJECT

private:
    MovieFolder folder_;
    std::unique_ptr<MainWindow> window_;

    void trigger(const char* name) {
        QAction* action = window_->actionNamed(QLatin1String(name));
        QVERIFY2(action != nullptr, name);
        QVERIFY2(action->isEnabled(), name);
        action->trigger();
    }
    bool canTrigger(const char* name) {
        return window_->actionNamed(QLatin1String(name))->isEnabled();
    }
    MovieTab& tab() { return *window_->currentTab(); }
    Document& document() { return tab().document(); }
    void open(const QString& path) {
        QVERIFY2(window_->openMovie(path), qPrintable(window_->lastError()));
    }
    void select(const QString& path) {
        QString error;
        QVERIFY2(tab().selectPath(path, error), qPrintable(error));
    }
    static void chooseFile(const QString& path) {
        answer([path](QDialog& dialog) {
            auto* files = qobject_cast<QFileDialog*>(&dialog);
            if (files == nullptr) return dialog.reject();
            files->selectFile(path);
            QMetaObject::invokeMethod(files, "accept");
        });
    }
    static void press(QDialog& dialog, const QString& text) {
        for (auto* button : dialog.findChildren<QAbstractButton*>())
            if (button->text().remove(u'&') == text) return button->click();
        QWARN(qPrintable("no button " + text));
        dialog.reject();
    }
    /// The sample tables of a movie, by their atoms.
    static Bytes movieWithTables(std::initializer_list<ByteView> tables) {
        using namespace testing;
        return join(
            {atom("ftyp"_os, {text("qt  "), u32(0)}), atom("mdat"_os, {zeros(5000)}),
             atom("moov"_os,
                  {movieHeader(),
                   atom("trak"_os,
                        {atom("mdia"_os, {atom("minf"_os, {atom("stbl"_os, tables)})})})})});
    }

private slots:
    void initTestCase() {
        prepare(*qApp, false);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    }
    void init() {
        window_ = std::make_unique<MainWindow>();
        window_->show();
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    }
    void cleanup() {
        for (auto* each : window_->findChildren<MovieTab*>()) each->document().history().setClean();
        while (window_->tabCount() > 0) QVERIFY(window_->closeTab(0));
        window_.reset();
    }

    // MARK: The window as a whole

    void everyActionHasATextAndATipAndAPlaceInAMenu() {
        QSet<const QAction*> inMenus;
        QList<QMenu*> menus = window_->findChildren<QMenu*>();
        for (const QMenu* menu : menus)
            for (const QAction* action : menu->actions()) inMenus.insert(action);
        int count = 0;
        for (const QAction* action : window_->findChildren<QAction*>()) {
            if (action->objectName().isEmpty() || action->objectName().startsWith('_')) continue;
            ++count;
            QVERIFY2(!action->text().isEmpty(), qPrintable(action->objectName()));
            QVERIFY2(!action->statusTip().isEmpty(), qPrintable(action->objectName()));
            QVERIFY2(inMenus.contains(action), qPrintable(action->objectName()));
        }
        QVERIFY(count > 30);
    }

    void shortcutsDoNotClash() {
        QHash<QKeySequence, QString> taken;
        for (const QAction* action : window_->findChildren<QAction*>()) {
            for (const QKeySequence& keys : action->shortcuts()) {
                QVERIFY2(!taken.contains(keys),
                         qPrintable(keys.toString() + ": " + action->text() + ", " + taken[keys]));
                taken.insert(keys, action->text());
            }
        }
        QVERIFY(taken.size() > 20);
    }

    void mnemonicsOfAMenuDoNotClash() {
        open(folder_.addSmallMovie());
        QList<QList<QAction*>> levels = {window_->menuBar()->actions()};
        for (const QMenu* menu : window_->findChildren<QMenu*>()) levels << menu->actions();
        for (const QList<QAction*>& level : levels) {
            QHash<QChar, QString> taken;
            for (const QAction* action : level) {
                if (action->isSeparator() || action->text().isEmpty()) continue;
                QString text = action->text();
                text.replace("&&", " ");
                const qsizetype mark = text.indexOf('&');
                QVERIFY2(mark >= 0, qPrintable(text));
                const QChar letter = text[mark + 1].toLower();
                QVERIFY2(!taken.contains(letter), qPrintable(text + ", " + taken.value(letter)));
                taken.insert(letter, text);
            }
        }
    }

    void everyControlHasANameForThoseWhoDoNotSee() {
        open(folder_.addSmallMovie());
        for (const char* path : {"moov", "moov.mvhd", "mdat"}) {
            select(path);
            for (const QWidget* widget : window_->findChildren<QWidget*>()) {
                const bool isControl = (widget->focusPolicy() & Qt::TabFocus) != 0;
                if (!isControl || !widget->isVisible()) continue;
                if (tab().atomPane().controller() != nullptr &&
                    tab().atomPane().controller()->view()->isAncestorOf(widget))
                    continue;  // The forms have a test of their own.
                if (QByteArray(widget->metaObject()->className()).startsWith("QTabBar") ||
                    widget->inherits("QScrollArea"))
                    continue;
                QAccessibleInterface* seen =
                    QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
                QVERIFY2(seen != nullptr && !seen->text(QAccessible::Name).isEmpty(),
                         qPrintable(QString("%1 %2").arg(widget->metaObject()->className(),
                                                         widget->objectName())));
            }
        }
    }

    void withoutAMovieOnlyOpeningIsOffered() {
        for (const char* name : {"save", "saveCopy", "close", "remove", "copyPath", "goToOffset"})
            QVERIFY2(!canTrigger(name), name);
        QVERIFY(canTrigger("open"));
        QVERIFY(window_->currentTab() == nullptr);
    }

    // MARK: Opening

    void aFileThatCannotBeOpenedIsToldOfInTheWindow() {
        QVERIFY(!window_->openMovie(folder_.path("none.mov")));
        QCOMPARE(window_->tabCount(), 0);
        const auto* page = window_->findChild<WelcomePage*>();
        QVERIFY2(page->problem().endsWith("none.mov cannot be opened: No such file or directory"),
                 qPrintable(page->problem()));
        open(folder_.addSmallMovie());
        QVERIFY(!window_->openMovie(folder_.path("none.mov")));
        QVERIFY(tab().messages().value(0).contains("No such file or directory"));
    }

    void aFileThatIsNoMovieShowsItsBytesAndSaysSo() {
        open(folder_.add("text.mov", testing::text("Not a movie at all.")));
        QVERIFY(tab().messages().value(0).contains("could not be read as a movie"));
        QVERIFY(tab().remarks().isVisible());
        QCOMPARE(document().bytes().length(), quint64{19});
        QVERIFY(tab().bytePane().hex().rowCount() > 0);
    }

    void anEmptyFileIsNoReasonToFall() {
        open(folder_.add("empty.mov", {}));
        QVERIFY(tab().selectedAtom() == nullptr || tab().document().bytes().length() == 0);
        QVERIFY(!tab().messages().isEmpty());
    }

    void aDamagedMovieListsWhereItBroke() {
        Bytes movie = testing::smallMovie();
        movie.resize(movie.size() - 150);
        open(folder_.add("cut.mov", movie));
        QVERIFY(tab().remarks().isVisible());
        QVERIFY(tab().remarks().topLevelItemCount() > 0);
        // Choosing a problem goes there.
        for (int i = 0; i < tab().remarks().topLevelItemCount(); ++i)
            emit tab().remarks().itemActivated(tab().remarks().topLevelItem(i), 0);
        QVERIFY(tab().selectedAtom() != nullptr);
    }

    void oneMovieHasOneTab() {
        const QString path = folder_.addSmallMovie();
        open(path);
        open(folder_.addSmallMovie("other.mov"));
        QCOMPARE(window_->tabCount(), 2);
        open(path);
        QCOMPARE(window_->tabCount(), 2);
        QCOMPARE(document().name(), "clip.mov");
    }

    void droppedFilesAreOpened() {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(folder_.addSmallMovie("a.mov")),
                      QUrl::fromLocalFile(folder_.addSmallMovie("b.mov"))});
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &drop);
        QCOMPARE(window_->tabCount(), 2);
    }

    void theOpenDialogueOpens() {
        chooseFile(folder_.addSmallMovie());
        trigger("open");
        QCOMPARE(window_->tabCount(), 1);
    }

    void recentMoviesAreRememberedAndForgotten() {
        QSettings settings(folder_.path("settings.ini"), QSettings::IniFormat);
        const QString path = folder_.addSmallMovie();
        {
            MainWindow window(&settings);
            QVERIFY(window.openMovie(path));
        }
        RecentFiles recent(&settings);
        QCOMPARE(recent.paths(), QStringList(path));
        for (int i = 0; i < 12; ++i) recent.add(folder_.path(QString::number(i)));
        QCOMPARE(recent.paths().size(), 10);
        QCOMPARE(QFileInfo(recent.paths().first()).fileName(), "11");
        recent.remove(recent.paths().first());
        QCOMPARE(recent.paths().size(), 9);
        recent.clear();
        QCOMPARE(RecentFiles(&settings).paths().size(), 0);
    }

    // MARK: Moving about

    void theMovieIsSelectedAtFirstAndItsPathShown() {
        open(folder_.addSmallMovie());
        QCOMPARE(tab().selectedPath(), "moov");
        select("moov.trak[1].mdia.hdlr");
        QCOMPARE(tab().pathBar().path(), "moov.trak[1].mdia.hdlr");
        QCOMPARE(tab().atomPane().atom(), tab().selectedAtom());
    }

    void partsOfThePathLeadThere() {
        open(folder_.addSmallMovie());
        select("moov.trak[1].mdia.hdlr");
        emit tab().pathBar().partChosen(1);
        QCOMPARE(tab().selectedPath(), "moov.trak[1]");
    }

    void aTypedPathSelectsAndAWrongOneSaysWhy() {
        open(folder_.addSmallMovie());
        trigger("goToPath");
        auto* field = tab().pathBar().findChild<QLineEdit*>();
        QVERIFY(field->isVisible());
        field->setText("moov.trak[soun].tkhd");
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(tab().selectedPath(), "moov.trak[1].tkhd");
        trigger("goToPath");
        field->setText("moov.nope");
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(tab().selectedPath(), "moov.trak[1].tkhd");
        QVERIFY(field->accessibleDescription().contains("no 'nope'"));
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!field->isVisible());
    }

    void pathAndCommandAreCopied() {
        open(folder_.addSmallMovie("a clip's.mov"));
        select("moov.trak[1].tkhd");
        trigger("copyPath");
        QCOMPARE(QApplication::clipboard()->text(), "moov.trak[1].tkhd");
        trigger("copyCommand");
        QVERIFY(
            QApplication::clipboard()->text().endsWith("a clip'\\''s.mov' 'moov.trak[1].tkhd'"));
        QVERIFY(QApplication::clipboard()->text().startsWith("vexqt show '"));
    }

    void theFilterShowsMatchesAndKeepsTheSelection() {
        open(folder_.addSmallMovie());
        select("moov.trak[1].tkhd");
        trigger("filter");
        tab().filterField().setText("tkhd");
        QCOMPARE(tab().selectedPath(), "moov.trak[1].tkhd");
        QVERIFY(tab().tree().isExpanded(tab().tree().model()->index(0, 0)));
        tab().filterField().setText("nothing like this");
        QCOMPARE(tab().tree().model()->rowCount(), 0);
        tab().filterField().clear();
        QCOMPARE(tab().selectedPath(), "moov.trak[1].tkhd");
        // What is hidden can be gone to.
        tab().filterField().setText("mvhd");
        select("moov.trak.tkhd");
        QCOMPARE(tab().filterField().text(), "");
        QCOMPARE(tab().selectedPath(), "moov.trak.tkhd");
    }

    void theKeyboardGoesFromEndToEnd() {
        open(folder_.addSmallMovie());
        trigger("toTree");
        QVERIFY(tab().tree().hasFocus());
        select("moov.mvhd");
        trigger("toBytes");
        QVERIFY(tab().bytePane().hex().hasFocus());
        trigger("goToOffset");
        QVERIFY(tab().bytePane().findChild<QLineEdit*>()->hasFocus());
        trigger("filter");
        QVERIFY(tab().filterField().hasFocus());
        trigger("toView");
        QVERIFY(!tab().filterField().hasFocus());
        QVERIFY(tab().atomPane().isAncestorOf(QApplication::focusWidget()));
        trigger("showBytes");
        QVERIFY(!tab().bytePane().isVisible());
        trigger("showBytes");
        QVERIFY(tab().bytePane().isVisible());
        trigger("expandAll");
        trigger("collapseAll");
    }

    void aContainerShowsWhatIsInIt() {
        open(folder_.addSmallMovie());
        select("moov.trak");
        auto* contents = tab().atomPane().findChild<QTreeView*>();
        QVERIFY(contents->isVisible());
        QCOMPARE(contents->model()->rowCount(contents->rootIndex()), 2);
        emit contents->activated(contents->model()->index(0, 0, contents->rootIndex()));
        QCOMPARE(tab().selectedPath(), "moov.trak.tkhd");
    }

    void theBytesAreThoseOfTheSelectedAtom() {
        open(folder_.addSmallMovie());
        select("moov.mvhd");
        QCOMPARE(tab().bytePane().hex().range(), (ByteRange{44, 108}));
        select("mdat");
        QCOMPARE(tab().bytePane().hex().range(), (ByteRange{24, 12}));
    }

    void theFocusedFieldsBytesStandOut() {
        open(folder_.addSmallMovie());
        select("moov.mvhd");
        emit tab().atomPane().fieldFocused("timeScale");
        QCOMPARE(tab().bytePane().hex().highlight(), (ByteRange{64, 4}));
        emit tab().atomPane().fieldFocused("");
        QCOMPARE(tab().bytePane().hex().highlight(), (ByteRange{64, 4}));
        select("moov.trak.tkhd");
        QVERIFY(tab().bytePane().hex().highlight().isEmpty());
    }

    void aNotificationOfAChunkShowsItsBytes() {
        open(folder_.addSmallMovie());
        auto& centre = NotificationCenter::defaultCenter();
        QWidget inside(&tab());
        QWidget elsewhere;
        const QVariantMap chunk = {{"offset", qulonglong{32}}, {"length", 1024}};
        const QString name = "VexQTChunkOffsetDoubleClickNotification";
        centre.post(name, &elsewhere, chunk);
        QVERIFY(tab().bytePane().hex().highlight().isEmpty());
        centre.post("AnotherNotification", &inside, chunk);
        QVERIFY(tab().bytePane().hex().highlight().isEmpty());
        centre.post(name, &inside, chunk);
        const quint64 end = document().bytes().length();
        QCOMPARE(tab().bytePane().hex().highlight(),
                 (ByteRange{32, std::min<quint64>(1024, end - 32)}));
        QCOMPARE(tab().bytePane().hex().cursor(), quint64{32});
        centre.post(name, &inside, {{"offset", qulonglong{1} << 60}, {"length", 1024}});
        QVERIFY(tab().messages().value(0).contains("This chunk begins at"));
    }

    // MARK: Editing

    void undoAndRedoNameTheEdit() {
        open(folder_.addSmallMovie());
        QVERIFY(!canTrigger("undo"));
        VexQTAtom& header = atomAt(document(), "moov.mvhd");
        edit(document(), header, "timeScale", std::uint64_t{601});
        QVERIFY(window_->isWindowModified());
        QVERIFY(window_->actionNamed("undo")->text().contains("Change timeScale"));
        select("moov.trak");
        trigger("undo");
        // What was undone is in view.
        QCOMPARE(tab().selectedPath(), "moov.mvhd");
        QVERIFY(!window_->isWindowModified());
        QVERIFY(canTrigger("redo"));
        trigger("redo");
        QCOMPARE(header.valueForKey("timeScale"), Value(std::uint64_t{601}));
    }

    void anAtomIsRemovedAndComesBack() {
        open(folder_.addSmallMovie());
        select("moov.trak");
        trigger("remove");
        QVERIFY(tab().selectedAtom() != nullptr);
        QCOMPARE(tab().atomPane().atom(), tab().selectedAtom());
        QCOMPARE(document().asset().moovAtom()->children().size(), std::size_t{4});
        trigger("undo");
        QCOMPARE(tab().selectedPath(), "moov.trak");
        QCOMPARE(document().plan().way(), SavePlan::Way::Nothing);
        select("moov");
        QVERIFY(!canTrigger("remove"));
    }

    void theKeyThatDeletesRemovesInTheTree() {
        open(folder_.addSmallMovie());
        select("moov.trak");
        trigger("toTree");
        QTest::keyClick(&tab().tree(), Qt::Key_Delete);
        QCOMPARE(document().history().count(), 1);
        trigger("filter");
        QTest::keyClick(&tab().filterField(), Qt::Key_Delete);
        QCOMPARE(document().history().count(), 1);
    }

    void allButOneOfManyAtomsCanBeRemovedOneByOne() {
        open(folder_.addSmallMovie());
        const QAbstractItemModelTester tester(&document().atoms());
        for (int i = 0; i < 5; ++i) {
            QString error;
            const QModelIndex first = document().atoms().index(
                0, 0, document().atoms().indexOf(document().asset().moovAtom()));
            tab().select(document().atoms().atomAt(first));
            trigger("remove");
        }
        QCOMPARE(document().asset().moovAtom()->children().size(), std::size_t{0});
        for (int i = 0; i < 5; ++i) trigger("undo");
        QCOMPARE(document().plan().way(), SavePlan::Way::Nothing);
    }

    void atomsAreInsertedReplacedAndExported() {
        open(folder_.addSmallMovie());
        const QString source =
            folder_.add("name.bin", testing::atom("name"_os, {testing::text("x")}));
        select("moov");
        chooseFile(source);
        trigger("insertInto");
        QCOMPARE(tab().selectedPath(), "moov.name");
        QVERIFY(tab().bytePane().caption().contains("as a save will write it"));
        QCOMPARE(tab().bytePane().hex().range(), (ByteRange{0, 9}));

        select("moov.mvhd");
        QVERIFY(!canTrigger("insertInto"));
        chooseFile(source);
        trigger("insertBehind");
        QCOMPARE(toQString(document().asset().moovAtom()->children()[1]->atomTypeString()), "name");

        select("moov.trak");
        chooseFile(source);
        trigger("replace");
        QCOMPARE(document().history().count(), 3);
        QVERIFY(window_->actionNamed("undo")->text().contains("Replace trak"));

        select("moov.mvhd");
        chooseFile(folder_.path("out.bin"));
        trigger("export");
        QCOMPARE(contentsOf(folder_.path("out.bin")), asArray(testing::movieHeader()));
        select("mdat");
        chooseFile(folder_.path("media.bin"));
        trigger("export");
        QCOMPARE(contentsOf(folder_.path("media.bin")).mid(8), "DATA");
    }

    void aFileThatIsNoAtomIsRefusedInTheWindow() {
        open(folder_.addSmallMovie());
        chooseFile(folder_.add("text.bin", testing::text("This is no atom.")));
        trigger("insertInto");
        QCOMPARE(document().history().count(), 0);
        QVERIFY(tab().messages().value(0).startsWith("text.bin: it is not one atom"));
    }

    // MARK: Saving

    void aSaveShowsWhatItWillDoAndKeepsTheSelection() {
        const QString path = folder_.addSmallMovie();
        open(path);
        select("moov.trak[1].tkhd");
        edit(document(), *tab().selectedAtom(), "layer", std::int64_t{9});
        const QByteArray before = contentsOf(path);
        answer([&](QDialog& dialog) {
            QVERIFY(qobject_cast<SaveSheet*>(&dialog));
            QCOMPARE(contentsOf(path), before);
            press(dialog, "Save");
        });
        trigger("save");
        QVERIFY(contentsOf(path) != before);
        QVERIFY(!document().isModified());
        QCOMPARE(tab().selectedPath(), "moov.trak[1].tkhd");
        QCOMPARE(tab().selectedAtom()->valueForKey("layer"), Value(std::int64_t{9}));
        QVERIFY(tab().messages().value(0).contains("is saved"));
    }

    void whatIsBeingTypedIsSavedToo() {
        const QString path = folder_.addSmallMovie();
        open(path);
        select("moov.mvhd");
        trigger("toView");
        QWidget* field = nullptr;
        for (QWidget* each : tab().atomPane().findChildren<QWidget*>())
            if (each->property("key").toString() == "timeScale") field = each;
        QVERIFY(field != nullptr);
        field->setFocus();
        QCOMPARE(tab().bytePane().hex().highlight(), (ByteRange{64, 4}));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), "601");
        answer([](QDialog& dialog) { press(dialog, "Save"); });
        trigger("save");
        QCOMPARE(contentsOf(path).mid(64, 4).toHex(), "00000259");
        QVERIFY(!document().isModified());
    }

    void anEditInTheViewIsUndoneInTheView() {
        open(folder_.addSmallMovie());
        select("moov.mvhd");
        QWidget* field = nullptr;
        for (QWidget* each : tab().atomPane().findChildren<QWidget*>())
            if (each->property("key").toString() == "timeScale") field = each;
        QVERIFY(field != nullptr);
        const QVariant before = field->property("value");
        field->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), "48000");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(document().history().count(), 1);
        QCOMPARE(tab().selectedAtom()->valueForKey("timeScale"), Value(std::uint64_t{48'000}));
        trigger("undo");
        QCOMPARE(field->property("value"), before);
        QCOMPARE(document().plan().way(), SavePlan::Way::Nothing);
    }

    void aSaveThatIsCancelledWritesNothing() {
        const QString path = folder_.addSmallMovie();
        open(path);
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        const QByteArray before = contentsOf(path);
        answer([](QDialog& dialog) { dialog.reject(); });
        trigger("save");
        QCOMPARE(contentsOf(path), before);
        QVERIFY(document().isModified());
    }

    void aCopyIsSavedAndCanBeOpened() {
        open(folder_.addSmallMovie());
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        chooseFile(folder_.path("copy.mov"));
        trigger("saveCopy");
        QVERIFY(tab().messages().value(0).contains("saved as copy.mov"));
        for (auto* button : tab().findChildren<QPushButton*>())
            if (button->text().contains("Open the Copy")) return button->click();
        QFAIL("no way to open the copy");
    }

    void theCheckChangesNothing() {
        const QString path = folder_.addSmallMovie();
        open(path);
        const QByteArray before = contentsOf(path);
        answer([](QDialog& dialog) { press(dialog, "Close"); });
        trigger("check");
        QCOMPARE(contentsOf(path), before);
    }

    void closingAsksForEditsThatAreNotSaved() {
        open(folder_.addSmallMovie());
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        answer([](QDialog& dialog) { press(dialog, "Cancel"); });
        trigger("close");
        QCOMPARE(window_->tabCount(), 1);
        answer([](QDialog& dialog) { press(dialog, "Cancel"); });
        QVERIFY(!window_->close());
        answer([](QDialog& dialog) { press(dialog, "Discard"); });
        trigger("close");
        QCOMPARE(window_->tabCount(), 0);
    }

    void closingCanSave() {
        const QString path = folder_.addSmallMovie();
        open(path);
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        answer([](QDialog& question) {
            answer([](QDialog& sheet) { press(sheet, "Save"); });
            press(question, "Save…");
        });
        trigger("close");
        QCOMPARE(window_->tabCount(), 0);
        QCOMPARE(contentsOf(path).mid(64, 4).toHex(), "00000259");
    }

    void aChangeOnTheDiskIsOfferedToBeReadAgain() {
        const QString path = folder_.addSmallMovie();
        open(path);
        select("moov.mvhd");
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.seek(64);
        file.write(QByteArray::fromHex("00000259"));
        file.close();
        QTRY_VERIFY(!tab().messages().isEmpty());
        QVERIFY(tab().messages().value(0).contains("has changed on the disk"));
        for (auto* button : tab().findChildren<QPushButton*>())
            if (button->text().remove('&') == "Read Again") button->click();
        QCOMPARE(tab().selectedPath(), "moov.mvhd");
        QCOMPARE(tab().selectedAtom()->valueForKey("timeScale"), Value(std::uint64_t{601}));
    }

    void readingAgainAsksBeforeItLosesEdits() {
        open(folder_.addSmallMovie());
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        answer([](QDialog& dialog) { press(dialog, "Cancel"); });
        trigger("readAgain");
        QVERIFY(document().isModified());
        answer([](QDialog& dialog) { press(dialog, "Yes"); });
        trigger("readAgain");
        QVERIFY(!document().isModified());
    }

    void theLastSaveCanBeTakenBack() {
        qputenv("VEXQT_UNDO", "on");
        qputenv("XDG_STATE_HOME", folder_.path("state").toLocal8Bit());
        const QString path = folder_.addSmallMovie();
        const QByteArray before = contentsOf(path);
        open(path);
        edit(document(), atomAt(document(), "moov.mvhd"), "timeScale", std::uint64_t{601});
        answer([](QDialog& dialog) { press(dialog, "Save"); });
        trigger("save");
        QVERIFY(contentsOf(path) != before);
        trigger("takeBack");
        qputenv("VEXQT_UNDO", "off");
        QCOMPARE(contentsOf(path), before);
        QCOMPARE(atomAt(document(), "moov.mvhd").valueForKey("timeScale"),
                 Value(std::uint64_t{600}));
    }

    // MARK: Tables

    void cellsAndTablesBecomeCsv() {
        using namespace testing;
        open(folder_.add(
            "table.mov",
            movieWithTables({atom("ctts"_os, {u32(0), u32(2), u32(7), u32(8), u32(9), u32(10)})})));
        VexQTAtom& table = atomAt(document(), "moov.trak.mdia.minf.stbl.ctts");
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        QVERIFY(writeCsv(table, *table.propertyNamed("compositionOffsets"), out, {}));
        QCOMPARE(out.data(), "sampleCount,compositionOffset\n7,8\n9,10\n");
        QBuffer stopped;
        stopped.open(QIODevice::WriteOnly);
        QVERIFY(writeCsv(table, *table.propertyNamed("compositionOffsets"), stopped,
                         [](quint64, quint64) { return false; }));
    }

    void selectedCellsAreQuotedWhereTheyMustBe() {
        QStandardItemModel model;
        model.appendRow({new QStandardItem("a,b"), new QStandardItem("c")});
        model.appendRow({new QStandardItem("say \"x\""), new QStandardItem("d")});
        model.appendRow({new QStandardItem("e"), new QStandardItem("f")});
        QTableView view;
        view.setModel(&model);
        view.selectionModel()->select({model.index(0, 0), model.index(1, 1)},
                                      QItemSelectionModel::Select);
        QCOMPARE(selectionAsCsv(view), "\"a,b\",c\n\"say \"\"x\"\"\",d\n");
        view.clearSelection();
        QCOMPARE(selectionAsCsv(view), "");
    }

    void aTableOfTenMillionRowsOpensAtOnce() {
        using namespace testing;
        const std::uint32_t count = 10'000'000;
        Bytes entries(std::size_t{4} * count);
        entries.back() = 42;
        open(folder_.add(
            "long.mov", movieWithTables({atom("stsz"_os, {u32(0), u32(0), u32(count), entries})})));
        QElapsedTimer clock;
        clock.start();
        select("moov.trak.mdia.minf.stbl.stsz");
        QApplication::processEvents();
        QVERIFY2(clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
        const Table table = tab().table();
        if (table.view == nullptr) QSKIP("the form is not there");
        QCOMPARE(table.entryCount(), quint64{count});
        QCOMPARE(table.entriesPerRow(), 4);
        answer([&](QDialog& dialog) {
            dialog.findChild<QSpinBox*>()->setValue(static_cast<int>(count));
            dialog.accept();
        });
        clock.restart();
        trigger("goToRow");
        QVERIFY2(clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(table.entryAt(table.view->currentIndex()), quint64{count} - 1);
        QCOMPARE(table.view->currentIndex().data().toInt(), 42);
        trigger("copyRows");
        QCOMPARE(QApplication::clipboard()->text(), "42\n");
        // The entry's bytes stand out in the file.
        table.view->setFocus();
        QTest::keyClick(table.view, Qt::Key_Left);
        QCOMPARE(tab().bytePane().hex().highlight().length, quint64{4});
        QCOMPARE(tab().bytePane().hex().highlight().end() + 4,
                 static_cast<quint64>(QFileInfo(document().path()).size()));
    }

    void aDoubleClickOnAChunkOffsetShowsTheChunk() {
        using namespace testing;
        open(folder_.add("chunks.mov", movieWithTables({atom(
                                           "stco"_os, {u32(0), u32(2), u32(100), u32(2000)})})));
        select("moov.trak.mdia.minf.stbl.stco");
        const Table table = tab().table();
        if (table.view == nullptr) QSKIP("the form is not there");
        QApplication::processEvents();
        const QPoint place = table.view->visualRect(table.view->model()->index(0, 1)).center();
        QTest::mouseDClick(table.view->viewport(), Qt::LeftButton, {}, place);
        QCOMPARE(tab().bytePane().hex().highlight(), (ByteRange{2000, 1024}));
    }

    // MARK: The program

private:
    static QProcessEnvironment plainEnvironment() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        environment.remove("QT_QPA_PLATFORM");
        return environment;
    }
    struct Outcome {
        int status;
        QString output, errors;
    };
    static Outcome run(const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(plainEnvironment());
        process.start(VEXQT_INSPECTOR, arguments);
        process.waitForFinished(60'000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

private slots:
    void aScreenshotIsDrawnWithoutAScreen() {
        const QString movie = folder_.addSmallMovie();
        const QString light = folder_.path("light.png"), dark = folder_.path("dark.png");
        QCOMPARE(run({"--screenshot", light, "--select", "moov.mvhd", "--size", "900x600", movie})
                     .status,
                 0);
        QCOMPARE(run({"--screenshot", dark, "--select", "moov.mvhd", "--dark", movie}).status, 0);
        QCOMPARE(QImage(light).size(), QSize(900, 600));
        const auto brightness = [](const QString& path) {
            const QImage image(path);
            return QColor(image.pixel(image.width() - 30, image.height() / 3)).lightness();
        };
        QVERIFY(brightness(light) > 200);
        QVERIFY(brightness(dark) < 80);
    }

    void theProgramEndsWithTheStatusOfTheCommand_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("says");
        const QString movie = folder_.addSmallMovie("status.mov");
        const QString text = folder_.add("status.txt", testing::text("Not a movie at all."));
        const QString picture = folder_.path("status.png");
        QTest::newRow("no such file")
            << QStringList{"--screenshot", picture, folder_.path("none.mov")} << 1
            << "No such file or directory";
        QTest::newRow("no movie") << QStringList{"--screenshot", picture, text} << 1
                                  << "could not be read as a movie";
        QTest::newRow("no such atom")
            << QStringList{"--screenshot", picture, "--select", "moov.nope", movie} << 1
            << "no 'nope'";
        QTest::newRow("no such folder")
            << QStringList{"--screenshot", folder_.path("none/a.png"), movie} << 1
            << "could not be written";
        QTest::newRow("unknown option") << QStringList{"--nonsense", movie} << 2 << "nonsense";
        QTest::newRow("no movie given")
            << QStringList{"--screenshot", picture} << 2 << "takes one MOVIE";
        QTest::newRow("no screen") << QStringList{movie} << 1 << "no screen";
    }
    void theProgramEndsWithTheStatusOfTheCommand() {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, says);
        const Outcome outcome = run(arguments);
        QCOMPARE(outcome.status, status);
        QVERIFY2(outcome.errors.contains(says), qPrintable(outcome.errors));
        QVERIFY2(outcome.errors.contains("vexqt-inspector: "), qPrintable(outcome.errors));
        QCOMPARE(outcome.output, "");
    }

    void helpAndVersionNeedNoScreen() {
        QVERIFY(run({"--help"}).output.contains("--screenshot FILE"));
        QCOMPARE(run({"--help"}).status, 0);
        QVERIFY(run({"--version"}).output.startsWith("vexqt-inspector "));
    }

    // MARK: A whole session

    void aRealMovieIsOpenedEditedSavedAndOpenedAgain() {
        const QString path = folder_.path("real.mov");
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg",
                     {"-v", "error", "-f", "lavfi", "-i", "testsrc=size=160x120:rate=10", "-f",
                      "lavfi", "-i", "sine", "-t", "1", "-c:v", "mpeg4", "-c:a", "aac", path});
        QVERIFY(ffmpeg.waitForFinished(60'000));
        QVERIFY2(ffmpeg.exitCode() == 0, ffmpeg.readAllStandardError().constData());
        const auto digest = [&] {
            QProcess process;
            process.start("ffmpeg", {"-v", "error", "-i", path, "-c", "copy", "-f", "md5", "-"});
            process.waitForFinished(60'000);
            return process.readAllStandardOutput();
        };
        const QByteArray media = digest();
        QVERIFY(media.startsWith("MD5="));

        open(path);
        trigger("expandAll");
        // Every atom can be looked at.
        QStringList paths;
        std::function<void(const QModelIndex&)> visit = [&](const QModelIndex& parent) {
            for (int row = 0; row < document().atoms().rowCount(parent); ++row) {
                const QModelIndex index = document().atoms().index(row, 0, parent);
                paths << document().atoms().pathOf(document().atoms().atomAt(index));
                visit(index);
            }
        };
        visit({});
        QVERIFY(paths.size() > 30);
        for (const QString& each : paths) {
            select(each);
            QCOMPARE(tab().selectedPath(), each);
            QApplication::processEvents();
        }

        select("moov.trak[soun].tkhd");
        const QString selected = tab().selectedPath();
        edit(document(), *tab().selectedAtom(), "layer", std::int64_t{3});
        edit(document(), atomAt(document(), "moov.mvhd"), "preferredVolume", 0.5);
        tab().select(&atomAt(document(), selected.toUtf8().constData()));
        if (AtomPath("moov").atomIn(document().asset().rootAtoms()).childWithType("udta"_os)) {
            select("moov.udta");
            trigger("remove");
        }
        select(selected);
        answer([](QDialog& dialog) { press(dialog, "Save"); });
        trigger("save");
        QVERIFY2(!document().isModified(), qPrintable(tab().messages().join('\n')));
        trigger("close");

        open(path);
        QVERIFY(document().remarks().isEmpty());
        QCOMPARE(atomAt(document(), "moov.trak[soun].tkhd").valueForKey("layer"),
                 Value(std::int64_t{3}));
        QCOMPARE(atomAt(document(), "moov.mvhd").valueForKey("preferredVolume"), Value(0.5));
        QVERIFY(!document().asset().moovAtom()->childWithType("udta"_os));
        QCOMPARE(digest(), media);
    }
};

}  // namespace vexqt::inspector_app

QTEST_MAIN(vexqt::inspector_app::WindowTest)
#include "window_test.moc"
